// corvalis-prefs turn-on, turn-off and status, run as a user runs them, with
// the test controller behind $CORVALIS_CONTROLLER on this test's private bus.

#include <gtest/gtest.h>

#include "support/IntegrationSupport.h"

using namespace corvalis;
using namespace corvalis::test;
namespace fs = std::filesystem;

namespace {

using ToolRun = CommandRun;
class ControllerCommandsTest : public ::testing::Test {
protected:
    ToolRun prefs(const std::string& arguments, const std::string& controller = "") {
        return runCommand("CORVALIS_CONTROLLER=" + shellQuoted(controller.empty() ? bundle.string() : controller) +
                          " XDG_CONFIG_HOME=" + shellQuoted((tmp / "config").string()) + " " +
                          shellQuoted(CORVALIS_PREFS_TOOL) + " --domain-dir " + shellQuoted((tmp / "prefs").string()) +
                          " " + arguments);
    }
    bool contains(const ToolRun& run, const std::string& text) { return run.output.find(text) != std::string::npos; }
    void TearDown() override { killRecordedControllers(record); }

    TempDir tmp;
    fs::path record = tmp / "record.plist";
    fs::path bundle = recordingControllerBundle(tmp / "controllers", record);
};

// What turning on and off does is the controller manager's to test; here, that each command reaches it.
TEST_F(ControllerCommandsTest, TurnOnStatusAndTurnOffTellWhatHappened) {
    EXPECT_TRUE(contains(prefs("status"), "is not running")) << prefs("status").output;
    ToolRun on = prefs("turn-on");
    EXPECT_EQ(on.status, 0) << on.output;
    EXPECT_TRUE(contains(on, "was started")) << on.output;
    ToolRun running;
    ASSERT_TRUE(waitUntil([&] { return contains(running = prefs("status"), "is running (process "); })) << running.output;
    EXPECT_EQ(prefs("turn-off").status, 0);
    EXPECT_TRUE(contains(prefs("status"), "TurnOnCorvalis: false"));
    EXPECT_EQ(prefs("turn-on", (tmp / "missing" / "Corvalis.app").string()).status, 1);  // cannot be started
}

}  // namespace
