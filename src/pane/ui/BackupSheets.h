#pragma once
// Backing the settings up to a ".cvbu" file and replacing them with a backup's:
// the file panels and every alert of both actions, as sheets on the pane's window.
// The file handling and checks live in prefs/Backup.h, the controller's part of
// an import in ControllerManager; this class only asks and tells.
//
// File names: the panel always shows the ".cvbu" extension and offers no choice
// to hide it, because Linux file managers keep no per-file "extension hidden" flag
// that such a choice could set.

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

#include "plist/Value.h"

class QWidget;

namespace corvalis {

class ControllerManager;
class CorvalisPreferences;

class BackupSheets : public QObject {
    Q_OBJECT

public:
    // A file panel on `window`; calls `done` once with the chosen path, or an empty one when cancelled.
    using SavePanel = std::function<void(QWidget* window, const QString& folder, const QString& proposedName,
                                         std::function<void(const QString& path)> done)>;
    using OpenPanel =
        std::function<void(QWidget* window, const QString& folder, std::function<void(const QString& path)> done)>;

    // `reloadPane` re-initialises the tabs, the browser and the update sheet from
    // the imported settings; `collectReport` then lets each of them append lines
    // about what it had to adjust. The save follows both.
    BackupSheets(CorvalisPreferences& prefs, ControllerManager& controller, QWidget* window,
                 std::function<void()> reloadPane, std::function<void(QString& report)> collectReport,
                 QObject* parent = nullptr);
    ~BackupSheets() override;

    // Tests answer the panels themselves; by default they are Qt's own file dialogs.
    void setSavePanel(SavePanel panel) { savePanel_ = std::move(panel); }
    void setOpenPanel(OpenPanel panel) { openPanel_ = std::move(panel); }

    // "~/Desktop", or the desktop folder the session names, or the home folder.
    static QString defaultBackupFolder();
    // "Corvalis - <short date>.cvbu", with the date's slashes made file-name safe.
    static QString defaultBackupName();

    // The alert or confirmation shown now, if any.
    QMessageBox* currentAlert() const;

public slots:
    void onBackUpSettings();
    void onImportFromBackup();

private:
    void _backUpTo(QString path);
    void _importFrom(const QString& path);
    void _replaceSettings(const plist::Dictionary& settings);
    void _askAboutControllerThatDoesNotQuit(bool importSaved, QString report);
    void _showSettingsReplaced(bool importSaved, const QString& report);
    QMessageBox* _alert(QMessageBox::Icon icon, const QString& message, const QString& informative);
    bool busy() const;

    CorvalisPreferences& prefs_;
    ControllerManager& controller_;
    QWidget* window_;
    std::function<void()> reloadPane_;
    std::function<void(QString&)> collectReport_;
    SavePanel savePanel_;
    OpenPanel openPanel_;
    QString lastFolder_;
    bool panelOpen_ = false;
    QPointer<QMessageBox> alert_;
};

}  // namespace corvalis
