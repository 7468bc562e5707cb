#include "menus/ConfigureOpenMenuController.h"

#include <climits>

#include "fileutils/AliasResolution.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "pane/ApplicationsBrowserLink.h"
#include "plist/Utf8.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/MenuItemKinds.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

constexpr const char* kDeveloperFolder = "/Developer";
constexpr const char* kDeveloperApplicationsFolder = "/Developer/Applications";
constexpr const char* kIndex = "Index";
constexpr const char* kPaths = "Paths";
constexpr int kNewFolderDepth = 2;

// A path the menu can keep: an existing folder, spelt in UTF-8, within the length the controller reads.
std::optional<std::string> usableFolder(const std::string& path) {
    if (!plist::detail::isValidUtf8(path) || !isPathWithinLimit(path)) return std::nullopt;
    std::optional<std::string> folder = ResolvedFolderPath(path);
    if (!folder || !fileExistsAtPath(*folder) || !plist::detail::isValidUtf8(*folder)) return std::nullopt;
    return folder;
}

}  // namespace

Dictionary newFolderRecord(const std::string& path) {
    Dictionary record{{keys::Item, items::Folder},
                      {keys::Name, LocalizedFolderName(path)},
                      {keys::Path, path},
                      {keys::NameIsCustom, false},
                      {keys::Depth, Value::int32(kNewFolderDepth)},
                      {keys::BrowserDepth, Value::int32(kNewFolderDepth)}};
    if (std::optional<plist::Data> alias = AliasData(path)) record.set(keys::AliasData, *alias);
    return record;
}

ConfigureOpenMenuController::ConfigureOpenMenuController(CorvalisPreferences& prefs, NotificationCenter& local,
                                                         NotificationCenter& distributed,
                                                         BrowserLinkSource browser, QObject* parent)
    : PathMenuItemListModel(prefs, keys::OpenMenuItems, changes::ChangeOpenMenuItems, keys::ShowOpenMenuInfo,
                            PathWords{items::Folder, "AddFolder", "ChangeFolder1", "ChangeFolder2", "OpenMenuSummary",
                                      false, true},
                            parent),
      _local(local),
      _distributed(distributed),
      _browser(std::move(browser)) {}

ConfigureOpenMenuController::~ConfigureOpenMenuController() {
    if (_observers.size() != 2) return;  // never initialized: nothing observed
    _distributed.removeObserver(_observers[0]);
    _local.removeObserver(_observers[1]);
}

void ConfigureOpenMenuController::initializePane(bool firstTime) {
    if (firstTime) {
        _showDeveloper = GetDeveloperApplicationsFolderRef() == kNoErr;
        _initializeIconsAndPaths();
        auto observer = [this](const Notification& notification) { onOpenMenuItemsChanged(notification); };
        _observers = {_distributed.addObserver(notifications::OpenMenuItemsChanged, notifications::ControllerObject, observer),
                      _local.addObserver(notifications::OpenMenuItemsUpdated, "", observer)};
    }
    PathMenuItemListModel::initializePane(firstTime);
    _hierarchical = _prefs.boolForKey(keys::HierarchicalFolderMenus);
    _synchronizationOff = !_prefs.boolForKey(keys::AutoSynchronizeFolderMenus);
}

void ConfigureOpenMenuController::_initializeIconsAndPaths() {
    std::string applications;
    if (GetApplicationsFolderRef(&applications) == kNoErr && isPathWithinLimit(applications)) {
        _paths[items::ApplicationsFolder] = applications;
        _iconPaths[items::ApplicationsFolder] = applications;
    }
    _iconPaths[items::DeveloperApplicationsFolder] = kDeveloperFolder;
    _paths[items::DeveloperApplicationsFolder] = kDeveloperApplicationsFolder;
}

std::vector<std::string> ConfigureOpenMenuController::fixedKinds() const {
    return {items::Groups,           items::DockApplications,           items::RecentApplications,
            items::ApplicationsFolder, items::DeveloperApplicationsFolder, items::SystemPreferences};
}

std::vector<std::string> ConfigureOpenMenuController::unavailableKinds() const {
    if (_showDeveloper) return {};
    return {items::DeveloperApplicationsFolder};
}

std::vector<std::string> ConfigureOpenMenuController::alwaysOfferedKinds() const {
    return {items::Folder, items::Separator};
}

Array ConfigureOpenMenuController::defaultMenu() const { return _prefs.defaultOpenMenu(); }

std::string ConfigureOpenMenuController::kindPath(const std::string& kind) const {
    auto found = _paths.find(kind);
    return found == _paths.end() ? std::string() : found->second;
}

std::string ConfigureOpenMenuController::kindIconPath(const std::string& kind) const {
    auto found = _iconPaths.find(kind);
    return found != _iconPaths.end() && fileExistsAtPath(found->second) ? found->second : std::string();
}

void ConfigureOpenMenuController::postLocal(const char* name, std::optional<Dictionary> userInfo) {
    _local.post(Notification{name, "", std::move(userInfo)});
}

void ConfigureOpenMenuController::itemsAddedOrRearranged() {
    postLocal(notifications::OpenMenuItemsAddedOrRearranged, std::nullopt);
}

void ConfigureOpenMenuController::itemsRemoved(const Array& paths, int index) {
    postLocal(notifications::OpenMenuItemsRemoved, Dictionary{{kPaths, paths}, {kIndex, Value::int32(index)}});
}

void ConfigureOpenMenuController::synchronizeBrowser(int index, bool isFolder, bool removeDuplicate) {
    if (ApplicationsBrowserLink* link = browser()) link->synchronizeOpenMenuItem(index, isFolder, removeDuplicate, true);
}

std::optional<std::string> ConfigureOpenMenuController::usablePath(const std::string& path) const {
    return usableFolder(path);
}

Dictionary ConfigureOpenMenuController::newPathRecord(const std::string& path) const { return newFolderRecord(path); }

void ConfigureOpenMenuController::repointRecord(Dictionary& record, const std::string& path) const {
    record.set(keys::Path, path);
    record.set(keys::Name, LocalizedFolderName(path));
    record.set(keys::NameIsCustom, false);
    record.remove(keys::AliasData);
    if (std::optional<plist::Data> alias = AliasData(path)) record.set(keys::AliasData, *alias);
}

bool ConfigureOpenMenuController::checkPathRecord(Dictionary& record) const { return CheckOpenMenuItemPath(record); }

void ConfigureOpenMenuController::pathRepaired(int row) { synchronizeBrowser(row, true, false); }

void ConfigureOpenMenuController::pathRowRemoved(const OpenMenuPathChange& change) {
    synchronizeBrowser(change.index, change.isFolder, change.removeDuplicate);
}

void ConfigureOpenMenuController::mergedIntoRow(const std::string& oldPath, int survivor) {
    postLocal(notifications::OpenMenuItemsRemoved, Dictionary{{kPaths, Array{oldPath}}, {kIndex, Value::int32(survivor)}});
}

void ConfigureOpenMenuController::rowRepointed(int row) {
    postLocal(notifications::OpenMenuItemChanged, Dictionary{{kIndex, Value::int32(row)}});
}

bool ConfigureOpenMenuController::rename(int row, const std::string& text) {
    std::string name = noNewlineString(text);
    std::optional<Dictionary> record = plist::asDictionary(_menuItems[row]);
    const std::string* path = pathAt(row);
    if (!isValid(name) || !record || !path) return false;
    bool custom = name != LocalizedFolderName(*path);
    record->set(keys::Name, name);
    record->set(keys::NameIsCustom, custom);
    rowChanged(row);
    selectRows({row});
    save();
    postLocal(notifications::OpenMenuItemChanged, Dictionary{{kIndex, Value::int32(row)}});
    return true;
}

void ConfigureOpenMenuController::onMakeFolderMenusHierarchical(bool on) {
    _hierarchical = on;
    _prefs.setBool(on, keys::HierarchicalFolderMenus);
    _prefs.synchronizeValue(Value(on), keys::HierarchicalFolderMenus);
}

void ConfigureOpenMenuController::onTurnOffSynchronization(bool on) {
    _synchronizationOff = on;
    _prefs.setBool(!on, keys::AutoSynchronizeFolderMenus);
    _prefs.synchronizeValue(Value(!on), keys::AutoSynchronizeFolderMenus);
}

void ConfigureOpenMenuController::onOpenMenuItemsChanged(const Notification& notification) {
    if (!notification.userInfo) {
        // The array may have changed under the model.
        reload();
        if (rowCount() > 0) {
            selectRows({});
            if (_view) _view->scrollRowToVisible(EditorRow{0});
        }
        return;
    }
    const Dictionary& info = *notification.userInfo;
    if (info.contains(changes::ChangeOpenMenuItems)) {
        _updatePaths(false);
        _synchronizeOpenPanel();
        return;
    }
    const Dictionary* change = info[changes::ChangeOpenMenuItemDepth].dictionary();
    if (!change) return;
    // Whole numbers only; an index past the folders or a depth beyond an int changes nothing.
    const plist::Integer* index = (*change)[kIndex].integer();
    const plist::Integer* depth = (*change)[keys::Depth].integer();
    auto inRange = [](const plist::Integer* number) {
        return number && (number->isSigned() ? number->toInt64() >= 0 && number->toInt64() <= INT32_MAX
                                             : number->toUInt64() <= INT32_MAX);
    };
    if (!inRange(index) || !inRange(depth)) return;
    std::int64_t wanted = index->toInt64();
    auto level = static_cast<std::int32_t>(depth->toInt64());
    for (int row = 0, folders = 0; row < rowCount(); ++row) {
        if (!pathAt(row)) continue;
        if (folders++ != wanted) continue;
        if (std::optional<Dictionary> record = plist::asDictionary(_menuItems[row])) {
            record->set(keys::Depth, Value::int32(level));
            rowChanged(row);
        }
        return;
    }
}

}  // namespace corvalis
