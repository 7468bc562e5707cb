#include <gtest/gtest.h>

#include <memory>

#include "pane/PaneControllers.h"

using namespace corvalis;

namespace {

// Writes "<tab> <call>" into one log shared by every tab, so the order across tabs shows.
class FakeTab : public PaneController {
public:
    FakeTab(std::string name, std::vector<std::string>& log) : name_(std::move(name)), log_(log) {}
    void initializePane(bool firstTime) override { log_.push_back(name_ + (firstTime ? " init" : " reinit")); }
    void willShowPane() override { log_.push_back(name_ + " show"); }
    void willHidePane() override { log_.push_back(name_ + " hide"); }
    void windowDidBecomeMain() override { log_.push_back(name_ + " main"); }
    void updatePane(std::string& report) override { report += name_ + ";"; }

private:
    std::string name_;
    std::vector<std::string>& log_;
};

class Registry : public ::testing::Test {
protected:
    void SetUp() override {
        // Registered in tab order, which is not the order they are driven in.
        for (const std::string& tab : PaneControllers::tabOrder()) {
            fakes.push_back(std::make_unique<FakeTab>(tab, log));
            registry.add(tab, *fakes.back());
        }
    }
    std::vector<std::string> log;
    std::vector<std::unique_ptr<FakeTab>> fakes;
    PaneControllers registry;
};

}  // namespace

TEST_F(Registry, EveryTabIsSetUpAndReportsInItsFixedOrder) {
    registry.initializePanes(true);
    EXPECT_EQ(log, (std::vector<std::string>{"Options init", "Groups init", "Applications init", "Menus init",
                                             "Shortcuts init", "Resume init"}));
    log.clear();
    registry.initializePanes(false);
    EXPECT_EQ(log.front(), "Options reinit");
    EXPECT_EQ(log.size(), 6u);

    std::string report;
    registry.updatePanes(report);
    EXPECT_EQ(report, "Groups;Applications;Menus;Shortcuts;Resume;");

    // A tab unknown to the orders still takes part, last; a second controller replaces the first.
    FakeTab extra("Extra", log), menus("Menus2", log);
    registry.add("Extra", extra);
    registry.add(tabs::Menus, menus);
    log.clear();
    registry.initializePanes(true);
    EXPECT_EQ(log[3], "Menus2 init");
    EXPECT_EQ(log.back(), "Extra init");
}

TEST_F(Registry, SelectionAndActivationReachOnlyTheTabsConcerned) {
    registry.selectionWillChange("", "Menus");
    registry.selectionWillChange("Menus", "Shortcuts");
    registry.selectionWillChange("Shortcuts", "Shortcuts");
    registry.windowDidBecomeMain("Shortcuts");
    registry.remove("Groups");
    registry.selectionWillChange("Shortcuts", "Groups");  // a tab without controller
    registry.windowDidBecomeMain("Groups");
    EXPECT_EQ(log, (std::vector<std::string>{"Menus show", "Menus hide", "Shortcuts show", "Shortcuts main",
                                             "Shortcuts hide"}));
}
