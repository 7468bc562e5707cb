#include <gtest/gtest.h>

#include "groups/GroupOptions.h"
#include "groups/GroupTexts.h"
#include "groups/GroupsFixture.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

class GroupOptionsTest : public test::GroupsTest {
protected:
    std::unique_ptr<GroupOptions> options;
    static Dictionary shortcut(bool enabled, int action, bool withKey) {
        Dictionary record = withKey ? KVKeyCombination(0x67, 5, modifiers::Command | modifiers::Control).dictionary() : Dictionary();
        record.set(keys::CommandID, "2000");
        record.set(keys::Enabled, enabled);
        record.set(keys::Action, Value::int32(action));
        return record;
    }
    void openGroup(Dictionary record) {
        openWithGroups({record});
        options = std::make_unique<GroupOptions>(*groups, prefs, validator, bus, view);
    }
};

}  // namespace

TEST_F(GroupOptionsTest, AutoOpenOffDisablesHideButKeepsItAndTheToolTipListsNeither) {
    Dictionary record = group("A");
    record.set(keys::AutoOpen, true);
    record.set(keys::Hide, true);
    openGroup(record);
    EXPECT_TRUE(options->hideEnabled());
    options->setFlag(keys::AutoOpen, false);
    EXPECT_FALSE(options->hideEnabled());
    EXPECT_TRUE(options->flag(keys::Hide));
    EXPECT_EQ(postedKeys(), std::vector<std::string>{changes::ChangeGroups});
    std::string tip = groupToolTip(*groups->groupAt(0), validator);
    EXPECT_EQ(tip.find(LocalizedString("GroupHide")), std::string::npos);
    EXPECT_EQ(tip.find(LocalizedString("OpenAutomaticallyAndHide")), std::string::npos);
}

TEST_F(GroupOptionsTest, DisablingTheHotKeyKeepsItsCombinationAndTellsTheController) {
    Dictionary record = group("A");
    record.set(keys::KeyboardShortcut, shortcut(true, 1, true));
    openGroup(record);
    ASSERT_TRUE(options->keyCombination());
    options->setShortcutEnabled(false);
    EXPECT_TRUE(options->keyCombination());
    options->setShortcutEnabled(true);
    EXPECT_EQ(options->keyCombination()->virtualKeyCode(), 5);
    EXPECT_EQ(postedKeys(), (std::vector<std::string>{changes::ChangeGroups, changes::ChangeKeyboardShortcutEnabled,
                                                      changes::ChangeGroups, changes::ChangeKeyboardShortcutEnabled}));
    EXPECT_EQ(posts()[1][changes::ChangeKeyboardShortcutEnabled],
              Value(Dictionary{{keys::CommandId, "2000"}, {keys::Enabled, false}}));
    options->setShortcutAction(2);  // the record only: no shortcut message
    EXPECT_EQ(postedKeys().back(), changes::ChangeGroups);
    EXPECT_EQ((*groups->groupAt(0))[keys::KeyboardShortcut][keys::Action].toInt32(), 2);
}

TEST_F(GroupOptionsTest, RecordingStoresTheCombinationUnderCommandIDAndSendsCommandId) {
    openGroup(group("A"));
    (*groups->groupAt(0)).set(keys::KeyboardShortcut, shortcut(false, 0, false));
    options->keyCombinationWillBeginEditing();
    options->setKeyCombination(KVKeyCombination(0x6b, 40, modifiers::Command));
    options->keyCombinationWillEndEditing();
    ASSERT_EQ(bus.posted().size(), 4u);
    EXPECT_EQ(bus.posted()[0].name, notifications::SuspendHotKeys);
    EXPECT_EQ(bus.posted()[3].name, notifications::ResumeHotKeys);
    Dictionary expected = KVKeyCombination(0x6b, 40, modifiers::Command).dictionary();
    expected.set(keys::CommandID, "2000");
    expected.set(keys::Enabled, false);
    expected.set(keys::Action, Value::int32(0));
    EXPECT_EQ(*bus.posted()[2].userInfo,
              (Dictionary{{changes::ChangeKeyboardShortcut, Dictionary{{keys::CommandId, "2000"}, {keys::KeyCombination, expected}}}}));
    EXPECT_EQ((*groups->groupAt(0))[keys::KeyboardShortcut], Value(expected));
}

TEST_F(GroupOptionsTest, AHotKeyTakenByAMenuAtStartUpIsKeptDisabledWithoutItsKeys) {
    load(Dictionary{{keys::Groups, Array{group("A")}}});
    // The group was given the Open menu's hot key behind the pane's back.
    Dictionary taken = asDictionary((*prefs.arrayForKey(keys::HotKeys))[0])->deepCopy();
    taken.remove(keys::Position);
    taken.set(keys::CommandID, "2000");
    taken.set(keys::Enabled, true);
    taken.set(keys::Action, Value::int32(1));
    std::optional<Array> stored = prefs.arrayForKey(keys::Groups);
    for (const Value& value : *stored)
        if (value[keys::Name].stringOr("") == "A") asDictionary(value)->set(keys::KeyboardShortcut, taken);
    groups = std::make_unique<GroupsController>(prefs, validator, bus, local, running, view);
    view.controller = groups.get();
    groups->initializePane(true);
    Dictionary cleared{{keys::CommandID, "2000"}, {keys::Enabled, false}, {keys::Action, Value::int32(1)}};
    EXPECT_EQ((*groups->groupAt(0))[keys::KeyboardShortcut], Value(cleared));
    ASSERT_EQ(postedKeys(), (std::vector<std::string>{changes::ChangeKeyboardShortcut, changes::ChangeGroups}));
    EXPECT_EQ(posts()[0][changes::ChangeKeyboardShortcut],
              Value(Dictionary{{keys::CommandId, "2000"}, {keys::KeyCombination, cleared}}));
}

TEST_F(GroupOptionsTest, CustomIconsTakeTheFirstFreeNumberAndBuiltInOnesDropTheData) {
    Dictionary a = group("A"), b = group("B");
    a.set(keys::Icon, "Custom 2");
    openWithGroups({a, b});
    options = std::make_unique<GroupOptions>(*groups, prefs, validator, bus, view);
    view.selectRows({EditorRow{1}});
    options->setIcon(kCustomIcon, Data{'i', 'c', 'n', 's'});
    EXPECT_EQ(options->iconName(), "Custom 1");
    options->setIcon("RedFolder");
    EXPECT_EQ(options->iconName(), "RedFolder");
    EXPECT_FALSE((*groups->groupAt(1)).contains(keys::IconData));
    options->setIcon(kCustomIcon, std::nullopt);  // nothing usable: no icon
    EXPECT_EQ(options->iconName(), "");
}

// A chosen icon file whose path the file system would not take (1000 bytes or more, or not
// UTF-8) is refused before it is read: the group keeps its icon and nothing is posted.
TEST_F(GroupOptionsTest, IconFilesWithPathsTooLongOrNotUtf8AreRefusedWithoutChange) {
    struct Case {
        std::string path;
        bool taken;
    } cases[] = {{"/" + std::string(998, 'a'), true}, {"/" + std::string(999, 'a'), false},
                 {"/caf\xe9.png", false}, {"/caf\xc3\xa9.png", true}};
    const Data old{'o', 'l', 'd'}, made{'n', 'e', 'w'};
    for (const Case& c : cases) {
        Dictionary record = group("A");
        record.set(keys::Icon, "Custom 1");
        record.set(keys::IconData, old);
        openGroup(record);
        bool read = false;
        EXPECT_EQ(options->setIconFromFile(c.path, [&](const std::string&) { read = true; return std::optional(made); }),
                  c.taken) << c.path.size();
        EXPECT_EQ(*(*groups->groupAt(0))[keys::IconData].data(), c.taken ? made : old) << c.path.size();
        EXPECT_EQ(read, c.taken);
        EXPECT_EQ(posts().empty(), !c.taken);
    }
}
