#include "menus/ExcludedApplicationsList.h"

#include <QMimeData>
#include <QUrl>
#include <algorithm>
#include <numeric>
#include <set>

#include "fileutils/AliasResolution.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/NameOrder.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "plist/Utf8.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

// Application bundles, and desktop entries: this system's plain-file applications.
EditorOpenPanel applicationsPanel(bool several, std::string directory) {
    EditorOpenPanel panel;
    panel.allowsMultipleSelection = several;
    panel.allowedFileTypes = {"app", "desktop"};
    panel.directory = StandardizedPath(directory);
    return panel;
}

}  // namespace

std::optional<Dictionary> excludedApplicationRecord(const std::string& path) {
    if (!isPathWithinLimit(path) || !plist::detail::isValidUtf8(path)) return std::nullopt;
    std::string name = LocalizedApplicationName(path);
    if (!plist::detail::isValidUtf8(name)) return std::nullopt;
    Dictionary record{{keys::Name, name}, {keys::Path, path}};
    if (std::optional<plist::Data> alias = AliasData(path)) record.set(keys::AliasData, *alias);
    return record;
}

ExcludedApplicationsList::ExcludedApplicationsList(CorvalisPreferences& prefs, const char* showInfoKey, QObject* parent)
    : ApplicationRecordsModel(parent), _prefs(prefs), showInfoKey_(showInfoKey) {}

void ExcludedApplicationsList::setApplications(Array applications) {
    beginResetModel();
    _applications = std::move(applications);
    endResetModel();
}

void ExcludedApplicationsList::loadShowInfo() { _showInfo = _prefs.boolForKey(showInfoKey_); }

// Rows.

QVariant ExcludedApplicationsList::data(const QModelIndex& index, int role) const {
    if (role != Qt::ToolTipRole || !index.isValid() || index.row() >= rowCount())
        return ApplicationRecordsModel::data(index, role);
    return _showInfo ? QVariant(QString::fromStdString(pathAt(index.row()))) : QVariant();
}

int ExcludedApplicationsList::invalidCount() const {
    return static_cast<int>(std::count_if(_applications.begin(), _applications.end(),
                                          [](const Value& record) { return !IsValid(record[keys::Path].stringOr("")); }));
}

void ExcludedApplicationsList::sortByName() {
    std::vector<int> order(_applications.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
        return SortByName(_applications[static_cast<std::size_t>(a)], _applications[static_cast<std::size_t>(b)]) < 0;
    });
    if (std::is_sorted(order.begin(), order.end())) return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> newRowOf(order.size());
    Array sorted;
    for (std::size_t i = 0; i < order.size(); ++i) {
        newRowOf[static_cast<std::size_t>(order[i])] = static_cast<int>(i);
        sorted.append(_applications[static_cast<std::size_t>(order[i])]);
    }
    _applications.replaceContents(sorted);
    QModelIndexList from = persistentIndexList(), to;
    for (const QModelIndex& old : from) to << index(newRowOf[static_cast<std::size_t>(old.row())], old.column());
    changePersistentIndexList(from, to);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

// Selection.

std::vector<int> ExcludedApplicationsList::selection() const {
    std::vector<int> rows = _view ? _view->selectedRows() : std::vector<int>();
    std::erase_if(rows, [this](int row) { return row < 0 || row >= rowCount(); });
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<std::string> ExcludedApplicationsList::selectedPaths() const {
    std::vector<std::string> paths;
    for (int row : selection()) paths.push_back(pathAt(row));
    return paths;
}

void ExcludedApplicationsList::selectPaths(const std::vector<std::string>& paths) {
    std::set<std::string> wanted(paths.begin(), paths.end());
    std::vector<int> rows;
    for (int row = 0; row < rowCount(); ++row)
        if (wanted.count(pathAt(row))) rows.push_back(row);
    if (_view) selectRowsAndScroll(*_view, rows);
}

void ExcludedApplicationsList::selectRow(int row) {
    if (_view && row >= 0 && row < rowCount()) selectRowsAndScroll(*_view, {row});
}

bool ExcludedApplicationsList::selectString(const std::string& typed) {
    if (rowCount() == 0) return false;
    if (_view) selectRowsAndScroll(*_view, {rowForTypedName(typed)});
    return true;
}

// Paths.

void ExcludedApplicationsList::_updatePaths() {
    bool changed = false;
    // Runs before every action: applications that are where they were are passed quickly.
    _canonicalPaths.beginPass();
    for (int row = 0; row < rowCount(); ++row) {
        const Value& value = _applications[static_cast<std::size_t>(row)];
        std::optional<Dictionary> record = plist::asDictionary(value);
        if (!record || _canonicalPaths.isRecordCurrent(value) || !CheckPath(*record)) continue;
        emit dataChanged(index(row), index(row));
        changed = true;
    }
    if (!changed) return;
    std::vector<std::string> selected = selectedPaths();
    std::set<std::string> seen, duplicates;
    for (int row = 0; row < rowCount();) {
        std::string path = pathAt(row);
        if (seen.insert(path).second) {
            ++row;
            continue;
        }
        duplicates.insert(path);
        removeRow(row);
    }
    // The one left may have been found through the other's alias data: it gets its own again.
    for (const std::string& path : duplicates)
        if (std::optional<Dictionary> survivor = plist::asDictionary(_applications[static_cast<std::size_t>(*rowOfPath(path, false))])) {
            survivor->remove(keys::AliasData);
            if (std::optional<plist::Data> alias = AliasData(path)) survivor->set(keys::AliasData, *alias);
        }
    sortByName();
    selectPaths(selected);
    saveApplications(true);
}

std::vector<std::string> ExcludedApplicationsList::checkPathsAndNoteSelection() {
    for (const Value& value : _applications)
        if (std::optional<Dictionary> record = plist::asDictionary(value)) CheckPath(*record);
    return selectedPaths();
}

// Adding.

void ExcludedApplicationsList::onAddApplication() {
    if (!_view) return;
    EditorOpenPanel panel = applicationsPanel(true, _prefs.getOpenPanelPathForKey(keys::AddApplicationPath));
    panel.message = LocalizedString("AddApplication");
    panel.prompt = LocalizedString("Add");
    _addingApplication = true;
    _view->pickFiles(panel, [this](std::vector<std::string> picked) {
        _addingApplication = false;
        _updatePaths();
        if (picked.empty()) return;
        addPaths(picked, false);
        _prefs.setOpenPanelPath(picked.back(), keys::AddApplicationPath);
    });
}

std::vector<std::string> ExcludedApplicationsList::droppedApplications(const QMimeData* data) const {
    std::vector<std::string> paths;
    if (!data || !data->hasUrls()) return paths;
    for (const QUrl& url : data->urls())
        if (url.isLocalFile()) paths.push_back(url.toLocalFile().toStdString());
    return paths;
}

bool ExcludedApplicationsList::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                               const QModelIndex&) const {
    if (_addingApplication || _changing) return false;
    std::vector<std::string> paths = droppedApplications(data);
    return std::any_of(paths.begin(), paths.end(),
                       [](const std::string& path) { return ResolvedApplicationPath(path).has_value(); });
}

bool ExcludedApplicationsList::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                            const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) return false;
    _updatePaths();
    addPaths(droppedApplications(data), true);
    // The list added the rows itself: nothing is left for the view to do.
    return false;
}

void ExcludedApplicationsList::addPaths(const std::vector<std::string>& paths, bool fromDrop) {
    // Added from the last to the first at one index, so that a list not kept in order keeps theirs.
    int index = rowCount();
    bool anyNew = false;
    std::vector<std::string> collected;
    for (auto given = paths.rbegin(); given != paths.rend(); ++given) {
        std::optional<std::string> path = ResolvedApplicationPath(*given);
        if (!path) continue;
        bool listed = false;
        int at = addApplication(*path, index, fromDrop, &listed);
        if (at < 0) continue;
        if (fromDrop) index = at;
        anyNew = anyNew || !listed;
        if (std::find(collected.begin(), collected.end(), *path) == collected.end()) collected.push_back(*path);
    }
    if (collected.empty()) return;
    // Listed already under another spelling of the path: selected as it is listed.
    std::vector<std::string> shown;
    for (const std::string& path : collected)
        if (std::optional<int> row = rowOfPath(path, true)) shown.push_back(pathAt(*row));
    selectPaths(shown);
    if (anyNew || savesUnchangedAdditions()) saveApplications(fromDrop || anyNew);
}

// Removing.

void ExcludedApplicationsList::onRemoveApplication() {
    _updatePaths();
    std::vector<int> rows = selection();
    if (rows.empty()) return;
    std::optional<std::string> following;
    if (rows.back() + 1 < rowCount()) following = pathAt(rows.back() + 1);
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) removeApplication(*row);
    int next = following ? rowOfPath(*following, false).value_or(std::min(rows.back(), rowCount() - 1)) : rowCount() - 1;
    if (_view) selectRowsAndScroll(*_view, next < 0 ? std::vector<int>() : std::vector<int>{next});
    saveApplications(true);
}

// Changing or fixing.

std::string ExcludedApplicationsList::changeApplicationTitle() {
    _updatePaths();
    std::vector<int> rows = selection();
    bool gone = rows.size() == 1 && !IsValid(pathAt(rows.front()));
    return LocalizedString(gone ? "FixPath1" : "ChangeApplication1");
}

void ExcludedApplicationsList::onDoubleClick(int row) {
    if (row < 0 || row >= rowCount()) return;
    if (selection().size() > 1 && _view) selectRowsAndScroll(*_view, {row});
    _updatePaths();
    onChangeApplication();
}

void ExcludedApplicationsList::onChangeApplication() {
    std::vector<int> rows = selection();
    if (rows.size() != 1 || !_view) return;
    std::string oldPath = pathAt(rows.front());
    bool valid = IsValid(oldPath);
    EditorOpenPanel panel = applicationsPanel(
        false, valid ? std::string(parentPath(oldPath)) : _prefs.getOpenPanelPathForKey(keys::AddApplicationPath));
    panel.message = LocalizedString(valid ? "ChangeApplication2" : "FixPath2");
    panel.prompt = LocalizedString(valid ? "Change" : "Fix");
    _changing = true;
    _view->pickFiles(panel, [this, oldPath](std::vector<std::string> picked) {
        _changing = false;
        _updatePaths();
        std::optional<std::string> chosen = picked.empty() ? std::nullopt : ResolvedApplicationPath(picked.front());
        if (chosen) changeApplication(oldPath, *chosen);
    });
}

void ExcludedApplicationsList::changeApplication(const std::string& oldPath, const std::string& chosen) {
    std::optional<Dictionary> record = excludedApplicationRecord(chosen);
    // The application may have been repaired or removed while the panel was open.
    int edited = rowOfPath(oldPath, false).value_or(selection().size() == 1 ? selection().front() : -1);
    if (!record || edited < 0) return;
    int shown;
    if (std::optional<int> other = rowOfPath(chosen, true, edited)) {
        _applications.set(static_cast<std::size_t>(*other), *record);
        emit dataChanged(index(*other), index(*other));
        removeRow(edited);
        shown = edited < *other ? *other - 1 : *other;
    } else {
        removeRow(edited);
        shown = insertInNameOrder(*record);
    }
    if (_view) selectRowsAndScroll(*_view, {shown});
    _prefs.setOpenPanelPath(chosen, keys::AddApplicationPath);
    saveApplications(true);
}

void ExcludedApplicationsList::_synchronizeOpenPanel() {
    std::vector<int> rows = selection();
    if (!_changing || rows.size() != 1 || !_view) return;
    bool valid = IsValid(pathAt(rows.front()));
    _view->retitleOpenPanel(LocalizedString(valid ? "ChangeApplication2" : "FixPath2"),
                            LocalizedString(valid ? "Change" : "Fix"));
}

void ExcludedApplicationsList::onShowInfo() {
    _showInfo = !_showInfo;
    _prefs.setBool(_showInfo, showInfoKey_);
    if (rowCount() > 0) emit dataChanged(index(0), index(rowCount() - 1), {Qt::ToolTipRole});
}

}  // namespace corvalis
