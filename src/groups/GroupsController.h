#pragma once
// The Groups tab without its widgets: the user's groups and their applications
// as a two-level item model over the store's group records, every edit the tab
// makes (add, duplicate, rename, remove, arrange, drag and drop, path refresh),
// what it stores and what it tells the controller. The excluded-applications
// group lives in the same stored list but is kept out of the outline; the Quit
// menu editor reaches it through the operations below.

#include <QAbstractItemModel>
#include <QStringList>
#include <optional>
#include <string>
#include <vector>

#include "fileutils/CanonicalPathCache.h"
#include "pane/DropPlace.h"
#include "pane/EditorView.h"
#include "pane/PaneController.h"
#include "platform/NotificationCenter.h"
#include "platform/Workspace.h"
#include "plist/Value.h"

namespace corvalis {

class CorvalisPreferences;
class KVKeyCombinationValidator;
class RunningApplications;

// What the controller asks of the outline beyond every editor's view.
class GroupsView : public virtual EditorView {
public:
    virtual bool isExpanded(int group) const = 0;
    virtual void collapseAll() = 0;
    // A group name is being typed in the outline.
    virtual bool isEditingName() const = 0;
};

// Drag types of our own; they carry no data (the controller keeps the dragged rows).
inline constexpr const char* kGroupsMimeType = "application/x-kestrova-corvalis-groups";
inline constexpr const char* kApplicationsMimeType = "application/x-kestrova-corvalis-applications";
inline constexpr const char* kUriListMimeType = "text/uri-list";

// A list showing the excluded-applications group outside the outline (the Quit menu
// editor's) hears of each member row inserted or removed there, so that it can follow.
class ApplicationRowsObserver {
public:
    virtual ~ApplicationRowsObserver() = default;
    virtual void applicationWillBeInserted(int row) = 0;
    virtual void applicationWasInserted() = 0;
    virtual void applicationWillBeRemoved(int row) = 0;
    virtual void applicationWasRemoved() = 0;
};

// What the options box beside the outline shows.
enum class GroupOptionsState { NoGroups, NoGroupsSelected, Options, MultipleGroups };

// The arrangement menu's entries, as their tags.
enum ArrangeTag { ArrangeNone = -1, ArrangeBoth = 0, ArrangeGroupsOnly = 1, ArrangeApplicationsOnly = 2 };

class GroupsController : public QAbstractItemModel, public PaneController {
    Q_OBJECT

public:
    enum Role {
        PathRole = Qt::UserRole + 200,  // string: a member's "Path"
        IsGroupRole,                    // bool
        IconNameRole,                   // string: a group's "Icon"
        IconDataRole,                   // QByteArray: a group's "IconData"
    };

    GroupsController(CorvalisPreferences& prefs, KVKeyCombinationValidator& validator, NotificationCenter& distributed,
                     NotificationCenter& local, RunningApplications& running, GroupsView& view,
                     const Workspace& workspace = Workspace::shared(), QObject* parent = nullptr);
    ~GroupsController() override;

    // The pane's life cycle.
    void initializePane(bool firstTime) override;
    void willShowPane() override;
    void windowDidBecomeMain() override;
    void updatePane(std::string& report) override;

    // The item model: groups at the top, their members beneath.
    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    // Where a drop offered at (row, parent) lands, so the outline can show that place: groups
    // dropped on the empty area go last; members and files dropped on a group go first, and
    // when members are kept arranged they go onto the group wherever they were dropped.
    DropPlace dropTarget(const QMimeData* data, int row, const QModelIndex& parent) const;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction | Qt::CopyAction; }
    Qt::DropActions supportedDragActions() const override { return Qt::MoveAction | Qt::CopyAction; }

    EditorRow rowOf(const QModelIndex& index) const;
    // While a sheet is over the window no drop is taken.
    void setSheetShown(bool shown) { _sheetShown = shown; }
    QModelIndex indexOf(const EditorRow& row) const;

    // Selection, as the outline reports it.
    void setSelectedRows(std::vector<EditorRow> rows);
    const std::vector<EditorRow>& selectedRows() const { return _selection; }
    // A row may join the current selection only when it is of the same kind.
    bool canJoinSelection(const EditorRow& row) const;
    std::optional<int> selectedGroupIndex() const;
    // Type-to-select: among the groups, or the selected member's group's members, the first name
    // in name order not before `typed` (else the last) becomes the selection. False with no rows.
    bool selectString(const std::string& typed);
    std::optional<plist::Dictionary> selectedGroup() const;
    GroupOptionsState optionsState() const;

    // Actions (each waits for a name being typed to be finished first).
    void onAddGroup();
    void onDuplicateGroup();
    void onAddApplication();
    void onAddRunningApplications();
    void onAddBackgroundOnlyApplications();
    void onRemoveItem();
    void onSortItems(int tag);
    void onChangeApplication();
    // A double click on a row: it alone is selected, then it is changed or fixed.
    void onDoubleClick(const EditorRow& row);
    bool canAddRunningApplications();
    bool canAddBackgroundOnlyApplications();
    // Which arrangement entry is checked.
    bool isArrangementChecked(int tag) const;
    // The title key of the change entry: "ChangeApplicationOrScript1", or "FixPath1" for a path that is gone.
    std::string changeApplicationTitleKey() const;

    // The question asked before groups with members are deleted.
    static EditorAlert deleteGroupsAlert(const std::string& firstName, bool several);

    // The groups and their records (the store's own).
    int groupCount() const { return static_cast<int>(_groups.size()); }
    std::optional<plist::Dictionary> groupAt(int group) const;
    std::optional<plist::Array> applicationsOf(int group) const;
    bool keepGroupsArranged() const { return _keepGroupsArranged; }
    bool keepAppsArranged() const { return _keepAppsArranged; }

    // Path refresh of every member; true when a record changed.
    bool _updatePaths();
    // While the change panel is open its prompt follows the selected member's state.
    void _synchronizeOpenPanel();

    // The excluded-applications group, for the Quit menu editor: a copy to edit, and the
    // edited copy taken back (kept as it is: it is stored with the next mergedGroups).
    std::optional<plist::Dictionary> excludedApplications() const;
    void setExcludedApplications(const plist::Dictionary& group);
    // Told of the rows the next calls below insert or remove in a group outside the outline.
    void setExcludedRowsObserver(ApplicationRowsObserver* observer) { _excludedRowsObserver = observer; }
    // Adds `path` to `group` at `index` (arranged groups: at its name position) and answers its
    // member index; `move` moves a member already there. -1 for a path that cannot be stored.
    // The excluded-applications group (or a copy of it) is always kept in name order.
    int addApplication(const std::string& path, const plist::Dictionary& group, int index, bool move,
                       bool* groupAlreadyContainsApp);
    void removeApplication(int index, const plist::Dictionary& group);
    // The whole list to store: the user groups with the excluded group put back; also stored.
    plist::Array mergedGroups();

    // After an edit of the selected group's record (options box): redraw, tell the validator and the controller.
    void selectedGroupDidChange();
    // Posts "ChangeGroups"; `excludedApplications` adds "ChangeExcludedApplications".
    void synchronizeGroups(std::optional<bool> excludedApplications = std::nullopt);

    // "Custom 1", "Custom 2", ...: the first number no group's icon uses.
    std::string _newUniqueIconName() const;
    bool showInfo() const { return _showInfo; }
    // The menu entry "ShowInfoTags"/"HideInfoTags": tool tips on or off, remembered.
    void onShowInfo();

    // The controller's "GroupsChanged".
    void onGroupsChanged(const Notification& notification);

signals:
    // The selected group, the set of groups or a record changed: the options box shows it again.
    void optionsNeedRefresh();

private:
    struct SavedSelection {
        std::vector<std::string> groupNames;  // selected groups by name and index
        std::vector<int> groupRows;
        std::vector<std::pair<int, std::string>> members;  // group, path
        std::vector<int> expanded;
    };

    void deferred(void (GroupsController::*action)());
    void _addGroup();
    void _duplicateGroup();
    void _addApplication();
    void _addRunningApplications();
    void _addBackgroundOnlyApplications();
    void _removeItem();
    void _deleteGroups();
    void _removeApplications();
    void _addApplications(const std::vector<std::string>& paths, bool updateOpenPanelPath);
    void _addGroup(plist::Dictionary record);
    void _splitGroups();
    void _computeArrangement();
    void _validateKeyboardShortcuts();
    void _sortGroups();
    void _removeDuplicates();
    void _rename(int group, const std::string& text);
    std::vector<std::string> backgroundOnlyPaths();
    std::vector<std::string> launchedPaths();

    std::string _newUniqueGroupName(const std::string* base) const;
    bool _isGroupNameAvailable(const std::string& name, int skipGroup) const;
    std::optional<plist::Dictionary> newApplicationRecord(const std::string& path) const;
    int groupRowOf(const plist::Dictionary& group) const;
    std::vector<std::string> groupNames() const;
    std::vector<std::string> memberNames(const plist::Array& applications) const;
    // Reorders groups (and members) keeping the view's selection and expansion.
    void permuteGroups(const std::vector<int>& newToOld);
    void permuteMembers(int group, const std::vector<int>& newToOld);
    void insertMember(int group, plist::Array& applications, int at, const plist::Value& record);
    void removeMember(int group, plist::Array& applications, int at);
    SavedSelection saveSelection() const;
    void restoreSelection(const SavedSelection& saved);
    void selectAndScroll(const std::vector<EditorRow>& rows);
    // Expands the group and selects its members with these paths (after an add or a drop).
    void expandAndSelectMembers(int group, const std::vector<std::string>& paths);
    bool dropFiles(const QMimeData* data, int row, int group);
    bool dropApplications(bool copy, int row, int group);
    bool dropGroups(int row);

    CorvalisPreferences& _prefs;
    KVKeyCombinationValidator& _validator;
    NotificationCenter& _distributed;
    NotificationCenter& _local;
    RunningApplications& _running;
    GroupsView& _view;
    const Workspace& _workspace;
    NotificationCenter::Token _groupsChangedToken = 0;

    plist::Array _groups;
    std::optional<plist::Dictionary> _excludedApplications;
    std::vector<EditorRow> _selection;
    mutable std::vector<EditorRow> _draggedItems;
    bool _keepGroupsArranged = false;
    bool _keepAppsArranged = false;
    bool _showInfo = false;
    bool _abortingEdit = false;
    bool _sheetShown = false;
    bool _changingApplication = false;
    CanonicalPathCache _canonicalPaths;
    ApplicationRowsObserver* _excludedRowsObserver = nullptr;
};

}  // namespace corvalis
