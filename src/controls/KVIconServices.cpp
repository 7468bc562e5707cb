#include "controls/KVIconServices.h"

#include <QDir>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QPalette>
#include <QSettings>

#include "fileutils/KVOperatingSystem.h"
#include "fileutils/PathChecking.h"

namespace corvalis {

namespace {

QIcon resizedTo(const QIcon& icon, int size) {
    if (icon.isNull()) return icon;
    QIcon sized;
    sized.addPixmap(icon.pixmap(size, size));
    return sized;
}

QIcon imageResource(const QString& name, int size) {
    QString file = ":/images/" + name + ".svg";
    if (!QFileInfo::exists(file)) return QIcon();
    return resizedTo(QIcon(file), size);
}

// A desktop entry shows its theme icon; a bundle its .icns; anything else the file-type icon.
QIcon workspaceIcon(const QString& path) {
    QFileInfo info(path);
    if (info.suffix() == "desktop") {
        QSettings entry(path, QSettings::IniFormat);
        QString name = entry.value("Desktop Entry/Icon").toString();
        QIcon themed = QFileInfo(name).isAbsolute() ? QIcon(name) : QIcon::fromTheme(name);
        if (!themed.isNull()) return themed;
    }
    if (info.isDir() && info.suffix() == "app") {
        QFileInfo resources(path + "/Contents/Resources");
        const auto icns = QDir(resources.filePath()).entryInfoList({"*.icns"}, QDir::Files);
        if (!icns.isEmpty()) {
            QIcon bundleIcon(icns.first().filePath());
            if (!bundleIcon.isNull()) return bundleIcon;
        }
    }
    static QFileIconProvider provider;
    return provider.icon(info);
}

}  // namespace

KVIconServices& KVIconServices::sharedIcons() {
    static KVIconServices shared;
    return shared;
}

QIcon KVIconServices::iconForPath(const QString& path, int* error) const {
    int code = iconErrorForPath(path.toStdString());
    if (error) *error = code;
    if (code == 1) return badLinkIcon();
    if (code == 2) return trashIcon();
    return resizedTo(workspaceIcon(path), 16);
}

QIcon KVIconServices::trashIcon() {
    static const QIcon icon = imageResource(KVOperatingSystem::is10_10orLater() ? "Trash" : "Trash_Legacy", 16);
    return icon;
}

QIcon KVIconServices::badLinkIcon() {
    static const QIcon icon = imageResource("BadLink", 16);
    return icon;
}

QIcon KVIconServices::trashIcon_big() {
    static const QIcon icon = imageResource(KVOperatingSystem::is10_10orLater() ? "Trash_Big" : "Trash_Big_Legacy", 48);
    return icon;
}

QIcon KVIconServices::badLinkIcon_big() {
    static const QIcon icon = imageResource("BadLink_Big", 48);
    return icon;
}

QIcon KVIconServices::loadResource(const QString& name) { return imageResource(name, 16); }

QIcon KVIconServices::applicationIcon() { return QIcon(":/images/CorvalisIcon.svg"); }

QColor KVIconServices::textColorForError(int error, bool selected, const QPalette& palette) {
    if (error == 0 || selected) return palette.color(QPalette::Text);
    return error == 1 ? QColor(Qt::red) : QColor(Qt::lightGray);
}

}  // namespace corvalis
