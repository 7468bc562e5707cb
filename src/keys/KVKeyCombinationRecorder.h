#pragma once
// What a key combination field does with the keys pressed while it is being
// edited: the next key with its modifiers becomes the field's value instead of
// text. The widgets forward their key events here.

#include <cstdint>
#include <optional>
#include <string>

#include "keys/KVKeyCombination.h"

namespace corvalis {

// Device-independent modifier flags of a key event.
namespace eventflags {
inline constexpr std::uint32_t Shift = 0x20000;
inline constexpr std::uint32_t Control = 0x40000;
inline constexpr std::uint32_t Option = 0x80000;
inline constexpr std::uint32_t Command = 0x100000;
inline constexpr std::uint32_t AllFour = 0x1E0000;
}  // namespace eventflags

struct KeyEvent {
    std::uint32_t nativeScanCode = 0;  // the X11 key code: evdev + 8
    std::uint32_t modifierFlags = 0;   // eventflags
    std::u32string charactersIgnoringModifiers;
};

// The virtual key code of the event's physical key; 0xFFFF for keys the original keyboards lack.
std::uint16_t virtualKeyCodeForEvent(const KeyEvent& event);
// Tab with no modifier, or back-tab with exactly Shift: they move focus instead of being recorded.
bool isNavigationEvent(const KeyEvent& event);
// The combination an event records; none for a key that needs a modifier and has none.
std::optional<KVKeyCombination> _keyCombinationForEvent(const KeyEvent& event);
std::uint32_t modifiersForEventFlags(std::uint32_t flags);

// An opaque handle of the view that takes focus after recording (a widget in the window).
using Responder = void*;

// The owner of a field; every operation is optional, hence the neutral defaults.
class KeyCombinationFieldDelegate {
public:
    virtual ~KeyCombinationFieldDelegate() = default;
    virtual void keyCombinationWillBeginEditing() {}
    virtual void keyCombinationWillEndEditing() {}
    // False refuses the combination (none means "no combination"), with a message in `error`.
    virtual bool validateKeyCombination(const std::optional<KVKeyCombination>&, std::string* /*error*/) {
        return true;
    }
    virtual void didFailToValidateKeyCombination(const std::string& /*error*/) {}
    virtual Responder nextFirstResponderForControl() { return nullptr; }
};

// The field's widget side.
class KeyCombinationFieldHost {
public:
    virtual ~KeyCombinationFieldHost() = default;
    virtual void beep() = 0;
    // Whether the text may be replaced now (a read-only field says no).
    virtual bool shouldChangeText(const std::string& /*replacement*/) { return true; }
    // The value changed; the display string is already up to date.
    virtual void didChangeText() {}
    virtual void setDisplayString(const std::string& text) = 0;
    virtual void makeFirstResponder(Responder responder) = 0;
};

class KVKeyCombinationRecorder {
public:
    enum class KeyHandling { PassOn, Recorded };

    explicit KVKeyCombinationRecorder(KeyCombinationFieldHost& host, KeyCombinationFieldDelegate* delegate = nullptr)
        : _host(host), _delegate(delegate) {}

    const std::optional<KVKeyCombination>& objectValue() const { return _value; }
    // Takes the value and refreshes the display string.
    void setObjectValue(const std::optional<KVKeyCombination>& value);
    std::string stringValue() const { return displayStringForKeyCombination(_value).value_or(""); }
    static std::optional<std::string> displayStringForKeyCombination(const std::optional<KVKeyCombination>& value);
    void updateDisplayString() { _host.setDisplayString(stringValue()); }
    void setDelegate(KeyCombinationFieldDelegate* delegate) { _delegate = delegate; }

    // Focus arrives or leaves: the delegate hears of it (so the controller can suspend its hot keys).
    void becomeFirstResponder();
    void resignFirstResponder();
    // One key pressed while editing; navigation keys are passed on to move focus.
    KeyHandling keyDown(const KeyEvent& event);

private:
    void record(const KeyEvent& event);

    KeyCombinationFieldHost& _host;
    KeyCombinationFieldDelegate* _delegate;
    std::optional<KVKeyCombination> _value;
};

}  // namespace corvalis
