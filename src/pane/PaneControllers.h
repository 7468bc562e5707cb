#pragma once
// The pane's tab controllers by tab identifier, and the one place that fixes in
// which order they are set up and asked for the report after an import. A tab
// takes part in the whole life cycle by registering its controller here.

#include <map>
#include <string>
#include <vector>

#include "pane/PaneController.h"

namespace corvalis {

namespace tabs {
inline constexpr const char* Menus = "Menus";
inline constexpr const char* Groups = "Groups";
inline constexpr const char* Applications = "Applications";
inline constexpr const char* Shortcuts = "Shortcuts";
inline constexpr const char* Options = "Options";
inline constexpr const char* Resume = "Resume";
}  // namespace tabs

class PaneControllers {
public:
    // The tabs as they appear.
    static const std::vector<std::string>& tabOrder();
    // Set up at start and again after an import: the options first, since the
    // others read what it normalises; the Resume tab last.
    static const std::vector<std::string>& initializeOrder();
    // The tabs whose settings an import can leave pointing at what this computer lacks.
    static const std::vector<std::string>& reportOrder();

    // Not owned; a second controller for the same tab replaces the first.
    void add(const std::string& tab, PaneController& controller);
    void remove(const std::string& tab);
    PaneController* forTab(const std::string& tab) const;
    bool empty() const { return controllers_.empty(); }

    void initializePanes(bool firstTime);
    void updatePanes(std::string& report);
    // The selection moves from `leaving` to `showing`; either may be a tab without controller or "".
    void selectionWillChange(const std::string& leaving, const std::string& showing);
    void windowDidBecomeMain(const std::string& selected);

private:
    std::vector<PaneController*> inOrder(const std::vector<std::string>& order) const;

    std::map<std::string, PaneController*> controllers_;
};

}  // namespace corvalis
