#pragma once
// The Applications tab: the list of applications with their own launch options,
// its services bar, and the page of option boxes for the selected one.
// CustomApplicationsController decides what is stored and told; this is its view.

#include <QObject>
#include <QPointer>
#include <memory>

#include "groups/CustomApplicationsController.h"
#include "groups/ui/CustomApplicationsLists.h"
#include "pane/PaneController.h"

class QAction;
class QCheckBox;
class QLabel;
class QMenu;
class QRadioButton;
class QStackedWidget;
class QWidget;

namespace corvalis {

class ComKestrovaCorvalis_PrefsPane;
class KVServicesBar;
class KVTableView;

class CustomApplicationsTab : public QObject,
                              public PaneController,
                              public CustomApplicationsView,
                              public ApplicationListView {
    Q_OBJECT

public:
    CustomApplicationsTab(CorvalisPreferences& prefs, NotificationCenter& distributed, QWidget* page, QWidget* window,
                          ApplicationArchitectures architectures = ApplicationArchitectures::system(),
                          QObject* parent = nullptr);
    ~CustomApplicationsTab() override;
    static std::unique_ptr<CustomApplicationsTab> create(ComKestrovaCorvalis_PrefsPane& pane);

    void initializePane(bool firstTime) override { controller_->initializePane(firstTime); }
    void willShowPane() override { controller_->willShowPane(); }
    void windowDidBecomeMain() override { controller_->windowDidBecomeMain(); }
    void updatePane(std::string& report) override { controller_->updatePane(report); }

    std::vector<int> selectedRows() const override { return selectedRowNumbers(); }
    void showOptions(OptionsViewState state) override;
    // Puts the Tab key order in the order the controls are drawn: the list, its bar,
    // then the option boxes top to bottom. Boxes that come and go with the selected
    // application keep their place, so Tab skips them while hidden.
    void fixKeyboardLoop() override;

    CustomApplicationsController& controller() { return *controller_; }
    KVTableView* table() const { return table_; }
    QStackedWidget* optionsViewer() const { return optionsViewer_; }
    KVServicesBar* servicesBar() const { return bar_; }
    // The boxes, by the names of the record's options.
    QCheckBox* box(const char* option) const;
    QLabel* openLabel() const { return open_; }

    void setBrowseApplications(std::function<void()> browse) { browse_ = std::move(browse); }

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showLaunchOptions(const LaunchOptions& options);
    LaunchOptions optionsFromBoxes() const;
    void optionClicked(OptionBox changed);
    void updateActionMenu();

    std::unique_ptr<CustomApplicationsController> controller_;
    QPointer<QWidget> content_;
    QPointer<KVTableView> table_;
    KVServicesBar* bar_ = nullptr;
    QMenu* actions_ = nullptr;
    QAction* changeAction_ = nullptr;
    QAction* infoAction_ = nullptr;
    QStackedWidget* optionsViewer_ = nullptr;
    QWidget* optionsPage_ = nullptr;
    QCheckBox* dontActivate_ = nullptr;
    QCheckBox* hide_ = nullptr;
    QRadioButton* hideMe_ = nullptr;
    QRadioButton* hideOthers_ = nullptr;
    QCheckBox* dontHideOnHideOthers_ = nullptr;
    QCheckBox* dontHideInSingleAppMode_ = nullptr;
    QCheckBox* dontAddToRecentItems_ = nullptr;
    QCheckBox* dontAddToRecentApps_ = nullptr;
    QLabel* open_ = nullptr;
    QCheckBox* openIn32BitMode_ = nullptr;
    QCheckBox* openInRosetta_ = nullptr;
    std::function<void()> browse_;
    bool showing_ = false;
};

}  // namespace corvalis
