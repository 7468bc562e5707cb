#include "keys/ComKestrovaShortcutsController.h"
#include "keys/KVKeyCombinationValidator.h"
#include "keys/KeyStrings.h"
#include "keys/KeysFixture.h"
#include "text/Localization.h"
#include "prefs/NotificationNames.h"

using namespace corvalis;
using namespace corvalis::plist;
using test::hotKey;

namespace {

constexpr std::uint32_t kCommand = modifiers::Command;
constexpr std::uint32_t kShiftControl = modifiers::Shift | modifiers::Control;

Dictionary shortcut(std::uint16_t code, std::uint32_t mask, bool enabled = true) {
    return test::shortcutRecord({0, code, mask}, enabled);
}

Dictionary group(const std::string& name, std::string id, std::optional<KVKeyCombination> combination,
                 std::int32_t action) {
    Dictionary record = combination ? combination->dictionary() : Dictionary();
    record.set(keys::CommandID, std::move(id));
    record.set(keys::Enabled, true);
    record.set(keys::Action, Value::int32(action));
    return Dictionary{{keys::Name, name}, {keys::CanBeDeleted, true}, {keys::Applications, Array()},
                      {keys::KeyboardShortcut, record}};
}

class Validator : public test::PrefsTest {
protected:
    test::ScopedLayout us{"us"};
    KVKeyCombinationValidator validator{prefs};
    test::RecordingShortcutsView view;
    ComKestrovaShortcutsController shortcuts{prefs, validator, bus, view};

    // Hot keys on ⇧⌃A, ⇧⌃S, ⇧⌃D, ⇧⌃F; ⌘1 for "Quit All"; groups on ⌘2 (Action 0) and ⌘4 (2).
    void SetUp() override {
        load(Dictionary{
            {keys::HotKeys, Array{hotKey('a', kShiftControl, 0, 1), hotKey('s', kShiftControl, 1, 2),
                                  hotKey('d', kShiftControl, 2, 3), hotKey('f', kShiftControl, 3, 4)}},
            {keys::KeyboardShortcuts, Dictionary{{"1002", shortcut(0x12, kCommand)}}},
            {keys::Groups, Array{group("Work", "2000", KVKeyCombination(0, 0x13, kCommand), 0),
                                 group("Tools", "2002", KVKeyCombination(0, 0x15, kCommand), 2),
                                 group("Empty", "2003", std::nullopt, 0)}}});
        shortcuts.initializePane(true);
    }

    std::string refusal(KVKeyCombination combination) {
        std::string message = "stale";
        EXPECT_FALSE(validator.validateKeyCombination(combination, &message));
        EXPECT_FALSE(validator.validateKeyCombination(combination));
        return message;
    }
};

}  // namespace

TEST_F(Validator, EachFamilyRefusesWithItsOwnMessage) {
    using namespace keystrings;
    EXPECT_EQ(refusal({0, 0, kShiftControl}), LocalizedFormat(KeyCombinationExistsAlready1, {"⇧⌃A"}));
    EXPECT_EQ(refusal({0, 0x12, kCommand}), "⌘1 is already the shortcut of the command “Quit All Applications”.");
    EXPECT_EQ(refusal({0, 0x13, kCommand}), LocalizedFormat(KeyCombinationExistsAlready6, {"⌘2", "Work"}));
    EXPECT_EQ(refusal({0, 0x15, kCommand}), LocalizedFormat(KeyCombinationExistsAlready8, {"⌘4", "Tools"}));
    // The kept character differs from the hot key's: still the same combination.
    EXPECT_EQ(refusal({'x', 0, kShiftControl}), LocalizedFormat(KeyCombinationExistsAlready1, {"⇧⌃A"}));

    std::string message = "stale";
    EXPECT_TRUE(validator.validateKeyCombination(KVKeyCombination(0, 0x15, kShiftControl), &message));
    EXPECT_EQ(message, "");
    EXPECT_TRUE(validator.validateKeyCombination(std::nullopt, &message));
}

TEST_F(Validator, HotKeysComeFirstThenCommandsThenGroups) {
    // The fifth hot key and later all report the last menu's message.
    Array hotKeys = *prefs.arrayForKey(keys::HotKeys);
    for (int i = 0; i < 6; ++i) hotKeys.append(hotKey(0, kCommand, static_cast<std::uint16_t>(0x20 + i)));
    EXPECT_EQ(refusal({0, 0x25, kCommand}), LocalizedFormat(keystrings::KeyCombinationExistsAlready4, {"⌘L"}));

    // One combination in all three families.
    hotKeys.append(hotKey(0, kCommand, 0x12));
    EXPECT_EQ(refusal({0, 0x12, kCommand}), LocalizedFormat(keystrings::KeyCombinationExistsAlready4, {"⌘1"}));
    hotKeys.removeAt(hotKeys.size() - 1);
    Array groups = *prefs.arrayForKey(keys::Groups);
    groups.append(group("Late", "2004", KVKeyCombination(0, 0x12, kCommand), 0));
    EXPECT_EQ(refusal({0, 0x12, kCommand}),
              LocalizedFormat(keystrings::KeyCombinationExistsAlready5, {"⌘1", LocalizedString(keystrings::QuitAllCommand)}));
    // Of two groups with one combination, the first in the list is named.
    groups.append(group("Later", "2005", KVKeyCombination(0, 0x13, kCommand), 1));
    EXPECT_EQ(refusal({0, 0x13, kCommand}), LocalizedFormat(keystrings::KeyCombinationExistsAlready6, {"⌘2", "Work"}));
}

TEST_F(Validator, ShortcutRecordsAreCheckedAgainstTheHotKeysOnly) {
    EXPECT_TRUE(validator.validateKeyboardShortcut(Dictionary{{keys::Enabled, true}}));
    EXPECT_FALSE(validator.validateKeyboardShortcut(shortcut(2, kShiftControl, false)));
    // Commands and groups do not count here.
    EXPECT_TRUE(validator.validateKeyboardShortcut(shortcut(0x12, kCommand)));
    EXPECT_TRUE(validator.validateKeyboardShortcut(shortcut(0x13, kCommand)));
}

namespace {

class HotKeyConversion : public test::PrefsTest {
protected:
    // The factory hot keys are of the older form: 1000 + a key code, and the key's character.
    // Converts under the layout the test has chosen.
    Array convert(const Array& stored) {
        load(Dictionary{{keys::HotKeys, stored}});
        KVKeyCombinationValidator validator(prefs);
        validator.initializeHotKeys();
        return *prefs.arrayForKey(keys::HotKeys);
    }
};

}  // namespace

TEST_F(HotKeyConversion, OlderHotKeysFindTheirKeysInTheCurrentLayout) {
    Array older{hotKey('o', kShiftControl, 1018, 2), hotKey('q', kShiftControl, 1019, 5),
                hotKey('z', kCommand, 1020, 0), hotKey('1', kCommand, 1021, 1)};
    std::optional<test::ScopedLayout> layout;
    layout.emplace("us");
    Array us = convert(older.deepCopy());
    EXPECT_EQ(Value(us), Value(Array{hotKey('o', kShiftControl, 0x1F, 2), hotKey('q', kShiftControl, 0x0C, 5),
                                     hotKey('z', kCommand, 0x06, 0), hotKey('1', kCommand, 0x12, 1)}));
    layout.reset();
    layout.emplace("fr");
    Array fr = convert(older.deepCopy());
    // On a French keyboard Q and Z are typed by the keys marked A and W; "1" needs Shift.
    EXPECT_EQ(Value(fr), Value(Array{hotKey('o', kShiftControl, 0x1F, 2), hotKey('q', kShiftControl, 0x00, 5),
                                     hotKey('z', kCommand, 0x0D, 0), hotKey(0, kCommand, 21, 1)}));
    EXPECT_EQ(KVKeyCombination::fromValue(fr[1])->text(), "⇧⌃Q");

    // Each converted hot key is told to the controller and the domain is written.
    ASSERT_EQ(bus.posted().size(), 4u);
    const char* changeKeys[] = {changes::ChangeOpenMenuHotKey, changes::ChangeQuitMenuHotKey,
                                changes::ChangeSwitchMenuHotKey, changes::ChangeSpecialMenuHotKey};
    for (std::size_t i = 0; i < 4; ++i) {
        const Notification& told = bus.posted()[i];
        EXPECT_TRUE(told.name == notifications::CorvalisPaneChangedPrefs && told.object == notifications::PaneObject);
        EXPECT_EQ(Value(*told.userInfo), Value(Dictionary{{changeKeys[i], fr[i]}}));
    }
    EXPECT_EQ(storedDomain()[keys::HotKeys], Value(fr));
}

TEST_F(HotKeyConversion, CharactersNoKeyTypesKeepTheOldCode) {
    test::ScopedLayout us("us");
    Array converted = convert(Array{hotKey(0xE9, kCommand, 1012), hotKey(0, kCommand, 1013, 1),
                                               hotKey('~', kCommand, 1014, 2), hotKey('k', kCommand, 40, 3)});
    EXPECT_EQ(Value(converted), Value(Array{hotKey(0, kCommand, 12), hotKey(0, kCommand, 13, 1),
                                            hotKey(0, kCommand, 14, 2), hotKey('k', kCommand, 40, 3)}));
    EXPECT_EQ(bus.posted().size(), 3u);  // the last one was already of the current form

    // With no layout to ask, older hot keys wait for one rather than lose their keys.
    Array older{hotKey('q', kCommand, 1019), hotKey('w', kCommand, 1020, 1), hotKey('e', kCommand, 1021, 2),
                hotKey('r', kCommand, 1022, 3)};
    KVKeyCombinationCenter::sharedCenter().setLayout(nullptr);
    EXPECT_EQ(Value(convert(older.deepCopy())), Value(older));
    EXPECT_TRUE(bus.posted().empty());
}
