#pragma once
// The applications a menu leaves alone (the Quit menu's excluded group, the Switch
// menu's own list) as a list model kept in name order: added from a panel or
// dropped from a file manager or the applications browser, removed, changed or
// fixed, followed when they move, shown with their paths in info mode. Where the
// records live and how a change is kept differ by menu: the three hooks below.

#include <optional>
#include <string>
#include <vector>

#include "fileutils/CanonicalPathCache.h"
#include "groups/ApplicationRecordsModel.h"
#include "groups/GroupsController.h"
#include "menus/MenuEditor.h"
#include "plist/Value.h"

namespace corvalis {

class CorvalisPreferences;

// A record for the application at `path`: its display name, path and alias data;
// none for a path or name the controller could not read back.
std::optional<plist::Dictionary> excludedApplicationRecord(const std::string& path);

class ExcludedApplicationsList : public ApplicationRecordsModel, public ApplicationRowsObserver {
    Q_OBJECT

public:

    ExcludedApplicationsList(CorvalisPreferences& prefs, const char* showInfoKey, QObject* parent = nullptr);

    void setView(MenuEditorView* view) { _view = view; }
    // The records to show (a shared handle, edited in place); replaces the whole list.
    void setApplications(plist::Array applications);
    const plist::Array& applications() const { return _applications; }
    void loadShowInfo();

    QVariant data(const QModelIndex& index, int role) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

    bool showInfo() const { return _showInfo; }
    // Applications whose file is gone or in the Trash.
    int invalidCount() const;

    // The list's buttons and Actions entries.
    void onAddApplication();
    void onRemoveApplication();
    void onChangeApplication();
    void onShowInfo();
    // A double click on `row`: it alone is selected, then changed or fixed.
    void onDoubleClick(int row);
    // The change entry: "ChangeApplication1", or "FixPath1" for a selected application that is gone.
    std::string changeApplicationTitle();
    bool canChangeApplication() const { return selection().size() == 1; }
    // Type to select: the first application whose name does not sort before the text, else the last.
    bool selectString(const std::string& typed);

    // Follows applications that moved; duplicates that leaves are dropped, the list sorted again and saved.
    void _updatePaths();
    // While the change panel is open its words follow the selected application's state.
    void _synchronizeOpenPanel();
    // Before the records are replaced from outside: each follows its file, and the selection is noted.
    std::vector<std::string> checkPathsAndNoteSelection();
    void selectPaths(const std::vector<std::string>& paths);
    void selectRow(int row);

protected:
    // Adds the application at `path` (at `index`, or where its name goes) and answers its row;
    // `move` moves one already listed. -1 when it cannot be stored.
    virtual int addApplication(const std::string& path, int index, bool move, bool* alreadyListed) = 0;
    virtual void removeApplication(int row) = 0;
    // Keeps the list and tells the controller; `applicationsChanged` rides along where the menu says it.
    virtual void saveApplications(bool applicationsChanged) = 0;
    // Whether adding only applications that were listed already is saved all the same.
    virtual bool savesUnchangedAdditions() const { return false; }

    // Rows inserted or removed by the groups editor in the list it shares with this one.
    void applicationWillBeInserted(int row) override { beginInsertRows({}, row, row); }
    void applicationWasInserted() override { endInsertRows(); }
    void applicationWillBeRemoved(int row) override { beginRemoveRows({}, row, row); }
    void applicationWasRemoved() override { endRemoveRows(); }

    CorvalisPreferences& _prefs;

private:
    std::vector<int> selection() const;
    std::vector<std::string> selectedPaths() const;
    std::vector<std::string> droppedApplications(const QMimeData* data) const;
    void addPaths(const std::vector<std::string>& paths, bool fromDrop);
    void changeApplication(const std::string& oldPath, const std::string& chosen);
    // Puts the records in name order, keeping the views' selection and open rows.
    void sortByName();

    MenuEditorView* _view = nullptr;
    const char* showInfoKey_;
    bool _showInfo = false;
    bool _addingApplication = false;
    bool _changing = false;
    CanonicalPathCache _canonicalPaths;
};

}  // namespace corvalis
