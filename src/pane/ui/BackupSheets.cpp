#include "pane/ui/BackupSheets.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

#include "controls/AlertSheet.h"
#include "controls/LocalizedText.h"
#include "fileutils/KVOperatingSystem.h"
#include "fileutils/PathResolution.h"
#include "pane/ControllerManager.h"
#include "pane/ui/ControllerAlerts.h"
#include "prefs/Backup.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

const QString kSuffix = QStringLiteral(".") + QLatin1String(kBackupExtension);

QString fileFilter() { return localized("BackupFileKind") + QStringLiteral(" (*%1)").arg(kSuffix); }

void finishPanel(QFileDialog* panel, std::function<void(const QString&)> done) {
    panel->setOption(QFileDialog::DontUseNativeDialog);
    panel->setNameFilter(fileFilter());
    panel->setWindowModality(Qt::WindowModal);
    QObject::connect(panel, &QDialog::finished, panel, [panel, done = std::move(done)](int result) {
        QStringList files = panel->selectedFiles();
        panel->deleteLater();
        done(result == QDialog::Accepted && !files.isEmpty() ? files.first() : QString());
    });
    panel->open();
}

void runSavePanel(QWidget* window, const QString& folder, const QString& proposedName,
                  std::function<void(const QString&)> done) {
    auto* panel = new QFileDialog(window, localized("BackUpSettings"), folder);
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setFileMode(QFileDialog::AnyFile);
    panel->setDefaultSuffix(QLatin1String(kBackupExtension));
    panel->selectFile(proposedName);
    finishPanel(panel, std::move(done));
}

void runOpenPanel(QWidget* window, const QString& folder, std::function<void(const QString&)> done) {
    auto* panel = new QFileDialog(window, localized("ImportFromBackup"), folder);
    panel->setAcceptMode(QFileDialog::AcceptOpen);
    panel->setFileMode(QFileDialog::ExistingFile);
    // A link is imported as the file it names, but the panel shows it as the link the user picked.
    panel->setOption(QFileDialog::DontResolveSymlinks);
    finishPanel(panel, std::move(done));
}

std::string nativePath(const QString& path) { return QFile::encodeName(path).toStdString(); }

}  // namespace

BackupSheets::BackupSheets(CorvalisPreferences& prefs, ControllerManager& controller, QWidget* window,
                           std::function<void()> reloadPane, std::function<void(QString& report)> collectReport,
                           QObject* parent)
    : QObject(parent), prefs_(prefs), controller_(controller), window_(window), reloadPane_(std::move(reloadPane)),
      collectReport_(std::move(collectReport)), savePanel_(runSavePanel), openPanel_(runOpenPanel) {}

BackupSheets::~BackupSheets() { delete alert_; }

QString BackupSheets::defaultBackupFolder() {
    QString desktop = QDir::home().filePath(QStringLiteral("Desktop"));
    if (QFileInfo(desktop).isDir()) return desktop;
    // Sessions in other languages name their desktop folder differently.
    QString session = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    if (!session.isEmpty() && QFileInfo(session).isDir()) return session;
    return QDir::homePath();
}

QString BackupSheets::defaultBackupName() {
    QString date = QLocale().toString(QDate::currentDate(), QLocale::ShortFormat);
    // Most short dates contain slashes, which no file name may.
    date.replace(QLatin1Char('/'), QLatin1Char('-'));
    return localizedFormat("BackupFileName", {date.toStdString()}) + kSuffix;
}

QMessageBox* BackupSheets::currentAlert() const { return alert_; }

bool BackupSheets::busy() const { return panelOpen_ || (alert_ && alert_->isVisible()); }

QMessageBox* BackupSheets::_alert(QMessageBox::Icon icon, const QString& message, const QString& informative) {
    alert_ = makeAlertSheet(window_, icon, message, informative);
    return alert_;
}

namespace {

void showWithOK(QMessageBox* box) {
    box->setDefaultButton(box->addButton(localized("OK"), QMessageBox::AcceptRole));
    box->open();
}

}  // namespace

// ---- Back up ---------------------------------------------------------------------

void BackupSheets::onBackUpSettings() {
    if (busy()) return QApplication::beep();
    // The backup is made from the stored domain, which must hold every edit so far.
    prefs_.saveToDefaults();
    panelOpen_ = true;
    savePanel_(window_, defaultBackupFolder(), defaultBackupName(), [self = QPointer(this)](const QString& path) {
        if (!self) return;
        self->panelOpen_ = false;
        if (!path.isEmpty()) self->_backUpTo(path);
    });
}

void BackupSheets::_backUpTo(QString path) {
    // The file type is not optional: a name typed with another extension gets ours added.
    if (!path.endsWith(kSuffix)) path += kSuffix;
    lastFolder_ = QFileInfo(path).absolutePath();
    std::string error;
    if (writeBackupFile(nativePath(path), prefs_.loadFromDefaults(), error)) return;
    QString message = localizedFormat("BackUpSettingsError", {path.toStdString()});
    QMessageBox* box = _alert(QMessageBox::Warning, localized("BackUpSettings"), message);
    box->setDetailedText(QString::fromStdString(error));
    showWithOK(box);
}

// ---- Import ----------------------------------------------------------------------

void BackupSheets::onImportFromBackup() {
    if (busy()) return QApplication::beep();
    panelOpen_ = true;
    QString folder = lastFolder_.isEmpty() ? defaultBackupFolder() : lastFolder_;
    openPanel_(window_, folder, [self = QPointer(this)](const QString& path) {
        if (!self) return;
        self->panelOpen_ = false;
        if (!path.isEmpty()) self->_importFrom(path);
    });
}

void BackupSheets::_importFrom(const QString& path) {
    lastFolder_ = QFileInfo(path).absolutePath();
    BackupContents contents = readBackupFile(nativePath(path));
    std::string name = DisplayNameAtPath(nativePath(path));
    if (contents.check != BackupCheck::Valid) {
        QString message = QString::fromStdString(backupErrorText(contents, name));
        showWithOK(_alert(QMessageBox::Warning, localized("ImportFromBackup"), message));
        return;
    }
    QMessageBox* box = _alert(QMessageBox::Question, localizedFormat("WantToReplaceSettings1", {name}),
                              KVOperatingSystem::is10_7orLater() ? localized("WantToReplaceSettings2")
                                                                 : localized("WantToReplaceSettings3"));
    QPushButton* replace = box->addButton(localized("ReplaceSettings"), QMessageBox::AcceptRole);
    QPushButton* cancel = box->addButton(localized("Cancel"), QMessageBox::RejectRole);
    box->setDefaultButton(replace);
    box->setEscapeButton(cancel);
    connect(box, &QDialog::finished, this, [this, box, replace, settings = contents.settings] {
        if (box->clickedButton() == replace) _replaceSettings(settings);
    });
    box->open();
}

void BackupSheets::_replaceSettings(const plist::Dictionary& settings) {
    QString report;
    // Quitting the controller may take a while; the window cannot be used meanwhile.
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ImportReport result = controller_.importFromBackup(settings, [&] {
        if (reloadPane_) reloadPane_();
        // The tabs may drop what this computer lacks; those changes are saved with the rest.
        if (collectReport_) collectReport_(report);
        return prefs_.saveToDefaults();
    });
    QApplication::restoreOverrideCursor();
    if (result.quit == QuitOutcome::StillRunning)
        _askAboutControllerThatDoesNotQuit(result.restored, report);
    else
        _showSettingsReplaced(result.restored, report);
}

// The old controller still runs with the old settings: it must go before the
// imported settings can take effect, so the user decides between waiting and ending it.
void BackupSheets::_askAboutControllerThatDoesNotQuit(bool importSaved, QString report) {
    alert_ = askAboutControllerThatDoesNotQuit(window_, [this, importSaved, report](bool forced) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        QuitOutcome outcome = forced ? controller_.forceQuitController() : controller_._quitController();
        if (outcome != QuitOutcome::StillRunning && prefs_.boolForKey(keys::TurnOnCorvalis))
            controller_._launchController();
        QApplication::restoreOverrideCursor();
        if (outcome == QuitOutcome::StillRunning)
            _askAboutControllerThatDoesNotQuit(importSaved, report);
        else
            _showSettingsReplaced(importSaved, report);
    });
}

void BackupSheets::_showSettingsReplaced(bool importSaved, const QString& report) {
    QString lines = report.trimmed();
    QString informative =
        lines.isEmpty() ? localized("SettingsReplaced2") : localized("SettingsReplaced3") + QLatin1Char('\n') + lines;
    if (!importSaved) informative += QStringLiteral("\n\n") + localized("ImportedSettingsNotSaved");
    showWithOK(_alert(QMessageBox::Information, localized("SettingsReplaced1"), informative));
}

}  // namespace corvalis
