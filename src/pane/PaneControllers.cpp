#include "pane/PaneControllers.h"

#include <algorithm>

namespace corvalis {

const std::vector<std::string>& PaneControllers::tabOrder() {
    static const std::vector<std::string> order = {tabs::Menus,     tabs::Groups,  tabs::Applications,
                                                   tabs::Shortcuts, tabs::Options, tabs::Resume};
    return order;
}

const std::vector<std::string>& PaneControllers::initializeOrder() {
    static const std::vector<std::string> order = {tabs::Options, tabs::Groups,    tabs::Applications,
                                                   tabs::Menus,   tabs::Shortcuts, tabs::Resume};
    return order;
}

const std::vector<std::string>& PaneControllers::reportOrder() {
    static const std::vector<std::string> order = {tabs::Groups, tabs::Applications, tabs::Menus, tabs::Shortcuts,
                                                   tabs::Resume};
    return order;
}

void PaneControllers::add(const std::string& tab, PaneController& controller) { controllers_[tab] = &controller; }

void PaneControllers::remove(const std::string& tab) { controllers_.erase(tab); }

PaneController* PaneControllers::forTab(const std::string& tab) const {
    auto found = controllers_.find(tab);
    return found == controllers_.end() ? nullptr : found->second;
}

std::vector<PaneController*> PaneControllers::inOrder(const std::vector<std::string>& order) const {
    std::vector<PaneController*> ordered;
    for (const std::string& tab : order)
        if (PaneController* controller = forTab(tab)) ordered.push_back(controller);
    return ordered;
}

void PaneControllers::initializePanes(bool firstTime) {
    std::vector<PaneController*> ordered = inOrder(initializeOrder());
    // A tab outside the known ones still takes part, after them.
    for (const auto& [tab, controller] : controllers_)
        if (std::find(ordered.begin(), ordered.end(), controller) == ordered.end()) ordered.push_back(controller);
    for (PaneController* controller : ordered) controller->initializePane(firstTime);
}

void PaneControllers::updatePanes(std::string& report) {
    for (PaneController* controller : inOrder(reportOrder())) controller->updatePane(report);
}

void PaneControllers::selectionWillChange(const std::string& leaving, const std::string& showing) {
    if (leaving == showing) return;
    if (PaneController* controller = forTab(leaving)) controller->willHidePane();
    if (PaneController* controller = forTab(showing)) controller->willShowPane();
}

void PaneControllers::windowDidBecomeMain(const std::string& selected) {
    if (PaneController* controller = forTab(selected)) controller->windowDidBecomeMain();
}

}  // namespace corvalis
