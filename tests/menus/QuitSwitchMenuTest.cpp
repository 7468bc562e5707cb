#include <gtest/gtest.h>

#include "fileutils/ExecutableArchitectures.h"
#include "groups/GroupsFixture.h"
#include "menus/ConfigureQuitMenuController.h"
#include "menus/ConfigureSwitchMenuController.h"
#include "menus/MenuTestSupport.h"
#include "support/IntegrationSupport.h"
#include "pane/ItemRoles.h"
#include "prefs/MenuItemKinds.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;
using Strings = std::vector<std::string>;

namespace {

// The Quit editor beside the groups editor it shares the excluded group with.
class QuitMenuTest : public test::GroupsTest {
protected:
    test::MenuView menuView, excludedView;
    std::unique_ptr<ConfigureQuitMenuController> quit;
    std::unique_ptr<QAbstractItemModelTester> listTester;

    // With `settled`, the records have their alias data already, as after a first refresh.
    void openQuit(std::vector<Dictionary> groupsList, std::vector<std::string> excluded = {}, bool settled = true) {
        Array array;
        for (auto& record : groupsList) array.append(record);
        Array applications;
        for (const std::string& path : excluded) applications.append(member(path));
        array.append(Dictionary{{keys::Name, "Excluded"}, {keys::CanBeDeleted, false}, {keys::Applications, applications}});
        open(Dictionary{{keys::Groups, array}});
        quit = std::make_unique<ConfigureQuitMenuController>(prefs, local, [this] { return groups.get(); }, nullptr);
        quit->setView(&menuView);
        list().setView(&excludedView);
        listTester = std::make_unique<QAbstractItemModelTester>(&list(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        quit->initializePane(true);
        if (settled) list()._updatePaths();
        bus.clearPosted();
    }
    ExcludedApplicationsList& list() { return quit->excludedApplications(); }
    Strings listed() {
        Strings names;
        for (int row = 0; row < list().rowCount(); ++row) names.push_back(list().nameAt(row));
        return names;
    }
    // The excluded group as the store now holds it, and its applications' names.
    Dictionary storedExcludedGroup() {
        for (const Value& group : *prefs.arrayForKey(keys::Groups))
            if (group[keys::CanBeDeleted].toBool() == false) return *group.dictionary();
        return Dictionary();
    }
    Strings storedExcluded() {
        Strings names;
        for (const Value& app : *storedExcludedGroup()[keys::Applications].array()) names.push_back(app[keys::Name].stringOr(""));
        return names;
    }
    // Each "ChangeGroups" payload's flag: "true", "false", or "-" when absent.
    Strings groupFlags() {
        Strings flags;
        for (const Dictionary& info : posts()) {
            const Value& flag = info[changes::ChangeGroups][changes::ChangeExcludedApplications];
            flags.push_back(flag.isAbsent() ? "-" : (flag.toBool().value_or(false) ? "true" : "false"));
        }
        return flags;
    }
};

}  // namespace

TEST_F(QuitMenuTest, MenuListOffersMissingKindsAndTellsOnlyTheController) {
    openQuit({});
    Strings present = kinds(prefs.prefsData()[keys::QuitMenuItems]);
    EXPECT_EQ(present, kinds(prefs.defaultQuitMenu()));
    EXPECT_EQ(quit->addMenuKinds(), (Strings{"QuitExcluded", "ExcludedApplications", "BackgroundOnlyApplications", "Separator"}));
    // From 10.7 on the background-only kind reads as the system calls them, in the pull-down and the row.
    EXPECT_EQ(quit->kindTitle(items::BackgroundOnlyApplications), LocalizedString("BackgroundProcesses"));
    menuView.selected = {0};
    quit->onAddItem(items::BackgroundOnlyApplications);
    EXPECT_EQ(quit->displayNameAt(1), LocalizedString("BackgroundProcesses"));
    menuView.selected = {1};
    quit->onRemoveItem();
    ASSERT_EQ(bus.posted().size(), 2u);
    for (const Notification& posted : bus.posted()) {
        const Value& menu = (*posted.userInfo)[changes::ChangeQuitMenuItems][keys::QuitMenuItems];
        EXPECT_TRUE(menu.array() && menu.array()->isSameObject(*prefs.prefsData()[keys::QuitMenuItems].array()));
    }
    EXPECT_TRUE(local.posted().empty());
    EXPECT_FALSE(quit->hasInfoMode());
}

TEST_F(QuitMenuTest, AddingGoesThroughTheGroupsAndSavesWithTheRightFlag) {
    std::string zed = app("Zed"), alpha = app("Alpha");
    test::writeFile(dir / "notes.txt", "x");
    openQuit({group("Work", {member(app("Other"))})}, {zed});
    // A new application among one listed already and a file that is no application.
    excludedView.pickedFiles = {{(dir / "notes.txt").string(), alpha, zed}, {alpha}};
    list().onAddApplication();
    EXPECT_EQ(listed(), (Strings{"Alpha", "Zed"}));
    EXPECT_EQ(excludedView.selected, (std::vector<int>{0, 1}));
    EXPECT_EQ(storedExcluded(), (Strings{"Alpha", "Zed"}));  // the copy went back before the post
    EXPECT_EQ(groups->groupCount(), 1);                        // never shown in the outline
    EXPECT_EQ(excludedView.panels[0].prompt, LocalizedString("Add"));
    // The same application again: one record, saved with the flag off.
    list().onAddApplication();
    EXPECT_EQ(listed(), (Strings{"Alpha", "Zed"}));
    EXPECT_EQ(groupFlags(), (Strings{"true", "false"}));
    EXPECT_EQ(postedKeys(), (Strings{changes::ChangeGroups, changes::ChangeGroups}));

    // The boxes change how the group opens: saved without the flag.
    quit->onAutoOpen(true);
    quit->onHide(true);
    EXPECT_EQ(groupFlags().back(), "-");
    Dictionary excluded = storedExcludedGroup();
    EXPECT_EQ(excluded[keys::AutoOpen].toBool(), true);
    EXPECT_EQ(excluded[keys::Hide].toBool(), true);
}

TEST_F(QuitMenuTest, RemovingSelectsTheFollowingApplicationElseTheNewLast) {
    struct Case { std::vector<int> selected; Strings left; std::vector<int> after; };
    const Case cases[] = {{{1}, {"A", "C", "D"}, {1}}, {{2, 3}, {"A", "B"}, {1}}, {{0, 1, 2, 3}, {}, {}}};
    for (const Case& c : cases) {
        openQuit({}, {app("A"), app("B"), app("C"), app("D")});
        excludedView.selected = c.selected;
        list().onRemoveApplication();
        EXPECT_EQ(listed(), c.left);
        EXPECT_EQ(excludedView.selected, c.after);
        EXPECT_EQ(storedExcluded(), c.left);
        EXPECT_EQ(groupFlags(), Strings{"true"});
    }
}

TEST_F(QuitMenuTest, ChangingToAnApplicationListedUnderAnotherSpellingLeavesOneRow) {
    std::string a = app("A"), dup = app("Dup"), upper = app("DUP"), c = app("C");
    openQuit({}, {a, dup, app("Z")});
    // Re-pointed at a new application: the row moves to its name's place.
    excludedView.selected = {0};
    excludedView.pickedFiles = {{c}};
    list().onChangeApplication();
    EXPECT_EQ(listed(), (Strings{"C", "Dup", "Z"}));
    EXPECT_EQ(excludedView.selected, std::vector<int>{0});
    // Re-pointed at the path another row has in other letter case: that row takes the new record.
    excludedView.pickedFiles = {{upper}};
    list().onChangeApplication();
    EXPECT_EQ(listed(), (Strings{"DUP", "Z"}));
    EXPECT_EQ(list().pathAt(0), upper);
    EXPECT_EQ(excludedView.selected, std::vector<int>{0});
    EXPECT_EQ(excludedView.panels.back().message, LocalizedString("ChangeApplication2"));
    EXPECT_EQ(storedExcluded(), (Strings{"DUP", "Z"}));
    EXPECT_EQ(groupFlags(), (Strings{"true", "true"}));
}

TEST_F(QuitMenuTest, DropsTakeApplicationsOnlyAndWaitForAnOpenPanel) {
    std::string one = app("One"), two = app("Two");
    test::writeFile(dir / "notes.txt", "x");
    openQuit({}, {one});
    std::unique_ptr<QMimeData> junk(files({(dir / "notes.txt").string()}));
    EXPECT_FALSE(list().canDropMimeData(junk.get(), Qt::CopyAction, -1, -1, {}));
    std::unique_ptr<QMimeData> both(files({(dir / "notes.txt").string(), two, one}));
    EXPECT_TRUE(list().canDropMimeData(both.get(), Qt::CopyAction, 0, 0, {}));
    excludedView.holdPanels = true;
    list().onAddApplication();
    EXPECT_FALSE(list().canDropMimeData(both.get(), Qt::CopyAction, 0, 0, {}));
    excludedView.closePanel();
    list().dropMimeData(both.get(), Qt::CopyAction, 0, 0, {});
    EXPECT_EQ(listed(), (Strings{"One", "Two"}));
    EXPECT_EQ(excludedView.selected, (std::vector<int>{0, 1}));
    // A drop counts as a change of the applications even when nothing was new.
    list().dropMimeData(both.get(), Qt::CopyAction, 0, 0, {});
    EXPECT_EQ(groupFlags(), (Strings{"true", "true"}));
}

TEST_F(QuitMenuTest, GroupsReplacedByTheControllerReachTheQuitList) {
    std::string one = app("One"), two = app("Two");
    openQuit({group("Work")}, {one});
    excludedView.selected = {0};
    Array incoming{group("Work"), Dictionary{{keys::Name, "Excluded"}, {keys::CanBeDeleted, false},
                                             {keys::Applications, Array{member(two), member(one)}}}};
    groups->onGroupsChanged(Notification{notifications::GroupsChanged, notifications::ControllerObject,
                                         Dictionary{{changes::ChangeGroups, Dictionary{{keys::Groups, incoming}}}}});
    EXPECT_EQ(listed(), (Strings{"One", "Two"}));
    EXPECT_EQ(excludedView.selected, std::vector<int>{0});  // still One, by its path
    // Edits after the change go to the new group.
    excludedView.selected = {1};
    list().onRemoveApplication();
    EXPECT_EQ(storedExcluded(), Strings{"One"});
}

TEST_F(QuitMenuTest, PathRefreshDropsDuplicatesKeepsMissingOnesAndCountsThem) {
    std::string one = app("One");
    std::filesystem::create_directories(dir / "sub");
    std::string viaDots = (dir / "sub" / ".." / "One.app").string();
    std::string gone = (dir / "Gone.app").string();
    openQuit({}, {one, viaDots, gone}, false);
    list()._updatePaths();
    EXPECT_EQ(list().rowCount(), 2);
    EXPECT_EQ(list().pathAt(0), gone);  // kept, and in name order
    EXPECT_EQ(groupFlags(), Strings{"true"});
    bus.clearPosted();
    list()._updatePaths();  // nothing moved since: nothing saved
    EXPECT_TRUE(bus.posted().empty());
    std::string report;
    quit->updatePane(report);
    EXPECT_EQ(report, LocalizedFormat("QuitMenuSummary", {LocalizedString("OneInvalidPath")}) + "\n");
}

// The Switch editor: its own array, its notes.

namespace {

class SwitchMenuTest : public test::OpenMenuTest {
protected:
    test::MenuView excludedView;
    bool assistiveAccess = false;
    std::unique_ptr<ConfigureSwitchMenuController> switcher;

    std::string app(const std::string& name) {
        if (!std::filesystem::exists(dir / (name + ".app"))) test::makeBundle(dir.path(), name, "com.test." + name);
        return (dir / (name + ".app")).string();
    }
    void openSwitch(Dictionary stored, const char* system = "10.13") {
        load(stored);
        switcher = std::make_unique<ConfigureSwitchMenuController>(
            prefs, local, bus, [this] { return assistiveAccess; }, nullptr,
            KVOperatingSystem::SystemVersion::probe(system));
        switcher->setView(&view);
        switcher->excludedApplications().setView(&excludedView);
        switcher->initializePane(true);
        bus.clearPosted();
    }
    // The notes and marks shown: caution note, single-application note, warning, then each row's extra image.
    Strings shown() {
        Strings result{switcher->showsApplicationWindowsCaution() ? "caution" : "-",
                       switcher->showsSingleApplicationModeInfo() ? "note" : "-",
                       switcher->showsUniversalAccessWarning() ? "warning" : "-"};
        for (int row = 0; row < switcher->rowCount(); ++row) {
            QString image = switcher->data(switcher->index(row), ExtraImageRole).toString();
            if (!image.isEmpty()) result.push_back(switcher->kindAt(row) + ":" + image.toStdString());
        }
        return result;
    }
};

}  // namespace

TEST_F(SwitchMenuTest, ExcludedListIsTheStoresOwnArraySentWhole) {
    std::string term = app("Term"), edit = app("Edit"), upper = app("TERM");
    std::string unreadable = app("Bad\xff");  // a name the controller could not read back
    openSwitch(Dictionary{});
    excludedView.pickedFiles = {{term, unreadable, edit}, {upper, term}};
    ExcludedApplicationsList& list = switcher->excludedApplications();
    list.onAddApplication();
    ASSERT_EQ(bus.posted().size(), 1u);
    const Value& sent = (*bus.posted()[0].userInfo)[changes::ChangeSwitchMenuExcludedApps][keys::SwitchMenuExcludedApplications];
    EXPECT_TRUE(sent.array() && sent.array()->isSameObject(*prefs.prefsData()[keys::SwitchMenuExcludedApplications].array()));
    EXPECT_EQ(list.nameAt(0), "Edit");
    EXPECT_EQ(list.rowCount(), 2);
    // Nothing new (the same path, and one differing only in letter case): nothing saved.
    list.onAddApplication();
    EXPECT_EQ(list.rowCount(), 2);
    EXPECT_EQ(bus.posted().size(), 1u);
    excludedView.selected = {0};
    list.onRemoveApplication();
    EXPECT_EQ(bus.posted().size(), 2u);
    EXPECT_EQ(list.nameAt(0), "Term");
}

TEST_F(SwitchMenuTest, NotesFollowTheMenuTheOptionsAndTheSystem) {
    struct Case {
        const char* system;
        bool access;
        bool windowsBox;
        bool singleAppMode;
        Strings expected;
    };
    const Case cases[] = {
        // From 10.9 on access for assistive devices never shows.
        {"10.13", false, true, false, {"-", "-", "-"}},
        {"10.8", true, true, false, {"-", "-", "-"}},
        {"10.8", false, true, false, {"caution", "-", "warning", "ActiveApplicationWindows:Caution"}},
        {"10.8", false, false, true, {"-", "note", "warning", "ActiveApplicationWindows:Caution", "Groups:Note"}},
    };
    for (const Case& c : cases) {
        assistiveAccess = c.access;
        openSwitch(Dictionary{{keys::AddApplicationWindows, c.windowsBox}, {keys::TurnOnSingleApplicationMode, c.singleAppMode},
                              {keys::SwitchMenuItems, Array{item("ActiveApplicationWindows"), item("Groups")}}},
                   c.system);
        switcher->willBeginSheet();
        EXPECT_EQ(shown(), c.expected) << c.system << " " << c.access;
        EXPECT_EQ(switcher->data(switcher->index(1), DimmedRole).toBool(), c.singleAppMode);
    }
    // Removing the Groups row takes its note away; the mode toggled while the sheet shows is heard.
    view.selected = {1};
    switcher->onRemoveItem();
    EXPECT_EQ(shown()[1], "-");
    switcher->onAddItem(items::Groups);
    prefs.setBool(false, keys::TurnOnSingleApplicationMode);
    local.post(Notification{notifications::SingleApplicationModeToggled, "", std::nullopt});
    EXPECT_EQ(shown(), (Strings{"-", "-", "warning", "ActiveApplicationWindows:Caution"}));
    switcher->didEndSheet();
    prefs.setBool(true, keys::TurnOnSingleApplicationMode);
    local.post(Notification{notifications::SingleApplicationModeToggled, "", std::nullopt});
    EXPECT_EQ(shown()[1], "-");  // not heard with the sheet closed
    // The warning's button asks the Menus tab to close the sheet for the settings.
    switcher->onOpenUniversalAccess();
    EXPECT_EQ(local.posted().back().name, notifications::OpenUniversalAccess);
}

TEST_F(SwitchMenuTest, ControllerChangesOfTheExcludedListApplyAsFarAsValid) {
    std::string term = app("Term"), edit = app("Edit");
    openSwitch(Dictionary{{keys::SwitchMenuExcludedApplications, Array{Dictionary{{keys::Name, "Term"}, {keys::Path, term}}}}});
    excludedView.selected = {0};
    auto change = [&](Value payload) {
        switcher->onExcludedAppsChanged(Notification{notifications::SwitchMenuExcludedAppsChanged,
                                                     notifications::ControllerObject,
                                                     Dictionary{{changes::ChangeSwitchMenuExcludedApps, payload}}});
    };
    change(Dictionary{{keys::SwitchMenuExcludedApplications, "not a list"}});
    change("not a dictionary");
    EXPECT_EQ(switcher->excludedApplications().rowCount(), 1);
    change(Dictionary{{keys::SwitchMenuExcludedApplications,
                       Array{Value::int32(4), Dictionary{{keys::Path, term}}, Dictionary{{keys::Name, "Edit"}, {keys::Path, edit}}}}});
    ExcludedApplicationsList& list = switcher->excludedApplications();
    ASSERT_EQ(list.rowCount(), 2);
    EXPECT_EQ(list.nameAt(0), "Edit");
    EXPECT_EQ(excludedView.selected, std::vector<int>{1});  // Term, followed by its path
    EXPECT_TRUE(bus.posted().empty());                     // the controller's own change is not sent back
}

TEST(RunningApplicationMarks, TheTranslationBoxShowsOnlyBefore10_7OnThisProcessor) {
    struct Case { const char* system; bool translated; };
    for (const Case& c : {Case{"10.6.8", true}, Case{"10.7", false}, Case{"10.13", false}}) {
        RunningApplicationMarks marks = RunningApplicationMarks::forThisComputer(KVOperatingSystem::SystemVersion::probe(c.system));
        // A 64-bit processor marks the mode; one without would show only the translation box.
        EXPECT_EQ(marks.showsAppMode, Is64BitProcessor()) << c.system;
        EXPECT_EQ(marks.showsTranslated, c.translated || !Is64BitProcessor()) << c.system;
    }
}

TEST_F(QuitMenuTest, AnOpenChangePanelFollowsTheSelectedApplicationWhenTheWindowComesBack) {
    std::string one = app("One"), two = app("Two");
    openQuit({}, {one, two});
    excludedView.selected = {1};
    excludedView.holdPanels = true;
    list().onChangeApplication();
    ASSERT_EQ(excludedView.panels.size(), 1u);
    EXPECT_EQ(excludedView.panels[0].prompt, LocalizedString("Change"));
    std::filesystem::remove_all(two);
    quit->sheetWindowDidBecomeMain(false);  // another tab of the sheet is shown: not this editor's business
    EXPECT_EQ(std::count_if(excludedView.calls.begin(), excludedView.calls.end(),
                            [](const std::string& call) { return call.rfind("retitle", 0) == 0; }), 0);
    quit->sheetWindowDidBecomeMain(true);
    EXPECT_EQ(excludedView.calls.back(), "retitle " + LocalizedString("FixPath2") + " | " + LocalizedString("Fix"));
    excludedView.closePanel();
}
