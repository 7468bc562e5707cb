#include "fileutils/browser/ui/InstallApplicationsBrowser.h"

#include <QPointer>

#include "fileutils/browser/ui/ApplicationsBrowserWindow.h"
#include "pane/PaneController.h"
#include "pane/ui/CorvalisPane.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"

namespace corvalis {

namespace {

// Registered among the tab controllers only so that the pane destroys it with them.
constexpr const char* kBrowserOwner = "ApplicationsBrowser";

class ApplicationsBrowserOwner : public PaneController {
public:
    explicit ApplicationsBrowserOwner(ComKestrovaCorvalis_PrefsPane& pane)
        : dockDomains_(FileDomainStore::defaultFolder()),
          window_(new ApplicationsBrowserWindow(pane.prefs(), pane.localNotifications(), pane.runningApplications(),
                                                dockDomains_, pane.window())) {}
    ~ApplicationsBrowserOwner() override { delete window_.data(); }

    void initializePane(bool) override {}
    ApplicationsBrowserWindow* window() const { return window_; }

private:
    // Other applications' domains, read for the Dock's applications.
    FileDomainStore dockDomains_;
    QPointer<ApplicationsBrowserWindow> window_;
};

}  // namespace

void installApplicationsBrowser(ComKestrovaCorvalis_PrefsPane& pane) {
    auto owner = std::make_unique<ApplicationsBrowserOwner>(pane);
    QPointer<ApplicationsBrowserWindow> browser = owner->window();
    pane.setApplicationsBrowser(browser);
    pane.addTabController(kBrowserOwner, std::move(owner));
    auto screenshot = [browser](int tag) {
        return [browser, tag] {
            if (!browser) return false;
            browser->showApplicationsBrowser();
            browser->controller().onShowWhat(tag, false);
            return true;
        };
    };
    pane.addScreenshotView("window-browser-applications", screenshot(browser::ApplicationsFolderTag));
    pane.addScreenshotView("window-browser-running", screenshot(browser::RunningApplicationsTag));
}

}  // namespace corvalis
