#include "keys/KVKeyCombinationRecorder.h"
#include "keys/KeysFixture.h"

using namespace corvalis;

namespace {

// X11 key codes (evdev + 8) of the keys the tests press.
constexpr std::uint32_t kKeyK = 37 + 8, kKeyA = 30 + 8, kF5 = 63 + 8, kKeypad3 = 81 + 8,
                        kBackspace = 14 + 8, kTab = 15 + 8, kHelp = 110 + 8, kUnknown = 240 + 8;

KeyEvent press(std::uint32_t scanCode, std::uint32_t flags = 0, std::u32string characters = U"x") {
    return KeyEvent{scanCode, flags, std::move(characters)};
}

class FakeField : public KeyCombinationFieldHost, public KeyCombinationFieldDelegate {
public:
    int beeps = 0, changes = 0, validations = 0, failures = 0, focusMoves = 0;
    bool refuse = false, textViewAgrees = true;
    std::string shown, lastFailure;
    std::vector<std::string> editing;
    Responder focused = nullptr;
    int table = 0;

    void beep() override { ++beeps; }
    bool shouldChangeText(const std::string&) override { return textViewAgrees; }
    void didChangeText() override { ++changes; }
    void setDisplayString(const std::string& text) override { shown = text; }
    void makeFirstResponder(Responder responder) override {
        focused = responder;
        ++focusMoves;
    }
    void keyCombinationWillBeginEditing() override { editing.push_back("begin"); }
    void keyCombinationWillEndEditing() override { editing.push_back("end"); }
    bool validateKeyCombination(const std::optional<KVKeyCombination>&, std::string* error) override {
        ++validations;
        if (refuse) *error = "taken";
        return !refuse;
    }
    void didFailToValidateKeyCombination(const std::string& error) override {
        ++failures;
        lastFailure = error;
    }
    Responder nextFirstResponderForControl() override { return &table; }
};

class Recording : public ::testing::Test {
protected:
    test::ScopedLayout us{"us"};
    FakeField field;
    KVKeyCombinationRecorder recorder{field, &field};
};

}  // namespace

TEST_F(Recording, EachKeyIsRecordedOrRefusedWithABeep) {
    using namespace eventflags;
    // In order, each from where the one before left the field; no text: refused with a beep, the old value kept.
    struct Step {
        KeyEvent event;
        const char* shown;
    } steps[] = {
        {press(kKeyK), nullptr},  // a letter needs a modifier
        {press(kKeyK, Command | Shift), "⇧⌘K"},
        {press(kKeyA, 0x10000), nullptr},  // Caps Lock is not one of the four modifiers
        {press(kUnknown, Command), nullptr},  // a key the original keyboards lack, whatever the modifiers
        {press(kHelp), nullptr},
        {press(kF5), "F5"},
        {press(kKeypad3, Option | Control | Shift | Command), "⇧⌃⌥⌘[3]"},
        {press(kBackspace, Command, U"\b"), "⌘⌫"},
        {press(kBackspace, 0, U"\b"), ""},  // Delete alone clears
        {press(kKeyA, Command, U"\x1b"), "⌘⎋"},  // whatever types Escape is the Escape key
    };
    int beeps = 0, changes = 0;
    for (const Step& step : steps) {
        std::string before = field.shown;
        recorder.keyDown(step.event);
        step.shown ? ++changes : ++beeps;
        EXPECT_EQ(field.shown, step.shown ? step.shown : before) << before;
        EXPECT_EQ(field.beeps, beeps) << before;
        EXPECT_EQ(field.changes, changes) << before;
        EXPECT_EQ(field.focusMoves, changes) << "focus moves on to the table after each recording";
    }
    EXPECT_EQ(recorder.objectValue(), KVKeyCombination(0, 53, modifiers::Command));
    EXPECT_EQ(field.focused, &field.table);
}

TEST_F(Recording, TabMovesFocusUnlessAModifierIsDown) {
    using enum KVKeyCombinationRecorder::KeyHandling;
    EXPECT_EQ(recorder.keyDown(press(kTab, 0, U"\t")), PassOn);
    EXPECT_EQ(recorder.keyDown(press(kTab, eventflags::Shift, U"\x19")), PassOn);
    EXPECT_EQ(field.validations + field.beeps + field.focusMoves, 0);
    EXPECT_EQ(recorder.keyDown(press(kTab, eventflags::Option, U"\t")), Recorded);
    EXPECT_EQ(field.shown, "⌥⇥");
    EXPECT_EQ(recorder.keyDown(press(kTab, eventflags::Shift | eventflags::Control, U"\x19")), Recorded);
    EXPECT_EQ(field.shown, "⇧⌃⇥");
}

TEST_F(Recording, TheSameCombinationAgainChangesNothingAndAsksNothing) {
    recorder.setObjectValue(KVKeyCombination('k', 0x28, modifiers::Command));
    field.refuse = true;  // the check would find the value itself
    recorder.keyDown(press(kKeyK, eventflags::Command));
    EXPECT_EQ(field.validations, 0);
    EXPECT_EQ(field.failures, 0);
    EXPECT_EQ(field.changes, 0);
    EXPECT_EQ(recorder.objectValue()->keyCode(), 'k');  // the kept character stays
    EXPECT_EQ(field.focusMoves, 1);
}

TEST_F(Recording, ARefusedCombinationKeepsTheValueMovesFocusAndReportsOnce) {
    recorder.setObjectValue(KVKeyCombination(0, 0x28, modifiers::Command));
    field.refuse = true;
    recorder.keyDown(press(kKeyA, eventflags::Command));
    EXPECT_EQ(recorder.objectValue(), KVKeyCombination(0, 0x28, modifiers::Command));
    EXPECT_EQ(field.shown, "⌘K");
    EXPECT_EQ(field.validations, 1);
    EXPECT_EQ(field.failures, 1);
    EXPECT_EQ(field.lastFailure, "taken");
    EXPECT_EQ(field.focused, &field.table);
    EXPECT_EQ(field.changes + field.beeps, 0);

    // A field that may not change its text beeps and does nothing else.
    field.textViewAgrees = false;
    recorder.keyDown(press(kKeyA, eventflags::Control));
    EXPECT_EQ(field.beeps, 1);
    EXPECT_EQ(field.validations, 1);
    EXPECT_EQ(field.focusMoves, 1);
}

TEST_F(Recording, FocusTellsTheOwnerAndWithoutOwnerEverythingIsTaken) {
    recorder.becomeFirstResponder();
    recorder.resignFirstResponder();
    EXPECT_EQ(field.editing, (std::vector<std::string>{"begin", "end"}));

    KVKeyCombinationRecorder alone(field);
    alone.keyDown(press(kKeyA, eventflags::Command));
    EXPECT_EQ(alone.objectValue(), KVKeyCombination(0, 0, modifiers::Command));
    EXPECT_EQ(field.focused, nullptr);
    EXPECT_EQ(field.validations, 0);
}
