#include "fileutils/browser/ui/InstallApplicationsBrowser.h"

#include <QPointer>

#include "fileutils/browser/ui/ApplicationsBrowserWindow.h"
#include "pane/ui/CorvalisPane.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"

namespace corvalis {

void installApplicationsBrowser(ComKestrovaCorvalis_PrefsPane& pane) {
    // The Dock's applications are read from its domain through the pane's own store.
    QPointer<ApplicationsBrowserWindow> browser = new ApplicationsBrowserWindow(
        pane.prefs(), pane.localNotifications(), pane.runningApplications(), pane.domainStore(), pane.window());
    pane.setApplicationsBrowser(browser, browser);
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
