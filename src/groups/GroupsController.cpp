#include "groups/GroupsController.h"

#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <set>

#include "fileutils/AliasResolution.h"
#include "fileutils/CanonicalPathCache.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/NameOrder.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "groups/GroupRows.h"
#include "groups/GroupTexts.h"
#include "keys/KVKeyCombinationValidator.h"
#include "platform/RunningApplications.h"
#include "plist/Utf8.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

constexpr int kDeferredActionMs = 100;
constexpr const char* kBuiltInIcon = "YellowFolder";
constexpr const char* kControllerIdentifier = "com.kestrova.Corvalis.Controller";

bool samePathIgnoringCase(const std::string& a, const std::string& b) {
    return a.size() == b.size() && QString::fromStdString(a).compare(QString::fromStdString(b), Qt::CaseInsensitive) == 0;
}

std::string pathOf(const Value& record) { return record[keys::Path].stringOr(""); }

// Applications as the add menu's entries take them: in name order, then by path.
std::vector<std::string> pathsInNameOrder(const std::vector<std::string>& applications) {
    Array entries;
    for (const std::string& path : applications)
        entries.append(Dictionary{{keys::Name, LocalizedApplicationName(path)}, {keys::Path, path}});
    sortUsingFunction(entries, SortByNameAndPath);
    std::vector<std::string> paths;
    for (const Value& entry : entries) paths.push_back(pathOf(entry));
    return paths;
}

bool isExcludedGroup(const Value& group) { return group[keys::CanBeDeleted].toBool() == false; }

// The permutation that selection-sorts `keys` (smallest first; strictly smaller replaces, as before).
std::vector<int> selectionSortOrder(std::vector<std::string> keys) {
    std::vector<int> order(keys.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        std::size_t smallest = i;
        for (std::size_t j = i + 1; j < keys.size(); ++j)
            if (keys[j] < keys[smallest]) smallest = j;
        if (smallest == i) continue;
        std::swap(keys[i], keys[smallest]);
        std::swap(order[i], order[smallest]);
    }
    return order;
}

std::vector<std::string> sortKeysOfNames(const Array& records) {
    std::vector<std::string> keys;
    keys.reserve(records.size());
    for (const Value& record : records) keys.push_back(FinderCollator::user().sortKey(record[keys::Name].stringOr("")));
    return keys;
}

bool isIdentity(const std::vector<int>& order) {
    for (std::size_t i = 0; i < order.size(); ++i)
        if (order[i] != static_cast<int>(i)) return false;
    return true;
}

// Services are bundles of package type "XPC!"; without that key the extension the original compared decides.
bool isService(const std::string& path, const Workspace& workspace) {
    std::optional<Dictionary> info = workspace.infoDictionaryForBundle(path);
    if (info) {
        if (const std::string* type = (*info)["CFBundlePackageType"].string()) return *type == "XPC!";
    }
    return pathExtension(path) == "xcp";
}

}  // namespace

GroupsController::GroupsController(CorvalisPreferences& prefs, KVKeyCombinationValidator& validator,
                                   NotificationCenter& distributed, NotificationCenter& local,
                                   RunningApplications& running, GroupsView& view, const Workspace& workspace,
                                   QObject* parent)
    : QAbstractItemModel(parent), _prefs(prefs), _validator(validator), _distributed(distributed), _local(local),
      _running(running), _view(view), _workspace(workspace) {
    _validator.setSelectedGroup([this] { return selectedGroup(); });
}

GroupsController::~GroupsController() {
    _validator.setSelectedGroup({});
    if (_groupsChangedToken) _distributed.removeObserver(_groupsChangedToken);
}

// Life cycle.

void GroupsController::initializePane(bool firstTime) {
    beginResetModel();
    _selection.clear();
    _draggedItems.clear();
    _splitGroups();
    _computeArrangement();
    _showInfo = _prefs.boolForKey(keys::ShowGroupInfo);
    endResetModel();
    _validateKeyboardShortcuts();
    _view.collapseAll();
    if (groupCount() > 0)
        selectAndScroll({EditorRow{0}});
    else
        emit optionsNeedRefresh();
    if (firstTime && !_groupsChangedToken)
        _groupsChangedToken = _distributed.addObserver(notifications::GroupsChanged, notifications::ControllerObject,
                                                       [this](const Notification& n) { onGroupsChanged(n); });
}

void GroupsController::willShowPane() {
    _updatePaths();
    _validator.updateKeyboardShortcutForGroup(selectedGroup());
}

void GroupsController::windowDidBecomeMain() {
    willShowPane();
    _synchronizeOpenPanel();
}

void GroupsController::_synchronizeOpenPanel() {
    if (!_changingApplication || _selection.size() != 1 || isGroupRow(_selection[0])) return;
    std::optional<Array> members = applicationsOf(_selection[0].group);
    if (!members || _selection[0].row >= static_cast<int>(members->size())) return;
    bool valid = IsValid(pathOf((*members)[static_cast<std::size_t>(_selection[0].row)]));
    _view.retitleOpenPanel("", LocalizedString(valid ? groupstrings::Change : groupstrings::Fix));
}

void GroupsController::updatePane(std::string& report) {
    long invalid = 0;
    for (const Value& group : _groups)
        for (const Value& member : group[keys::Applications].array() ? *group[keys::Applications].array() : Array())
            if (!IsValid(pathOf(member))) ++invalid;
    if (invalid == 0) return;
    std::string count = invalid == 1 ? LocalizedString(groupstrings::OneInvalidPath)
                                     : LocalizedFormat(groupstrings::MoreInvalidPaths, {static_cast<long long>(invalid)});
    report += LocalizedFormat(groupstrings::GroupsSummary, {count}) + "\n";
}

void GroupsController::_splitGroups() {
    _groups = Array();
    _excludedApplications.reset();
    for (const Value& value : _prefs.arrayForKey(keys::Groups).value_or(Array())) {
        std::optional<Dictionary> group = plist::asDictionary(value);
        if (!group) continue;
        if (isExcludedGroup(*group) && !_excludedApplications) {
            _excludedApplications = group;
            continue;
        }
        if (!(*group)[keys::Applications].array()) group->set(keys::Applications, Array());
        _groups.append(*group);
    }
}

void GroupsController::_computeArrangement() {
    bool arranged = _prefs.boolForKey(keys::KeepGroupsAndApplicationsArranged);
    std::int32_t what = _prefs.intForKey(keys::ArrangeWhat);
    _keepGroupsArranged = arranged && (what == 0 || what == 1);
    _keepAppsArranged = arranged && (what == 0 || what == 2);
}

void GroupsController::_validateKeyboardShortcuts() {
    bool replaced = false;
    for (const Value& value : _groups) {
        std::optional<Dictionary> group = plist::asDictionary(value);
        const Dictionary* shortcut = (*group)[keys::KeyboardShortcut].dictionary();
        if (!shortcut || _validator.validateKeyboardShortcut(*shortcut)) continue;
        // Taken by a menu hot key since it was set: the group keeps its id and action, not the keys.
        Dictionary cleared{{keys::CommandID, (*shortcut)[keys::CommandID]},
                           {keys::Enabled, false},
                           {keys::Action, Value::int32((*shortcut)[keys::Action].toInt32().value_or(0))}};
        group->set(keys::KeyboardShortcut, cleared);
        _prefs.synchronizeShortcut(Dictionary{{keys::CommandId, cleared[keys::CommandID]}, {keys::KeyCombination, cleared}},
                                   changes::ChangeKeyboardShortcut);
        replaced = true;
    }
    if (replaced) synchronizeGroups();
}

// The model.

QModelIndex GroupsController::index(int row, int column, const QModelIndex& parent) const {
    if (column != 0 || row < 0) return {};
    if (!parent.isValid()) return row < groupCount() ? createIndex(row, 0, quintptr(0)) : QModelIndex();
    if (parent.internalId() != 0) return {};
    std::optional<Array> members = applicationsOf(parent.row());
    if (!members || row >= static_cast<int>(members->size())) return {};
    return createIndex(row, 0, quintptr(parent.row() + 1));
}

QModelIndex GroupsController::parent(const QModelIndex& child) const {
    if (!child.isValid() || child.internalId() == 0) return {};
    return createIndex(static_cast<int>(child.internalId() - 1), 0, quintptr(0));
}

int GroupsController::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return groupCount();
    if (parent.internalId() != 0 || parent.column() != 0) return 0;
    std::optional<Array> members = applicationsOf(parent.row());
    return members ? static_cast<int>(members->size()) : 0;
}

int GroupsController::columnCount(const QModelIndex&) const { return 1; }

EditorRow GroupsController::rowOf(const QModelIndex& index) const {
    if (!index.isValid() || index.internalId() == 0) return EditorRow{index.row()};
    return EditorRow{index.row(), static_cast<int>(index.internalId() - 1)};
}

QModelIndex GroupsController::indexOf(const EditorRow& row) const {
    return isGroupRow(row) ? index(row.row, 0) : index(row.row, 0, index(row.group, 0));
}

QVariant GroupsController::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    EditorRow row = rowOf(index);
    if (isGroupRow(row)) {
        std::optional<Dictionary> group = groupAt(row.row);
        if (!group) return {};
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole: return QString::fromStdString((*group)[keys::Name].stringOr(""));
        case IsGroupRole: return true;
        case IconNameRole: return QString::fromStdString((*group)[keys::Icon].stringOr(""));
        case IconDataRole: {
            const plist::Data* bytes = (*group)[keys::IconData].data();
            return bytes ? QByteArray(reinterpret_cast<const char*>(bytes->data()), static_cast<qsizetype>(bytes->size()))
                         : QByteArray();
        }
        case Qt::ToolTipRole:
            return _showInfo ? QVariant(QString::fromStdString(groupToolTip(*group, _validator))) : QVariant();
        default: return {};
        }
    }
    std::optional<Array> members = applicationsOf(row.group);
    if (!members) return {};
    const Value& member = (*members)[static_cast<std::size_t>(row.row)];
    switch (role) {
    case Qt::DisplayRole: return QString::fromStdString(member[keys::Name].stringOr(""));
    case PathRole: return QString::fromStdString(pathOf(member));
    case IsGroupRole: return false;
    case Qt::ToolTipRole: return _showInfo ? QVariant(QString::fromStdString(pathOf(member))) : QVariant();
    default: return {};
    }
}

bool GroupsController::setData(const QModelIndex& index, const QVariant& value, int role) {
    EditorRow row = rowOf(index);
    if (!index.isValid() || role != Qt::EditRole || !isGroupRow(row) || _abortingEdit) return false;
    std::string text = noNewlineString(value.toString().toStdString());
    if (!isValid(text)) return false;
    _rename(row.row, text);
    return true;
}

Qt::ItemFlags GroupsController::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    if (isGroupRow(rowOf(index))) flags |= Qt::ItemIsEditable | Qt::ItemIsDropEnabled;
    else flags |= Qt::ItemIsDropEnabled | Qt::ItemNeverHasChildren;
    return flags;
}

std::optional<Dictionary> GroupsController::groupAt(int group) const {
    if (group < 0 || group >= groupCount()) return std::nullopt;
    return plist::asDictionary(_groups[static_cast<std::size_t>(group)]);
}

std::optional<Array> GroupsController::applicationsOf(int group) const {
    if (group < 0 || group >= groupCount()) return std::nullopt;
    return plist::asArray(_groups[static_cast<std::size_t>(group)][keys::Applications]);
}

// Selection.

void GroupsController::setSelectedRows(std::vector<EditorRow> rows) {
    std::sort(rows.begin(), rows.end(), [](const EditorRow& a, const EditorRow& b) {
        return std::pair(a.group < 0 ? a.row : a.group, a.group < 0 ? -1 : a.row) <
               std::pair(b.group < 0 ? b.row : b.group, b.group < 0 ? -1 : b.row);
    });
    if (rows == _selection) return;
    _selection = std::move(rows);
    emit optionsNeedRefresh();
}

bool GroupsController::canJoinSelection(const EditorRow& row) const {
    return _selection.empty() || isGroupRow(_selection.front()) == isGroupRow(row);
}

std::optional<int> GroupsController::selectedGroupIndex() const {
    std::optional<int> group = selectedGroupOf(_selection);
    if (group && (*group < 0 || *group >= groupCount())) return std::nullopt;
    return group;
}

std::optional<Dictionary> GroupsController::selectedGroup() const {
    std::optional<int> group = selectedGroupIndex();
    return group ? groupAt(*group) : std::nullopt;
}

GroupOptionsState GroupsController::optionsState() const {
    if (groupCount() == 0) return GroupOptionsState::NoGroups;
    if (_selection.empty()) return GroupOptionsState::NoGroupsSelected;
    return selectedGroupIndex() ? GroupOptionsState::Options : GroupOptionsState::MultipleGroups;
}

void GroupsController::selectAndScroll(const std::vector<EditorRow>& rows) {
    _view.selectRows(rows);
    if (!rows.empty()) _view.scrollRowToVisible(rows.front());
    // Selecting what was already selected says nothing; the options box still follows the record.
    emit optionsNeedRefresh();
}

bool GroupsController::selectString(const std::string& typed) {
    // Members are searched only when a member is selected, so typing never leaves its level.
    bool members = !_selection.empty() && !isGroupRow(_selection.front());
    int group = members ? _selection.front().group : -1;
    std::vector<std::string> names = members ? memberNames(applicationsOf(group).value_or(Array())) : groupNames();
    if (names.empty()) return false;
    // Rows need not be arranged, so the order is the names' own, not the rows'.
    std::optional<std::size_t> found, last;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (finderCompare(names[i], typed) >= 0 && (!found || finderCompare(names[i], names[*found]) < 0)) found = i;
        if (!last || finderCompare(names[i], names[*last]) > 0) last = i;
    }
    selectAndScroll({EditorRow{static_cast<int>(found.value_or(*last)), group}});
    return true;
}

void GroupsController::expandAndSelectMembers(int group, const std::vector<std::string>& paths) {
    _view.expandGroup(group);
    std::vector<EditorRow> rows;
    std::optional<Array> members = applicationsOf(group);
    for (std::size_t i = 0; members && i < members->size(); ++i)
        if (std::find(paths.begin(), paths.end(), pathOf((*members)[i])) != paths.end())
            rows.push_back(EditorRow{static_cast<int>(i), group});
    selectAndScroll(rows);
}

GroupsController::SavedSelection GroupsController::saveSelection() const {
    SavedSelection saved;
    for (const EditorRow& row : _selection) {
        std::optional<Dictionary> group = groupAt(isGroupRow(row) ? row.row : row.group);
        if (!group) continue;
        if (isGroupRow(row)) {
            saved.groupRows.push_back(row.row);
            saved.groupNames.push_back((*group)[keys::Name].stringOr(""));
        } else {
            saved.members.emplace_back(row.group, pathOf((*applicationsOf(row.group))[static_cast<std::size_t>(row.row)]));
        }
    }
    for (int group = 0; group < groupCount(); ++group)
        if (_view.isExpanded(group)) saved.expanded.push_back(group);
    return saved;
}

void GroupsController::restoreSelection(const SavedSelection& saved) {
    for (int group : saved.expanded)
        if (group < groupCount()) _view.expandGroup(group);
    std::vector<EditorRow> rows;
    for (std::size_t i = 0; i < saved.groupRows.size(); ++i)
        if (std::optional<Dictionary> group = groupAt(saved.groupRows[i]);
            group && (*group)[keys::Name].stringOr("") == saved.groupNames[i])
            rows.push_back(EditorRow{saved.groupRows[i]});
    for (const auto& [group, path] : saved.members) {
        std::optional<Array> members = applicationsOf(group);
        for (std::size_t i = 0; members && i < members->size(); ++i)
            if (pathOf((*members)[i]) == path) {
                rows.push_back(EditorRow{static_cast<int>(i), group});
                break;
            }
    }
    _view.selectRows(rows);
    emit optionsNeedRefresh();
}

// Reordering that the view follows with its selection and expansion.

void GroupsController::permuteGroups(const std::vector<int>& newToOld) {
    if (isIdentity(newToOld)) return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> oldToNew(newToOld.size());
    Array reordered;
    for (std::size_t i = 0; i < newToOld.size(); ++i) {
        oldToNew[static_cast<std::size_t>(newToOld[i])] = static_cast<int>(i);
        reordered.append(_groups[static_cast<std::size_t>(newToOld[i])]);
    }
    _groups.replaceContents(reordered);
    QModelIndexList from = persistentIndexList(), to;
    for (const QModelIndex& old : from) {
        if (!old.isValid()) to << QModelIndex();
        else if (old.internalId() == 0) to << createIndex(oldToNew[static_cast<std::size_t>(old.row())], 0, quintptr(0));
        else to << createIndex(old.row(), 0, quintptr(oldToNew[old.internalId() - 1] + 1));
    }
    changePersistentIndexList(from, to);
    for (EditorRow& row : _selection) {
        int& group = isGroupRow(row) ? row.row : row.group;
        group = oldToNew[static_cast<std::size_t>(group)];
    }
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void GroupsController::permuteMembers(int group, const std::vector<int>& newToOld) {
    std::optional<Array> members = applicationsOf(group);
    if (!members || isIdentity(newToOld)) return;
    emit layoutAboutToBeChanged({index(group, 0)}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> oldToNew(newToOld.size());
    Array reordered;
    for (std::size_t i = 0; i < newToOld.size(); ++i) {
        oldToNew[static_cast<std::size_t>(newToOld[i])] = static_cast<int>(i);
        reordered.append((*members)[static_cast<std::size_t>(newToOld[i])]);
    }
    members->replaceContents(reordered);
    QModelIndexList from, to;
    for (const QModelIndex& old : persistentIndexList())
        if (old.isValid() && old.internalId() == quintptr(group + 1)) {
            from << old;
            to << createIndex(oldToNew[static_cast<std::size_t>(old.row())], 0, quintptr(group + 1));
        }
    changePersistentIndexList(from, to);
    for (EditorRow& row : _selection)
        if (row.group == group) row.row = oldToNew[static_cast<std::size_t>(row.row)];
    emit layoutChanged({index(group, 0)}, QAbstractItemModel::VerticalSortHint);
}

void GroupsController::insertMember(int group, Array& applications, int at, const Value& record) {
    if (group >= 0) beginInsertRows(index(group, 0), at, at);
    else if (_excludedRowsObserver) _excludedRowsObserver->applicationWillBeInserted(at);
    applications.insert(static_cast<std::size_t>(at), record);
    if (group >= 0) endInsertRows();
    else if (_excludedRowsObserver) _excludedRowsObserver->applicationWasInserted();
}

void GroupsController::removeMember(int group, Array& applications, int at) {
    if (group >= 0) beginRemoveRows(index(group, 0), at, at);
    else if (_excludedRowsObserver) _excludedRowsObserver->applicationWillBeRemoved(at);
    applications.removeAt(static_cast<std::size_t>(at));
    if (group >= 0) endRemoveRows();
    else if (_excludedRowsObserver) _excludedRowsObserver->applicationWasRemoved();
    // Members outside the outline are not in its selection (its group rows are, with group -1).
    if (group < 0) return;
    std::erase_if(_selection, [&](const EditorRow& row) { return row.group == group && row.row == at; });
    for (EditorRow& row : _selection)
        if (row.group == group && row.row > at) --row.row;
}

// Hand-over to the store and the controller.

Array GroupsController::mergedGroups() {
    Array merged;
    merged.reserve(_groups.size() + 1);
    for (const Value& group : _groups) merged.append(group);
    if (_excludedApplications) {
        std::size_t at = merged.size();
        if (_keepGroupsArranged)
            at = static_cast<std::size_t>(nameOrderPosition(groupNames(), (*_excludedApplications)[keys::Name].stringOr("")));
        merged.insert(at, *_excludedApplications);
    }
    _prefs.setArray(merged, keys::Groups);
    return merged;
}

void GroupsController::synchronizeGroups(std::optional<bool> excludedApplications) {
    Dictionary payload{{keys::Groups, mergedGroups()}};
    if (excludedApplications) payload.set(changes::ChangeExcludedApplications, *excludedApplications);
    _prefs.synchronizeValue(payload, changes::ChangeGroups);
}

void GroupsController::selectedGroupDidChange() {
    if (std::optional<int> group = selectedGroupIndex()) emit dataChanged(index(*group, 0), index(*group, 0));
    _validator.updateKeyboardShortcutForGroup(selectedGroup());
    synchronizeGroups();
    emit optionsNeedRefresh();
}

// Names.

std::vector<std::string> GroupsController::groupNames() const {
    std::vector<std::string> names;
    for (const Value& group : _groups) names.push_back(group[keys::Name].stringOr(""));
    return names;
}

std::vector<std::string> GroupsController::memberNames(const Array& applications) const {
    std::vector<std::string> names;
    for (const Value& member : applications) names.push_back(member[keys::Name].stringOr(""));
    return names;
}

bool GroupsController::_isGroupNameAvailable(const std::string& name, int skipGroup) const {
    for (int group = 0; group < groupCount(); ++group)
        if (group != skipGroup && finderCompare(_groups[static_cast<std::size_t>(group)][keys::Name].stringOr(""), name) == 0)
            return true;
    return false;
}

std::string GroupsController::_newUniqueGroupName(const std::string* base) const {
    std::string candidate = base ? LocalizedFormat(groupstrings::NewDuplicatedGroup, {*base})
                                 : LocalizedFormat(groupstrings::NewGroup, {static_cast<long long>(groupCount() + 1)});
    return uniqueName(candidate, [this](const std::string& name) { return _isGroupNameAvailable(name, -1); });
}

std::string GroupsController::_newUniqueIconName() const {
    std::vector<long> used;
    for (const Value& group : _groups)
        if (std::optional<long> number = customIconNumber(group[keys::Icon].stringOr(""))) used.push_back(*number);
    return "Custom " + std::to_string(newUniqueIconNumber(used));
}

void GroupsController::onShowInfo() {
    _showInfo = !_showInfo;
    _prefs.setBool(_showInfo, keys::ShowGroupInfo);
    _validator.updateKeyboardShortcutForGroup(selectedGroup());
}

// Actions.

void GroupsController::deferred(void (GroupsController::*action)()) {
    if (!_view.isEditingName()) {
        (this->*action)();
        return;
    }
    _view.endEditing();
    QTimer::singleShot(kDeferredActionMs, this, [this, action] { (this->*action)(); });
}

void GroupsController::onAddGroup() { deferred(&GroupsController::_addGroup); }
void GroupsController::onDuplicateGroup() { deferred(&GroupsController::_duplicateGroup); }
void GroupsController::onAddApplication() { deferred(&GroupsController::_addApplication); }
void GroupsController::onAddRunningApplications() { deferred(&GroupsController::_addRunningApplications); }
void GroupsController::onAddBackgroundOnlyApplications() { deferred(&GroupsController::_addBackgroundOnlyApplications); }
void GroupsController::onRemoveItem() { deferred(&GroupsController::_removeItem); }

void GroupsController::_addGroup() {
    _addGroup(Dictionary{{keys::Name, _newUniqueGroupName(nullptr)},
                         {keys::Icon, kBuiltInIcon},
                         {keys::ShowInOpenMenu, true},
                         {keys::ShowInQuitMenu, true},
                         {keys::ShowInSwitchMenu, true},
                         {keys::AutoOpen, false},
                         {keys::Hide, false},
                         {keys::Applications, Array()}});
}

void GroupsController::_duplicateGroup() {
    std::optional<Dictionary> source = selectedGroup();
    if (!source) return;
    std::string base = (*source)[keys::Name].stringOr("");
    Dictionary copy{{keys::Name, _newUniqueGroupName(&base)}};
    std::string icon = (*source)[keys::Icon].stringOr("");
    bool custom = icon.find("Custom") != std::string::npos;
    copy.set(keys::Icon, custom ? _newUniqueIconName() : icon);
    if (custom && (*source)[keys::IconData].data()) copy.set(keys::IconData, (*source)[keys::IconData]);
    for (const char* flag : {keys::ShowInOpenMenu, keys::ShowInQuitMenu, keys::ShowInSwitchMenu, keys::AutoOpen, keys::Hide})
        copy.set(flag, (*source)[flag].toBool().value_or(false));
    Array applications;
    for (const Value& member : applicationsOf(*selectedGroupIndex()).value_or(Array())) applications.append(member.deepCopy());
    copy.set(keys::Applications, applications);
    _addGroup(copy);
}

void GroupsController::_addGroup(Dictionary record) {
    std::string id = NewUniqueCommandId(_groups);
    record.set(keys::KeyboardShortcut, Dictionary{{keys::CommandID, id}, {keys::Enabled, false}, {keys::Action, Value::int32(0)}});
    record.set(keys::CanBeDeleted, true);
    int at = _keepGroupsArranged ? nameOrderPosition(groupNames(), record[keys::Name].stringOr("")) : groupCount();
    beginInsertRows({}, at, at);
    _groups.insert(static_cast<std::size_t>(at), record);
    endInsertRows();
    for (EditorRow& row : _selection) {
        int& group = isGroupRow(row) ? row.row : row.group;
        if (group >= at) ++group;
    }
    selectAndScroll({EditorRow{at}});
    synchronizeGroups();
    _prefs.synchronizeShortcut(Dictionary{{keys::CommandId, id}, {keys::KeyCombination, Dictionary{{keys::Enabled, false}}}},
                               changes::ChangeKeyboardShortcut);
    _view.editName(EditorRow{at});
}

void GroupsController::_rename(int group, const std::string& text) {
    std::optional<Dictionary> record = groupAt(group);
    if (!record) return;
    record->set(keys::Name, text);
    emit dataChanged(index(group, 0), index(group, 0));
    if (_keepGroupsArranged && groupCount() > 1) permuteGroups(selectionSortOrder(sortKeysOfNames(_groups)));
    int now = groupRowOf(*record);
    _view.scrollRowToVisible(EditorRow{now});
    synchronizeGroups();
    emit optionsNeedRefresh();
}

int GroupsController::groupRowOf(const Dictionary& group) const {
    for (int row = 0; row < groupCount(); ++row)
        if (const Dictionary* candidate = _groups[static_cast<std::size_t>(row)].dictionary();
            candidate && candidate->isSameObject(group))
            return row;
    return -1;
}

void GroupsController::_removeItem() {
    std::vector<EditorRow> rows = _selection;
    if (rows.empty() || !isSingleKind(rows)) return;
    if (!isGroupRow(rows.front())) {
        _updatePaths();
        _removeApplications();
        return;
    }
    bool anyMembers = std::any_of(rows.begin(), rows.end(), [this](const EditorRow& row) {
        std::optional<Array> members = applicationsOf(row.row);
        return members && !members->empty();
    });
    if (!anyMembers) {
        _view.endEditing();
        _deleteGroups();
        return;
    }
    _view.ask(deleteGroupsAlert((*groupAt(rows.front().row))[keys::Name].stringOr(""), rows.size() >= 2),
              [this, rows](int button) {
                  if (button != 0 || rows != _selection) return;
                  _deleteGroups();
              });
}

EditorAlert GroupsController::deleteGroupsAlert(const std::string& firstName, bool several) {
    return EditorAlert{EditorAlert::Style::Warning,
                       several ? LocalizedString(groupstrings::WantToDeleteGroups)
                               : LocalizedFormat(groupstrings::WantToDeleteGroup, {firstName}),
                       LocalizedString(groupstrings::CantUndo),
                       {LocalizedString(groupstrings::Delete), LocalizedString(groupstrings::Cancel)}};
}

void GroupsController::_deleteGroups() {
    std::vector<int> rows;
    for (const EditorRow& row : _selection)
        if (isGroupRow(row) && row.row < groupCount()) rows.push_back(row.row);
    if (rows.empty()) return;
    int countBefore = groupCount();
    for (auto it = rows.rbegin(); it != rows.rend(); ++it) {
        Value id = (*groupAt(*it))[keys::KeyboardShortcut][keys::CommandID];
        beginRemoveRows({}, *it, *it);
        _groups.removeAt(static_cast<std::size_t>(*it));
        endRemoveRows();
        if (!id.isAbsent()) _prefs.synchronizeShortcut(Dictionary{{keys::CommandId, id}}, changes::RemoveKeyboardShortcut);
    }
    _selection.clear();
    std::optional<int> next = memberAfterRemoving(rows, countBefore);
    selectAndScroll(next ? std::vector<EditorRow>{EditorRow{*next}} : std::vector<EditorRow>{});
    synchronizeGroups();
}

void GroupsController::_removeApplications() {
    std::vector<EditorRow> rows = _selection;
    std::erase_if(rows, [](const EditorRow& row) { return isGroupRow(row); });
    if (rows.empty()) return;
    int target = rows.back().group;
    std::optional<Array> targetMembers = applicationsOf(target);
    if (!targetMembers) return;
    std::vector<int> removedFromTarget;
    for (const EditorRow& row : rows)
        if (row.group == target) removedFromTarget.push_back(row.row);
    std::optional<int> next = memberAfterRemoving(removedFromTarget, static_cast<int>(targetMembers->size()));
    for (auto it = rows.rbegin(); it != rows.rend(); ++it)
        if (std::optional<Array> members = applicationsOf(it->group); members && it->row < static_cast<int>(members->size()))
            removeMember(it->group, *members, it->row);
    selectAndScroll(next ? std::vector<EditorRow>{EditorRow{*next, target}} : std::vector<EditorRow>{EditorRow{target}});
    synchronizeGroups(false);
}

// Arrangement.

bool GroupsController::isArrangementChecked(int tag) const {
    bool arranged = _prefs.boolForKey(keys::KeepGroupsAndApplicationsArranged);
    if (tag == ArrangeNone) return !arranged;
    return arranged && _prefs.intForKey(keys::ArrangeWhat) == tag;
}

void GroupsController::onSortItems(int tag) {
    if (tag < ArrangeNone || tag > ArrangeApplicationsOnly || isArrangementChecked(tag)) return;
    if (tag == ArrangeNone) {
        _prefs.setBool(false, keys::KeepGroupsAndApplicationsArranged);
    } else {
        _prefs.setBool(true, keys::KeepGroupsAndApplicationsArranged);
        _prefs.setInt(tag, keys::ArrangeWhat);
    }
    _computeArrangement();
    if (_keepGroupsArranged || _keepAppsArranged)
        _sortGroups();
    else
        _validator.updateKeyboardShortcutForGroup(selectedGroup());
    _prefs.synchronizeValue(Dictionary{{keys::Groups, mergedGroups()},
                                       {keys::KeepGroupsAndApplicationsArranged, _prefs.boolForKey(keys::KeepGroupsAndApplicationsArranged)},
                                       {keys::ArrangeWhat, Value::int32(_prefs.intForKey(keys::ArrangeWhat))}},
                            changes::ChangeArrangement);
}

void GroupsController::_sortGroups() {
    if (_keepAppsArranged)
        for (int group = 0; group < groupCount(); ++group)
            permuteMembers(group, selectionSortOrder(sortKeysOfNames(*applicationsOf(group))));
    if (_keepGroupsArranged) permuteGroups(selectionSortOrder(sortKeysOfNames(_groups)));
    if (!_selection.empty()) _view.scrollRowToVisible(_selection.front());
}

// Adding applications.

std::optional<Dictionary> GroupsController::newApplicationRecord(const std::string& path) const {
    if (!isPathWithinLimit(path) || !plist::detail::isValidUtf8(path)) return std::nullopt;
    std::string name = LocalizedApplicationName(path);
    if (!plist::detail::isValidUtf8(name)) return std::nullopt;
    Dictionary record{{keys::Name, name}, {keys::Path, path}};
    if (std::optional<plist::Data> alias = AliasData(path, _workspace)) record.set(keys::AliasData, *alias);
    return record;
}

int GroupsController::addApplication(const std::string& path, const Dictionary& group, int index, bool move,
                                     bool* groupAlreadyContainsApp) {
    bool excluded = isExcludedGroup(group);
    int row = excluded ? -1 : groupRowOf(group);
    if (!excluded && row < 0) return -1;
    bool arranged = excluded || _keepAppsArranged;
    std::optional<Array> members = plist::asArray(group[keys::Applications]);
    if (!members) {
        members = Array();
        Dictionary(group).set(keys::Applications, *members);
    }
    int count = static_cast<int>(members->size());
    int found = -1;
    for (int i = 0; i < count && found < 0; ++i)
        if (samePathIgnoringCase(pathOf((*members)[static_cast<std::size_t>(i)]), path)) found = i;
    if (groupAlreadyContainsApp) *groupAlreadyContainsApp = found >= 0;
    if (found < 0) {
        std::optional<Dictionary> record = newApplicationRecord(path);
        if (!record) return -1;
        int at = arranged ? nameOrderPosition(memberNames(*members), (*record)[keys::Name].stringOr(""))
                          : std::clamp(index, 0, count);
        insertMember(row, *members, at, *record);
        return at;
    }
    if (!move || arranged) return found;
    int target = found < index ? index - 1 : index;
    target = std::clamp(target, 0, count - 1);
    if (target == found) return found;
    Value record = (*members)[static_cast<std::size_t>(found)];
    removeMember(row, *members, found);
    insertMember(row, *members, target, record);
    return target;
}

void GroupsController::removeApplication(int index, const Dictionary& group) {
    std::optional<Array> members = plist::asArray(group[keys::Applications]);
    if (!members || index < 0 || index >= static_cast<int>(members->size())) return;
    bool excluded = isExcludedGroup(group);
    removeMember(excluded ? -1 : groupRowOf(group), *members, index);
}

std::optional<Dictionary> GroupsController::excludedApplications() const {
    if (!_excludedApplications) return std::nullopt;
    return _excludedApplications->deepCopy();
}

void GroupsController::setExcludedApplications(const Dictionary& group) {
    if (isExcludedGroup(group)) _excludedApplications = group;
}

void GroupsController::_addApplications(const std::vector<std::string>& paths, bool updateOpenPanelPath) {
    std::optional<int> target = selectedGroupIndex();
    if (!target) return;
    Dictionary group = *groupAt(*target);
    int at = static_cast<int>(applicationsOf(*target)->size());
    std::vector<std::string> added;
    for (auto it = paths.rbegin(); it != paths.rend(); ++it) {
        std::optional<std::string> resolved = ResolvedApplicationOrScriptPath(*it);
        if (!resolved || addApplication(*resolved, group, at, false, nullptr) < 0) continue;
        if (std::find(added.begin(), added.end(), *resolved) == added.end()) added.push_back(*resolved);
    }
    if (added.empty()) return;
    expandAndSelectMembers(*target, added);
    if (updateOpenPanelPath) _prefs.setOpenPanelPath(paths.back(), keys::AddApplicationPath);
    synchronizeGroups(false);
}

void GroupsController::_addApplication() {
    if (!selectedGroup()) return;
    EditorOpenPanel panel;
    panel.allowsMultipleSelection = true;
    panel.prompt = LocalizedString(groupstrings::Add);
    panel.directory = StandardizedPath(_prefs.getOpenPanelPathForKey(keys::AddApplicationPath));
    // Desktop entries are this system's plain-file applications.
    panel.allowedFileTypes = {"app", "desktop", "applescript", "scpt", "scptd"};
    _view.pickFiles(panel, [this](std::vector<std::string> paths) {
        if (paths.empty()) return;
        _updatePaths();
        _addApplications(paths, true);
    });
}

std::vector<std::string> GroupsController::launchedPaths() {
    std::vector<std::string> found;
    for (const RunningApplication& application : _running.launchedApplications()) {
        if (application.bundleIdentifier == "com.apple.systempreferences" || application.bundleIdentifier == "com.apple.finder")
            continue;
        found.push_back(application.path);
    }
    return pathsInNameOrder(found);
}

std::vector<std::string> GroupsController::backgroundOnlyPaths() {
    std::vector<std::string> found;
    for (const RunningApplication& application : _running.runningApplications()) {
        if (!application.backgroundOnly || application.bundleIdentifier == kControllerIdentifier) continue;
        if (!isPathWithinLimit(application.path) || isService(application.path, _workspace)) continue;
        bool uiElement = false, backgroundOnly = false;
        // Kept alive by the system without its interface: not a background application of its own.
        if (CopyApplicationInfoDictionaryPresentationOptions(application.path, &uiElement, &backgroundOnly, _workspace) &&
            !uiElement && !backgroundOnly && pathExtension(application.path) != "desktop")
            continue;
        found.push_back(application.path);
    }
    return pathsInNameOrder(found);
}

bool GroupsController::canAddRunningApplications() { return selectedGroup() && !launchedPaths().empty(); }
bool GroupsController::canAddBackgroundOnlyApplications() { return selectedGroup() && !backgroundOnlyPaths().empty(); }

void GroupsController::_addRunningApplications() {
    std::vector<std::string> paths = launchedPaths();
    _updatePaths();
    _addApplications(paths, false);
}

void GroupsController::_addBackgroundOnlyApplications() {
    std::vector<std::string> paths = backgroundOnlyPaths();
    _updatePaths();
    _addApplications(paths, false);
}

// Changing or fixing one application.

std::string GroupsController::changeApplicationTitleKey() const {
    if (_selection.size() == 1 && !isGroupRow(_selection[0]))
        if (std::optional<Array> members = applicationsOf(_selection[0].group);
            members && !IsValid(pathOf((*members)[static_cast<std::size_t>(_selection[0].row)])))
            return groupstrings::FixPath1;
    return groupstrings::ChangeApplicationOrScript1;
}

void GroupsController::onDoubleClick(const EditorRow& row) {
    if (!indexOf(row).isValid()) return;
    if (_selection.size() >= 2) {
        _view.selectRows({row});
        setSelectedRows({row});
    }
    _updatePaths();
    onChangeApplication();
}

void GroupsController::onChangeApplication() {
    if (_selection.size() != 1 || isGroupRow(_selection[0])) return;
    EditorRow edited = _selection[0];
    std::optional<Array> members = applicationsOf(edited.group);
    if (!members || edited.row >= static_cast<int>(members->size())) return;
    std::string oldPath = pathOf((*members)[static_cast<std::size_t>(edited.row)]);
    bool valid = IsValid(oldPath);
    EditorOpenPanel panel;
    panel.prompt = LocalizedString(valid ? groupstrings::Change : groupstrings::Fix);
    panel.directory = valid ? std::string(parentPath(oldPath))
                            : StandardizedPath(_prefs.getOpenPanelPathForKey(keys::AddApplicationPath));
    panel.allowedFileTypes = {"app", "desktop", "applescript", "scpt", "scptd"};
    Dictionary editedRecord = *plist::asDictionary((*members)[static_cast<std::size_t>(edited.row)]);
    _changingApplication = true;
    _view.pickFiles(panel, [this, edited, editedRecord](std::vector<std::string> paths) {
        _changingApplication = false;
        std::optional<Array> members = applicationsOf(edited.group);
        std::optional<std::string> chosen = paths.empty() ? std::nullopt : ResolvedApplicationOrScriptPath(paths.front());
        std::optional<Dictionary> record = chosen ? newApplicationRecord(*chosen) : std::nullopt;
        // The member may have gone while the panel was open; then nothing is changed.
        int at = -1;
        for (std::size_t i = 0; members && i < members->size(); ++i)
            if (const Dictionary* member = (*members)[i].dictionary(); member && member->isSameObject(editedRecord))
                at = static_cast<int>(i);
        if (record && at >= 0) {
            int other = -1;
            for (std::size_t i = 0; i < members->size(); ++i)
                if (static_cast<int>(i) != at && samePathIgnoringCase(pathOf((*members)[i]), *chosen)) other = static_cast<int>(i);
            int selected = at;
            if (other >= 0) {
                members->set(static_cast<std::size_t>(other), *record);
                emit dataChanged(index(other, 0, index(edited.group, 0)), index(other, 0, index(edited.group, 0)));
                removeMember(edited.group, *members, at);
                selected = other > at ? other - 1 : other;
            } else if (_keepAppsArranged) {
                removeMember(edited.group, *members, at);
                selected = nameOrderPosition(memberNames(*members), (*record)[keys::Name].stringOr(""));
                insertMember(edited.group, *members, selected, *record);
            } else {
                members->set(static_cast<std::size_t>(at), *record);
                emit dataChanged(index(at, 0, index(edited.group, 0)), index(at, 0, index(edited.group, 0)));
            }
            selectAndScroll({EditorRow{selected, edited.group}});
            _prefs.setOpenPanelPath(*chosen, keys::AddApplicationPath);
            synchronizeGroups(false);
        }
        _updatePaths();
    });
}

// Keeping paths current.

bool GroupsController::_updatePaths() {
    if (_view.isEditingName()) return false;
    bool changed = false;
    // Runs before every edit and on every activation: paths that are already canonical are passed quickly.
    _canonicalPaths.beginPass();
    for (int group = 0; group < groupCount(); ++group) {
        std::optional<Array> members = applicationsOf(group);
        for (std::size_t i = 0; i < members->size(); ++i) {
            const Value& value = (*members)[i];
            if (_canonicalPaths.isRecordCurrent(value)) continue;
            std::optional<Dictionary> member = plist::asDictionary(value);
            if (!member || !CheckPath(*member, _workspace)) continue;
            changed = true;
            QModelIndex row = index(static_cast<int>(i), 0, index(group, 0));
            emit dataChanged(row, row);
        }
    }
    if (!changed) return false;
    _removeDuplicates();
    if (_keepAppsArranged) _sortGroups();
    synchronizeGroups(true);
    return true;
}

void GroupsController::_removeDuplicates() {
    for (int group = 0; group < groupCount(); ++group) {
        Array members = *applicationsOf(group);
        std::set<std::string> seen, duplicated;
        std::vector<int> later;
        for (std::size_t i = 0; i < members.size(); ++i) {
            std::string path = pathOf(members[i]);
            if (!seen.insert(path).second) {
                later.push_back(static_cast<int>(i));
                duplicated.insert(path);
            }
        }
        for (auto it = later.rbegin(); it != later.rend(); ++it) removeMember(group, members, *it);
        for (const Value& value : members) {
            std::optional<Dictionary> member = plist::asDictionary(value);
            if (!member || !duplicated.count(pathOf(*member))) continue;
            if (std::optional<plist::Data> alias = AliasData(pathOf(*member), _workspace))
                member->set(keys::AliasData, *alias);
            else
                member->remove(keys::AliasData);
        }
    }
}

// The controller's own changes.

void GroupsController::onGroupsChanged(const Notification& notification) {
    if (!notification.userInfo) return;
    const Array* incoming = (*notification.userInfo)[changes::ChangeGroups][keys::Groups].array();
    if (!incoming) return;
    // A name being typed is dropped, not stored: the controller's groups replace it.
    _abortingEdit = true;
    _view.endEditing();
    _abortingEdit = false;
    SavedSelection saved = saveSelection();
    // Built aside and swapped in at once: what the loader cannot read is dropped, never half-applied.
    Array groups;
    for (const Value& group : *incoming)
        if (group.dictionary()) groups.append(group.deepCopy());
    beginResetModel();
    _prefs.setArray(groups, keys::Groups);
    _prefs.reloadGroups();
    _selection.clear();
    _splitGroups();
    _computeArrangement();
    endResetModel();
    restoreSelection(saved);
    _synchronizeOpenPanel();
    _local.post(Notification{notifications::ExcludedApplicationsChanged, "", std::nullopt});
}

}  // namespace corvalis
