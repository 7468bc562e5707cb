#pragma once
// What the applications browser's logic asks of its window, beyond an editor's
// view: the source and depth pop-ups, the progress indicator, the image that
// flags a bad source folder, the hint beside the list and the info mode.

#include <optional>
#include <string>
#include <vector>

#include "fileutils/browser/BrowserSources.h"
#include "pane/EditorView.h"

namespace corvalis {

// An item of the source pop-up; a tag of -1 is the separator before the Open menu's folders.
struct BrowserSource {
    int tag = 0;
    std::string title;
    bool operator==(const BrowserSource&) const = default;
};

class ApplicationsBrowserView : public virtual EditorView {
public:
    virtual void showSources(const std::vector<BrowserSource>& sources, int selectedTag) = 0;
    // The depth pop-up set to `depth` levels (0: every level); none hides it.
    virtual void showDepth(std::optional<int> depth) = 0;
    virtual void showProgress(bool running) = 0;
    virtual void showSourceIcon(SourceIcon icon) = 0;
    virtual void showHint(const std::string& text) = 0;
    // The action menu's info item and the tool tips follow the mode.
    virtual void showInfoMode(bool info) = 0;
};

}  // namespace corvalis
