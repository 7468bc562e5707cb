#include "groups/WindowRestorationController.h"

#include <QMimeData>
#include <QUrl>
#include <algorithm>

#include "fileutils/AliasResolution.h"
#include "fileutils/NameOrder.h"
#include "fileutils/PathPredicates.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

namespace {

constexpr const char* kSystemSettings = "com.apple.systempreferences";

}  // namespace

std::vector<int> arrangedApplications(const std::vector<ApplicationDescription>& applications) {
    std::vector<int> arranged;
    for (std::size_t i = 0; i < applications.size(); ++i)
        if (applications[i].bundleIdentifier != kSystemSettings) arranged.push_back(static_cast<int>(i));
    std::stable_sort(arranged.begin(), arranged.end(), [&applications](int a, int b) {
        return finderCompare(applications[static_cast<std::size_t>(a)].applicationName,
                             applications[static_cast<std::size_t>(b)].applicationName) < 0;
    });
    return arranged;
}

WindowRestorationController::WindowRestorationController(CorvalisPreferences& prefs,
                                                         KVWindowRestorationManager& manager,
                                                         RunningApplications& running, WindowRestorationView& view)
    : _prefs(prefs), _manager(manager), _running(running), _view(view) {}

WindowRestorationController::~WindowRestorationController() { willHidePane(); }

void WindowRestorationController::initializePane(bool) {
    _showInfo = _prefs.boolForKey(keys::ShowWindowRestorationInfo);
    _initSelection = true;
}

void WindowRestorationController::updatePane(std::string& report) {
    long long invalid = 0;
    for (int row = 0; row < applicationsCount(); ++row)
        if (!IsValid(find(row)->applicationPath)) ++invalid;
    if (invalid == 0) return;
    std::string count = invalid == 1 ? LocalizedString("OneInvalidPath") : LocalizedFormat("MoreInvalidPaths", {invalid});
    report += LocalizedFormat("WindowRestorationSummary", {count}) + "\n";
}

void WindowRestorationController::willShowPane() {
    if (!_observer) {
        auto changed = [this](const RunningApplication&) { _synchronizeList(); };
        _observer = _running.addObserver(changed, changed);
    }
    _synchronizeList();
    if (_initSelection) {
        _initSelection = false;
        if (applicationsCount() > 0) selectAndScroll({0});
        else _view.selectionChanged();
    }
}

void WindowRestorationController::willHidePane() {
    if (_observer) _running.removeObserver(*_observer);
    _observer.reset();
}

// A rescan of what other programs may have changed: the rows are read again, the selection kept.
void WindowRestorationController::_synchronizeList() {
    std::vector<std::string> selected = copyIdentifiersOfSelectedObjects();
    beginResetModel();
    _manager.reloadApplications();
    _arranged = arrangedApplications(_manager.applications());
    endResetModel();
    setSelectedObjectsWithIdentifiers(selected);
}

// The array controller's questions.

const ApplicationDescription* WindowRestorationController::find(int row) const {
    if (row < 0 || row >= applicationsCount()) return nullptr;
    return &_manager.applications()[static_cast<std::size_t>(_arranged[static_cast<std::size_t>(row)])];
}

std::optional<std::string> WindowRestorationController::nameOfApplicationAtSortedIndex(int row) const {
    const ApplicationDescription* application = find(row);
    return application ? std::optional(application->applicationName) : std::nullopt;
}

std::optional<std::string> WindowRestorationController::pathOfApplicationAtSortedIndex(int row) const {
    const ApplicationDescription* application = find(row);
    return application ? std::optional(application->applicationPath) : std::nullopt;
}

std::optional<std::string> WindowRestorationController::bundleIdentifierOfApplicationAtSortedIndex(int row) const {
    const ApplicationDescription* application = find(row);
    return application ? std::optional(application->bundleIdentifier) : std::nullopt;
}

bool WindowRestorationController::isRunningApplicationAtSortedIndex(int row) const {
    const ApplicationDescription* application = find(row);
    return application && !application->running.empty();
}

bool WindowRestorationController::isSandboxedApplicationAtSortedIndex(int row) const {
    const ApplicationDescription* application = find(row);
    return application && application->sandboxed;
}

std::optional<int> WindowRestorationController::sortedIndexOfApplicationAtURL(const std::string& path) const {
    for (int row = 0; row < applicationsCount(); ++row)
        if (find(row)->applicationPath == path) return row;
    return std::nullopt;
}

bool WindowRestorationController::selectionContainsAtLeastOneOpenApplication() const {
    std::vector<int> rows = _view.selectedRows();
    return std::any_of(rows.begin(), rows.end(), [this](int row) { return isRunningApplicationAtSortedIndex(row); });
}

bool WindowRestorationController::selectionContainsAtLeastOneClosedApplication() const {
    std::vector<int> rows = _view.selectedRows();
    return std::any_of(rows.begin(), rows.end(),
                       [this](int row) { return find(row) && !isRunningApplicationAtSortedIndex(row); });
}

std::vector<std::string> WindowRestorationController::copyIdentifiersOfSelectedObjects() const {
    std::vector<std::string> identifiers;
    for (int row : _view.selectedRows())
        if (std::optional<std::string> identifier = bundleIdentifierOfApplicationAtSortedIndex(row))
            identifiers.push_back(*identifier);
    return identifiers;
}

void WindowRestorationController::setSelectedObjectsWithIdentifiers(const std::vector<std::string>& identifiers) {
    std::vector<EditorRow> rows;
    for (int row = 0; row < applicationsCount(); ++row)
        if (std::find(identifiers.begin(), identifiers.end(), find(row)->bundleIdentifier) != identifiers.end())
            rows.push_back({row});
    _view.selectRows(rows);
    _view.selectionChanged();
}

void WindowRestorationController::selectAndScroll(const std::vector<int>& rows) {
    selectRowsAndScroll(_view, rows);
    _view.selectionChanged();
}

bool WindowRestorationController::selectString(const std::string& typed) {
    if (applicationsCount() == 0) return false;
    int row = 0;
    while (row < applicationsCount() - 1 && finderCompare(*nameOfApplicationAtSortedIndex(row), typed) < 0) ++row;
    selectAndScroll({row});
    return true;
}

void WindowRestorationController::onShowInfo() {
    _showInfo = !_showInfo;
    _prefs.setBool(_showInfo, keys::ShowWindowRestorationInfo);
    if (applicationsCount() > 0) emit dataChanged(index(0, 0), index(applicationsCount() - 1, 0), {Qt::ToolTipRole});
}

// Adding, changing and removing.

void WindowRestorationController::onAddApplication() {
    EditorOpenPanel panel = applicationPanel("Add", _prefs.getOpenPanelPathForKey(keys::AddApplicationPath));
    _view.pickFiles(panel, [this](std::vector<std::string> paths) {
        if (!paths.empty()) addApplicationAtPath(paths.front());
    });
}

void WindowRestorationController::addApplicationAtPath(const std::string& path) {
    if (std::optional<int> listed = sortedIndexOfApplicationAtURL(path)) {
        selectAndScroll({*listed});
        _prefs.setOpenPanelPath(path, keys::AddApplicationPath);
        return;
    }
    std::optional<ApplicationDescription> application = _manager.createApplicationDescriptionWithURL(path);
    if (!application) return;
    // A row kept for a vanished copy of the same application moves to this one, its policy unchanged.
    for (int row = 0; row < applicationsCount(); ++row) {
        if (find(row)->bundleIdentifier != application->bundleIdentifier) continue;
        beginResetModel();
        at(row).applicationPath = application->applicationPath;
        at(row).applicationName = application->applicationName;
        at(row).running = application->running;
        _arranged = arrangedApplications(_manager.applications());
        endResetModel();
        selectAndScroll({*sortedIndexOfApplicationAtURL(path)});
        _prefs.setOpenPanelPath(path, keys::AddApplicationPath);
        return;
    }
    if (!application->running.empty()) {
        _view.beep();
        return;
    }
    if (!_manager.setWindowPersistencyPolicy(0, application->bundleIdentifier, application->sandboxed)) {
        tellNotChangeable(*application);
        return;
    }
    _manager.applications().push_back(*application);
    std::vector<int> arranged = arrangedApplications(_manager.applications());
    int added = static_cast<int>(_manager.applications().size()) - 1;
    int row = static_cast<int>(std::find(arranged.begin(), arranged.end(), added) - arranged.begin());
    beginInsertRows({}, row, row);
    _arranged = std::move(arranged);
    endInsertRows();
    selectAndScroll({row});
    _prefs.setOpenPanelPath(path, keys::AddApplicationPath);
}

void WindowRestorationController::tellNotChangeable(const ApplicationDescription& application) {
    EditorAlert alert;
    alert.message = LocalizedFormat("CantChangeWindowRestoration", {application.applicationName});
    alert.informativeText = LocalizedFormat("CantChangeWindowRestorationInfo",
                                            {_manager.domainFile(application.bundleIdentifier, application.sandboxed).string()});
    _view.ask(alert, {});
}

void WindowRestorationController::setPolicy(int row, int policy) {
    if (!find(row) || isRunningApplicationAtSortedIndex(row)) return;
    ApplicationDescription& application = at(row);
    if (!_manager.setWindowPersistencyPolicy(policy, application.bundleIdentifier, application.sandboxed)) {
        application.changeable = false;
        emit dataChanged(index(row, 0), index(row, PolicyColumn));
        tellNotChangeable(application);
        return;
    }
    application.keepsWindows = policy != 0;
    emit dataChanged(index(row, PolicyColumn), index(row, PolicyColumn));
}

void WindowRestorationController::onRemoveApplication() {
    std::vector<int> rows = _view.selectedRows();
    if (!selectionContainsAtLeastOneClosedApplication()) return;
    EditorAlert alert;
    if (rows.size() == 1)
        alert.message = LocalizedFormat("WantToRemoveApplication", {*nameOfApplicationAtSortedIndex(rows.front())});
    else
        alert.message = LocalizedString(selectionContainsAtLeastOneOpenApplication() ? "WantToRemoveApplications2"
                                                                                     : "WantToRemoveApplications1");
    alert.informativeText = LocalizedString("CantUndo");
    alert.buttons = {LocalizedString("Remove"), LocalizedString("Cancel")};
    _view.ask(alert, [this](int button) {
        if (button == 0) removeConfirmed();
    });
}

void WindowRestorationController::removeConfirmed() {
    std::vector<int> rows = _view.selectedRows();
    std::sort(rows.begin(), rows.end());
    std::erase_if(rows, [this](int row) { return !find(row); });
    if (rows.empty()) return;
    std::vector<std::string> remembered = copyIdentifiersOfSelectedObjects();
    std::optional<std::string> following = bundleIdentifierOfApplicationAtSortedIndex(rows.back() + 1);
    std::vector<ApplicationDescription> refused;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        if (isRunningApplicationAtSortedIndex(*row)) continue;
        ApplicationDescription& application = at(*row);
        if (!_manager.clearWindowPersistencyPolicy(application.bundleIdentifier, application.sandboxed)) {
            application.changeable = false;
            refused.push_back(application);
            continue;
        }
        beginRemoveRows({}, *row, *row);
        int removed = _arranged[static_cast<std::size_t>(*row)];
        _manager.applications().erase(_manager.applications().begin() + removed);
        _arranged.erase(_arranged.begin() + *row);
        for (int& index : _arranged)
            if (index > removed) --index;
        endRemoveRows();
    }
    if (applicationsCount() > 0) {
        setSelectedObjectsWithIdentifiers(remembered);
        if (_view.selectedRows().empty()) {
            std::optional<int> next;
            for (int row = 0; following && row < applicationsCount(); ++row)
                if (find(row)->bundleIdentifier == *following) next = row;
            selectAndScroll({next.value_or(applicationsCount() - 1)});
        } else {
            _view.scrollRowToVisible({_view.selectedRows().front()});
        }
    } else {
        _view.selectionChanged();
    }
    if (!refused.empty()) tellNotChangeable(refused.front());
}

// Rows.

int WindowRestorationController::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : applicationsCount();
}

QVariant WindowRestorationController::data(const QModelIndex& index, int role) const {
    const ApplicationDescription* application = index.isValid() ? find(index.row()) : nullptr;
    if (!application) return {};
    bool running = !application->running.empty();
    if (role == RunningRole) return running;
    if (role == PathRole) return QString::fromStdString(application->applicationPath);
    if (index.column() == ApplicationColumn) {
        switch (role) {
        case Qt::DisplayRole: return QString::fromStdString(application->applicationName);
        case Qt::AccessibleTextRole:
            return QString::fromStdString(running ? LocalizedFormat("RunningApplicationCell", {application->applicationName})
                                                  : application->applicationName);
        case Qt::ToolTipRole:
            if (!_showInfo) return {};
            return QString::fromStdString(
                LocalizedFormat("WindowRestorationToolTip", {application->applicationPath, application->bundleIdentifier}));
        default: return {};
        }
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return QString::fromStdString(LocalizedString(application->keepsWindows ? "KeepWindows" : "DontKeepWindows"));
    case Qt::EditRole: return application->keepsWindows ? 1 : 0;
    default: return {};
    }
}

bool WindowRestorationController::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || index.column() != PolicyColumn || role != Qt::EditRole || !find(index.row())) return false;
    setPolicy(index.row(), value.toInt());
    return true;
}

Qt::ItemFlags WindowRestorationController::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsDropEnabled;
    const ApplicationDescription* application = find(index.row());
    bool locked = application && (!application->running.empty() || !application->changeable);
    // A running application's policy cannot change: its column is disabled.
    if (index.column() == ApplicationColumn || !locked) flags |= Qt::ItemIsEnabled;
    if (index.column() == PolicyColumn && !locked) flags |= Qt::ItemIsEditable;
    return flags;
}

QVariant WindowRestorationController::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return QString::fromStdString(LocalizedString(section == ApplicationColumn ? "ApplicationColumn" : "PolicyColumn"));
}

// Drops: exactly one application, never one that runs unless it is listed already.

std::optional<std::string> WindowRestorationController::droppedApplication(const QMimeData* data) const {
    if (!data || !data->hasUrls() || data->urls().size() != 1 || !data->urls().front().isLocalFile()) return std::nullopt;
    return ResolvedApplicationPath(data->urls().front().toLocalFile().toStdString());
}

bool WindowRestorationController::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                                  const QModelIndex&) const {
    if (_sheetShown) return false;
    std::optional<std::string> path = droppedApplication(data);
    if (!path) return false;
    if (sortedIndexOfApplicationAtURL(*path)) return true;
    if (_manager.isRunningApplicationAtURL(*path)) return false;
    return IsPackage(*path) || pathExtension(*path) == "desktop";
}

bool WindowRestorationController::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                               const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) return false;
    addApplicationAtPath(*droppedApplication(data));
    // The model added the row itself.
    return false;
}

}  // namespace corvalis
