#pragma once
// The Groups tab: the outline of groups and their applications with its bar of
// add, remove and action buttons, and the options box of the selected group.
// GroupsController and GroupOptions decide; this is their view.

#include <QObject>
#include <QPointer>
#include <memory>

#include "controls/QtEditorView.h"
#include "groups/GroupsController.h"
#include "controls/KVTableView.h"
#include "groups/ui/GroupOptionsBox.h"
#include "pane/PaneController.h"

class QAction;
class QMenu;

namespace corvalis {

class ComKestrovaCorvalis_PrefsPane;
class GroupIcons;
class GroupOptions;
class GroupOptionsBox;
class KVOutlineView;
class KVServicesBar;

class GroupsTab : public QObject, public PaneController, public GroupsView, public QtEditorView {
    Q_OBJECT

public:
    // Fills the pane's Groups page and adds the tab's views to --screenshot.
    explicit GroupsTab(ComKestrovaCorvalis_PrefsPane& pane, QObject* parent = nullptr);
    ~GroupsTab() override;

    void initializePane(bool firstTime) override;
    void willShowPane() override;
    void willHidePane() override;
    void windowDidBecomeMain() override;
    void updatePane(std::string& report) override;

    GroupsController& controller() { return *controller_; }
    GroupOptions& options() { return *options_; }
    KVOutlineView* outline() const { return outline_; }
    KVServicesBar* servicesBar() const { return bar_; }
    GroupOptionsBox* optionsBox() const { return optionsBox_; }
    QMenu* addMenu() const { return addMenu_; }
    QMenu* actionMenu() const { return actionMenu_; }

    // GroupsView.
    bool isExpanded(int group) const override;
    void collapseAll() override;
    bool isEditingName() const override;
    // Sheets are counted so that the outline takes no drop while one is open.
    void ask(const EditorAlert& alert, std::function<void(int button)> answer) override;
    void pickFiles(const EditorOpenPanel& panel, std::function<void(std::vector<std::string> paths)> picked) override;

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void buildMenus();
    void updateMenus();
    void selectionDidChange();
    void addScreenshotViews(ComKestrovaCorvalis_PrefsPane& pane);

    ComKestrovaCorvalis_PrefsPane& pane_;
    std::unique_ptr<GroupIcons> icons_;
    std::unique_ptr<GroupsController> controller_;
    std::unique_ptr<GroupOptions> options_;
    QPointer<QWidget> content_;
    QPointer<KVOutlineView> outline_;
    KVServicesBar* bar_ = nullptr;
    QPointer<GroupOptionsBox> optionsBox_;
    QMenu* addMenu_ = nullptr;
    QMenu* actionMenu_ = nullptr;
    QAction* duplicate_ = nullptr;
    QAction* addApplication_ = nullptr;
    QAction* addRunning_ = nullptr;
    QAction* addBackground_ = nullptr;
    QAction* browse_ = nullptr;
    QAction* change_ = nullptr;
    QAction* showInfo_ = nullptr;
    std::vector<std::pair<int, QAction*>> arrangement_;
    bool fixingSelection_ = false;
    int sheets_ = 0;
};

}  // namespace corvalis
