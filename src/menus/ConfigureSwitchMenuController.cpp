#include "menus/ConfigureSwitchMenuController.h"


#include "menus/MenusController.h"
#include "pane/ApplicationsBrowserLink.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/MenuItemKinds.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;

namespace {
constexpr const char* kNoteImage = "Note";
constexpr const char* kCautionImage = "Caution";
}  // namespace

// The excluded list.

ConfigureSwitchMenuController::SwitchExcludedList::SwitchExcludedList(CorvalisPreferences& prefs)
    : ExcludedApplicationsList(prefs, keys::ShowSwitchMenuExcludedApplicationInfo) {}

int ConfigureSwitchMenuController::SwitchExcludedList::addApplication(const std::string& path, int, bool,
                                                                      bool* alreadyListed) {
    // One record per application, however its path is spelt.
    std::optional<int> listed = rowOfPath(path, true);
    if (alreadyListed) *alreadyListed = listed.has_value();
    if (listed) return *listed;
    std::optional<Dictionary> record = excludedApplicationRecord(path);
    return record ? insertInNameOrder(*record) : -1;
}

void ConfigureSwitchMenuController::SwitchExcludedList::saveApplications(bool) {
    _prefs.synchronizeValue(Dictionary{{keys::SwitchMenuExcludedApplications, applications()}},
                            changes::ChangeSwitchMenuExcludedApps);
}

// The editor.

ConfigureSwitchMenuController::ConfigureSwitchMenuController(CorvalisPreferences& prefs, NotificationCenter& local,
                                                             NotificationCenter& distributed,
                                                             AssistiveAccess assistiveAccess, BrowserLinkSource browser,
                                                             KVOperatingSystem::SystemVersion system, QObject* parent)
    : MenuItemListModel(prefs, keys::SwitchMenuItems, changes::ChangeSwitchMenuItems, nullptr, parent),
      _local(local),
      _distributed(distributed),
      _assistiveAccess(std::move(assistiveAccess)),
      _browser(std::move(browser)),
      _system(system),
      _excluded(prefs),
      _marks(RunningApplicationMarks::forThisComputer(system)) {}

ConfigureSwitchMenuController::~ConfigureSwitchMenuController() {
    if (_excludedObserver) _distributed.removeObserver(*_excludedObserver);
    if (_singleAppModeObserver) _local.removeObserver(*_singleAppModeObserver);
}

void ConfigureSwitchMenuController::initializePane(bool firstTime) {
    MenuItemListModel::initializePane(firstTime);
    _excluded.loadShowInfo();
    fetchExcludedApplications();
    _excluded.selectRow(0);
    _synchronizeMessages();
    if (firstTime)
        _excludedObserver = _distributed.addObserver(
            notifications::SwitchMenuExcludedAppsChanged, notifications::ControllerObject,
            [this](const Notification& notification) { onExcludedAppsChanged(notification); });
}

void ConfigureSwitchMenuController::fetchExcludedApplications() {
    std::optional<Array> applications = _prefs.arrayForKey(keys::SwitchMenuExcludedApplications);
    if (!applications) {
        applications = Array();
        _prefs.setArray(*applications, keys::SwitchMenuExcludedApplications);
    }
    _excluded.setApplications(*applications);
}

void ConfigureSwitchMenuController::updatePane(std::string& report) {
    willShowPane();
    appendInvalidPathsLine(report, "SwitchMenuSummary", _excluded.invalidCount());
}

void ConfigureSwitchMenuController::willBeginSheet() {
    // From 10.9 on the windows are read through the application's own trust, not this setting.
    _assistiveDevicesEnabled = _system.is10_9orLater() || (_assistiveAccess && _assistiveAccess());
    _synchronizeGroupsExtraIcon();
    _synchronizeActiveApplicationWindowsExtraIcon();
    _synchronizeMessages();
    if (!_singleAppModeObserver)
        _singleAppModeObserver = _local.addObserver(notifications::SingleApplicationModeToggled, "",
                                                    [this](const Notification&) { onSingleApplicationModeToggled(); });
}

void ConfigureSwitchMenuController::didEndSheet() {
    if (_singleAppModeObserver) _local.removeObserver(*_singleAppModeObserver);
    _singleAppModeObserver.reset();
    MenuItemListModel::didEndSheet();
}

void ConfigureSwitchMenuController::sheetWindowDidBecomeMain(bool shownOnSheet) {
    if (!shownOnSheet) return;
    _excluded._updatePaths();
    _excluded._synchronizeOpenPanel();
}

// The menu list.

std::vector<std::string> ConfigureSwitchMenuController::fixedKinds() const {
    return {items::ActiveApplicationWindows, items::RunningApplications, items::SwitchToPrevious, items::HideOthers,
            items::ShowAll,                  items::Groups,              items::ToggleSingleApplicationMode};
}

Array ConfigureSwitchMenuController::defaultMenu() const { return _prefs.defaultSwitchMenu(); }

std::string ConfigureSwitchMenuController::extraImage(int row) const {
    auto found = _extraIcons.find(kindAt(row));
    return found == _extraIcons.end() ? std::string() : found->second;
}

bool ConfigureSwitchMenuController::isDimmed(int row) const {
    return kindAt(row) == items::Groups && singleApplicationModeOn();
}

bool ConfigureSwitchMenuController::menuHolds(const char* kind) const {
    for (int row = 0; row < rowCount(); ++row)
        if (kindAt(row) == kind) return true;
    return false;
}

bool ConfigureSwitchMenuController::singleApplicationModeOn() const {
    return _prefs.boolForKey(keys::TurnOnSingleApplicationMode);
}

// Notes.

void ConfigureSwitchMenuController::_synchronizeGroupsExtraIcon() {
    if (singleApplicationModeOn())
        _extraIcons[items::Groups] = kNoteImage;
    else
        _extraIcons.erase(items::Groups);
}

void ConfigureSwitchMenuController::_synchronizeActiveApplicationWindowsExtraIcon() {
    if (_assistiveDevicesEnabled)
        _extraIcons.erase(items::ActiveApplicationWindows);
    else
        _extraIcons[items::ActiveApplicationWindows] = kCautionImage;
}

void ConfigureSwitchMenuController::_synchronizeMessages() {
    bool windows = option(keys::AddApplicationWindows);
    _windowsCaution = windows && !_assistiveDevicesEnabled;
    _singleAppModeInfo = menuHolds(items::Groups) && singleApplicationModeOn();
    _universalAccessWarning = !_assistiveDevicesEnabled && (windows || menuHolds(items::ActiveApplicationWindows));
    emit messagesChanged();
}

std::string ConfigureSwitchMenuController::universalAccessWarningText() const {
    return LocalizedFormat("EnableAccessForAssistiveDevices",
                           {LocalizedString("EnableAccessForAssistiveDevicesOption"),
                            LocalizedString(_system.is10_8orLater() ? "Accessibility" : "UniversalAccess")});
}

std::string ConfigureSwitchMenuController::universalAccessButtonTitle() const {
    return LocalizedString(_system.is10_8orLater() ? "OpenAccessibility" : "OpenUniversalAccess");
}

void ConfigureSwitchMenuController::onOpenUniversalAccess() {
    _local.post(Notification{notifications::OpenUniversalAccess, "", std::nullopt});
}

void ConfigureSwitchMenuController::onSingleApplicationModeToggled() {
    _synchronizeGroupsExtraIcon();
    _synchronizeMessages();
    if (rowCount() > 0) emit dataChanged(index(0), index(rowCount() - 1));
}

// The options.

bool ConfigureSwitchMenuController::option(const char* key) const { return _prefs.boolForKey(key); }

bool ConfigureSwitchMenuController::sortChronologically() const {
    return !_prefs.boolForKey(keys::SwitchMenuRunningApplicationsSortAlphabetically);
}

void ConfigureSwitchMenuController::onSortChronologically(bool on) {
    synchronizeOption(_prefs, keys::SwitchMenuRunningApplicationsSortAlphabetically, !on);
}

void ConfigureSwitchMenuController::onReopenApplications(bool on) {
    synchronizeOption(_prefs, keys::ReopenApplicationsOnSwitch, on);
}

void ConfigureSwitchMenuController::onShowApplicationWindows(bool on) {
    synchronizeOption(_prefs, keys::AddApplicationWindows, on);
    _synchronizeMessages();
}

void ConfigureSwitchMenuController::onMarkAppMode(bool on) {
    synchronizeOption(_prefs, keys::SwitchMenuMarkApplicationMode, on);
}

void ConfigureSwitchMenuController::onMarkApplicationsUsingRosetta(bool on) {
    synchronizeOption(_prefs, keys::SwitchMenuMarkApplicationsUsingRosetta, on);
}

void ConfigureSwitchMenuController::onBrowseApplications() {
    if (ApplicationsBrowserLink* link = _browser ? _browser() : nullptr) link->showApplicationsBrowser();
}

// The controller's change of the excluded list.

void ConfigureSwitchMenuController::onExcludedAppsChanged(const Notification& notification) {
    if (!notification.userInfo) return;
    const plist::Array* incoming =
        (*notification.userInfo)[changes::ChangeSwitchMenuExcludedApps][keys::SwitchMenuExcludedApplications].array();
    if (!incoming) return;
    std::vector<std::string> selected = _excluded.checkPathsAndNoteSelection();
    // The store's loader rebuilds each record and drops what it cannot read.
    _prefs.setArray(incoming->deepCopy(), keys::SwitchMenuExcludedApplications);
    _prefs.reloadExcludedApplications();
    fetchExcludedApplications();
    _excluded.selectPaths(selected);
    _excluded._synchronizeOpenPanel();
}

}  // namespace corvalis
