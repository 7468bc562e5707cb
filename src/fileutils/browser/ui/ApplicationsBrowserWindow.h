#pragma once
// The applications browser's floating window beside the pane's window: source
// and depth pop-ups, the list (dragged out as files), the progress indicator,
// the bad-source image, the action menu and the hint. Thin: every rule is the
// controller's.

#include <QAbstractItemView>
#include <QDialog>

#include <memory>

#include "controls/QtEditorView.h"
#include "fileutils/browser/ApplicationsBrowserController.h"
#include "pane/ApplicationsBrowserLink.h"

class QAction;
class QComboBox;
class QLabel;
class QProgressBar;

namespace corvalis {

class BrowserIconModel;
class KVTableView;

class ApplicationsBrowserWindow : public QDialog,
                                  public QtEditorView,
                                  public ApplicationsBrowserView,
                                  public ApplicationsBrowserLink {
    Q_OBJECT

public:
    ApplicationsBrowserWindow(CorvalisPreferences& prefs, NotificationCenter& local, RunningApplications& running,
                              DomainStore& domains, QWidget* paneWindow,
                              BrowserEnvironment environment = BrowserEnvironment::system());
    ~ApplicationsBrowserWindow() override;

    ApplicationsBrowserController& controller() { return *controller_; }
    KVTableView* table() const { return table_; }
    BrowserIconModel* icons() const { return icons_; }

    // ApplicationsBrowserLink.
    void showApplicationsBrowser() override;
    void closeBrowser() override;
    void updateBrowser() override;
    void synchronizeDragApplicationsInfoWithPane(const std::string& identifier) override;
    void synchronizeOpenMenuItem(int index, bool isFolder, bool removeDuplicate, bool updateSelection) override;

    // ApplicationsBrowserView.
    void showSources(const std::vector<BrowserSource>& sources, int selectedTag) override;
    void showDepth(std::optional<int> depth) override;
    void showProgress(bool running) override;
    void showSourceIcon(SourceIcon icon) override;
    void showHint(const std::string& text) override;
    void showInfoMode(bool info) override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void placeBesidePane();
    void initializeOnce();
    void revealSelected();

    QWidget* paneWindow_;
    std::unique_ptr<ApplicationsBrowserController> controller_;
    BrowserIconModel* icons_ = nullptr;
    QComboBox* sources_ = nullptr;
    QLabel* depthLabel_ = nullptr;
    QComboBox* depth_ = nullptr;
    QLabel* sourceIcon_ = nullptr;
    KVTableView* table_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QLabel* hint_ = nullptr;
    QAction* infoAction_ = nullptr;
    bool initialized_ = false;
    bool placed_ = false;
};

}  // namespace corvalis
