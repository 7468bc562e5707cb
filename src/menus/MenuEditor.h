#pragma once
// What the Menus tab asks of each editor on its Configure Menus sheet, beside
// the pane's life cycle: told when the sheet opens and closes.

#include <functional>
#include <vector>

#include "pane/EditorView.h"
#include "pane/PaneController.h"

namespace corvalis {

class ApplicationsBrowserLink;

// The applications browser as it is now: null until the pane has one.
using BrowserLinkSource = std::function<ApplicationsBrowserLink*()>;

class MenuEditor : public PaneController {
public:
    virtual void willBeginSheet() {}
    virtual void didBeginSheet() {}
    virtual void didEndSheet() {}
    // The window became active; `shownOnSheet` when the open sheet shows this editor.
    virtual void sheetWindowDidBecomeMain(bool shownOnSheet) { (void)shownOnSheet; }
};

// The list of a menu editor as its logic sees it: an editor's view that also
// says which rows the user selected.
class MenuEditorView : public virtual EditorView {
public:
    virtual std::vector<int> selectedRows() const = 0;
};

}  // namespace corvalis
