#pragma once
// What the tabs and editors ask of the applications browser, the floating window
// beside the pane from which applications are dragged into lists. The pane owns
// the browser; tabs hold this link, which may be null until the browser exists.

#include <string>

namespace corvalis {

class ApplicationsBrowserLink {
public:
    virtual ~ApplicationsBrowserLink() = default;

    virtual void showApplicationsBrowser() = 0;
    virtual void closeBrowser() = 0;
    // Reloads the shown source when the window is visible (after an import).
    virtual void updateBrowser() = 0;
    // The hint beside the list says where rows can be dropped, by the tab or editor shown.
    virtual void synchronizeDragApplicationsInfoWithPane(const std::string& identifier) = 0;
    // The Open menu editor tells of each row it re-pointed (a folder that moved) or
    // removed (a duplicate, or a separator left next to one), so that the sources
    // listing the Open menu's folders follow; `updateSelection` keeps the shown one.
    virtual void synchronizeOpenMenuItem(int index, bool isFolder, bool removeDuplicate, bool updateSelection) = 0;
};

}  // namespace corvalis
