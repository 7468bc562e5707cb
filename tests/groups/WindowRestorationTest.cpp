#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QUrl>
#include <filesystem>

#include "groups/WindowRestorationController.h"
#include "plist/PlistIO.h"
#include "support/FakeRunningApplications.h"
#include "support/FakeWorkspace.h"
#include "support/IntegrationSupport.h"
#include "support/PrefsFixture.h"
#include "support/RecordingEditorView.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;
namespace fs = std::filesystem;

namespace {

struct RecordingRestorationView : test::RecordingListView<WindowRestorationView> {
    void selectionChanged() override {}
};

std::vector<std::string> filesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

class WindowRestoration : public test::PrefsTest {
protected:
    test::TempDir dir;
    fs::path preferences = dir / "Preferences";
    fs::path containers = dir / "containers";
    test::FakeWorkspace workspace;
    test::FakeRunningApplications running;
    KVWindowRestorationManager manager{workspace, running, {preferences, containers}};
    RecordingRestorationView view;
    WindowRestorationController controller{prefs, manager, running, view};

    void SetUp() override {
        fs::create_directories(preferences);
        fs::create_directories(containers);
        load(Dictionary{});
    }
    // An installed application named `name`, with identifier `identifier`.
    std::string install(const std::string& name, const std::string& identifier) {
        std::string path = test::makeBundle(dir / "Applications", name, identifier).string();
        workspace.addApplication(path, identifier);
        return path;
    }
    void writeDomain(const fs::path& file, const Dictionary& domain) {
        fs::create_directories(file.parent_path());
        test::writeFile(file, toXml(domain));
    }
    fs::path containerFile(const std::string& identifier) {
        return containers / identifier / "config" / "corvalis" / "Preferences" / (identifier + ".plist");
    }
    Dictionary read(const fs::path& file) {
        ParseResult parsed = parse(test::readFile(file));
        EXPECT_TRUE(parsed.ok()) << file;
        return asDictionary(parsed.value).value_or(Dictionary());
    }
    std::vector<std::string> listed() {
        std::vector<std::string> result;
        for (int row = 0; row < controller.applicationsCount(); ++row)
            result.push_back(*controller.bundleIdentifierOfApplicationAtSortedIndex(row));
        return result;
    }
};

}  // namespace

TEST_F(WindowRestoration, TheScanListsInstalledApplicationsWhoseDomainHoldsTheKeyAndLeavesBadFilesAlone) {
    install("Zebra", "org.zebra");
    install("Alpha", "org.alpha");
    install("Settings", "com.apple.systempreferences");
    install("Boxed", "org.boxed");
    install("Linked", "org.linked");
    for (const char* id : {"org.corrupt", "org.empty", "org.array", "org.text", "org.none"}) install(id, id);
    writeDomain(preferences / "org.zebra.plist", Dictionary{{kWindowPersistenceKey, true}, {"Other", Value::int32(4)}});
    writeDomain(preferences / "org.alpha.plist", Dictionary{{kWindowPersistenceKey, Value::int32(0)}});
    writeDomain(preferences / "com.apple.systempreferences.plist", Dictionary{{kWindowPersistenceKey, true}});
    writeDomain(preferences / "org.uninstalled.plist", Dictionary{{kWindowPersistenceKey, true}});
    test::writeFile(preferences / "org.corrupt.plist", "<?xml version=\"1.0\"?><plist><dict><key>NSQuit");
    test::writeFile(preferences / "org.empty.plist", "");
    test::writeFile(preferences / "org.array.plist", toXml(Array{Dictionary{{kWindowPersistenceKey, true}}}));
    writeDomain(preferences / "org.text.plist", Dictionary{{kWindowPersistenceKey, "yes"}});
    writeDomain(preferences / "org.none.plist", Dictionary{{"Other", true}});
    // Sandboxed: the container's file counts, not the folder's.
    writeDomain(preferences / "org.boxed.plist", Dictionary{{"Other", true}});
    writeDomain(containerFile("org.boxed"), Dictionary{{kWindowPersistenceKey, false}});
    // A container whose file is a link is not sandboxed: the folder's file counts.
    writeDomain(preferences / "org.linked.plist", Dictionary{{kWindowPersistenceKey, true}});
    fs::create_directories(containerFile("org.linked").parent_path());
    fs::create_symlink(preferences / "org.linked.plist", containerFile("org.linked"));
    std::string corruptBefore = test::readFile(preferences / "org.corrupt.plist");
    std::vector<std::string> filesBefore = filesIn(preferences);

    controller.willShowPane();
    EXPECT_EQ(listed(), (std::vector<std::string>{"org.alpha", "org.boxed", "org.linked", "org.zebra"}));
    EXPECT_TRUE(controller.isSandboxedApplicationAtSortedIndex(1));
    EXPECT_FALSE(controller.isSandboxedApplicationAtSortedIndex(2));
    EXPECT_EQ(manager.applications().size(), 5u);  // the system settings are found, and never shown
    EXPECT_EQ(view.selection, std::vector<int>{0});
    EXPECT_EQ(test::readFile(preferences / "org.corrupt.plist"), corruptBefore);
    EXPECT_EQ(filesIn(preferences), filesBefore);
    EXPECT_FALSE(controller.nameOfApplicationAtSortedIndex(4));
    EXPECT_FALSE(controller.isRunningApplicationAtSortedIndex(-1));
}

TEST_F(WindowRestoration, AWriteChangesOneKeyKeepsLinksAndNeverReplacesAFileItCannotParse) {
    Dictionary others{{"Window Frame", "0 0 640 480"}, {"Count", Value::int64(-7)}, {"Data", Data{1, 2, 3}},
                      {"Nested", Dictionary{{"List", Array{Value(true), Value::real64(2.5)}}}}};
    writeDomain(preferences / "org.plain.plist", others);
    fs::create_directories(dir / "elsewhere");
    writeDomain(dir / "elsewhere" / "org.linked.plist", others);
    fs::create_symlink(dir / "elsewhere" / "org.linked.plist", preferences / "org.linked.plist");
    test::writeFile(preferences / "org.broken.plist", "bplist00 not really");
    writeDomain(containerFile("org.boxed"), others);

    ASSERT_TRUE(manager.setWindowPersistencyPolicy(1, "org.plain", false));
    ASSERT_TRUE(manager.setWindowPersistencyPolicy(0, "org.linked", false));
    ASSERT_TRUE(manager.setWindowPersistencyPolicy(1, "org.boxed", true));
    ASSERT_TRUE(manager.setWindowPersistencyPolicy(1, "org.new", false));
    EXPECT_FALSE(manager.setWindowPersistencyPolicy(1, "org.broken", false));
    EXPECT_FALSE(manager.clearWindowPersistencyPolicy("org.broken", false));
    EXPECT_EQ(test::readFile(preferences / "org.broken.plist"), "bplist00 not really");

    auto expected = [&](std::optional<bool> keeps) {
        Dictionary domain = others.deepCopy();
        if (keeps) domain.set(kWindowPersistenceKey, *keeps);
        return Value(domain);
    };
    EXPECT_EQ(Value(read(preferences / "org.plain.plist")), expected(true));
    EXPECT_TRUE(fs::is_symlink(preferences / "org.linked.plist"));
    EXPECT_EQ(Value(read(dir / "elsewhere" / "org.linked.plist")), expected(false));
    EXPECT_EQ(Value(read(containerFile("org.boxed"))), expected(true));
    EXPECT_EQ(Value(read(preferences / "org.new.plist")), Value(Dictionary{{kWindowPersistenceKey, true}}));

    ASSERT_TRUE(manager.clearWindowPersistencyPolicy("org.plain", false));
    EXPECT_EQ(Value(read(preferences / "org.plain.plist")), expected(std::nullopt));
    // Nothing left beside the files: no temporary copies, no locks.
    EXPECT_EQ(filesIn(preferences), (std::vector<std::string>{"org.broken.plist", "org.linked.plist", "org.new.plist",
                                                              "org.plain.plist"}));
    EXPECT_EQ(filesIn(containerFile("org.boxed").parent_path()), std::vector<std::string>{"org.boxed.plist"});
    // Another program reads what was written.
    for (const fs::path& file : {preferences / "org.plain.plist", dir / "elsewhere" / "org.linked.plist",
                                 containerFile("org.boxed"), preferences / "org.new.plist"}) {
        test::CommandRun run = test::runCommand("plistutil -i " + test::shellQuoted(file.string()) + " -f xml");
        EXPECT_EQ(run.status, 0) << file << run.output;
        EXPECT_NE(run.output.find("<plist"), std::string::npos) << file;
    }
}

TEST_F(WindowRestoration, AddingWritesFalseAtOnceChangingWritesThePolicyAndRemovingDeletesTheKey) {
    std::string beta = install("Beta", "org.beta");
    std::string alpha = install("Alpha", "org.alpha");
    writeDomain(preferences / "org.beta.plist", Dictionary{{kWindowPersistenceKey, true}, {"Keep", true}});
    controller.initializePane(true);
    controller.willShowPane();
    QAbstractItemModelTester tester(&controller, QAbstractItemModelTester::FailureReportingMode::Fatal);

    view.pickedFiles.push_back({alpha});
    controller.onAddApplication();
    EXPECT_EQ(listed(), (std::vector<std::string>{"org.alpha", "org.beta"}));
    EXPECT_EQ(view.selection, std::vector<int>{0});
    EXPECT_EQ(Value(read(preferences / "org.alpha.plist")), Value(Dictionary{{kWindowPersistenceKey, false}}));
    controller.addApplicationAtPath(beta);  // listed already: selected
    EXPECT_EQ(view.selection, std::vector<int>{1});

    ASSERT_TRUE(controller.setData(controller.index(0, WindowRestorationController::PolicyColumn), 1, Qt::EditRole));
    EXPECT_EQ(read(preferences / "org.alpha.plist")[kWindowPersistenceKey].boolean(), true);

    view.selection = {0, 1};
    view.answers.push_back(1);
    controller.onRemoveApplication();
    EXPECT_EQ(view.alerts.back().message, LocalizedString("WantToRemoveApplications1"));
    EXPECT_EQ(view.alerts.back().informativeText, LocalizedString("CantUndo"));
    EXPECT_EQ(controller.applicationsCount(), 2);
    view.selection = {1};
    controller.onRemoveApplication();
    EXPECT_EQ(view.alerts.back().message, LocalizedFormat("WantToRemoveApplication", {std::string("Beta")}));
    EXPECT_EQ(listed(), std::vector<std::string>{"org.alpha"});
    EXPECT_EQ(view.selection, std::vector<int>{0});
    EXPECT_EQ(Value(read(preferences / "org.beta.plist")), Value(Dictionary{{"Keep", true}}));
    controller.willHidePane();
    EXPECT_EQ(running.observerCount(), 0u);
}

TEST_F(WindowRestoration, RunningApplicationsAreLockedAndAMixedRemovalRemovesOnlyTheClosedOnes) {
    std::string open = install("Open", "org.open");
    install("Closed", "org.closed");
    for (const char* id : {"org.open", "org.closed"})
        writeDomain(preferences / (std::string(id) + ".plist"), Dictionary{{kWindowPersistenceKey, true}});
    running.launch({42, open, "org.open", false});
    controller.willShowPane();
    EXPECT_EQ(running.observerCount(), 1u);
    ASSERT_EQ(listed(), (std::vector<std::string>{"org.closed", "org.open"}));
    QModelIndex locked = controller.index(1, WindowRestorationController::PolicyColumn);
    EXPECT_FALSE(controller.flags(locked) & (Qt::ItemIsEditable | Qt::ItemIsEnabled));
    controller.setData(locked, 0, Qt::EditRole);
    EXPECT_EQ(read(preferences / "org.open.plist")[kWindowPersistenceKey].boolean(), true);

    view.selection = {1};
    controller.onRemoveApplication();  // only a running one: nothing asked
    EXPECT_TRUE(view.alerts.empty());
    view.selection = {0, 1};
    controller.onRemoveApplication();
    EXPECT_EQ(view.alerts.back().message, LocalizedString("WantToRemoveApplications2"));
    EXPECT_EQ(listed(), std::vector<std::string>{"org.open"});
    EXPECT_EQ(view.selection, std::vector<int>{0});  // the running one stays selected

    running.terminate(open);  // observed while shown: the list follows
    EXPECT_FALSE(controller.isRunningApplicationAtSortedIndex(0));
}

TEST_F(WindowRestoration, DropsTakeExactlyOneApplicationThatIsNotRunning) {
    std::string one = install("One", "org.one"), two = install("Two", "org.two"), busy = install("Busy", "org.busy");
    running.launch({7, busy, "org.busy", false});
    controller.willShowPane();
    auto drop = [](std::initializer_list<std::string> paths) {
        auto data = std::make_unique<QMimeData>();
        QList<QUrl> urls;
        for (const std::string& path : paths) urls << QUrl::fromLocalFile(QString::fromStdString(path));
        data->setUrls(urls);
        return data;
    };
    EXPECT_FALSE(controller.canDropMimeData(drop({one, two}).get(), Qt::CopyAction, 0, 0, {}));
    EXPECT_FALSE(controller.canDropMimeData(drop({busy}).get(), Qt::CopyAction, 0, 0, {}));
    controller.setSheetShown(true);
    EXPECT_FALSE(controller.canDropMimeData(drop({one}).get(), Qt::CopyAction, 0, 0, {}));
    controller.setSheetShown(false);
    controller.dropMimeData(drop({one}).get(), Qt::CopyAction, 0, 0, {});
    EXPECT_EQ(listed(), std::vector<std::string>{"org.one"});
    EXPECT_TRUE(controller.canDropMimeData(drop({one}).get(), Qt::CopyAction, 0, 0, {}));

    EXPECT_TRUE(controller.selectString("zz"));
    EXPECT_EQ(view.selection, std::vector<int>{0});
}

TEST_F(WindowRestoration, AnApplicationThatVanishesWhileListedStaysCountedUntilRemoved) {
    std::string gone = install("Gone", "org.gone");
    std::string kept = install("Kept", "org.kept");
    for (const char* id : {"org.gone", "org.kept"})
        writeDomain(preferences / (std::string(id) + ".plist"), Dictionary{{kWindowPersistenceKey, true}, {"Other", true}});
    auto uninstall = [&](const std::string& path) {
        fs::remove_all(path);
        std::erase(workspace.applications, path);
        workspace.identifiers.erase(path);
    };
    controller.willShowPane();
    QAbstractItemModelTester tester(&controller, QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::string report;
    controller.updatePane(report);
    EXPECT_EQ(report, "");

    uninstall(gone);
    uninstall(kept);
    controller.windowDidBecomeMain();
    controller.windowDidBecomeMain();  // kept across every rescan, at the old path
    ASSERT_EQ(listed(), (std::vector<std::string>{"org.gone", "org.kept"}));
    EXPECT_EQ(controller.pathOfApplicationAtSortedIndex(0), gone);
    EXPECT_EQ(view.selection, std::vector<int>{0});
    controller.updatePane(report);
    EXPECT_EQ(report, LocalizedFormat("WindowRestorationSummary", {LocalizedFormat("MoreInvalidPaths", {2LL})}) + "\n");

    // Removing deletes the key as for any application; another program removing it drops the row too.
    view.selection = {0};
    controller.onRemoveApplication();
    EXPECT_EQ(Value(read(preferences / "org.gone.plist")), Value(Dictionary{{"Other", true}}));
    writeDomain(preferences / "org.kept.plist", Dictionary{{"Other", true}});
    controller.windowDidBecomeMain();
    EXPECT_TRUE(listed().empty());
}

TEST_F(WindowRestoration, AddingAMovedApplicationTakesOverItsKeptRowAndPolicy) {
    std::string old = install("Mover", "org.mover");
    writeDomain(preferences / "org.mover.plist", Dictionary{{kWindowPersistenceKey, true}});
    controller.willShowPane();
    std::string moved = (dir / "Elsewhere" / "Mover.app").string();
    fs::create_directories(dir / "Elsewhere");
    fs::rename(old, moved);
    workspace.identifiers.erase(old);
    workspace.applications.clear();
    controller.windowDidBecomeMain();
    ASSERT_EQ(controller.pathOfApplicationAtSortedIndex(0), old);

    workspace.identifiers[moved] = "org.mover";
    controller.addApplicationAtPath(moved);
    EXPECT_EQ(listed(), std::vector<std::string>{"org.mover"});
    EXPECT_EQ(controller.pathOfApplicationAtSortedIndex(0), moved);
    EXPECT_EQ(read(preferences / "org.mover.plist")[kWindowPersistenceKey].boolean(), true);
    std::string report;
    controller.updatePane(report);
    EXPECT_EQ(report, "");
}
