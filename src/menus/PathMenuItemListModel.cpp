#include "menus/PathMenuItemListModel.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "menus/MenuRows.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Dictionary;

namespace {

// The folder a panel starts in for a path: its parent, or a volume itself.
std::string panelFolderFor(const std::string& path) {
    std::string parent(parentPath(path));
    return parent == "/Volumes" ? path : parent;
}

}  // namespace

std::string expandTilde(const std::string& path) {
    const char* home = std::getenv("HOME");
    if (home && (path == "~" || path.rfind("~/", 0) == 0)) return home + path.substr(1);
    return path;
}

PathMenuItemListModel::PathMenuItemListModel(CorvalisPreferences& prefs, const char* menuKey, const char* changeKey,
                                             const char* showInfoKey, PathWords words, QObject* parent)
    : MenuItemListModel(prefs, menuKey, changeKey, showInfoKey, parent), _words(words) {}

void PathMenuItemListModel::updatePane(std::string& report) {
    willShowPane();
    int invalid = 0;
    for (int row = 0; row < rowCount(); ++row)
        if (const std::string* path = pathAt(row); path && !IsValid(*path)) ++invalid;
    appendInvalidPathsLine(report, _words.summary, invalid);
}

void PathMenuItemListModel::willShowPane() { _updatePaths(true); }

void PathMenuItemListModel::didBeginSheet() { _updatePaths(true); }

void PathMenuItemListModel::sheetWindowDidBecomeMain(bool shownOnSheet) {
    if (!shownOnSheet) return;
    _updatePaths(true);
    _synchronizeOpenPanel();
}

void PathMenuItemListModel::_synchronizeOpenPanel() {
    if (!_changingPath || !_view) return;
    std::vector<int> selected = selection();
    if (selected.size() != 1 || !pathAt(selected.front())) return;
    bool valid = IsValid(*pathAt(selected.front()));
    _view->retitleOpenPanel(LocalizedString(valid ? _words.changePanel : "FixPath2"),
                            LocalizedString(valid ? "Change" : "Fix"));
}

int PathMenuItemListModel::rowWithPath(const std::string& path, int except) const {
    for (int row = 0; row < rowCount(); ++row)
        if (const std::string* own = pathAt(row); own && row != except && *own == path) return row;
    return -1;
}

void PathMenuItemListModel::onAddItem(const std::string& kind) {
    if (kind == _words.addKind) return _insertPaths(std::nullopt, menurows::insertionPoint(selection(), rowCount()), false);
    MenuItemListModel::onAddItem(kind);
}

void PathMenuItemListModel::_insertPaths(std::optional<std::vector<std::string>> paths, int index, bool move) {
    if (paths) {
        _updatePaths(true);
        return insertUsablePaths(*paths, index, move, false);
    }
    if (!_view) return;
    EditorOpenPanel panel;
    panel.canChooseFiles = _words.choosesFiles;
    panel.canChooseDirectories = true;
    panel.allowsMultipleSelection = true;
    panel.resolvesAliases = _words.resolvesAliases;
    panel.hidesApplications = _words.choosesFiles;
    panel.directory = expandTilde(_prefs.getOpenPanelPathForKey(keys::AddFileFolderPath));
    panel.message = LocalizedString(_words.addPanel);
    panel.prompt = LocalizedString("Add");
    _addingPaths = true;
    _view->pickFiles(panel, [this, index, move](std::vector<std::string> picked) {
        if (!picked.empty()) _prefs.setOpenPanelPath(picked.front(), keys::AddFileFolderPath);
        _addingPaths = false;
        _updatePaths(true);
        if (!picked.empty()) insertUsablePaths(picked, index, move, true);
    });
}

void PathMenuItemListModel::insertUsablePaths(const std::vector<std::string>& paths, int index, bool move,
                                              bool fromPanel) {
    index = std::clamp(index, 0, rowCount());
    bool changed = false, made = false;
    std::vector<std::string> handled;
    for (auto given = paths.rbegin(); given != paths.rend(); ++given) {
        std::optional<std::string> path = usablePath(*given);
        if (!path) continue;
        int existing = rowWithPath(*path);
        std::optional<Dictionary> record;
        if (existing < 0) {
            record = newPathRecord(*path);
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
        handled.push_back(*path);
    }
    if (handled.empty()) return;
    if (_view) _view->scrollRowToVisible(EditorRow{index});
    if (namesOpenForTyping() && fromPanel && made && handled.size() == 1) {
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

bool PathMenuItemListModel::canDropFiles(const std::vector<std::string>& paths) const {
    return std::any_of(paths.begin(), paths.end(), [this](const std::string& path) { return usablePath(path).has_value(); });
}

bool PathMenuItemListModel::dropFiles(const std::vector<std::string>& paths, int row) {
    _insertPaths(paths, row, true);
    return true;
}

void PathMenuItemListModel::_updatePaths(bool saveChanges) {
    bool changed = false;
    // Runs before every action: files that are where they were are passed quickly.
    _canonicalPaths.beginPass();
    for (int row = 0; row < rowCount(); ++row) {
        if (_canonicalPaths.isRecordCurrent(_menuItems[row])) continue;
        std::optional<Dictionary> record = plist::asDictionary(_menuItems[row]);
        if (!record || !record->contains(keys::Path) || !checkPathRecord(*record)) continue;
        pathRepaired(row);
        rowChanged(row);
        changed = true;
    }
    if (!changed) return;

    std::vector<int> selected = selection();
    std::vector<OpenMenuPathChange> removed;
    RemoveDuplicateOpenMenuPaths(_menuItems, removed, Workspace::shared(), [this](int row) { removeRecord(row); });
    for (const OpenMenuPathChange& change : removed) {
        pathRowRemoved(change);
        selected = menurows::selectionAfterRemovingRow(selected, change.index);
    }
    selectRows(selected);
    if (!selected.empty() && _view) _view->scrollRowToVisible(EditorRow{selected.front()});
    if (saveChanges) save();
}

bool PathMenuItemListModel::canChangeItem() const {
    std::vector<int> selected = selection();
    return selected.size() == 1 && pathAt(selected.front());
}

std::string PathMenuItemListModel::changeItemTitle() {
    _updatePaths(true);
    std::vector<int> selected = selection();
    bool broken = selected.size() == 1 && pathAt(selected.front()) && !IsValid(*pathAt(selected.front()));
    return LocalizedString(broken ? "FixPath1" : _words.changeEntry);
}

void PathMenuItemListModel::onChangeItem() {
    if (!canChangeItem() || !_view) return;
    int row = selection().front();
    std::string old = *pathAt(row);
    EditorOpenPanel panel;
    panel.canChooseFiles = _words.choosesFiles;
    panel.canChooseDirectories = true;
    panel.resolvesAliases = _words.resolvesAliases;
    panel.hidesApplications = _words.choosesFiles;
    bool valid = IsValid(old);
    panel.message = LocalizedString(valid ? _words.changePanel : "FixPath2");
    panel.prompt = LocalizedString(valid ? "Change" : "Fix");
    panel.directory = valid ? panelFolderFor(old) : expandTilde(_prefs.getOpenPanelPathForKey(keys::AddFileFolderPath));
    _changingPath = true;
    _view->pickFiles(panel, [this, row, old](std::vector<std::string> picked) {
        _changingPath = false;
        _updatePaths(true);
        changePath(row, old, picked);
    });
}

void PathMenuItemListModel::changePath(int row, const std::string& oldPath, const std::vector<std::string>& picked) {
    if (picked.empty()) return;
    std::optional<std::string> chosen = usablePath(picked.front());
    if (!chosen) return;
    // Following moved files may have shifted the row while the panel was open.
    if (row >= rowCount() || !pathAt(row) || *pathAt(row) != oldPath) row = rowWithPath(oldPath);
    if (row < 0) return;
    int shown = row;
    bool repointed = false;
    if (*chosen != oldPath) {
        if (int other = rowWithPath(*chosen, row); other >= 0) {
            removeRecord(row);
            shown = row < other ? other - 1 : other;
            mergedIntoRow(oldPath, shown);
        } else {
            Dictionary record = plist::asDictionary(_menuItems[row]).value_or(Dictionary());
            repointRecord(record, *chosen);
            rowChanged(row);
            repointed = true;
            rowRepointed(row);
        }
        save();
    }
    selectAndScroll(shown);
    if (repointed && namesOpenForTyping() && _view) _view->editName(EditorRow{shown});
    _prefs.setOpenPanelPath(*chosen, keys::AddFileFolderPath);
}

}  // namespace corvalis
