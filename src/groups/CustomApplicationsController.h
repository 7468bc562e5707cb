#pragma once
// The Applications tab without its widgets: the store's own "CustomApplications"
// array as a list model kept in name order, with adding, changing, fixing and
// removing entries, their launch options, path repair, drops of applications
// and the controller's own changes.

#include <optional>
#include <string>
#include <vector>

#include "fileutils/CanonicalPathCache.h"
#include "groups/ApplicationRecordsModel.h"
#include "groups/CustomApplicationsOptions.h"
#include "pane/EditorView.h"
#include "platform/NotificationCenter.h"

namespace corvalis {

class CorvalisPreferences;
class Workspace;

// The page beside the list that shows the selected application's options.
enum class OptionsViewState { NoApplications, NoApplicationsSelected, Options, MultipleApplications };

// What the controller asks of the tab's widgets beyond an editor's view.
class CustomApplicationsView : public virtual EditorView {
public:
    virtual std::vector<int> selectedRows() const = 0;
    // Shows the page for `state`; with Options, the boxes from the single selected entry.
    virtual void showOptions(OptionsViewState state) = 0;
};

class CustomApplicationsController : public ApplicationRecordsModel {
    Q_OBJECT

public:

    CustomApplicationsController(CorvalisPreferences& prefs, NotificationCenter& distributed,
                                 CustomApplicationsView& view,
                                 ApplicationArchitectures architectures = ApplicationArchitectures::system());
    ~CustomApplicationsController() override;

    void initializePane(bool firstTime);
    void willShowPane() { _updatePaths(); }
    void windowDidBecomeMain();
    // Appends a line counting the entries whose application is missing.
    void updatePane(std::string& report);

    void onAddApplication();
    void onRemoveApplication();
    // The change panel for the single selected entry (or the clicked row, on a double click).
    void onChangeApplication(std::optional<int> clickedRow = std::nullopt);
    // The boxes as the user left them; `changed` is the one just clicked.
    void onEditOptions(LaunchOptions options, OptionBox changed);
    void onShowInfo();
    void selectionDidChange();
    // Type to select: the first entry whose name does not sort before the text, else the last.
    bool selectString(const std::string& typed);
    void onCustomAppsChanged(const Notification& notification);

    // For the widgets.
    bool showInfo() const { return _showInfo; }
    OptionsViewState optionsViewState() const;
    std::optional<LaunchOptions> selectedOptions() const;
    // "ChangeApplication1", or "FixPath1" when the one selected entry's path is invalid; none unless one is selected.
    std::optional<std::string> changeMenuTitle() const;
    bool canRemove() const { return !_view.selectedRows().empty(); }

    QVariant data(const QModelIndex& index, int role) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    // Drops are refused while a sheet is open.
    void setSheetShown(bool shown) { _sheetShown = shown; }

    // The row of the entry for `path`, added in name order unless listed already.
    int _addApplication(const std::string& path, bool* listAlreadyContainsApp);
    void _updatePaths();
    // While the change panel is open its prompt follows the selected entry's state.
    void _synchronizeOpenPanel();

private:
    std::vector<std::string> selectedPaths() const;
    void selectPaths(const std::vector<std::string>& paths);
    void selectAndScroll(const std::vector<int>& rows);
    void synchronize();
    void _removeApplications();
    void changeApplication(int row, const std::string& path);
    std::vector<std::string> droppedApplications(const QMimeData* data) const;

    CorvalisPreferences& _prefs;
    NotificationCenter& _distributed;
    CustomApplicationsView& _view;
    ApplicationArchitectures _architectures;
    CanonicalPathCache _canonicalPaths;
    bool _showInfo = false;
    bool _updateAllOptions = true;
    bool _sheetShown = false;
    bool _changing = false;
    std::optional<NotificationCenter::Token> _observer;
};

}  // namespace corvalis
