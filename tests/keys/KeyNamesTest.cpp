#include <map>
#include <set>

#include "keys/ComKestrovaShortcutsController.h"
#include "keys/EvdevKeyCodes.h"
#include "keys/KVKeyCombination.h"
#include "keys/KeyStrings.h"
#include "keys/KeysFixture.h"
#include "text/Localization.h"

using namespace corvalis;
using test::ScopedLayout;

namespace {

constexpr std::uint32_t kShiftCommand = modifiers::Shift | modifiers::Command;
constexpr std::uint32_t kAllFour = modifiers::Shift | modifiers::Control | modifiers::Option | modifiers::Command;

std::string nameOf(std::uint16_t code) {
    return KVKeyCombinationCenter::sharedCenter().virtualKeyCodeToString(code).value_or("<none>");
}

// A layout that types what the test says, for what no real layout does.
class TableLayout : public KeyboardLayout {
public:
    explicit TableLayout(std::map<std::uint16_t, std::string> typed) : typed_(std::move(typed)) {}
    std::optional<std::string> translateKey(std::uint16_t evdev) const override {
        auto found = typed_.find(evdev);
        return found == typed_.end() ? std::string() : found->second;
    }
    std::string identity() const override { return "table"; }

private:
    std::map<std::uint16_t, std::string> typed_;
};

}  // namespace

TEST(KeyCombinationValue, EqualityAndStoredForm) {
    KVKeyCombination a(107, 40, kShiftCommand), b(0, 40, kShiftCommand);
    EXPECT_FALSE(a.isEqual(b));  // differs only in the kept character
    EXPECT_TRUE(a.isEquivalent(b));
    EXPECT_FALSE(a.isEquivalent(KVKeyCombination(107, 40, modifiers::Command)));
    EXPECT_FALSE(a.isEquivalent(KVKeyCombination(107, 41, kShiftCommand)));

    plist::Dictionary stored = a.dictionary();
    EXPECT_EQ(stored[keys::Character].integer()->width, plist::IntWidth::UInt8);
    EXPECT_EQ(stored[keys::VirtualKeyCode].integer()->width, plist::IntWidth::UInt16);
    EXPECT_EQ(stored[keys::Modifiers].integer()->width, plist::IntWidth::UInt32);
    EXPECT_TRUE(KVKeyCombination::fromDictionary(stored)->isEqual(a));

    // Read back from a file every number is 64-bit; the controller reads the low bits.
    plist::Dictionary fromFile{{keys::VirtualKeyCode, plist::Value::int64(65536 + 40)},
                               {keys::Modifiers, plist::Value::int64((1LL << 32) + 0x300)}};
    EXPECT_TRUE(KVKeyCombination::fromDictionary(fromFile)->isEquivalent(b));
    EXPECT_FALSE(KVKeyCombination::fromDictionary(plist::Dictionary{{keys::Modifiers, plist::Value::uint32(256)},
                                                                    {keys::Character, plist::Value::uint8(7)}}));
}

TEST(KeyCombinationText, ModifiersInTheirOrderThenTheKeysName) {
    ScopedLayout us("us");
    EXPECT_EQ(KeyCombination(0, 0, 0), "");
    EXPECT_EQ(KeyCombination(0, 96, kAllFour), "⇧⌃⌥⌘F5");
    EXPECT_EQ(KeyCombination(0, 0, 0x4000 | modifiers::Control), "⌃A");  // other bits are not drawn
    EXPECT_EQ(KeyCombination('z', 40, modifiers::Command), "⌘K");         // nor is the kept character
    // Keypad clear and enter have fixed names, the other keypad keys are bracketed; the F-key codes are not in order.
    std::pair<std::uint16_t, const char*> named[] = {{71, "⌧"}, {76, "⌅"}, {82, "[0]"}, {111, "F12"}, {123, "←"}, {49, "Space"}};
    for (auto [code, name] : named) EXPECT_EQ(nameOf(code), name) << code;
}

TEST(KeyCombinationText, LettersFollowTheLayoutAndOnlyOneTypedCharacterNamesAKey) {
    struct Case {
        const char* layout;
        const char* variant;
        std::uint16_t code;
        const char* name;
    };
    // de: Y and Z swapped, umlauts keep their case, the keypad has a comma; fr: digits need Shift; a dead key has no name.
    Case cases[] = {{"de", "", 0x10, "Z"}, {"de", "", 0x29, "ö"}, {"de", "", 0x41, "[,]"}, {"fr", "", 0x12, "&"},
                    {"us", "intl", 0x27, ""}};
    for (const Case& c : cases) {
        ScopedLayout layout(c.layout, c.variant);
        EXPECT_EQ(nameOf(c.code), c.name) << c.layout << " " << c.code;
    }
    auto& center = KVKeyCombinationCenter::sharedCenter();
    auto previous = center.layout();
    center.setLayout(std::make_shared<TableLayout>(std::map<std::uint16_t, std::string>{
        {37, "kk"}, {38, "\xF0\x9F\x98\x80"}, {36, "\xC3\xA9"}, {30, "x"}, {45, "x"}}));
    EXPECT_EQ(nameOf(0x28), "");  // two characters
    EXPECT_EQ(nameOf(0x25), "");  // beyond one UTF-16 unit
    EXPECT_EQ(nameOf(0x26), "é");
    EXPECT_EQ(center.stringToVirtualKeyCode("X"), 0x07);  // the same name on two keys: the higher code wins
    center.setLayout(nullptr);
    EXPECT_EQ(center.virtualKeyCodeToString(0x28), std::nullopt);  // nothing to translate with
    EXPECT_EQ(nameOf(96), "F5");
    center.setLayout(previous);
}

// The hot key conversion's tests go through the letters of real layouts; here, the named keys.
TEST(KeyCombinationText, NamesLeadBackToTheirKeys) {
    ScopedLayout us("us");
    auto& center = KVKeyCombinationCenter::sharedCenter();
    EXPECT_EQ(center.stringToVirtualKeyCode("F5"), 96);
    EXPECT_EQ(center.stringToVirtualKeyCode("[3]"), 85);
    EXPECT_EQ(center.stringToVirtualKeyCode("é"), std::nullopt);
}

TEST(KeyCombinationText, OnlyKeypadFunctionAndArrowKeysMayGoWithoutModifiers) {
    for (int code : {82, 92, 96, 80, 123, 126})
        EXPECT_FALSE(KVKeyCombinationCenter::virtualKeyCodeRequiresModifiers(code)) << code;
    // Keypad clear and enter are keypad keys that still need one; so does everything past the table.
    for (int code : {40, 49, 71, 76, 127, 0xFFFF})
        EXPECT_TRUE(KVKeyCombinationCenter::virtualKeyCodeRequiresModifiers(code)) << code;
}

TEST(KeyCodeTable, EachKeyCodeHasItsOwnPhysicalKey) {
    std::set<std::uint16_t> evdevCodes;
    for (std::uint16_t code = 0; code < 128; ++code) {
        std::optional<std::uint16_t> evdev = evdevKeyCodeForVirtualKeyCode(code);
        if (!evdev) continue;
        EXPECT_TRUE(evdevCodes.insert(*evdev).second) << "two codes on evdev key " << *evdev;
        EXPECT_EQ(virtualKeyCodeForEvdevKeyCode(*evdev), code);
    }
    EXPECT_FALSE(evdevKeyCodeForVirtualKeyCode(0x34) || evdevKeyCodeForVirtualKeyCode(1018));
    EXPECT_FALSE(virtualKeyCodeForEvdevKeyCode(0) || virtualKeyCodeForEvdevKeyCode(240));
}

TEST(KeyboardLayoutSource, FollowsTheUsersLayoutAndItsChanges) {
    test::TempDir dir;
    test::writeFile(dir / "keyboard", "# comment\nXKBMODEL=\"pc105\"\nXKBLAYOUT=\"de\"\nXKBVARIANT=\"nodeadkeys\"\n");
    auto names = XkbKeyboardLayout::namesFromKeyboardConfiguration(dir / "keyboard");
    ASSERT_TRUE(names);
    EXPECT_EQ(names->layout, "de");
    EXPECT_EQ(names->variant, "nodeadkeys");
    EXPECT_FALSE(XkbKeyboardLayout::fromNames({"no-such-layout", ""}));

    auto& center = KVKeyCombinationCenter::sharedCenter();
    auto previous = center.layout();
    std::string layout = "us";
    center.setLayoutSource([&] { return std::shared_ptr<const KeyboardLayout>(XkbKeyboardLayout::fromNames({layout, ""})); });
    EXPECT_EQ(nameOf(0x10), "Y");
    EXPECT_FALSE(center.layoutChanged());  // the same layout read again
    layout = "de";
    EXPECT_EQ(nameOf(0x10), "Y");  // nothing changes until the change is told
    EXPECT_TRUE(center.layoutChanged());
    EXPECT_EQ(nameOf(0x10), "Z");
    EXPECT_EQ(center.stringToVirtualKeyCode("Z"), 0x10);
    center.setLayoutSource(nullptr);
    center.setLayout(previous);
}

TEST(KeyStrings, EveryKeyNameMessageAndCommandIsInTheEnglishTable) {
    using namespace keystrings;
    // The validator's tests compare through the table, which answers a missing key with the key itself.
    for (const char* key : {Help, Space, KeyCombinationExistsAlready1, KeyCombinationExistsAlready2,
                            KeyCombinationExistsAlready3, KeyCombinationExistsAlready4, KeyCombinationExistsAlready5,
                            KeyCombinationExistsAlready6, KeyCombinationExistsAlready7, KeyCombinationExistsAlready8,
                            ChooseAnotherCombination, OK})
        EXPECT_TRUE(EnglishTableHasKey(key)) << key;
    for (const FixedCommand& command : fixedCommands()) EXPECT_TRUE(EnglishTableHasKey(command.nameKey)) << command.id;
}
