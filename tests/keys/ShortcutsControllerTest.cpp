#include "keys/ComKestrovaShortcutsController.h"
#include "keys/KVKeyCombinationValidator.h"
#include "keys/KeyStrings.h"
#include "keys/KeysFixture.h"
#include "prefs/Localization.h"
#include "prefs/NotificationNames.h"

using namespace corvalis;
using namespace corvalis::plist;
using test::hotKey;

namespace {

constexpr std::uint32_t kCommand = modifiers::Command;

class RecordingView : public ShortcutsView {
public:
    std::vector<std::string> calls;
    void reloadData() override { calls.push_back("reload"); }
    void deselectAll() override { calls.push_back("deselect"); }
    void scrollRowToVisible(int row) override { calls.push_back("scroll " + std::to_string(row)); }
    void beep() override { calls.push_back("beep"); }
    void showAlert(const std::string& title, const std::string& text, const std::string& button) override {
        calls.push_back("alert " + title + " | " + text + " | " + button);
    }
};

Dictionary withEnabled(Dictionary record, bool enabled) {
    record.set(keys::Enabled, enabled);
    return record;
}

class Shortcuts : public test::KeysTest {
protected:
    test::ScopedLayout us{"us"};
    KVKeyCombinationValidator validator{prefs};
    RecordingView view;
    ComKestrovaShortcutsController controller{prefs, validator, bus, view};

    Dictionary stored(const std::string& id) { return *(*storedDomain()[keys::KeyboardShortcuts].dictionary())[id].dictionary(); }
    Notification only() {
        EXPECT_EQ(bus.posted().size(), 1u);
        return bus.posted().empty() ? Notification{} : bus.posted().back();
    }
};

}  // namespace

TEST_F(Shortcuts, EighteenCommandsInTheirOrder) {
    load(Dictionary());
    controller.initializePane(true);
    EXPECT_EQ(controller.commandIds(),
              (std::vector<std::string>{"1000", "1001", "1002", "1017", "1003", "1004", "1015", "1016", "1005", "1006",
                                        "1007", "1008", "1009", "1010", "1011", "1012", "1013", "1014"}));
    EXPECT_EQ(controller.commandAt(3), LocalizedString(keystrings::QuitExcludedCommand));
    EXPECT_EQ(controller.localizedCommands().at("1007"), LocalizedString(keystrings::MinimizeAllCommand));
    EXPECT_EQ(view.calls, (std::vector<std::string>{"reload", "deselect", "scroll 0"}));
    EXPECT_TRUE(bus.posted().empty());
}

TEST_F(Shortcuts, CommandsOnAHotKeyAreClearedWhenThePaneOpens) {
    Dictionary taken = withEnabled(KVKeyCombination('o', 31, 0x1200).dictionary(), true);
    Dictionary free = withEnabled(KVKeyCombination(0, 40, kCommand).dictionary(), true);
    load(Dictionary{{keys::HotKeys, Array{hotKey('o', 0x1200, 31), hotKey('q', 0x1200, 12, 1),
                                          hotKey('s', 0x1200, 1, 2), hotKey('e', 0x1200, 14, 3)}},
                    {keys::KeyboardShortcuts, Dictionary{{"1009", taken}, {"1003", free}}}});
    controller.initializePane(true);
    EXPECT_EQ(Value(stored("1009")), Value(Dictionary{{keys::Enabled, false}}));
    EXPECT_EQ(Value(stored("1003")), Value(free));
    Notification told = only();
    EXPECT_EQ(told.name, notifications::CorvalisPaneChangedShortcuts);
    EXPECT_EQ(told.object, notifications::PaneObject);
    EXPECT_EQ(Value(*told.userInfo),
              Value(Dictionary{{changes::ChangeKeyboardShortcut,
                                Dictionary{{keys::CommandId, "1009"}, {keys::KeyCombination, Dictionary{{keys::Enabled, false}}}}}}));
    EXPECT_FALSE(controller.keyCombinationAt(12));
    EXPECT_EQ(controller.keyCombinationAt(4), KVKeyCombination(0, 40, kCommand));
    EXPECT_TRUE(controller.enabledAt(4));

    bus.clearPosted();
    controller.initializePane(false);  // nothing left to clear
    EXPECT_TRUE(bus.posted().empty());
}

TEST_F(Shortcuts, EditsStoreTheRecordAndTellTheController) {
    load(Dictionary{{keys::KeyboardShortcuts, Dictionary{{"1001", withEnabled(KVKeyCombination(0, 40, kCommand).dictionary(), false)}}}});
    controller.initializePane(true);

    controller.setEnabled(true, 1);  // row 1 is "1001"
    EXPECT_EQ(Value(stored("1001")), Value(withEnabled(KVKeyCombination(0, 40, kCommand).dictionary(), true)));
    EXPECT_EQ(Value(*only().userInfo),
              Value(Dictionary{{changes::ChangeKeyboardShortcutEnabled, Dictionary{{keys::CommandId, "1001"}, {keys::Enabled, true}}}}));
    EXPECT_EQ(only().name, notifications::CorvalisPaneChangedShortcuts);

    bus.clearPosted();
    controller.setEnabled(true, 0);  // no combination: the record holds "Enabled" alone
    EXPECT_EQ(Value(stored("1000")), Value(Dictionary{{keys::Enabled, true}}));

    bus.clearPosted();
    controller.setKeyCombination(KVKeyCombination(0, 0x12, modifiers::Option), 3);  // "1017"
    Dictionary expected = withEnabled(KVKeyCombination(0, 0x12, modifiers::Option).dictionary(), false);
    EXPECT_EQ(Value(stored("1017")), Value(expected));
    EXPECT_EQ(Value(*only().userInfo),
              Value(Dictionary{{changes::ChangeKeyboardShortcut, Dictionary{{keys::CommandId, "1017"}, {keys::KeyCombination, expected}}}}));

    bus.clearPosted();
    controller.setKeyCombination(std::nullopt, 1);  // cleared: the old "Enabled" stays
    EXPECT_EQ(Value(stored("1001")), Value(Dictionary{{keys::Enabled, true}}));
    EXPECT_EQ(Value(*only().userInfo),
              Value(Dictionary{{changes::ChangeKeyboardShortcut,
                                Dictionary{{keys::CommandId, "1001"}, {keys::KeyCombination, Dictionary{{keys::Enabled, true}}}}}}));
}

namespace {

class QuietField : public KeyCombinationFieldHost {
public:
    Responder focused = nullptr;
    void beep() override {}
    void setDisplayString(const std::string&) override {}
    void makeFirstResponder(Responder responder) override { focused = responder; }
};

}  // namespace

TEST_F(Shortcuts, RecordingPausesTheHotKeysAndRefusalsAreShown) {
    load(Dictionary{{keys::KeyboardShortcuts, Dictionary{{"1002", withEnabled(KVKeyCombination(0, 40, kCommand).dictionary(), true)}}}});
    int table = 0;
    controller.setTable(&table);
    controller.initializePane(true);
    view.calls.clear();
    QuietField host;
    KVKeyCombinationRecorder field(host, &controller);

    field.becomeFirstResponder();
    field.keyDown(KeyEvent{37 + 8, eventflags::Command, U"k"});  // ⌘K belongs to "Quit All"
    field.resignFirstResponder();

    ASSERT_EQ(bus.posted().size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(bus.posted()[i].name, i == 0 ? notifications::SuspendHotKeys : notifications::ResumeHotKeys);
        EXPECT_EQ(bus.posted()[i].object, notifications::PaneObject);
        EXPECT_FALSE(bus.posted()[i].userInfo);
    }
    EXPECT_FALSE(field.objectValue());
    EXPECT_EQ(host.focused, &table);
    std::string message = LocalizedFormat(keystrings::KeyCombinationExistsAlready5,
                                          {"⌘K", LocalizedString(keystrings::QuitAllCommand)});
    EXPECT_EQ(view.calls, (std::vector<std::string>{"beep", "alert " + message + " | " +
                                                                LocalizedString(keystrings::ChooseAnotherCombination) +
                                                                " | OK"}));
}

TEST_F(Shortcuts, GreyOnlyForADisabledRowNotBeingWorkedOn) {
    using C = ComKestrovaShortcutsController;
    for (int bits = 0; bits < 8; ++bits) {
        bool key = bits & 1, first = bits & 2, selected = bits & 4;
        EXPECT_EQ(C::keyCombinationTextColour(true, key, first, selected), ShortcutTextColour::ControlText);
        EXPECT_EQ(C::keyCombinationTextColour(false, key, first, selected),
                  bits == 7 ? ShortcutTextColour::ControlText : ShortcutTextColour::LightGrey);
    }
}

TEST_F(Shortcuts, ALayoutChangeRedrawsTheTableOnce) {
    load(Dictionary());
    controller.initializePane(true);
    view.calls.clear();
    controller.willShowPane();
    controller.setEnabled(true, 2);
    EXPECT_TRUE(view.calls.empty());  // nothing asked for a redraw
    validator.onKeyboardChanged();
    EXPECT_EQ(view.calls, std::vector<std::string>{"reload"});
}
