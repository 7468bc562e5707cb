// Running applications found in a /proc-shaped folder: bundles by executable,
// desktop entries by the launcher's environment, one entry per application,
// and launches and quits reported by the poll.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <filesystem>
#include <fstream>

#include "platform/linux/LinuxRunningApplications.h"
#include "support/FakeWorkspace.h"
#include "support/IntegrationSupport.h"

namespace corvalis {
namespace {

namespace fs = std::filesystem;

class RunningApplicationsTest : public ::testing::Test {
protected:
    void SetUp() override {
        root = fs::temp_directory_path() / ("corvalis-proc-" + std::to_string(::getpid()));
        fs::remove_all(root);
        fs::create_directories(root / "proc");
        fs::create_directories(root / "Foo.app/Contents/MacOS");
        fs::create_directories(root / "Quiet.app/Contents/MacOS");
        std::ofstream(root / "gedit.desktop") << "[Desktop Entry]\nType=Application\nName=Gedit\n";
        workspace.addApplication((root / "Foo.app").string(), "org.example.foo");
        workspace.infoDictionaries[(root / "Quiet.app").string()] = plist::Dictionary();
        workspace.infoDictionaries[(root / "Quiet.app").string()].set("LSUIElement", true);
    }
    void TearDown() override { fs::remove_all(root); }

    void addProcess(int pid, const fs::path& executable, const std::string& environment = {}) {
        fs::path folder = root / "proc" / std::to_string(pid);
        fs::create_directories(folder);
        fs::create_symlink(executable, folder / "exe");
        std::ofstream(folder / "environ", std::ios::binary) << environment;
    }

    fs::path root;
    test::FakeWorkspace workspace;
};

TEST_F(RunningApplicationsTest, FindsBundlesAndLaunchedDesktopEntriesOncePerApplication) {
    addProcess(40, root / "Foo.app/Contents/MacOS/Foo");
    addProcess(41, root / "Foo.app/Contents/MacOS/Helper.app/Contents/MacOS/Helper");
    addProcess(50, "/usr/bin/gedit", std::string("HOME=/x\0GIO_LAUNCHED_DESKTOP_FILE=", 34) + (root / "gedit.desktop").string());
    addProcess(60, "/usr/bin/bash", std::string("BAMF_DESKTOP_FILE_HINT=/nowhere.desktop"));
    addProcess(70, root / "Quiet.app/Contents/MacOS/Quiet");
    fs::create_directories(root / "proc/self");

    LinuxRunningApplications running(workspace, (root / "proc").string());
    auto all = running.runningApplications();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].pid, 40);
    EXPECT_EQ(all[0].path, (root / "Foo.app").string());
    EXPECT_EQ(all[0].bundleIdentifier, "org.example.foo");
    EXPECT_EQ(all[1].path, (root / "gedit.desktop").string());
    EXPECT_TRUE(all[2].backgroundOnly);
    EXPECT_EQ(running.launchedApplications().size(), 2u);
}

TEST_F(RunningApplicationsTest, PollReportsLaunchesAndQuitsToObserversOnly) {
    test::application();
    addProcess(40, root / "Foo.app/Contents/MacOS/Foo");
    LinuxRunningApplications running(workspace, (root / "proc").string(), 10);
    std::vector<std::string> events;
    auto token = running.addObserver([&](const RunningApplication& a) { events.push_back("+" + fs::path(a.path).filename().string()); },
                                     [&](const RunningApplication& a) { events.push_back("-" + fs::path(a.path).filename().string()); });
    addProcess(70, root / "Quiet.app/Contents/MacOS/Quiet");
    fs::remove_all(root / "proc/40");
    ASSERT_TRUE(test::waitUntil([&] { return events.size() >= 2; }, 5000));
    EXPECT_EQ(events, (std::vector<std::string>{"+Quiet.app", "-Foo.app"}));

    running.removeObserver(token);
    addProcess(40, root / "Foo.app/Contents/MacOS/Foo");
    QCoreApplication::processEvents();
    EXPECT_EQ(events.size(), 2u);
}

}  // namespace
}  // namespace corvalis
