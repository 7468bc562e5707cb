#pragma once
// The Resume tab without its widgets: the applications whose windows the system
// may reopen, sorted by name and never the system settings themselves, as a table
// model (name, policy) with adding, changing and removing, running applications
// locked, drops of one application, and the selection kept by bundle identifier.

#include <QAbstractTableModel>
#include <optional>
#include <string>
#include <vector>

#include "groups/CustomApplicationsOptions.h"
#include "groups/KVWindowRestorationManager.h"
#include "pane/EditorView.h"

namespace corvalis {

class CorvalisPreferences;

// What the controller asks of the table beyond an editor's view.
class WindowRestorationView : public virtual EditorView {
public:
    virtual std::vector<int> selectedRows() const = 0;
    virtual void selectionChanged() = 0;  // the remove button follows the selection
};

// The manager's list as shown: without "com.apple.systempreferences", in name order.
std::vector<int> arrangedApplications(const std::vector<ApplicationDescription>& applications);

class WindowRestorationController : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { ApplicationColumn, PolicyColumn, ColumnCount };
    enum Role { PathRole = Qt::UserRole + 1, RunningRole };

    WindowRestorationController(CorvalisPreferences& prefs, KVWindowRestorationManager& manager,
                                RunningApplications& running, WindowRestorationView& view);
    ~WindowRestorationController() override;

    void initializePane(bool firstTime);
    // Counts the listed applications that can no longer be found, as the other tabs do.
    void updatePane(std::string& report);
    void willShowPane();
    void willHidePane();
    void windowDidBecomeMain() { _synchronizeList(); }
    void _synchronizeList();

    void onAddApplication();
    // Adds the application (policy: windows not kept) unless listed already; selects it either way.
    void addApplicationAtPath(const std::string& path);
    void onRemoveApplication();
    void onShowInfo();
    bool showInfo() const { return _showInfo; }
    bool selectString(const std::string& typed);
    void setSheetShown(bool shown) { _sheetShown = shown; }

    // The array controller's questions, by arranged row.
    int applicationsCount() const { return static_cast<int>(_arranged.size()); }
    std::optional<std::string> nameOfApplicationAtSortedIndex(int row) const;
    std::optional<std::string> pathOfApplicationAtSortedIndex(int row) const;
    std::optional<std::string> bundleIdentifierOfApplicationAtSortedIndex(int row) const;
    bool isRunningApplicationAtSortedIndex(int row) const;
    bool isSandboxedApplicationAtSortedIndex(int row) const;
    std::optional<int> sortedIndexOfApplicationAtURL(const std::string& path) const;
    bool selectionContainsAtLeastOneOpenApplication() const;
    bool selectionContainsAtLeastOneClosedApplication() const;
    std::vector<std::string> copyIdentifiersOfSelectedObjects() const;
    void setSelectedObjectsWithIdentifiers(const std::vector<std::string>& identifiers);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : ColumnCount; }
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QStringList mimeTypes() const override { return {"text/uri-list"}; }
    Qt::DropActions supportedDropActions() const override { return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction; }
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

private:
    ApplicationDescription& at(int row) { return _manager.applications()[static_cast<std::size_t>(_arranged[static_cast<std::size_t>(row)])]; }
    const ApplicationDescription* find(int row) const;
    void setPolicy(int row, int policy);
    void removeConfirmed();
    void selectAndScroll(const std::vector<int>& rows);
    void tellNotChangeable(const ApplicationDescription& application);
    std::optional<std::string> droppedApplication(const QMimeData* data) const;

    CorvalisPreferences& _prefs;
    KVWindowRestorationManager& _manager;
    RunningApplications& _running;
    WindowRestorationView& _view;
    std::vector<int> _arranged;  // indexes into the manager's list, in display order
    bool _showInfo = false;
    bool _initSelection = true;
    bool _sheetShown = false;
    std::optional<RunningApplications::Token> _observer;
};

}  // namespace corvalis
