#include "groups/CustomApplicationsController.h"

#include <QMimeData>
#include <QUrl>
#include <algorithm>
#include <filesystem>

#include "fileutils/AliasResolution.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/NameOrder.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathPredicates.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

namespace {

std::string parentFolder(const std::string& path) { return std::filesystem::path(path).parent_path().string(); }

}  // namespace

CustomApplicationsController::CustomApplicationsController(CorvalisPreferences& prefs, NotificationCenter& distributed,
                                                           CustomApplicationsView& view,
                                                           ApplicationArchitectures architectures)
    : _prefs(prefs), _distributed(distributed), _view(view), _architectures(std::move(architectures)) {}

CustomApplicationsController::~CustomApplicationsController() {
    if (_observer) _distributed.removeObserver(*_observer);
}

void CustomApplicationsController::initializePane(bool firstTime) {
    beginResetModel();
    _updateAllOptions = true;
    _applications = _prefs.arrayForKey(keys::CustomApplications).value_or(plist::Array());
    _showInfo = _prefs.boolForKey(keys::ShowApplicationInfo);
    endResetModel();
    if (rowCount() > 0) selectAndScroll({0});
    else _view.showOptions(optionsViewState());
    if (firstTime)
        _observer = _distributed.addObserver(notifications::CustomAppsChanged, notifications::ControllerObject,
                                             [this](const Notification& notification) { onCustomAppsChanged(notification); });
}

void CustomApplicationsController::updatePane(std::string& report) {
    long long invalid = std::count_if(_applications.begin(), _applications.end(), [](const plist::Value& record) {
        return !IsValid(record[keys::Path].stringOr(""));
    });
    if (invalid == 0) return;
    std::string count = invalid == 1 ? LocalizedString("OneInvalidPath") : LocalizedFormat("MoreInvalidPaths", {invalid});
    report += LocalizedFormat("CustomApplicationsSummary", {count}) + "\n";
}

// Rows and records.

QVariant CustomApplicationsController::data(const QModelIndex& index, int role) const {
    if (role != Qt::ToolTipRole || !index.isValid() || index.row() >= rowCount())
        return ApplicationRecordsModel::data(index, role);
    if (!_showInfo) return {};
    return QString::fromStdString(customApplicationToolTip(_applications[static_cast<std::size_t>(index.row())]));
}

int CustomApplicationsController::_addApplication(const std::string& path, bool* listAlreadyContainsApp) {
    if (std::optional<int> listed = rowOfPath(path, true)) {
        if (listAlreadyContainsApp) *listAlreadyContainsApp = true;
        return *listed;
    }
    if (listAlreadyContainsApp) *listAlreadyContainsApp = false;
    plist::Dictionary record{{keys::Name, LocalizedApplicationName(path)}, {keys::Path, path}};
    if (std::optional<plist::Data> alias = AliasData(path)) record.set(keys::AliasData, *alias);
    record.set(keys::Options, newLaunchOptions(path, _architectures).toDictionary());
    return insertInNameOrder(record);
}

void CustomApplicationsController::synchronize() {
    _prefs.synchronizeValue(plist::Dictionary{{keys::CustomApplications, _applications}}, changes::ChangeCustomApps);
}

// Selection.

std::vector<std::string> CustomApplicationsController::selectedPaths() const {
    std::vector<std::string> paths;
    for (int row : _view.selectedRows())
        if (row >= 0 && row < rowCount()) paths.push_back(pathAt(row));
    return paths;
}

void CustomApplicationsController::selectPaths(const std::vector<std::string>& paths) {
    std::vector<int> rows;
    for (const std::string& path : paths)
        if (std::optional<int> row = rowOfPath(path, false); row && std::find(rows.begin(), rows.end(), *row) == rows.end())
            rows.push_back(*row);
    std::sort(rows.begin(), rows.end());
    selectAndScroll(rows);
}

void CustomApplicationsController::selectAndScroll(const std::vector<int>& rows) {
    selectRowsAndScroll(_view, rows);
    selectionDidChange();
}

void CustomApplicationsController::selectionDidChange() { _view.showOptions(optionsViewState()); }

OptionsViewState CustomApplicationsController::optionsViewState() const {
    if (rowCount() == 0) return OptionsViewState::NoApplications;
    std::size_t selected = _view.selectedRows().size();
    if (selected == 0) return OptionsViewState::NoApplicationsSelected;
    return selected == 1 ? OptionsViewState::Options : OptionsViewState::MultipleApplications;
}

std::optional<LaunchOptions> CustomApplicationsController::selectedOptions() const {
    std::vector<int> rows = _view.selectedRows();
    if (rows.size() != 1 || rows.front() >= rowCount()) return std::nullopt;
    return LaunchOptions::fromDictionary(_applications[static_cast<std::size_t>(rows.front())][keys::Options]);
}

std::optional<std::string> CustomApplicationsController::changeMenuTitle() const {
    std::vector<int> rows = _view.selectedRows();
    if (rows.size() != 1 || rows.front() >= rowCount()) return std::nullopt;
    return IsValid(pathAt(rows.front())) ? "ChangeApplication1" : "FixPath1";
}

bool CustomApplicationsController::selectString(const std::string& typed) {
    if (rowCount() == 0) return false;
    selectAndScroll({rowForTypedName(typed)});
    return true;
}

// Paths.

void CustomApplicationsController::_updatePaths() {
    bool changed = false;
    // Runs before every action: applications that are where they were are passed quickly.
    _canonicalPaths.beginPass();
    for (const plist::Value& value : _applications) {
        std::optional<plist::Dictionary> record = plist::asDictionary(value);
        if (!record) continue;
        if (!_canonicalPaths.isRecordCurrent(value) && CheckPath(*record)) {
            normalizeOptions(*record, _architectures);
            record->set(keys::Updated, true);
            changed = true;
        } else if (_updateAllOptions && normalizeOptions(*record, _architectures)) {
            changed = true;
        }
    }
    _updateAllOptions = false;
    if (!changed) return;
    std::vector<std::string> selected = selectedPaths();
    // Two entries that now lead to one application: the first in path-then-updated order stays.
    beginResetModel();
    sortUsingFunction(_applications, SortByPathAndUpdated);
    for (std::size_t i = 1; i < _applications.size();) {
        if (_applications[i][keys::Path].stringOr("") == _applications[i - 1][keys::Path].stringOr(""))
            _applications.removeAt(i);
        else
            ++i;
    }
    sortUsingFunction(_applications, SortByName);
    endResetModel();
    selectPaths(selected);
    for (const plist::Value& value : _applications)
        if (std::optional<plist::Dictionary> record = plist::asDictionary(value)) record->remove(keys::Updated);
    synchronize();
}

// Adding, changing and removing.

void CustomApplicationsController::onAddApplication() {
    EditorOpenPanel panel = applicationPanel("Add", _prefs.getOpenPanelPathForKey(keys::AddApplicationPath));
    _view.pickFiles(panel, [this](std::vector<std::string> paths) {
        if (paths.empty()) return;
        _updatePaths();
        int row = _addApplication(paths.front(), nullptr);
        if (_view.selectedRows() == std::vector<int>{row}) {
            _view.scrollRowToVisible({row});
            selectionDidChange();
        } else {
            selectAndScroll({row});
        }
        synchronize();
        _prefs.setOpenPanelPath(paths.front(), keys::AddApplicationPath);
    });
}

void CustomApplicationsController::onRemoveApplication() {
    _updatePaths();
    std::vector<int> rows = _view.selectedRows();
    if (rows.empty()) return;
    bool asks = std::any_of(rows.begin(), rows.end(), [this](int row) {
        return IsValid(pathAt(row)) && applicationIsCustom(_applications[static_cast<std::size_t>(row)]);
    });
    if (!asks) {
        _removeApplications();
        return;
    }
    EditorAlert alert;
    alert.message = rows.size() == 1 ? LocalizedFormat("WantToRemoveApplication", {nameAt(rows.front())})
                                     : LocalizedString("WantToRemoveApplications1");
    alert.informativeText = LocalizedString("CantUndo");
    alert.buttons = {LocalizedString("Remove"), LocalizedString("Cancel")};
    _view.ask(alert, [this](int button) {
        _updatePaths();
        if (button == 0) _removeApplications();
    });
}

void CustomApplicationsController::_removeApplications() {
    std::vector<int> rows = _view.selectedRows();
    std::sort(rows.begin(), rows.end());
    std::erase_if(rows, [this](int row) { return row < 0 || row >= rowCount(); });
    if (rows.empty()) return;
    std::optional<std::string> following;
    if (rows.back() + 1 < rowCount()) following = pathAt(rows.back() + 1);
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) removeRow(*row);
    std::vector<int> next;
    if (std::optional<int> row = following ? rowOfPath(*following, false) : std::nullopt) next = {*row};
    else if (rowCount() > 0) next = {rowCount() - 1};
    selectAndScroll(next);
    synchronize();
}

void CustomApplicationsController::onChangeApplication(std::optional<int> clickedRow) {
    if (clickedRow) {
        if (*clickedRow < 0 || *clickedRow >= rowCount()) return;
        if (_view.selectedRows().size() > 1) selectAndScroll({*clickedRow});
        _updatePaths();
    }
    std::vector<int> rows = _view.selectedRows();
    if (rows.size() != 1) return;
    std::string path = pathAt(rows.front());
    bool valid = IsValid(path);
    EditorOpenPanel panel = applicationPanel(
        valid ? "Change" : "Fix", valid ? parentFolder(path) : _prefs.getOpenPanelPathForKey(keys::AddApplicationPath));
    _changing = true;
    _view.pickFiles(panel, [this, path](std::vector<std::string> paths) {
        _changing = false;
        if (paths.empty()) return;
        _updatePaths();
        // The entry may have moved or been repaired meanwhile: by its path, else the one selected.
        std::optional<int> row = rowOfPath(path, false);
        if (!row && _view.selectedRows().size() == 1) row = _view.selectedRows().front();
        if (row) changeApplication(*row, paths.front());
    });
}

void CustomApplicationsController::changeApplication(int row, const std::string& path) {
    plist::Dictionary record = _applications[static_cast<std::size_t>(row)].dictionary()
                                   ? _applications[static_cast<std::size_t>(row)].dictionary()->deepCopy()
                                   : plist::Dictionary();
    record.set(keys::Name, LocalizedApplicationName(path));
    record.set(keys::Path, path);
    if (std::optional<plist::Data> alias = AliasData(path)) record.set(keys::AliasData, *alias);
    normalizeOptions(record, _architectures);
    std::optional<int> other = rowOfPath(path, true);
    if (other && *other != row) {
        _applications.set(static_cast<std::size_t>(*other), record);
        emit dataChanged(index(*other), index(*other));
        removeRow(row);
    } else {
        removeRow(row);
        insertInNameOrder(record);
    }
    selectAndScroll({*rowOfPath(path, true)});
    synchronize();
    _prefs.setOpenPanelPath(path, keys::AddApplicationPath);
}

void CustomApplicationsController::onEditOptions(LaunchOptions options, OptionBox changed) {
    _updatePaths();
    std::vector<int> rows = _view.selectedRows();
    if (rows.size() != 1 || rows.front() >= rowCount()) return;
    int row = rows.front();
    const plist::Value& old = _applications[static_cast<std::size_t>(row)];
    plist::Dictionary record = old.dictionary() ? old.dictionary()->deepCopy() : plist::Dictionary();
    record.set(keys::Options, afterEditing(options, changed).toDictionary());
    _applications.set(static_cast<std::size_t>(row), record);
    emit dataChanged(index(row), index(row));
    _view.showOptions(optionsViewState());
    synchronize();
}

void CustomApplicationsController::onShowInfo() {
    _showInfo = !_showInfo;
    _prefs.setBool(_showInfo, keys::ShowApplicationInfo);
    if (rowCount() > 0) emit dataChanged(index(0), index(rowCount() - 1), {Qt::ToolTipRole});
}

// Drops of applications from a file manager.

std::vector<std::string> CustomApplicationsController::droppedApplications(const QMimeData* data) const {
    std::vector<std::string> paths;
    if (!data || !data->hasUrls()) return paths;
    for (const QUrl& url : data->urls()) {
        if (!url.isLocalFile()) continue;
        std::optional<std::string> path = ResolvedApplicationPath(url.toLocalFile().toStdString());
        if (path && std::find(paths.begin(), paths.end(), *path) == paths.end()) paths.push_back(*path);
    }
    return paths;
}

bool CustomApplicationsController::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                                   const QModelIndex&) const {
    return !_sheetShown && !droppedApplications(data).empty();
}

bool CustomApplicationsController::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                                const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) return false;
    _updatePaths();
    std::vector<std::string> paths = droppedApplications(data);
    bool anyNew = false;
    std::vector<int> rows;
    for (const std::string& path : paths) {
        bool listed = false;
        _addApplication(path, &listed);
        anyNew = anyNew || !listed;
    }
    // Rows move as others are inserted: found again once all are in.
    for (const std::string& path : paths)
        if (std::optional<int> found = rowOfPath(path, true)) rows.push_back(*found);
    std::sort(rows.begin(), rows.end());
    selectAndScroll(rows);
    if (anyNew) synchronize();
    // The model added the rows itself: nothing for the view to do.
    return false;
}

// The controller's own changes.

void CustomApplicationsController::onCustomAppsChanged(const Notification& notification) {
    if (!notification.userInfo) return;
    const plist::Value& payload = (*notification.userInfo)[changes::ChangeCustomApps];
    const plist::Array* applications = payload[keys::CustomApplications].array();
    if (!applications) return;
    for (const plist::Value& value : _applications)
        if (std::optional<plist::Dictionary> record = plist::asDictionary(value)) CheckPath(*record);
    std::vector<std::string> selected = selectedPaths();
    beginResetModel();
    _prefs.setArray(applications->deepCopy(), keys::CustomApplications);
    _prefs.reloadCustomApplications();
    _applications = _prefs.arrayForKey(keys::CustomApplications).value_or(plist::Array());
    endResetModel();
    selectPaths(selected);
    _synchronizeOpenPanel();
}

void CustomApplicationsController::windowDidBecomeMain() {
    _updatePaths();
    _synchronizeOpenPanel();
}

void CustomApplicationsController::_synchronizeOpenPanel() {
    std::vector<int> rows = _view.selectedRows();
    if (!_changing || rows.size() != 1) return;
    _view.retitleOpenPanel("", LocalizedString(IsValid(pathAt(rows.front())) ? "Change" : "Fix"));
}

}  // namespace corvalis
