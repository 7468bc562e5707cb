#include "app/settings/HostWindow.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPainter>
#include <QPluginLoader>
#include <QScreen>
#include <QSettings>
#include <QThread>

#include "pane/ui/PreferencePane.h"

namespace corvalis {

namespace {

void settle(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        // Outside exec() nothing deletes what deleteLater() left, such as closed sheets.
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(10);
    }
}

QSettings windowSettings() { return QSettings("Kestrova", "corvalis-settings"); }

}  // namespace

HostWindow::HostWindow() = default;

bool HostWindow::loadPane(const QString& pluginPath, QString* error) {
    QPluginLoader loader(pluginPath);
    auto* plugin = qobject_cast<PreferencePanePlugin*>(loader.instance());
    if (!plugin) {
        *error = loader.errorString();
        return false;
    }
    setPane(plugin->createPane(this));
    return true;
}

void HostWindow::setPane(PreferencePane* pane) {
    pane_ = pane;
    setWindowTitle(pane_->label());
    // The icon is one of the pane's images: there once the plugin is loaded.
    setWindowIcon(QIcon(":/images/CorvalisIcon.svg"));
    setCentralWidget(pane_->loadMainView());

    // Ctrl+W closes, Ctrl+Q quits; with one window both take the close button's way,
    // so the pane is asked first and saves. A sheet blocks both, as it blocks the button.
    auto* closeWindow = new QAction(this);
    closeWindow->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(QKeySequence::Close)});
    connect(closeWindow, &QAction::triggered, this, &QWidget::close);
    auto* quit = new QAction(this);
    quit->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Q), QKeySequence(QKeySequence::Quit)});
    connect(quit, &QAction::triggered, this, [this] {
        if (close()) QApplication::quit();
    });
    addActions({closeWindow, quit});
}

void HostWindow::closeForSessionEnd() {
    for (QDialog* sheet : findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly))
        if (sheet->isVisible()) sheet->reject();
    // Without the window the pane's quit handler saves and starts the controller.
    if (!close()) QApplication::quit();
}

void HostWindow::showAndSelect() {
    QByteArray geometry = windowSettings().value("WindowGeometry").toByteArray();
    if (geometry.isEmpty() || !restoreGeometry(geometry)) resize(sizeHint().expandedTo(QSize(720, 520)));
    pane_->willSelect();
    show();
    pane_->didSelect();
    selected_ = true;
}

void HostWindow::closeEvent(QCloseEvent* event) {
    if (selected_ && pane_->shouldUnselect() == PreferencePane::UnselectReply::Cancel) {
        QApplication::beep();
        event->ignore();
        return;
    }
    if (selected_) {
        pane_->willUnselect();
        pane_->didUnselect();
        selected_ = false;
    }
    windowSettings().setValue("WindowGeometry", saveGeometry());
    event->accept();
}

int HostWindow::writeScreenshots(const QString& folder) {
    QDir().mkpath(folder);
    int written = 0;
    settle(700);  // past the first-use welcome, so that it does not cover the first tabs
    for (const QString& view : pane_->screenshotViews()) {
        if (!pane_->showScreenshotView(view)) continue;
        settle(300);
        QPixmap shot = grab();
        // A sheet is a window of its own: draw it where it sits over the window.
        for (QDialog* sheet : findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (!sheet->isVisible()) continue;
            QPixmap sheetShot = sheet->grab();
            QPainter painter(&shot);
            painter.fillRect(shot.rect(), QColor(0, 0, 0, 60));
            painter.drawPixmap((shot.width() / shot.devicePixelRatio() - sheetShot.width() / sheetShot.devicePixelRatio()) / 2,
                               0, sheetShot);
        }
        QString file = QDir(folder).filePath(view + ".png");
        if (shot.save(file)) ++written;
    }
    return written;
}

QString findPanePlugin() {
    QString fromEnvironment = qEnvironmentVariable("CORVALIS_PANE_PLUGIN");
    if (!fromEnvironment.isEmpty()) return fromEnvironment;
    QDir beside(QCoreApplication::applicationDirPath() + "/../lib/corvalis");
    for (const char* name : {"libcorvalis-pane.so", "corvalis-pane.so"})
        if (beside.exists(name)) return beside.filePath(name);
    return beside.filePath("libcorvalis-pane.so");
}

}  // namespace corvalis
