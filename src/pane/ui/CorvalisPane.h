#pragma once
// The pane's principal class: owns the store, the tab controllers, the on/off
// switch and the pane-wide sheets, and follows the host's select/unselect cycle
// so that the settings are saved and the controller runs whenever it is on.

#include <QMap>
#include <QObject>
#include <QPointer>
#include <memory>

#include "pane/ui/PaneController.h"
#include "pane/ui/PreferencePane.h"

class QTabWidget;
class QDialog;
class QLabel;
class QMenu;

namespace corvalis {

class BackupSheets;
class ControllerManager;
class CorvalisPreferences;
class DBusNotificationCenter;
class FileDomainStore;
class KVKeyCombinationValidator;
class ShortcutsTab;
class KVSwitchControl;
class LinuxProcesses;
class PaneSwitchView;
class SoftwareUpdateSheet;
class XdgAutostartLoginItems;

class ComKestrovaCorvalis_PrefsPane : public QObject, public PreferencePane {
    Q_OBJECT

public:
    explicit ComKestrovaCorvalis_PrefsPane(QWidget* window, QObject* parent = nullptr);
    ~ComKestrovaCorvalis_PrefsPane() override;

    QWidget* loadMainView() override;
    QWidget* mainView() const override { return view_; }
    void mainViewDidLoad();
    void willSelect() override;
    void didSelect() override;
    UnselectReply shouldUnselect() override;
    void willUnselect() override;
    void didUnselect() override;
    QString label() const override;
    QStringList screenshotViews() const override;
    bool showScreenshotView(const QString& name) override;

    CorvalisPreferences& prefs() { return *prefs_; }
    ControllerManager& controllerManager() { return *controllerManager_; }
    BackupSheets& backupSheets() { return *backup_; }
    SoftwareUpdateSheet& softwareUpdate() { return *updates_; }
    QTabWidget* tabs() const { return tabs_; }
    KVSwitchControl* onOffSwitch() const { return onOffSwitch_; }
    // The sheet shown over the window, if any.
    QDialog* attachedSheet() const;

public slots:
    void onTurnOn();
    void onAbout();
    void onHelp();
    void onSoftwareUpdate();
    void onBackUpSettings();
    void onImportFromBackup();
    void onKestrovaWebSite();
    void onEmailSupport();
    void applicationWillTerminate();

private slots:
    void _showWelcome();
    void tabChanged(int index);

private:
    QWidget* buildView();
    QDialog* makeWelcomeSheet();
    QDialog* makeAboutSheet();
    PaneController* controllerForTab(int index) const;
    void showSwitchState();
    // A controller that did not quit when asked: the user may end it or wait longer.
    void askToForceQuit();
    // After an import: the tabs show the imported settings, then tell what they had to change.
    void reloadPane();
    void collectReport(QString& report);

    QWidget* window_;
    QWidget* view_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    KVSwitchControl* onOffSwitch_ = nullptr;
    QLabel* switchLabel_ = nullptr;
    QMenu* moreMenu_ = nullptr;
    QPointer<QDialog> welcomeSheet_;
    QPointer<QDialog> aboutSheet_;

    std::unique_ptr<FileDomainStore> domains_;
    std::unique_ptr<DBusNotificationCenter> distributed_;
    std::unique_ptr<CorvalisPreferences> prefs_;
    std::unique_ptr<LinuxProcesses> processes_;
    std::unique_ptr<XdgAutostartLoginItems> loginItems_;
    std::unique_ptr<PaneSwitchView> switchView_;
    std::unique_ptr<ControllerManager> controllerManager_;
    std::unique_ptr<KVKeyCombinationValidator> keyCombinationValidator_;
    std::unique_ptr<SoftwareUpdateSheet> updates_;
    std::unique_ptr<ShortcutsTab> shortcutsController_;
    std::unique_ptr<BackupSheets> backup_;
    QMap<QString, PaneController*> _paneControllers;
    int shownTab_ = -1;
    bool _closeCorvalis = false;
    bool firstUse_ = false;
};

}  // namespace corvalis
