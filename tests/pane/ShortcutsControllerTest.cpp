#include "keys/KVKeyCombinationValidator.h"
#include "keys/KeysFixture.h"
#include "pane/ComKestrovaShortcutsController.h"
#include "keys/KeyStrings.h"
#include "text/Localization.h"
#include "prefs/NotificationNames.h"
#include "support/RecordingEditorView.h"

using namespace corvalis;
using namespace corvalis::plist;
using test::shortcutRecord;

namespace {

struct RecordingShortcutsView : test::RecordingView<ShortcutsView> {
    void reloadData() override { calls.push_back("reload"); }
};

constexpr std::uint32_t kCommand = modifiers::Command;

class Shortcuts : public test::PrefsTest {
protected:
    test::ScopedLayout us{"us"};
    KVKeyCombinationValidator validator{prefs};
    RecordingShortcutsView view;
    ComKestrovaShortcutsController controller{prefs, validator, bus, view};

    Dictionary stored(const std::string& id) {
        std::optional<Dictionary> record = plist::asDictionary(Value(storedDomain())[keys::KeyboardShortcuts][id]);
        if (!record) ADD_FAILURE() << "no stored shortcut " << id;
        return record.value_or(Dictionary());
    }
    Notification only() {
        EXPECT_EQ(bus.posted().size(), 1u);
        return bus.posted().empty() ? Notification{} : bus.posted().back();
    }
};

}  // namespace

TEST_F(Shortcuts, CommandsOnAHotKeyAreClearedWhenThePaneOpens) {
    Dictionary taken = shortcutRecord(KVKeyCombination('o', 31, 0x1200), true);
    Dictionary free = shortcutRecord(KVKeyCombination(0, 40, kCommand), true);
    load(Dictionary{{keys::HotKeys, test::factoryHotKeys()},
                    {keys::KeyboardShortcuts, Dictionary{{"1009", taken}, {"1003", free}}}});
    controller.initializePane(true);
    EXPECT_EQ(view.calls, (std::vector<std::string>{"reload", "select", "scroll 0"}));  // from the top, nothing selected
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
    load(Dictionary{{keys::KeyboardShortcuts, Dictionary{{"1001", shortcutRecord(KVKeyCombination(0, 40, kCommand), false)}}}});
    controller.initializePane(true);

    controller.setEnabled(true, 1);  // row 1 is "1001"
    EXPECT_EQ(Value(stored("1001")), Value(shortcutRecord(KVKeyCombination(0, 40, kCommand), true)));
    EXPECT_EQ(Value(*only().userInfo),
              Value(Dictionary{{changes::ChangeKeyboardShortcutEnabled, Dictionary{{keys::CommandId, "1001"}, {keys::Enabled, true}}}}));
    EXPECT_EQ(only().name, notifications::CorvalisPaneChangedShortcuts);

    bus.clearPosted();
    controller.setEnabled(true, 0);  // no combination: the record holds "Enabled" alone
    EXPECT_EQ(Value(stored("1000")), Value(Dictionary{{keys::Enabled, true}}));

    bus.clearPosted();
    controller.setKeyCombination(KVKeyCombination(0, 0x12, modifiers::Option), 3);  // "1017"
    Dictionary expected = shortcutRecord(KVKeyCombination(0, 0x12, modifiers::Option), false);
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

TEST_F(Shortcuts, ARefusedCombinationBeepsAndExplainsWithOneButton) {
    controller.didFailToValidateKeyCombination("Taken");
    EXPECT_EQ(view.calls, (std::vector<std::string>{"beep", "ask Taken | " + LocalizedString(keystrings::ChooseAnotherCombination)}));
    EXPECT_EQ(view.alerts.at(0).buttons, std::vector<std::string>{LocalizedString(keystrings::OK)});
}
