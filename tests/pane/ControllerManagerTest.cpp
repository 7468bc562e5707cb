#include "pane/ControllerManager.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <chrono>
#include <set>

#include "pane/ControllerLocation.h"
#include "platform/FileDomainStore.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/XdgAutostartLoginItems.h"
#include "schema/PreferenceKeys.h"
#include "support/IntegrationSupport.h"

using namespace corvalis;
using namespace corvalis::test;
using plist::Dictionary, plist::Value;
namespace fs = std::filesystem;

namespace {

class SwitchAndBeep : public ControllerView {
public:
    bool on = false;
    int beeps = 0;
    bool isSwitchOn() const override { return on; }
    void setSwitchOn(bool value) override { on = value; }
    void beep() override { ++beeps; }
};

// Each test runs on a private session bus with its own settings, autostart
// folder and controller bundle, which starts the test controller.
class ControllerManagerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { application(); }

    void SetUp() override {
        ::setenv("CORVALIS_PREFERENCES_DIR", (tmp / "prefs").c_str(), 1);
        prefs.loadPreferences();
    }

    void TearDown() override { killRecordedControllers(record); }  // whatever a test left running ends with it

    ControllerManager::Options options(std::chrono::milliseconds quitTimeout = std::chrono::seconds(10)) {
        return {bundle.string(), {installedForUser.string(), installedForAll.string()}, quitTimeout};
    }

    bool running() {
        ProcessHandle process;  // with none it answers false at once
        return processes.IsControllerRunning(&process);
    }
    // The test controller records its starts, and nothing else.
    int startedCount() { return static_cast<int>(controllerRecord(record).size()); }
    Dictionary lastStartSettings() {
        plist::Array starts = controllerRecord(record);
        return plist::asDictionary((*starts[starts.size() - 1].dictionary())["Settings"]).value_or(Dictionary());
    }
    std::vector<fs::path> entries() {
        std::vector<fs::path> found;
        for (const auto& e : fs::directory_iterator(autostart, fs::directory_options::none, ignored)) found.push_back(e.path());
        return found;
    }
    Dictionary storedSettings() { return FileDomainStore(tmp / "prefs").persistentDomainForName("com.kestrova.Corvalis").value_or(Dictionary()); }
    // Turns the switch on and waits for the controller's start.
    void turnOn(ControllerManager& manager) {
        view.on = true;
        manager.onTurnOn();
        ASSERT_TRUE(waitUntil([&] { return running() && startedCount() == 1; }));
    }

    TempDir tmp;
    fs::path record = tmp / "record.plist";
    fs::path autostart = tmp / "config" / "autostart";
    fs::path installedForUser = tmp / "home" / ".local" / "share" / "corvalis" / "Corvalis.app";
    fs::path installedForAll = tmp / "usr" / "share" / "corvalis" / "Corvalis.app";
    fs::path bundle = recordingControllerBundle(tmp / "controllers", record);
    FileDomainStore domains{tmp / "prefs"};
    DBusNotificationCenter bus;
    CorvalisPreferences prefs{domains, bus};
    LinuxProcesses processes{bundle.string()};
    XdgAutostartLoginItems loginItems{autostart};
    SwitchAndBeep view;
    std::error_code ignored;
};

TEST_F(ControllerManagerTest, TurningOnOffAndOnAgainStartsQuitsAndKeepsOneLoginItem) {
    ControllerManager manager(prefs, processes, loginItems, view, options());
    view.on = true;
    TurnOnReport on = manager.onTurnOn();
    EXPECT_TRUE(on.loginItemAdded && on.saved && on.launch == LaunchOutcome::Launched);
    ASSERT_TRUE(waitUntil([&] { return running() && startedCount() == 1; }));
    // Saved before the launch: the controller found itself turned on.
    EXPECT_EQ(lastStartSettings()[keys::TurnOnCorvalis], Value(true));
    EXPECT_EQ(entries().size(), 1u);
    ProcessHandle first;
    ASSERT_TRUE(manager.isControllerRunning(&first));

    view.on = false;
    EXPECT_EQ(manager.onTurnOn().quit, QuitOutcome::Quit);
    EXPECT_FALSE(processes.IsControllerStillRunning(first));  // gone by the time onTurnOn returns
    EXPECT_TRUE(entries().empty());
    EXPECT_EQ(storedSettings()[keys::TurnOnCorvalis], Value(false));

    view.on = true;
    EXPECT_EQ(manager.onTurnOn().launch, LaunchOutcome::Launched);
    ASSERT_TRUE(waitUntil([&] { return running() && startedCount() == 2; }));
    // Turning on again while it runs starts no second controller.
    EXPECT_EQ(manager.onTurnOn().launch, LaunchOutcome::AlreadyRunning);
    EXPECT_EQ(entries().size(), 1u);
    EXPECT_EQ(view.beeps, 0);
}

TEST_F(ControllerManagerTest, AStartedControllerIsDetachedFromUs) {
    ControllerManager manager(prefs, processes, loginItems, view, options());
    ASSERT_EQ(manager._launchController(), LaunchOutcome::Launched);
    ASSERT_TRUE(waitUntil([&] { return running() && startedCount() > 0; }));
    ProcessHandle process;
    ASSERT_TRUE(manager.isControllerRunning(&process));
    EXPECT_NE(::getsid(process.pid), ::getsid(0));  // a session of its own
    std::string status = readFile("/proc/" + std::to_string(process.pid) + "/status");
    EXPECT_EQ(status.find("PPid:\t" + std::to_string(::getpid()) + "\n"), std::string::npos);  // not our child
    // Standard input and output go nowhere, and none of our open files reached it.
    std::set<fs::path> ours;
    for (const auto& fd : fs::directory_iterator("/proc/self/fd"))
        if (std::stoi(fd.path().filename().string()) > 2) ours.insert(fs::read_symlink(fd.path()));
    for (const auto& fd : fs::directory_iterator("/proc/" + std::to_string(process.pid) + "/fd")) {
        fs::path target = fs::read_symlink(fd.path());
        if (std::stoi(fd.path().filename().string()) <= 2) {
            EXPECT_EQ(target, "/dev/null");
        } else if (target.string().starts_with("socket:") || target.string().starts_with("pipe:")) {
            EXPECT_FALSE(ours.contains(target)) << target;
        }
    }
}

TEST_F(ControllerManagerTest, AControllerThatIgnoresTheRequestIsReportedThenEndedWhenAllowed) {
    bundle = recordingControllerBundle(tmp / "controllers", record, "--ignore-sigterm");
    ControllerManager manager(prefs, processes, loginItems, view, options(std::chrono::milliseconds(400)));
    turnOn(manager);

    view.on = false;
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(manager._quitController(), QuitOutcome::StillRunning);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_TRUE(running());
    EXPECT_EQ(manager.forceQuitController(), QuitOutcome::Killed);
    EXPECT_FALSE(running());
    EXPECT_EQ(manager.forceQuitController(), QuitOutcome::NotRunning);
}

TEST_F(ControllerManagerTest, ImportWhileRunningAndTurnedOnMarksTheImportAndRestartsTheController) {
    ControllerManager manager(prefs, processes, loginItems, view, options());
    turnOn(manager);
    ProcessHandle before;
    manager.isControllerRunning(&before);

    Dictionary settings{{keys::TurnOnCorvalis, true}, {keys::ShowStatusItem, false}};
    int reloads = 0;
    ImportReport report = manager.importFromBackup(settings, [&] {
        // By now the settings are the imported ones and the old controller is gone.
        ++reloads;
        EXPECT_FALSE(processes.IsControllerStillRunning(before));
        EXPECT_TRUE(prefs.simpleStringForKey(keys::ImportFromBackupDate).date());
        return prefs.saveToDefaults();
    });
    EXPECT_EQ(reloads, 1);
    EXPECT_TRUE(report.wasRunning && report.markedImportDate && report.restored && report.loginItemAdded);
    EXPECT_TRUE(report.quit == QuitOutcome::Quit && report.launch == LaunchOutcome::Launched);
    EXPECT_FALSE(settings.contains(keys::ImportFromBackupDate));  // the caller's dictionary is left alone

    ASSERT_TRUE(waitUntil([&] { return running() && startedCount() == 2; }));
    Dictionary seen = lastStartSettings();
    ASSERT_TRUE(seen[keys::ImportFromBackupDate].date());
    double age = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count() -
                 978307200.0 - seen[keys::ImportFromBackupDate].date()->seconds;
    EXPECT_LT(std::abs(age), 60.0);
    EXPECT_EQ(seen[keys::ShowStatusItem], Value(false));
    EXPECT_TRUE(view.on);
}

TEST_F(ControllerManagerTest, ImportTurningOffQuitsTheControllerAndImportWhileStoppedNeverMarks) {
    ControllerManager manager(prefs, processes, loginItems, view, options());
    turnOn(manager);
    ImportReport report = manager.importFromBackup(Dictionary{{keys::TurnOnCorvalis, false}});
    EXPECT_TRUE(report.wasRunning && !report.markedImportDate && report.launch == LaunchOutcome::NotNeeded);
    EXPECT_FALSE(running() || view.on);
    EXPECT_FALSE(storedSettings().contains(keys::ImportFromBackupDate));
    EXPECT_TRUE(entries().empty());

    // Imported while stopped, settings that turn it on are started unmarked.
    report = manager.importFromBackup(Dictionary{{keys::TurnOnCorvalis, true}});
    EXPECT_FALSE(report.wasRunning || report.markedImportDate);
    EXPECT_EQ(report.launch, LaunchOutcome::Launched);
    ASSERT_TRUE(waitUntil([&] { return running() && startedCount() == 2; }));
    EXPECT_FALSE(lastStartSettings().contains(keys::ImportFromBackupDate));
}

TEST_F(ControllerManagerTest, StaleItemsOfBothLocationsAndBrokenOnesNamedCorvalisAreRemoved) {
    ControllerManager manager(prefs, processes, loginItems, view, options());
    makeBundle(installedForUser.parent_path(), "Corvalis", kControllerBundleIdentifier);
    makeBundle(installedForAll.parent_path(), "Corvalis", kControllerBundleIdentifier);
    ASSERT_TRUE(loginItems.insertLast(installedForUser.string(), false));
    ASSERT_TRUE(loginItems.insertLast(installedForAll.string(), false));
    fs::path elsewhere = makeBundle(tmp / "elsewhere", "Corvalis", "com.example.NotTheController");
    ASSERT_TRUE(loginItems.insertLast(elsewhere.string(), false));
    fs::path keptEntry = loginItems.lastWrittenEntry();
    fs::path gone = makeBundle(tmp / "gone", "Corvalis", kControllerBundleIdentifier);
    ASSERT_TRUE(loginItems.insertLast(gone.string(), false));
    fs::remove_all(gone);
    const std::string other = "[Desktop Entry]\nType=Application\nName=Other\nExec=/no/such/other\n";
    writeFile(autostart / "other.desktop", other);
    // An entry the session does not start is no login item at all, and is left alone.
    const std::string turnedOff = "[Desktop Entry]\nType=Application\nName=Corvalis\nExec=/no/such\nHidden=true\n";
    writeFile(autostart / "turned-off.desktop", turnedOff);
    ASSERT_EQ(loginItems.snapshot()->size(), 5u);

    manager._removeFromLoginItems();
    auto left = loginItems.snapshot();
    ASSERT_EQ(left->size(), 2u);
    EXPECT_EQ((*left)[0].path, elsewhere.string());
    EXPECT_EQ(autostart / (*left)[0].id, keptEntry);
    EXPECT_EQ(readFile(autostart / "other.desktop"), other);
    EXPECT_EQ(readFile(autostart / "turned-off.desktop"), turnedOff);
}

TEST_F(ControllerManagerTest, LoginItemsAreTheControllersByIdentifierNotByName) {
    ControllerManager manager(prefs, processes, loginItems, view, options());
    fs::path impostor = makeBundle(tmp / "a", "Corvalis", "com.example.Impostor");
    fs::path renamed = makeBundle(tmp / "b", "Renamed", kControllerBundleIdentifier);
    loginItems.insertLast(impostor.string(), false);
    EXPECT_EQ(manager._checkLoginItems(), -1);
    loginItems.insertLast(renamed.string(), false);
    EXPECT_EQ(manager._checkLoginItems(), 1);

    // A plain program is the controller only when it is the configured one.
    fs::path program = tmp / "plain-controller";
    writeFile(program, "#!/bin/sh\n");
    ::chmod(program.c_str(), 0755);
    XdgAutostartLoginItems otherFolder(tmp / "other-autostart");
    otherFolder.insertLast(program.string(), false);
    ControllerManager byOtherPath(prefs, processes, otherFolder, view, options());
    EXPECT_EQ(byOtherPath._checkLoginItems(), -1);
    ControllerManager::Options plain = options();
    plain.controllerPath = program.string();
    ControllerManager byProgram(prefs, processes, otherFolder, view, plain);
    EXPECT_EQ(byProgram._checkLoginItems(), 0);
}

TEST_F(ControllerManagerTest, SelectingThePaneReconcilesTheControllerWithTheSwitch) {
    ControllerManager manager(prefs, processes, loginItems, view, options());
    view.on = true;
    manager._turnCorvalisControllerOnOrOff();
    ASSERT_TRUE(waitUntil([&] { return running() && startedCount() > 0; }));
    ASSERT_EQ(entries().size(), 1u);
    manager._turnCorvalisControllerOnOrOff();  // an item exists: none is added
    EXPECT_EQ(entries().size(), 1u);
    EXPECT_EQ(startedCount(), 1);

    // Turned off with the controller's item present: it quits, the item stays.
    view.on = false;
    manager._turnCorvalisControllerOnOrOff();
    EXPECT_FALSE(running());
    EXPECT_EQ(entries().size(), 1u);

    // Turned off with no item of the controller: stale ones are cleared.
    fs::remove(entries()[0]);
    writeFile(autostart / "stale.desktop", "[Desktop Entry]\nType=Application\nName=Corvalis\nExec=/gone\n");
    manager._turnCorvalisControllerOnOrOff();
    EXPECT_TRUE(entries().empty());

    EXPECT_EQ(manager._turnCorvalisControllerOn(), LaunchOutcome::NotNeeded);
}

TEST_F(ControllerManagerTest, AControllerThatCannotBeStartedBeeps) {
    ControllerManager::Options missing = options();
    missing.controllerPath = (tmp / "nowhere" / "Corvalis.app").string();
    ControllerManager manager(prefs, processes, loginItems, view, missing);
    view.on = true;
    TurnOnReport report = manager.onTurnOn();
    EXPECT_TRUE(report.launch == LaunchOutcome::Failed && !report.loginItemAdded);
    EXPECT_EQ(view.beeps, 1);

    // A bundle whose program is not executable fails the same way.
    fs::path broken = makeBundle(tmp / "broken", "Corvalis", kControllerBundleIdentifier);
    ::chmod((broken / "Contents" / "MacOS" / "Launcher").c_str(), 0644);
    EXPECT_FALSE(processes.launchApplication(broken.string()));
}

TEST_F(ControllerManagerTest, AControllerWithoutItsBusNameIsFoundByItsExecutable) {
    // A copy of its own: tests running beside this one start the same program, and those are not ours to quit.
    fs::path program = tmp / "corvalis-test-controller";
    fs::copy_file(CORVALIS_TEST_CONTROLLER, program);
    LinuxProcesses byProgram(program.string());
    pid_t child = ::fork();
    if (child == 0) {
        ::execl(program.c_str(), program.c_str(), "--no-bus-name", "--record", record.c_str(), nullptr);
        ::_exit(127);
    }
    ASSERT_GT(child, 0);
    ASSERT_TRUE(waitUntil([&] { return startedCount() == 1; }));
    ProcessHandle found;
    ASSERT_TRUE(byProgram.IsControllerRunning(&found));
    EXPECT_EQ(found.pid, child);
    EXPECT_FALSE(processes.IsControllerRunning(&found));  // not the configured bundle, and no bus name
    ASSERT_TRUE(byProgram.IsControllerRunning(&found));
    EXPECT_EQ(byProgram.QuitController(found), 0);
    // Ended but not yet reaped, it already counts as gone.
    ASSERT_TRUE(waitUntil([&] { return !byProgram.IsControllerStillRunning(found); }));
    EXPECT_EQ(byProgram.QuitController(found), -1);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    // A later process that reuses the id is not the one we watched.
    EXPECT_FALSE(byProgram.IsControllerStillRunning({static_cast<int>(::getpid()), found.startTime + 1}));
}

}  // namespace
