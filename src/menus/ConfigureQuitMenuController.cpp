#include "menus/ConfigureQuitMenuController.h"

#include "fileutils/ExecutableArchitectures.h"
#include "fileutils/KVOperatingSystem.h"
#include "groups/GroupsController.h"
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
using plist::Value;

RunningApplicationMarks RunningApplicationMarks::forThisComputer(const KVOperatingSystem::SystemVersion& system) {
    bool is64Bit = Is64BitProcessor();
    return RunningApplicationMarks{is64Bit, !is64Bit || !system.is10_7orLater()};
}

// The excluded group's list.

ConfigureQuitMenuController::ExcludedGroupList::ExcludedGroupList(ConfigureQuitMenuController& owner)
    : ExcludedApplicationsList(owner._prefs, keys::ShowExcludedApplicationInfo), owner_(owner) {}

namespace {

// While the groups editor adds to or removes from the list's group, the list hears of each row.
class RowsObserved {
public:
    RowsObserved(GroupsController& groups, ApplicationRowsObserver& list) : groups_(groups) {
        groups_.setExcludedRowsObserver(&list);
    }
    ~RowsObserved() { groups_.setExcludedRowsObserver(nullptr); }
    RowsObserved(const RowsObserved&) = delete;
    RowsObserved& operator=(const RowsObserved&) = delete;

private:
    GroupsController& groups_;
};

}  // namespace

int ConfigureQuitMenuController::ExcludedGroupList::addApplication(const std::string& path, int index, bool move,
                                                                   bool* alreadyListed) {
    GroupsController* groups = owner_.groups();
    if (!groups) return -1;
    RowsObserved observed(*groups, *this);
    return groups->addApplication(path, owner_._excludedApplications, index, move, alreadyListed);
}

void ConfigureQuitMenuController::ExcludedGroupList::removeApplication(int row) {
    GroupsController* groups = owner_.groups();
    if (!groups) return;
    RowsObserved observed(*groups, *this);
    groups->removeApplication(row, owner_._excludedApplications);
}

void ConfigureQuitMenuController::ExcludedGroupList::saveGroup(std::optional<bool> applicationsChanged) {
    GroupsController* groups = owner_.groups();
    if (!groups) return;
    groups->setExcludedApplications(owner_._excludedApplications);
    Dictionary payload{{keys::Groups, groups->mergedGroups()}};
    if (applicationsChanged) payload.set(changes::ChangeExcludedApplications, *applicationsChanged);
    _prefs.synchronizeValue(payload, changes::ChangeGroups);
}

// The editor.

ConfigureQuitMenuController::ConfigureQuitMenuController(CorvalisPreferences& prefs, NotificationCenter& local,
                                                         GroupsControllerSource groups, BrowserLinkSource browser,
                                                         QObject* parent)
    : MenuItemListModel(prefs, keys::QuitMenuItems, changes::ChangeQuitMenuItems, nullptr, parent),
      _local(local),
      _groups(std::move(groups)),
      _browser(std::move(browser)),
      _excluded(*this),
      _marks(RunningApplicationMarks::forThisComputer(KVOperatingSystem::current())),
      _showBackgroundProcesses(KVOperatingSystem::is10_7orLater()) {}

ConfigureQuitMenuController::~ConfigureQuitMenuController() {
    if (_observer) _local.removeObserver(*_observer);
}

void ConfigureQuitMenuController::initializePane(bool firstTime) {
    MenuItemListModel::initializePane(firstTime);
    _excluded.loadShowInfo();
    copyExcludedGroup();
    _excluded.selectRow(0);
    if (firstTime)
        _observer = _local.addObserver(notifications::ExcludedApplicationsChanged, "",
                                       [this](const Notification&) { onExcludedAppsChanged(); });
}

void ConfigureQuitMenuController::copyExcludedGroup() {
    GroupsController* groups = this->groups();
    std::optional<Dictionary> copy = groups ? groups->excludedApplications() : std::nullopt;
    // Without a groups editor (or its group) the list is empty and nothing is stored.
    _excludedApplications = copy.value_or(Dictionary{{keys::CanBeDeleted, false}});
    std::optional<Array> applications = plist::asArray(_excludedApplications[keys::Applications]);
    if (!applications) {
        applications = Array();
        _excludedApplications.set(keys::Applications, *applications);
    }
    _excluded.setApplications(*applications);
}

void ConfigureQuitMenuController::updatePane(std::string& report) {
    willShowPane();
    appendInvalidPathsLine(report, "QuitMenuSummary", _excluded.invalidCount());
}

void ConfigureQuitMenuController::sheetWindowDidBecomeMain(bool shownOnSheet) {
    if (!shownOnSheet) return;
    _excluded._updatePaths();
    _excluded._synchronizeOpenPanel();
}

void ConfigureQuitMenuController::onExcludedAppsChanged() {
    std::vector<std::string> selected = _excluded.checkPathsAndNoteSelection();
    copyExcludedGroup();
    _excluded.selectPaths(selected);
    _excluded._synchronizeOpenPanel();
}

// The menu list.

std::vector<std::string> ConfigureQuitMenuController::fixedKinds() const {
    return {items::RunningApplications, items::QuitOthers,          items::QuitAll,
            items::QuitExcluded,        items::Groups,              items::ExcludedApplications,
            items::BackgroundOnlyApplications};
}

Array ConfigureQuitMenuController::defaultMenu() const { return _prefs.defaultQuitMenu(); }

std::string ConfigureQuitMenuController::kindTitle(const std::string& kind) const {
    // From 10.7 on the system's word for them is background processes.
    if (kind == items::BackgroundOnlyApplications && _showBackgroundProcesses) return LocalizedString("BackgroundProcesses");
    return MenuItemListModel::kindTitle(kind);
}

// The options.

bool ConfigureQuitMenuController::option(const char* key) const { return _prefs.boolForKey(key); }

bool ConfigureQuitMenuController::sortChronologically() const {
    return !_prefs.boolForKey(keys::RunningApplicationsSortAlphabetically);
}

void ConfigureQuitMenuController::onSortChronologically(bool on) {
    synchronizeOption(_prefs, keys::RunningApplicationsSortAlphabetically, !on);
}

void ConfigureQuitMenuController::onMarkAppMode(bool on) { synchronizeOption(_prefs, keys::MarkApplicationMode, on); }

void ConfigureQuitMenuController::onMarkApplicationsUsingRosetta(bool on) {
    synchronizeOption(_prefs, keys::MarkApplicationsUsingRosetta, on);
}

bool ConfigureQuitMenuController::autoOpen() const { return _excludedApplications[keys::AutoOpen].toBool().value_or(false); }

bool ConfigureQuitMenuController::hide() const { return _excludedApplications[keys::Hide].toBool().value_or(false); }

void ConfigureQuitMenuController::onAutoOpen(bool on) { setGroupOption(keys::AutoOpen, on); }

void ConfigureQuitMenuController::onHide(bool on) { setGroupOption(keys::Hide, on); }

void ConfigureQuitMenuController::setGroupOption(const char* key, bool on) {
    _excludedApplications.set(key, on);
    // The box changed how the group opens, not which applications it holds.
    _excluded.saveGroup(std::nullopt);
}

void ConfigureQuitMenuController::onBrowseApplications() {
    if (ApplicationsBrowserLink* link = _browser ? _browser() : nullptr) link->showApplicationsBrowser();
}

}  // namespace corvalis
