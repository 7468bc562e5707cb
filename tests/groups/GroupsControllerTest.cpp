#include <gtest/gtest.h>

#include "groups/GroupsFixture.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {
using test::GroupsTest;
}  // namespace

TEST_F(GroupsTest, NewGroupNamesSkipTakenCandidates) {
    struct Case {
        std::vector<std::string> existing;
        std::string expected;
    } cases[] = {
        {{}, "Group 1"},
        {{"Other"}, "Group 2"},
        {{"Group 2"}, "Group 2 1"},
        {{"group 2", "Group 2 1"}, "Group 3"},
        {{"Group 4", "Group 4 1", "x"}, "Group 4 2"},
    };
    for (const Case& c : cases) {
        std::vector<Dictionary> list;
        for (const std::string& name : c.existing) list.push_back(group(name));
        openWithGroups(list);
        groups->onAddGroup();
        EXPECT_EQ(names().back(), c.expected) << c.existing.size();
    }
}

TEST_F(GroupsTest, AddingAGroupPostsTheGroupsThenItsDisabledShortcutAndOpensItsName) {
    openWithGroups({group("B")}, true, 0);
    groups->onAddGroup();
    EXPECT_EQ(names(), (std::vector<std::string>{"B", "Group 2"}));
    ASSERT_EQ(postedKeys(), (std::vector<std::string>{changes::ChangeGroups, changes::ChangeKeyboardShortcut}));
    Dictionary payload = *posts()[0][changes::ChangeGroups].dictionary();
    EXPECT_EQ(payload.keys(), std::vector<std::string>{keys::Groups});  // no ChangeExcludedApplications
    // The excluded group goes back at its name position among arranged groups.
    std::vector<std::string> stored;
    for (const Value& g : *payload[keys::Groups].array()) stored.push_back(g[keys::Name].stringOr(""));
    EXPECT_EQ(stored, (std::vector<std::string>{"B", LocalizedString("ExcludedApplications"), "Group 2"}));
    std::string id = (*groups->groupAt(1))[keys::KeyboardShortcut][keys::CommandID].stringOr("");
    EXPECT_FALSE(id.empty());
    EXPECT_EQ(posts()[1][changes::ChangeKeyboardShortcut],
              Value(Dictionary{{keys::CommandId, id}, {keys::KeyCombination, Dictionary{{keys::Enabled, false}}}}));
    EXPECT_EQ(view.calls.back(), "edit 1");
    EXPECT_EQ(groups->optionsState(), GroupOptionsState::Options);
}

TEST_F(GroupsTest, RenamingIgnoresBlankTextAllowsEqualNamesAndResortsArrangedGroups) {
    openWithGroups({group("A"), group("C"), group("E")}, true, 1);
    EXPECT_FALSE(groups->setData(groupIndex(0), "  \t ", Qt::EditRole));
    EXPECT_TRUE(bus.posted().empty());
    view.selectRows({EditorRow{0}});
    EXPECT_TRUE(groups->setData(groupIndex(0), "Z\nlast", Qt::EditRole));
    EXPECT_EQ(names(), (std::vector<std::string>{"C", "E", "Z last"}));
    // The selection follows the renamed group.
    EXPECT_EQ(groups->selectedRows(), (std::vector<EditorRow>{EditorRow{2}}));
    EXPECT_TRUE(groups->setData(groupIndex(0), "E", Qt::EditRole));
    EXPECT_EQ(names(), (std::vector<std::string>{"E", "E", "Z last"}));
    EXPECT_EQ(postedKeys(), (std::vector<std::string>{changes::ChangeGroups, changes::ChangeGroups}));
}

TEST_F(GroupsTest, DeletingAsksOnlyForGroupsWithMembersAndSelectsTheFollower) {
    openWithGroups({group("A", {member(app("One"))}), group("B"), group("C")});
    view.selectRows({EditorRow{0}});
    view.answers.push_back(1);  // Cancel
    groups->onRemoveItem();
    ASSERT_EQ(view.alerts.size(), 1u);
    EXPECT_EQ(view.alerts[0].informativeText, LocalizedString("CantUndo"));
    EXPECT_EQ(groups->groupCount(), 3);
    groups->onRemoveItem();  // Delete
    EXPECT_EQ(names(), (std::vector<std::string>{"B", "C"}));
    EXPECT_EQ(groups->selectedRows(), (std::vector<EditorRow>{EditorRow{0}}));
    std::string firstId = posts()[0][changes::RemoveKeyboardShortcut][keys::CommandId].stringOr("");
    EXPECT_FALSE(firstId.empty());
    EXPECT_EQ(postedKeys(), (std::vector<std::string>{changes::RemoveKeyboardShortcut, changes::ChangeGroups}));

    // Empty groups go without a question; the last one gone leaves the new last selected, then nothing.
    view.selectRows({EditorRow{1}});
    groups->onRemoveItem();
    EXPECT_EQ(groups->selectedRows(), (std::vector<EditorRow>{EditorRow{0}}));
    groups->onRemoveItem();
    EXPECT_EQ(view.alerts.size(), 2u);
    EXPECT_TRUE(groups->selectedRows().empty());
    EXPECT_EQ(groups->optionsState(), GroupOptionsState::NoGroups);
}

TEST_F(GroupsTest, RemovingMembersSelectsTheOneThatFollowed) {
    openWithGroups({group("A", {member(app("One")), member(app("Two")), member(app("Three"))})});
    view.selectRows({EditorRow{0, 0}, EditorRow{1, 0}});
    groups->onRemoveItem();
    EXPECT_EQ(memberNames(0), std::vector<std::string>{"Three"});
    EXPECT_EQ(groups->selectedRows(), (std::vector<EditorRow>{EditorRow{0, 0}}));
    EXPECT_EQ(posts().back()[changes::ChangeGroups][changes::ChangeExcludedApplications].boolean(), false);
}

TEST_F(GroupsTest, DroppedFilesAreAddedOnceMovedWhenUnarrangedAndNonApplicationsSkipped) {
    std::string one = app("One"), two = app("Two"), three = app("Three");
    test::writeFile(dir / "notes.txt", "text");
    struct Case {
        bool arranged;
        std::vector<std::string> expected;
    } cases[] = {{false, {"Three", "One", "Two"}}, {true, {"One", "Three", "Two"}}};
    for (const Case& c : cases) {
        openWithGroups({group("A", {member(one), member(two), member(three)})}, c.arranged, 2);
        std::unique_ptr<QMimeData> data(files({(dir / "notes.txt").string(), three}));
        // "Three" again, dropped at the top: moved there, or left in its name place.
        ASSERT_TRUE(groups->canDropMimeData(data.get(), Qt::MoveAction, 0, 0, groupIndex(0)));
        ASSERT_TRUE(groups->dropMimeData(data.get(), Qt::MoveAction, 0, 0, groupIndex(0)));
        EXPECT_EQ(memberNames(0), c.expected);
        std::unique_ptr<QMimeData> junk(files({(dir / "notes.txt").string()}));
        EXPECT_FALSE(groups->canDropMimeData(junk.get(), Qt::MoveAction, 0, 0, groupIndex(0)));
        EXPECT_FALSE(groups->dropMimeData(junk.get(), Qt::MoveAction, 0, 0, groupIndex(0)));
    }
}

TEST_F(GroupsTest, DropsLandOnOrIntoGroupsOnlyAndWaitForAnOpenSheet) {
    std::string one = app("One"), two = app("Two"), three = app("Three");
    enum Kind { Files, Members, Groups };
    enum Target { Root, Group, Member };
    struct Case {
        Kind kind;
        Target target;
        int row;
        bool sheet;
        bool accepted;
    } cases[] = {
        {Files, Group, -1, false, true},    {Files, Group, 1, false, true},     {Files, Member, -1, false, false},
        {Files, Root, -1, false, false},    {Files, Root, 1, false, false},     {Files, Group, -1, true, false},
        {Members, Group, -1, false, true},  {Members, Group, 0, false, true},   {Members, Member, -1, false, false},
        {Members, Root, 0, false, false},   {Members, Group, -1, true, false},  {Groups, Root, -1, false, true},
        {Groups, Root, 1, false, true},     {Groups, Group, -1, false, false},  {Groups, Member, -1, false, false},
        {Groups, Root, -1, true, false},
    };
    for (const Case& c : cases) {
        openWithGroups({group("A", {member(one), member(two)}), group("B", {member(three)})});
        std::unique_ptr<QMimeData> data(c.kind == Files     ? files({three})
                                        : c.kind == Members ? groups->mimeData({memberIndex(1, 0)})
                                                            : groups->mimeData({groupIndex(1)}));
        ASSERT_TRUE(data);
        QModelIndex parent = c.target == Root ? QModelIndex() : c.target == Group ? groupIndex(0) : memberIndex(0, 1);
        groups->setSheetShown(c.sheet);
        std::string where = std::to_string(c.kind) + "/" + std::to_string(c.target) + "/" + std::to_string(c.row) +
                            (c.sheet ? " under a sheet" : "");
        EXPECT_EQ(groups->canDropMimeData(data.get(), Qt::MoveAction, c.row, 0, parent), c.accepted) << where;
        EXPECT_EQ(groups->dropMimeData(data.get(), Qt::MoveAction, c.row, 0, parent), c.accepted) << where;
        // A refused drop leaves the outline as it was.
        if (!c.accepted) {
            EXPECT_EQ(memberNames(0), (std::vector<std::string>{"One", "Two"})) << where;
            EXPECT_EQ(names(), (std::vector<std::string>{"A", "B"})) << where;
        }
    }
}

TEST_F(GroupsTest, MembersDroppedBetweenMembersLandThereUnlessArranged) {
    std::string one = app("One"), two = app("Two"), zed = app("Zed");
    // `target`: the row the outline is told the drop goes to (-1: onto the group).
    struct Case {
        bool arranged;
        int row;
        int target;
        std::vector<std::string> expected;
    } cases[] = {{false, 1, 1, {"One", "Zed", "Two"}},
                 {false, -1, 0, {"Zed", "One", "Two"}},
                 {true, 1, -1, {"One", "Two", "Zed"}},
                 {true, -1, -1, {"One", "Two", "Zed"}}};
    for (const Case& c : cases) {
        openWithGroups({group("A", {member(one), member(two)}), group("B", {member(zed)})}, c.arranged, 2);
        std::unique_ptr<QMimeData> data(groups->mimeData({memberIndex(1, 0)}));
        EXPECT_EQ(groups->dropTarget(data.get(), c.row, groupIndex(0)), (DropPlace{groupIndex(0), c.target})) << c.row;
        ASSERT_TRUE(groups->dropMimeData(data.get(), Qt::MoveAction, c.row, 0, groupIndex(0)));
        EXPECT_EQ(memberNames(0), c.expected) << c.arranged << " " << c.row;
        EXPECT_TRUE(memberNames(1).empty());
    }
    // A group dropped on the empty area goes last.
    std::unique_ptr<QMimeData> dragged(groups->mimeData({groupIndex(0)}));
    EXPECT_EQ(groups->dropTarget(dragged.get(), -1, {}), (DropPlace{{}, 2}));
}

TEST_F(GroupsTest, ChangingAMemberReplacesItInPlaceResortsItOrMergesIntoTheMemberWithThatPath) {
    std::string alpha = app("Alpha"), beta = app("Beta"), zulu = app("Zulu"), mike = app("Mike");
    struct Case {
        bool arranged;
        std::string chosen;
        std::vector<std::string> expected;
        EditorRow selected;
    } cases[] = {
        {false, mike, {"Mike", "Beta", "Zulu"}, {0, 0}},
        {true, mike, {"Beta", "Mike", "Zulu"}, {1, 0}},
        {false, zulu, {"Beta", "Zulu"}, {1, 0}},
    };
    for (const Case& c : cases) {
        openWithGroups({group("A", {member(alpha), member(beta), member(zulu)})}, c.arranged, 2);
        groups->willShowPane();  // the members get their alias data first
        bus.clearPosted();
        view.selectRows({EditorRow{0, 0}});
        view.pickedFiles.push_back({c.chosen});
        groups->onChangeApplication();
        EXPECT_EQ(view.panels.back().prompt, LocalizedString(groupstrings::Change));
        EXPECT_EQ(memberNames(0), c.expected) << c.chosen;
        EXPECT_EQ(groups->selectedRows(), std::vector<EditorRow>{c.selected}) << c.chosen;
        ASSERT_EQ(posts().size(), 1u);
        EXPECT_EQ(posts()[0][changes::ChangeGroups][changes::ChangeExcludedApplications].boolean(), false);
    }

    // The panel open on a missing member changes its prompt when the member is back.
    openWithGroups({group("A", {member(alpha)})});
    view.selectRows({EditorRow{0, 0}});
    std::filesystem::remove_all(alpha);
    view.holdPanels = true;
    groups->onChangeApplication();
    EXPECT_EQ(view.panels.back().prompt, LocalizedString(groupstrings::Fix));
    app("Alpha");
    groups->windowDidBecomeMain();
    EXPECT_EQ(view.calls.back(), "retitle  | " + LocalizedString(groupstrings::Change));
    view.closePanel();
    EXPECT_EQ(memberNames(0), std::vector<std::string>{"Alpha"});
}

TEST_F(GroupsTest, TypingSelectsByNameOrderAmongGroupsOrTheSelectedMembersGroup) {
    std::string one = app("One"), two = app("Two"), three = app("Three");
    struct Case {
        std::vector<EditorRow> selected;
        std::string typed;
        EditorRow expected;
    } cases[] = {
        // Groups in the outline: Mail, apple, Zebra, Notes (not arranged).
        {{}, "a", {1}},
        {{}, "M", {0}},
        {{}, "mb", {3}},
        {{}, "o", {2}},
        {{}, "zzz", {2}},
        {{EditorRow{3}}, "ap", {1}},
        // Members of Notes: Two, One, Three.
        {{EditorRow{0, 3}}, "t", {2, 3}},
        {{EditorRow{2, 3}}, "o", {1, 3}},
        {{EditorRow{1, 3}}, "tw", {0, 3}},
        {{EditorRow{1, 3}}, "zz", {0, 3}},
    };
    for (const Case& c : cases) {
        openWithGroups({group("Mail"), group("apple"), group("Zebra"), group("Notes", {member(two), member(one), member(three)})});
        view.selectRows(c.selected);
        ASSERT_TRUE(groups->selectString(c.typed)) << c.typed;
        EXPECT_EQ(groups->selectedRows(), std::vector<EditorRow>{c.expected}) << c.typed;
    }
    openWithGroups({});
    EXPECT_FALSE(groups->selectString("a"));
    EXPECT_TRUE(groups->selectedRows().empty());
}

TEST_F(GroupsTest, MembersDraggedToAnotherGroupMoveOrWithTheCopyModifierCopy) {
    std::string one = app("One"), two = app("Two");
    for (Qt::DropAction action : {Qt::MoveAction, Qt::CopyAction}) {
        openWithGroups({group("A", {member(one), member(two)}), group("B")});
        std::unique_ptr<QMimeData> data(groups->mimeData({memberIndex(0, 0), memberIndex(0, 1)}));
        ASSERT_TRUE(data);
        ASSERT_TRUE(groups->dropMimeData(data.get(), action, -1, 0, groupIndex(1)));
        EXPECT_EQ(memberNames(1), (std::vector<std::string>{"One", "Two"}));
        EXPECT_EQ(memberNames(0).size(), action == Qt::CopyAction ? 2u : 0u);
        EXPECT_EQ(posts().back()[changes::ChangeGroups][changes::ChangeExcludedApplications].boolean(), false);
    }
    // Onto their own group, copying moves.
    openWithGroups({group("A", {member(one), member(two)})});
    std::unique_ptr<QMimeData> data(groups->mimeData({memberIndex(0, 1)}));
    ASSERT_TRUE(groups->dropMimeData(data.get(), Qt::CopyAction, 0, 0, groupIndex(0)));
    EXPECT_EQ(memberNames(0), (std::vector<std::string>{"Two", "One"}));
}

TEST_F(GroupsTest, GroupsAreDraggedUnlessKeptArrangedAndDragsNeverMixKinds) {
    struct Case {
        bool arranged;
        int what;
        bool draggable;
    } cases[] = {{false, 0, true}, {true, 0, false}, {true, 1, false}, {true, 2, true}};
    for (const Case& c : cases) {
        openWithGroups({group("A"), group("B"), group("C", {member(app("One"))})}, c.arranged, c.what);
        std::unique_ptr<QMimeData> data(groups->mimeData({groupIndex(0)}));
        EXPECT_EQ(data != nullptr, c.draggable) << c.arranged << c.what;
        if (!data) continue;
        ASSERT_TRUE(groups->dropMimeData(data.get(), Qt::MoveAction, -1, 0, QModelIndex()));
        EXPECT_EQ(names(), (std::vector<std::string>{"B", "C", "A"}));
        EXPECT_EQ(groups->mimeData({groupIndex(0), memberIndex(1, 0)}), nullptr);
    }
}

TEST_F(GroupsTest, ArrangementMenuSortsAndPostsChangeArrangement) {
    openWithGroups({group("b", {member(app("Zed")), member(app("Alpha"))}), group("A")});
    EXPECT_TRUE(groups->isArrangementChecked(ArrangeNone));
    groups->onSortItems(ArrangeNone);  // already checked: nothing
    EXPECT_TRUE(bus.posted().empty());
    groups->onSortItems(ArrangeApplicationsOnly);
    EXPECT_EQ(names(), (std::vector<std::string>{"b", "A"}));
    EXPECT_EQ(memberNames(0), (std::vector<std::string>{"Alpha", "Zed"}));
    groups->onSortItems(ArrangeBoth);
    EXPECT_EQ(names(), (std::vector<std::string>{"A", "b"}));
    ASSERT_EQ(postedKeys(), (std::vector<std::string>{changes::ChangeArrangement, changes::ChangeArrangement}));
    Dictionary payload = *posts()[1][changes::ChangeArrangement].dictionary();
    EXPECT_EQ(payload[keys::KeepGroupsAndApplicationsArranged].boolean(), true);
    EXPECT_EQ(payload[keys::ArrangeWhat].toInt32(), 0);
    EXPECT_TRUE(payload[keys::Groups].array());
}

TEST_F(GroupsTest, ExcludedGroupStaysOutOfTheOutlineAndKeepsItsApplicationsByName) {
    std::string zed = app("Zed"), alpha = app("Alpha");
    openWithGroups({group("A")});
    EXPECT_EQ(groups->groupCount(), 1);
    // The Quit menu editor works on a copy, which is stored once it is handed back.
    Dictionary excludedGroup = *groups->excludedApplications();
    EXPECT_FALSE(excludedGroup.isSameObject(*asDictionary((*prefs.arrayForKey(keys::Groups))[1])));
    Array excluded = *asArray(excludedGroup[keys::Applications]);
    bool contains = true;
    EXPECT_EQ(groups->addApplication(zed, excludedGroup, 0, false, &contains), 0);
    EXPECT_FALSE(contains);
    // Arranged always: at its name position though index 5 was asked for.
    EXPECT_EQ(groups->addApplication(alpha, excludedGroup, 5, false, &contains), 0);
    EXPECT_EQ(groups->addApplication(QString::fromStdString(alpha).toUpper().toStdString(), excludedGroup, 0, true, &contains), 0);
    EXPECT_TRUE(contains);  // paths compare case-insensitively when adding
    EXPECT_EQ(excluded.size(), 2u);
    EXPECT_EQ(groups->addApplication(std::string(1200, 'a'), excludedGroup, 0, false, nullptr), -1);
    EXPECT_EQ(groups->addApplication("/tmp/bad\xff.app", excludedGroup, 0, false, nullptr), -1);
    groups->removeApplication(0, excludedGroup);
    EXPECT_EQ(excluded[0][keys::Path].stringOr(""), zed);
    EXPECT_EQ(groups->rowCount(), 1);
    groups->setExcludedApplications(excludedGroup);
    EXPECT_EQ(groups->mergedGroups()[1][keys::Applications][0][keys::Path].stringOr(""), zed);
}

TEST_F(GroupsTest, PathRefreshRemovesExactDuplicatesAndKeepsVanishedFiles) {
    std::string one = app("One");
    std::filesystem::create_directories(dir / "sub");
    std::string viaDots = (dir / "sub" / ".." / "One.app").string();
    Dictionary gone = member((dir / "Gone.app").string());
    openWithGroups({group("A", {member(one), member(viaDots), gone})});
    EXPECT_TRUE(groups->_updatePaths());
    EXPECT_EQ(groups->applicationsOf(0)->size(), 2u);
    EXPECT_EQ((*groups->applicationsOf(0))[1][keys::Path].stringOr(""), (dir / "Gone.app").string());
    EXPECT_EQ(posts().back()[changes::ChangeGroups][changes::ChangeExcludedApplications].boolean(), true);
    std::string report;
    groups->updatePane(report);
    EXPECT_NE(report.find(LocalizedString("OneInvalidPath")), std::string::npos);
    bus.clearPosted();
    EXPECT_FALSE(groups->_updatePaths());
    EXPECT_TRUE(bus.posted().empty());
}

TEST_F(GroupsTest, RunningAndBackgroundApplicationsAreAddedToTheSelectedGroup) {
    std::string shown = app("Shown"), hidden = app("Hidden");
    test::writeFile(std::filesystem::path(hidden) / "Contents" / "Info.plist",
                    plist::toXml(Dictionary{{"CFBundleIdentifier", "com.test.Hidden"}, {"LSUIElement", true}}));
    running.running = {{1, shown, "com.test.Shown", false}, {2, hidden, "com.test.Hidden", true},
                       {3, app("Finder"), "com.apple.finder", false}, {4, app("Corvalis"), "com.kestrova.Corvalis.Controller", true}};
    openWithGroups({group("A", {member(shown)})});
    EXPECT_FALSE(groups->canAddRunningApplications() && groups->selectedRows().empty());
    groups->onAddRunningApplications();
    EXPECT_EQ(memberNames(0), std::vector<std::string>{"Shown"});  // already there: left alone
    groups->onAddBackgroundOnlyApplications();
    EXPECT_EQ(memberNames(0), (std::vector<std::string>{"Shown", "Hidden"}));
    EXPECT_EQ(groups->selectedRows(), (std::vector<EditorRow>{EditorRow{1, 0}}));
}

TEST_F(GroupsTest, ControllerChangesApplyAsFarAsValidAndTellTheQuitMenu) {
    openWithGroups({group("A")});
    Notification wrong{notifications::GroupsChanged, notifications::ControllerObject,
                       Dictionary{{changes::ChangeGroups, Dictionary{{keys::Groups, "not a list"}}}}};
    groups->onGroupsChanged(wrong);
    EXPECT_EQ(names(), std::vector<std::string>{"A"});
    EXPECT_TRUE(local.posted().empty());

    Array incoming{Value::int32(3), Dictionary{{keys::Name, Value::int32(7)}}, group("New", {member(app("One"))})};
    for (int i = 0; i < 2000; ++i) incoming.append(Dictionary{{keys::Name, "Bulk " + std::to_string(i)}});
    groups->onGroupsChanged(Notification{notifications::GroupsChanged, notifications::ControllerObject,
                                         Dictionary{{changes::ChangeGroups, Dictionary{{keys::Groups, incoming}}}}});
    ASSERT_EQ(groups->groupCount(), 2002);
    EXPECT_EQ(names()[0], LocalizedString("UntitledGroup"));
    EXPECT_EQ(memberNames(1), std::vector<std::string>{"One"});
    EXPECT_TRUE((*groups->excludedApplications())[keys::Applications][0].isAbsent());
    ASSERT_EQ(local.posted().size(), 1u);
    EXPECT_EQ(local.posted()[0].name, notifications::ExcludedApplicationsChanged);
}
