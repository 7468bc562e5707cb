#pragma once
// The Resume tab: per application, whether the system reopens its windows.
// WindowRestorationController decides what is written; this is its view. The tab
// owns the process's one KVWindowRestorationManager.

#include <QObject>
#include <QPointer>
#include <memory>

#include "groups/WindowRestorationController.h"
#include "groups/ui/CustomApplicationsLists.h"
#include "pane/PaneController.h"

class QAction;
class QMenu;

namespace corvalis {

class ComKestrovaCorvalis_PrefsPane;
class KVServicesBar;
class KVTableView;

class WindowRestorationTab : public QObject, public PaneController, public WindowRestorationView, public ApplicationListView {
    Q_OBJECT

public:
    WindowRestorationTab(CorvalisPreferences& prefs, const Workspace& workspace, RunningApplications& running,
                         WindowRestorationFolders folders, QWidget* page, QWidget* window, QObject* parent = nullptr);
    ~WindowRestorationTab() override;
    static std::unique_ptr<WindowRestorationTab> create(ComKestrovaCorvalis_PrefsPane& pane);

    void initializePane(bool firstTime) override { controller_->initializePane(firstTime); }
    void updatePane(std::string& report) override { controller_->updatePane(report); }
    void willShowPane() override { controller_->willShowPane(); }
    void willHidePane() override { controller_->willHidePane(); }
    void windowDidBecomeMain() override { controller_->windowDidBecomeMain(); }

    std::vector<int> selectedRows() const override { return selectedRowNumbers(); }
    void selectionChanged() override;

    WindowRestorationController& controller() { return *controller_; }
    KVWindowRestorationManager& manager() { return *manager_; }
    KVTableView* table() const { return table_; }
    KVServicesBar* servicesBar() const { return bar_; }
    void setBrowseApplications(std::function<void()> browse) { browse_ = std::move(browse); }

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    std::unique_ptr<KVWindowRestorationManager> manager_;
    std::unique_ptr<WindowRestorationController> controller_;
    QPointer<QWidget> content_;
    QPointer<KVTableView> table_;
    KVServicesBar* bar_ = nullptr;
    QAction* infoAction_ = nullptr;
    std::function<void()> browse_;
};

}  // namespace corvalis
