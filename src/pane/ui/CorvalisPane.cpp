#include "pane/ui/CorvalisPane.h"

#include "pane/ApplicationsBrowserLink.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QWindow>

#include "controls/KVIconServices.h"
#include "controls/KVSwitchControl.h"
#include "controls/LocalizedText.h"
#include "fileutils/KVOperatingSystem.h"
#include "fileutils/browser/ui/InstallApplicationsBrowser.h"
#include "keys/KVKeyCombinationValidator.h"
#include "groups/ui/GroupsTab.h"
#include "keys/ui/ShortcutsTab.h"
#include "menus/ui/MenusTab.h"
#include "groups/ui/CustomApplicationsTab.h"
#include "groups/ui/OptionsTab.h"
#include "groups/ui/WindowRestorationTab.h"
#include "pane/PaneControllers.h"
#include "pane/ControllerLocation.h"
#include "pane/ControllerManager.h"
#include "pane/SystemKeyboardLayout.h"
#include "pane/ui/BackupSheets.h"
#include "pane/ui/ControllerAlerts.h"
#include "pane/ui/UnreadableDomainsAlert.h"
#include "pane/ui/SoftwareUpdateSheet.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "platform/Workspace.h"
#include "platform/linux/LinuxRunningApplications.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/XdgAutostartLoginItems.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/PaneVersion.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

// The on/off switch as the controller logic sees it.
class PaneSwitchView : public ControllerView {
public:
    explicit PaneSwitchView(ComKestrovaCorvalis_PrefsPane& pane) : pane_(pane) {}
    bool isSwitchOn() const override { return pane_.onOffSwitch()->isChecked(); }
    void setSwitchOn(bool on) override { pane_.setSwitchState(on); }
    void beep() override { QApplication::beep(); }

private:
    ComKestrovaCorvalis_PrefsPane& pane_;
};

namespace {
constexpr int kWelcomeDelayMs = 500;
}  // namespace

ComKestrovaCorvalis_PrefsPane::ComKestrovaCorvalis_PrefsPane(QWidget* window, QObject* parent)
    : QObject(parent), window_(window) {
    domains_ = std::make_unique<FileDomainStore>(FileDomainStore::defaultFolder());
    distributed_ = std::make_unique<DBusNotificationCenter>();
    local_ = std::make_unique<InProcessNotificationCenter>(/*keepPosted=*/false);
    running_ = std::make_unique<LinuxRunningApplications>(Workspace::shared());
    prefs_ = std::make_unique<CorvalisPreferences>(*domains_, *distributed_);
    processes_ = std::make_unique<LinuxProcesses>(controllerPath());
    loginItems_ = std::make_unique<XdgAutostartLoginItems>();
    switchView_ = std::make_unique<PaneSwitchView>(*this);
    controllerManager_ = std::make_unique<ControllerManager>(*prefs_, *processes_, *loginItems_, *switchView_);
    keyCombinationValidator_ = std::make_unique<KVKeyCombinationValidator>(*prefs_);
    updates_ = std::make_unique<SoftwareUpdateSheet>(*prefs_, *distributed_, window_);
    backup_ = std::make_unique<BackupSheets>(
        *prefs_, *controllerManager_, window_, [this] { reloadPane(); }, [this](QString& report) { collectReport(report); });
}

// The tabs go first: an open recording tells the controller to resume its hot keys.
ComKestrovaCorvalis_PrefsPane::~ComKestrovaCorvalis_PrefsPane() {
    _paneControllers = PaneControllers();
    tabControllers_.clear();
    delete browserWindow_.data();
}

void ComKestrovaCorvalis_PrefsPane::setApplicationsBrowser(ApplicationsBrowserLink* browser, QWidget* browserWindow) {
    delete browserWindow_.data();
    applicationsBrowser_ = browser;
    browserWindow_ = browserWindow;
}

QWidget* ComKestrovaCorvalis_PrefsPane::loadMainView() {
    if (view_) return view_;
    view_ = buildView();
    mainViewDidLoad();
    return view_;
}

QWidget* ComKestrovaCorvalis_PrefsPane::buildView() {
    auto* view = new QWidget(window_);
    auto* layout = new QVBoxLayout(view);

    auto* top = new QHBoxLayout;
    onOffSwitch_ = new KVSwitchControl(view);
    onOffSwitch_->setAccessibleName(localized("CorvalisOnOff"));
    onOffSwitch_->setToolTip(localized("CorvalisOnOffToolTip"));
    switchLabel_ = new QLabel(view);
    switchLabel_->setBuddy(onOffSwitch_);
    top->addWidget(onOffSwitch_);
    top->addWidget(switchLabel_);
    top->addStretch(1);
    auto addButton = [&](const char* key, void (ComKestrovaCorvalis_PrefsPane::*action)()) {
        auto* button = new QPushButton(localized(key), view);
        connect(button, &QPushButton::clicked, this, action);
        top->addWidget(button);
        return button;
    };
    addButton("Help", &ComKestrovaCorvalis_PrefsPane::onHelp)->setShortcut(QKeySequence::HelpContents);
    auto* more = new QToolButton(view);
    more->setText(localized("MoreButton"));
    more->setAccessibleName(localized("MoreButton"));
    more->setAccessibleDescription(localized("MoreButtonDescription"));
    more->setToolTip(localized("MoreButtonDescription"));
    // Reachable with Tab like the buttons beside it.
    more->setFocusPolicy(Qt::StrongFocus);
    more->setPopupMode(QToolButton::InstantPopup);
    moreMenu_ = new QMenu(more);
    moreMenu_->addAction(localized("About"), this, &ComKestrovaCorvalis_PrefsPane::onAbout);
    moreMenu_->addAction(localized("SoftwareUpdateMenuItem"), this, &ComKestrovaCorvalis_PrefsPane::onSoftwareUpdate);
    moreMenu_->addSeparator();
    moreMenu_->addAction(localized("BackUpSettingsMenuItem"), this, &ComKestrovaCorvalis_PrefsPane::onBackUpSettings);
    moreMenu_->addAction(localized("ImportFromBackupMenuItem"), this, &ComKestrovaCorvalis_PrefsPane::onImportFromBackup);
    moreMenu_->addSeparator();
    moreMenu_->addAction(localized("KestrovaWebSite"), this, &ComKestrovaCorvalis_PrefsPane::onKestrovaWebSite);
    moreMenu_->addAction(localized("EmailSupport"), this, &ComKestrovaCorvalis_PrefsPane::onEmailSupport);
    more->setMenu(moreMenu_);
    top->addWidget(more);
    layout->addLayout(top);

    tabs_ = new QTabWidget(view);
    tabs_->setAccessibleName(localized("Tabs"));
    tabs_->tabBar()->setAccessibleName(localized("Tabs"));
    for (const std::string& identifier : PaneControllers::tabOrder()) {
        auto* page = new QWidget(tabs_);
        page->setObjectName(QString::fromStdString(identifier));
        QString title = localized(identifier.c_str());
        page->setAccessibleName(title);
        tabs_->addTab(page, title);
    }
    layout->addWidget(tabs_, 1);
    // Key names follow the user's layout, read once here for every tab that shows keys.
    useSystemKeyboardLayout();

    addTabController(tabs::Menus, MenusTab::make(*this));
    addTabController(tabs::Shortcuts, std::make_unique<ShortcutsTab>(*prefs_, *distributed_, page(tabs::Shortcuts),
                                                                     window_, keyCombinationValidator_.get()));
    installApplicationsBrowser(*this);
    addTabController(tabs::Groups, std::make_unique<GroupsTab>(*this));
    addTabController(tabs::Applications, CustomApplicationsTab::create(*this));
    addTabController(tabs::Options, OptionsTab::create(*this));
    addTabController(tabs::Resume, WindowRestorationTab::create(*this));

    // toggled, not clicked: a screen reader's toggle action and the keyboard change the state
    // without a click. The label follows every change, the pane's own ones included.
    connect(onOffSwitch_, &KVSwitchControl::toggled, this, &ComKestrovaCorvalis_PrefsPane::switchToggled);
    return view;
}

NotificationCenter& ComKestrovaCorvalis_PrefsPane::distributedNotifications() { return *distributed_; }

RunningApplications& ComKestrovaCorvalis_PrefsPane::runningApplications() { return *running_; }

QWidget* ComKestrovaCorvalis_PrefsPane::page(const char* tab) const {
    for (int i = 0; tabs_ && i < tabs_->count(); ++i)
        if (tabs_->widget(i)->objectName() == QLatin1String(tab)) return tabs_->widget(i);
    return nullptr;
}

GroupsController* ComKestrovaCorvalis_PrefsPane::groupsController() const {
    auto* tab = dynamic_cast<GroupsTab*>(_paneControllers.forTab(tabs::Groups));
    return tab ? &tab->controller() : nullptr;
}

void ComKestrovaCorvalis_PrefsPane::addTabController(const char* tab, std::unique_ptr<PaneController> controller) {
    _paneControllers.add(tab, *controller);
    tabControllers_.push_back(std::move(controller));
}

void ComKestrovaCorvalis_PrefsPane::setSwitchState(bool on) {
    settingSwitch_ = true;
    onOffSwitch_->setChecked(on);
    settingSwitch_ = false;
    showSwitchState();
}

void ComKestrovaCorvalis_PrefsPane::switchToggled(bool) {
    showSwitchState();
    if (!settingSwitch_) onTurnOn();
}

void ComKestrovaCorvalis_PrefsPane::mainViewDidLoad() {
    firstUse_ = prefs_->loadPreferences();
    tellOfUnreadableDomains(window_, *prefs_);
    onOffSwitch_->setControlSize(KVSwitchControl::ControlSize::Small);
    setSwitchState(prefs_->boolForKey(keys::TurnOnCorvalis));

    keyCombinationValidator_->initializeHotKeys();
    if (!KVOperatingSystem::is10_7orLater()) {
        // Nothing to restore on such a system: the tab and its controller go.
        tabs_->removeTab(tabs_->indexOf(page(tabs::Resume)));
        _paneControllers.remove(tabs::Resume);
    }
    _paneControllers.initializePanes(true);
    updates_->controller().initializeSoftwareUpdate(true);
    if (firstUse_) QTimer::singleShot(kWelcomeDelayMs, this, &ComKestrovaCorvalis_PrefsPane::_showWelcome);
    connect(tabs_, &QTabWidget::currentChanged, this, &ComKestrovaCorvalis_PrefsPane::tabChanged);
    connect(qApp, &QCoreApplication::aboutToQuit, this, &ComKestrovaCorvalis_PrefsPane::applicationWillTerminate);
    focusIsOurs_ = QGuiApplication::focusWindow() && isOurWindow(QGuiApplication::focusWindow());
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &ComKestrovaCorvalis_PrefsPane::focusWindowChanged);
}

std::string ComKestrovaCorvalis_PrefsPane::tabIdentifier(int index) const {
    if (index < 0 || index >= tabs_->count()) return {};
    return tabs_->widget(index)->objectName().toStdString();
}

void ComKestrovaCorvalis_PrefsPane::willSelect() {
    controllerManager_->_turnCorvalisControllerOnOrOff();
    shownTab_ = tabIdentifier(tabs_->currentIndex());
    _paneControllers.selectionWillChange("", shownTab_);
    _closeCorvalis = true;
}

void ComKestrovaCorvalis_PrefsPane::didSelect() { observingWindow_ = true; }

bool ComKestrovaCorvalis_PrefsPane::isOurWindow(const QWindow* focus) const {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->windowHandle() != focus) continue;
        for (; widget; widget = widget->parentWidget())
            if (widget == window_) return true;
        return false;
    }
    return false;
}

// The window becomes main when focus comes to it, or to one of its sheets or panels,
// from elsewhere; focus moving between the window and its own sheets does not count.
void ComKestrovaCorvalis_PrefsPane::focusWindowChanged(QWindow* focus) {
    bool ours = focus && isOurWindow(focus);
    if (ours && !focusIsOurs_ && observingWindow_)
        _paneControllers.windowDidBecomeMain(tabIdentifier(tabs_->currentIndex()));
    focusIsOurs_ = ours;
}

QDialog* ComKestrovaCorvalis_PrefsPane::attachedSheet() const {
    for (QDialog* dialog : window_->findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly))
        if (dialog->isVisible() && dialog->windowModality() != Qt::NonModal) return dialog;
    return nullptr;
}

PreferencePane::UnselectReply ComKestrovaCorvalis_PrefsPane::shouldUnselect() {
    if (attachedSheet()) return UnselectReply::Cancel;
    if (ApplicationsBrowserLink* browser = applicationsBrowser()) browser->closeBrowser();
    return UnselectReply::Now;
}

void ComKestrovaCorvalis_PrefsPane::willUnselect() { observingWindow_ = false; }

void ComKestrovaCorvalis_PrefsPane::didUnselect() {
    prefs_->saveToDefaults();
    controllerManager_->_turnCorvalisControllerOn();
    _closeCorvalis = false;
}

void ComKestrovaCorvalis_PrefsPane::applicationWillTerminate() {
    if (!_closeCorvalis) return;
    prefs_->saveToDefaults();
    controllerManager_->_turnCorvalisControllerOn();
}

void ComKestrovaCorvalis_PrefsPane::tabChanged(int index) {
    std::string showing = tabIdentifier(index);
    _paneControllers.selectionWillChange(shownTab_, showing);
    shownTab_ = showing;
    if (ApplicationsBrowserLink* browser = applicationsBrowser()) browser->synchronizeDragApplicationsInfoWithPane(showing);
    if (PaneController* controller = _paneControllers.forTab(showing)) controller->fixKeyboardLoop();
}

void ComKestrovaCorvalis_PrefsPane::showSwitchState() {
    switchLabel_->setText(localized(onOffSwitch_->isChecked() ? "CorvalisIsOn" : "CorvalisIsOff"));
}

void ComKestrovaCorvalis_PrefsPane::onTurnOn() {
    // Quitting waits for the controller to be gone, which may take a moment.
    QApplication::setOverrideCursor(Qt::WaitCursor);
    TurnOnReport report = controllerManager_->onTurnOn();
    QApplication::restoreOverrideCursor();
    showSwitchState();
    if (report.quit == QuitOutcome::StillRunning) askToForceQuit();
}

void ComKestrovaCorvalis_PrefsPane::askToForceQuit() {
    askAboutControllerThatDoesNotQuit(window_, [this](bool forced) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        QuitOutcome outcome = forced ? controllerManager_->forceQuitController() : controllerManager_->_quitController();
        QApplication::restoreOverrideCursor();
        if (outcome == QuitOutcome::StillRunning) askToForceQuit();
    });
}

void ComKestrovaCorvalis_PrefsPane::onSoftwareUpdate() { updates_->controller().showSoftwareUpdateSheet(); }
void ComKestrovaCorvalis_PrefsPane::onBackUpSettings() { backup_->onBackUpSettings(); }
void ComKestrovaCorvalis_PrefsPane::onImportFromBackup() { backup_->onImportFromBackup(); }

void ComKestrovaCorvalis_PrefsPane::reloadPane() {
    setSwitchState(prefs_->boolForKey(keys::TurnOnCorvalis));
    keyCombinationValidator_->initializeHotKeys();
    _paneControllers.initializePanes(false);
    updates_->controller().initializeSoftwareUpdate(false);
}

void ComKestrovaCorvalis_PrefsPane::collectReport(QString& report) {
    std::string lines;
    _paneControllers.updatePanes(lines);
    report += QString::fromStdString(lines);
    if (ApplicationsBrowserLink* browser = applicationsBrowser()) browser->updateBrowser();
}

void ComKestrovaCorvalis_PrefsPane::onHelp() {
    if (!QDesktopServices::openUrl(QUrl(localized("HelpURL")))) QApplication::beep();
}

void ComKestrovaCorvalis_PrefsPane::onKestrovaWebSite() {
    if (!QDesktopServices::openUrl(QUrl(localized("WebSiteURL")))) QApplication::beep();
}

void ComKestrovaCorvalis_PrefsPane::onEmailSupport() {
    if (!QDesktopServices::openUrl(QUrl(localized("SupportMail")))) QApplication::beep();
}

QDialog* ComKestrovaCorvalis_PrefsPane::makeWelcomeSheet() {
    auto* sheet = new QDialog(window_);
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setWindowTitle(localized("WelcomeTitle"));
    auto* layout = new QVBoxLayout(sheet);
    auto* title = new QLabel(QString("<h2>%1</h2>").arg(localized("WelcomeTitle").toHtmlEscaped()), sheet);
    auto* body = new QLabel(localized("WelcomeText"), sheet);
    body->setWordWrap(true);
    body->setMinimumWidth(380);
    layout->addWidget(title);
    layout->addWidget(body);
    auto* buttons = new QDialogButtonBox(sheet);
    QPushButton* learnMore = buttons->addButton(localized("LearnMore"), QDialogButtonBox::HelpRole);
    QPushButton* close = buttons->addButton(localized("Continue"), QDialogButtonBox::AcceptRole);
    close->setDefault(true);
    // Learn More ends the sheet with 0, Continue with 1. Escape also ends it with 0, so the
    // page opens only when the button was the way out.
    auto learnMoreChosen = std::make_shared<bool>(false);
    connect(close, &QPushButton::clicked, sheet, [sheet] { sheet->done(1); });
    connect(learnMore, &QPushButton::clicked, sheet, [sheet, learnMoreChosen] {
        *learnMoreChosen = true;
        sheet->done(0);
    });
    connect(sheet, &QDialog::finished, sheet, [sheet, learnMoreChosen](int code) {
        if (code == 0 && *learnMoreChosen) QDesktopServices::openUrl(QUrl(localized("LearnMoreURL")));
        sheet->deleteLater();
    });
    layout->addWidget(buttons);
    return sheet;
}

void ComKestrovaCorvalis_PrefsPane::_showWelcome() {
    if (welcomeSheet_ && welcomeSheet_->isVisible()) return;
    welcomeSheet_ = makeWelcomeSheet();
    welcomeSheet_->open();
}

QDialog* ComKestrovaCorvalis_PrefsPane::makeAboutSheet() {
    auto* sheet = new QDialog(window_);
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setWindowTitle(localized("About"));
    auto* layout = new QVBoxLayout(sheet);
    auto* icon = new QLabel(sheet);
    icon->setPixmap(KVIconServices::applicationIcon().pixmap(64, 64));
    icon->setAccessibleName(localized("AboutIcon"));
    icon->setAlignment(Qt::AlignHCenter);
    auto* version = new QLabel(QString("<b>%1 %2</b>").arg(localized("CFBundleName"), QString::fromUtf8(kPaneVersion)), sheet);
    version->setAlignment(Qt::AlignHCenter);
    auto* copyright = new QLabel(localized("Copyright"), sheet);
    copyright->setAlignment(Qt::AlignHCenter);
    auto* about = new QLabel(localized("AboutText"), sheet);
    about->setWordWrap(true);
    about->setMinimumWidth(340);
    for (QWidget* part : {static_cast<QWidget*>(icon), static_cast<QWidget*>(version), static_cast<QWidget*>(copyright),
                          static_cast<QWidget*>(about)})
        layout->addWidget(part);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, sheet);
    connect(buttons, &QDialogButtonBox::accepted, sheet, &QDialog::accept);
    connect(sheet, &QDialog::finished, sheet, &QObject::deleteLater);
    layout->addWidget(buttons);
    return sheet;
}

void ComKestrovaCorvalis_PrefsPane::onAbout() {
    if (aboutSheet_ && aboutSheet_->isVisible()) return;
    aboutSheet_ = makeAboutSheet();
    aboutSheet_->open();
}

QString ComKestrovaCorvalis_PrefsPane::label() const { return localized("PaneLabel"); }

QStringList ComKestrovaCorvalis_PrefsPane::screenshotViews() const {
    QStringList views;
    for (int i = 0; i < tabs_->count(); ++i) views << "tab-" + tabs_->widget(i)->objectName();
    views << "sheet-welcome" << "sheet-about" << "sheet-software-update" << "panel-back-up";
    for (const ScreenshotView& view : extraScreenshotViews_) views << view.name;
    return views;
}

bool ComKestrovaCorvalis_PrefsPane::showScreenshotView(const QString& name) {
    if (QDialog* sheet = attachedSheet()) sheet->done(QDialog::Rejected);
    // Every view starts with the browser closed, or it would cover the window; its own views reopen it.
    if (applicationsBrowser()) applicationsBrowser()->closeBrowser();
    if (name.startsWith("tab-")) {
        for (int i = 0; i < tabs_->count(); ++i)
            if ("tab-" + tabs_->widget(i)->objectName() == name) {
                tabs_->setCurrentIndex(i);
                return true;
            }
        return false;
    }
    if (name == "sheet-welcome") _showWelcome();
    else if (name == "sheet-about") onAbout();
    else if (name == "sheet-software-update") onSoftwareUpdate();
    else if (name == "panel-back-up") onBackUpSettings();
    else {
        for (const ScreenshotView& view : extraScreenshotViews_) {
            if (view.name != name) continue;
            if (view.tab && page(view.tab)) tabs_->setCurrentWidget(page(view.tab));
            return view.show();
        }
        return false;
    }
    return true;
}

void ComKestrovaCorvalis_PrefsPane::addScreenshotView(const QString& name, std::function<bool()> show, const char* tab) {
    extraScreenshotViews_.push_back({name, std::move(show), tab});
}

}  // namespace corvalis
