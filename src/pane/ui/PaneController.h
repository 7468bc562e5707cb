#pragma once
// What the pane asks of each tab's controller as tabs are shown and hidden.

#include <QString>

namespace corvalis {

class PaneController {
public:
    virtual ~PaneController() = default;

    virtual void initializePane(bool firstTime) = 0;
    virtual void willShowPane() {}
    virtual void willHidePane() {}
    virtual void windowDidBecomeMain() {}
    // Appends lines for the report shown after an import.
    virtual void updatePane(QString& report) { (void)report; }
};

}  // namespace corvalis
