#pragma once
// The pane's principal class: owns the store, the tab controllers, the on/off
// switch and the pane-wide sheets, and follows the host's select/unselect cycle
// so that the settings are saved and the controller runs whenever it is on.

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "pane/PaneController.h"
#include "pane/PaneControllers.h"
#include "pane/ui/PreferencePane.h"

class QTabWidget;
class QWindow;
class QDialog;
class QLabel;
class QMenu;

namespace corvalis {

class ApplicationsBrowserLink;
class BackupSheets;
class ControllerManager;
class CorvalisPreferences;
class DBusNotificationCenter;
class FileDomainStore;
class InProcessNotificationCenter;
class LinuxRunningApplications;
class NotificationCenter;
class RunningApplications;
class KVKeyCombinationValidator;
class KVSwitchControl;
class LinuxProcesses;
class PaneSwitchView;
class SoftwareUpdateSheet;
class XdgAutostartLoginItems;

class GroupsController;

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
    QWidget* window() const { return window_; }
    // To and from the controller over the session bus.
    NotificationCenter& distributedNotifications();
    // Between the tabs, editors and the browser inside this pane.
    InProcessNotificationCenter& localNotifications() { return *local_; }
    RunningApplications& runningApplications();
    // The preferences folder's domains: ours, the Dock's, other applications'.
    FileDomainStore& domainStore() { return *domains_; }
    KVKeyCombinationValidator& keyCombinationValidator() { return *keyCombinationValidator_; }
    KVSwitchControl* onOffSwitch() const { return onOffSwitch_; }
    QLabel* switchLabel() const { return switchLabel_; }
    // Moves the switch to what the settings say, without turning the controller on or off.
    void setSwitchState(bool on);
    // The tab's page, to be filled by its controller; null for a tab that is not shown.
    QWidget* page(const char* tab) const;
    // The pane drives the tab's controller from now on (and owns it).
    void addTabController(const char* tab, std::unique_ptr<PaneController> controller);
    PaneControllers& paneControllers() { return _paneControllers; }
    // The browser beside the window; null until one is set. The pane owns its window
    // and destroys it after the tabs that talk to it, before the store it reads.
    ApplicationsBrowserLink* applicationsBrowser() const { return browserWindow_ ? applicationsBrowser_ : nullptr; }
    // The Groups tab's editor, which the Quit menu editor shares the excluded group with; null before it exists.
    GroupsController* groupsController() const;
    void setApplicationsBrowser(ApplicationsBrowserLink* browser, QWidget* browserWindow);
    // A view for --screenshot beyond the tabs: showing it opens a sheet or window and
    // answers whether it could. With `tab`, that tab is shown first, under the sheet.
    void addScreenshotView(const QString& name, std::function<bool()> show, const char* tab = nullptr);
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
    void switchToggled(bool on);

private:
    QWidget* buildView();
    QDialog* makeWelcomeSheet();
    QDialog* makeAboutSheet();
    std::string tabIdentifier(int index) const;
    bool isOurWindow(const QWindow* focus) const;
    void focusWindowChanged(QWindow* focus);
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
    std::unique_ptr<InProcessNotificationCenter> local_;
    std::unique_ptr<LinuxRunningApplications> running_;
    std::unique_ptr<CorvalisPreferences> prefs_;
    std::unique_ptr<LinuxProcesses> processes_;
    std::unique_ptr<XdgAutostartLoginItems> loginItems_;
    std::unique_ptr<PaneSwitchView> switchView_;
    std::unique_ptr<ControllerManager> controllerManager_;
    std::unique_ptr<KVKeyCombinationValidator> keyCombinationValidator_;
    std::unique_ptr<SoftwareUpdateSheet> updates_;
    std::unique_ptr<BackupSheets> backup_;
    std::vector<std::unique_ptr<PaneController>> tabControllers_;
    PaneControllers _paneControllers;
    std::string shownTab_;
    ApplicationsBrowserLink* applicationsBrowser_ = nullptr;
    QPointer<QWidget> browserWindow_;
    struct ScreenshotView {
        QString name;
        std::function<bool()> show;
        const char* tab;
    };
    std::vector<ScreenshotView> extraScreenshotViews_;
    bool _closeCorvalis = false;
    // Between didSelect and willUnselect the tabs hear of the window becoming active.
    bool observingWindow_ = false;
    bool focusIsOurs_ = false;
    // Set while the pane itself moves the switch, which is not the user turning it.
    bool settingSwitch_ = false;
    bool firstUse_ = false;
};

}  // namespace corvalis
