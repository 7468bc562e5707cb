#pragma once
// What the pane asks of each tab's controller over its life: set up at start and
// again after an import, shown and hidden, and told when the window becomes active.

#include <string>

namespace corvalis {

class PaneController {
public:
    virtual ~PaneController() = default;

    // True once at start; false after an import replaced the settings underneath.
    virtual void initializePane(bool firstTime) = 0;
    virtual void willShowPane() {}
    virtual void willHidePane() {}
    virtual void windowDidBecomeMain() {}
    // Once the tab is on screen: a tab whose controls move puts its Tab-key order right.
    virtual void fixKeyboardLoop() {}
    // After an import: appends a line for each thing the tab had to change.
    virtual void updatePane(std::string& report) { (void)report; }
};

}  // namespace corvalis
