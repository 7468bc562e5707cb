#include "menus/ConfigureOpenMenuController.h"

#include "fileutils/browser/OpenMenuPaths.h"

#include <climits>
#include <cstdlib>
#include <set>

#include "fileutils/AliasResolution.h"
#include "fileutils/CanonicalPathCache.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "fileutils/browser/OpenMenuPaths.h"
#include "menus/MenuRows.h"
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

// The folder a panel starts in for a path: its parent, or a volume itself.
std::string panelFolderFor(const std::string& path) {
    std::string parent(parentPath(path));
    return parent == "/Volumes" ? path : parent;
}

std::string expandTilde(const std::string& path) {
    const char* home = std::getenv("HOME");
    if (home && (path == "~" || path.rfind("~/", 0) == 0)) return home + path.substr(1);
    return path;
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
    : MenuItemListModel(prefs, keys::OpenMenuItems, changes::ChangeOpenMenuItems, keys::ShowOpenMenuInfo, parent),
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
    MenuItemListModel::initializePane(firstTime);
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

void ConfigureOpenMenuController::updatePane(std::string& report) {
    willShowPane();
    int invalid = 0;
    for (int row = 0; row < rowCount(); ++row)
        if (const std::string* path = pathAt(row); path && !IsValid(*path)) ++invalid;
    if (invalid == 0) return;
    std::string count = invalid == 1 ? LocalizedString("OneInvalidPath")
                                     : LocalizedFormat("MoreInvalidPaths", {static_cast<long long>(invalid)});
    report += LocalizedFormat("OpenMenuSummary", {count}) + "\n";
}

void ConfigureOpenMenuController::willShowPane() { _updatePaths(true); }

void ConfigureOpenMenuController::didBeginSheet() { _updatePaths(true); }

void ConfigureOpenMenuController::sheetWindowDidBecomeMain(bool shownOnSheet) {
    if (!shownOnSheet) return;
    _updatePaths(true);
    _synchronizeOpenPanel();
}

void ConfigureOpenMenuController::_synchronizeOpenPanel() {
    if (!_changingFolder || !_view) return;
    std::vector<int> selected = selection();
    if (selected.size() != 1 || !pathAt(selected.front())) return;
    bool valid = IsValid(*pathAt(selected.front()));
    _view->retitleOpenPanel(LocalizedString(valid ? "ChangeFolder2" : "FixPath2"), LocalizedString(valid ? "Change" : "Fix"));
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

int ConfigureOpenMenuController::rowWithPath(const std::string& path, int except) const {
    for (int row = 0; row < rowCount(); ++row)
        if (const std::string* own = pathAt(row); own && row != except && *own == path) return row;
    return -1;
}

void ConfigureOpenMenuController::onAddItem(const std::string& kind) {
    if (kind == items::Folder) return _insertFolders(std::nullopt, menurows::insertionPoint(selection(), rowCount()), false);
    MenuItemListModel::onAddItem(kind);
}

void ConfigureOpenMenuController::_insertFolders(std::optional<std::vector<std::string>> paths, int index, bool move) {
    if (paths) {
        _updatePaths(true);
        return _insertResolvedFolders(*paths, index, move, false);
    }
    if (!_view) return;
    EditorOpenPanel panel;
    panel.canChooseFiles = false;
    panel.canChooseDirectories = true;
    panel.allowsMultipleSelection = true;
    panel.directory = expandTilde(_prefs.getOpenPanelPathForKey(keys::AddFileFolderPath));
    panel.message = LocalizedString("AddFolder");
    panel.prompt = LocalizedString("Add");
    _addingFolder = true;
    _view->pickFiles(panel, [this, index, move](std::vector<std::string> picked) {
        if (!picked.empty()) _prefs.setOpenPanelPath(picked.front(), keys::AddFileFolderPath);
        _addingFolder = false;
        _updatePaths(true);
        if (!picked.empty()) _insertResolvedFolders(picked, index, move, true);
    });
}

void ConfigureOpenMenuController::_insertResolvedFolders(const std::vector<std::string>& paths, int index, bool move,
                                                         bool fromPanel) {
    index = std::clamp(index, 0, rowCount());
    bool changed = false, made = false;
    std::vector<std::string> handled;
    for (auto given = paths.rbegin(); given != paths.rend(); ++given) {
        std::optional<std::string> folder = usableFolder(*given);
        if (!folder) continue;
        int existing = rowWithPath(*folder);
        std::optional<Dictionary> record;
        if (existing < 0) {
            record = newFolderRecord(*folder);
            made = true;
        } else if (move && existing != index) {
            record = plist::asDictionary(_menuItems[existing]).value_or(Dictionary()).deepCopy();
            removeRecord(existing);
            if (existing < index) --index;
        }
        if (record) {
            insertRecord(index, *record);
            changed = true;
        }
        handled.push_back(*folder);
    }
    if (handled.empty()) return;
    if (_view) _view->scrollRowToVisible(EditorRow{index});
    if (fromPanel && made && handled.size() == 1) {
        selectRows({index});
        if (_view) _view->editName(EditorRow{index});
    } else {
        std::set<std::string> wanted(handled.begin(), handled.end());
        std::vector<int> rows;
        for (int row = 0; row < rowCount(); ++row)
            if (const std::string* path = pathAt(row); path && wanted.count(*path)) rows.push_back(row);
        selectRows(rows);
    }
    if (!changed) return;
    save();
    itemsAddedOrRearranged();
}

bool ConfigureOpenMenuController::canDropFiles(const std::vector<std::string>& paths) const {
    return std::any_of(paths.begin(), paths.end(), [](const std::string& path) { return usableFolder(path).has_value(); });
}

bool ConfigureOpenMenuController::dropFiles(const std::vector<std::string>& paths, int row) {
    _insertFolders(paths, row, true);
    return true;
}

void ConfigureOpenMenuController::_updatePaths(bool saveChanges) {
    bool changed = false;
    // Runs before every action: folders that are where they were are passed quickly.
    _canonicalPaths.beginPass();
    for (int row = 0; row < rowCount(); ++row) {
        if (_canonicalPaths.isRecordCurrent(_menuItems[row])) continue;
        std::optional<Dictionary> record = plist::asDictionary(_menuItems[row]);
        if (!record || !record->contains(keys::Path) || !CheckOpenMenuItemPath(*record)) continue;
        synchronizeBrowser(row, true, false);
        rowChanged(row);
        changed = true;
    }
    if (!changed) return;

    std::vector<int> selected = selection();
    std::vector<OpenMenuPathChange> removed;
    RemoveDuplicateOpenMenuPaths(_menuItems, removed, Workspace::shared(), [this](int row) { removeRecord(row); });
    for (const OpenMenuPathChange& change : removed) {
        synchronizeBrowser(change.index, change.isFolder, change.removeDuplicate);
        selected = menurows::selectionAfterRemovingRow(selected, change.index);
    }
    selectRows(selected);
    if (!selected.empty() && _view) _view->scrollRowToVisible(EditorRow{selected.front()});
    if (saveChanges) save();
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

bool ConfigureOpenMenuController::canChangeItem() const {
    std::vector<int> selected = selection();
    return selected.size() == 1 && pathAt(selected.front());
}

std::string ConfigureOpenMenuController::changeItemTitle() {
    _updatePaths(true);
    std::vector<int> selected = selection();
    bool broken = selected.size() == 1 && pathAt(selected.front()) && !IsValid(*pathAt(selected.front()));
    return LocalizedString(broken ? "FixPath1" : "ChangeFolder1");
}

std::string ConfigureOpenMenuController::showInfoTitle() const {
    return LocalizedString(_showInfo ? "HideInfoTags" : "ShowInfoTags");
}

void ConfigureOpenMenuController::onChangeItem() {
    if (!canChangeItem() || !_view) return;
    int row = selection().front();
    std::string old = *pathAt(row);
    EditorOpenPanel panel;
    panel.canChooseFiles = false;
    panel.canChooseDirectories = true;
    bool valid = IsValid(old);
    panel.message = LocalizedString(valid ? "ChangeFolder2" : "FixPath2");
    panel.prompt = LocalizedString(valid ? "Change" : "Fix");
    panel.directory = valid ? panelFolderFor(old) : expandTilde(_prefs.getOpenPanelPathForKey(keys::AddFileFolderPath));
    _changingFolder = true;
    _view->pickFiles(panel, [this, row, old](std::vector<std::string> picked) {
        _changingFolder = false;
        _updatePaths(true);
        _changeFolder(row, old, picked);
    });
}

void ConfigureOpenMenuController::_changeFolder(int row, const std::string& oldPath,
                                                const std::vector<std::string>& picked) {
    if (picked.empty()) return;
    std::optional<std::string> chosen = usableFolder(picked.front());
    if (!chosen) return;
    // Following moved folders may have shifted the row while the panel was open.
    if (row >= rowCount() || !pathAt(row) || *pathAt(row) != oldPath) row = rowWithPath(oldPath);
    if (row < 0) return;
    int shown = row;
    bool repointed = false;
    if (*chosen != oldPath) {
        if (int other = rowWithPath(*chosen, row); other >= 0) {
            removeRecord(row);
            shown = row < other ? other - 1 : other;
            postLocal(notifications::OpenMenuItemsRemoved,
                      Dictionary{{kPaths, Array{oldPath}}, {kIndex, Value::int32(shown)}});
        } else {
            Dictionary record = plist::asDictionary(_menuItems[row]).value_or(Dictionary());
            record.set(keys::Path, *chosen);
            record.set(keys::Name, LocalizedFolderName(*chosen));
            record.set(keys::NameIsCustom, false);
            record.remove(keys::AliasData);
            if (std::optional<plist::Data> alias = AliasData(*chosen)) record.set(keys::AliasData, *alias);
            rowChanged(row);
            repointed = true;
            postLocal(notifications::OpenMenuItemChanged, Dictionary{{kIndex, Value::int32(row)}});
        }
        save();
    }
    selectAndScroll(shown);
    if (repointed && _view) _view->editName(EditorRow{shown});
    _prefs.setOpenPanelPath(*chosen, keys::AddFileFolderPath);
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
