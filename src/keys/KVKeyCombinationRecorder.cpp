#include "keys/KVKeyCombinationRecorder.h"

#include "keys/EvdevKeyCodes.h"
#include "keys/KVKeyCombinationCenter.h"

namespace corvalis {

namespace {

constexpr std::uint16_t kDeleteKey = 51;
constexpr std::uint16_t kEscapeKey = 53;
constexpr std::uint16_t kNoSuchKey = 0xFFFF;
constexpr char32_t kTab = 9;
constexpr char32_t kBackTab = 25;
constexpr char32_t kEscape = 27;

}  // namespace

std::uint16_t virtualKeyCodeForEvent(const KeyEvent& event) {
    if (event.nativeScanCode < kX11KeyCodeOffset || event.nativeScanCode > 0xFFFF) return kNoSuchKey;
    return virtualKeyCodeForEvdevKeyCode(static_cast<std::uint16_t>(event.nativeScanCode - kX11KeyCodeOffset))
        .value_or(kNoSuchKey);
}

bool isNavigationEvent(const KeyEvent& event) {
    if (event.charactersIgnoringModifiers.size() != 1) return false;
    char32_t character = event.charactersIgnoringModifiers[0];
    std::uint32_t high = event.modifierFlags & 0xFFFF0000u;
    return (character == kTab && high == 0) || (character == kBackTab && high == eventflags::Shift);
}

std::uint32_t modifiersForEventFlags(std::uint32_t flags) {
    std::uint32_t mask = 0;
    if (flags & eventflags::Shift) mask |= modifiers::Shift;
    if (flags & eventflags::Control) mask |= modifiers::Control;
    if (flags & eventflags::Option) mask |= modifiers::Option;
    if (flags & eventflags::Command) mask |= modifiers::Command;
    return mask;
}

std::optional<KVKeyCombination> _keyCombinationForEvent(const KeyEvent& event) {
    std::uint16_t code = virtualKeyCodeForEvent(event);
    if (KVKeyCombinationCenter::virtualKeyCodeRequiresModifiers(code) &&
        (code > 255 || !(event.modifierFlags & eventflags::AllFour)))
        return std::nullopt;
    // Whatever key typed escape is recorded as the escape key.
    if (!event.charactersIgnoringModifiers.empty() && event.charactersIgnoringModifiers[0] == kEscape)
        code = kEscapeKey;
    return KVKeyCombination(0, code, modifiersForEventFlags(event.modifierFlags));
}

std::optional<std::string> KVKeyCombinationRecorder::displayStringForKeyCombination(
    const std::optional<KVKeyCombination>& value) {
    if (!value) return std::nullopt;
    return value->text();
}

void KVKeyCombinationRecorder::setObjectValue(const std::optional<KVKeyCombination>& value) {
    _value = value;
    updateDisplayString();
}

void KVKeyCombinationRecorder::becomeFirstResponder() {
    updateDisplayString();
    if (_delegate) _delegate->keyCombinationWillBeginEditing();
}

void KVKeyCombinationRecorder::resignFirstResponder() {
    if (_delegate) _delegate->keyCombinationWillEndEditing();
}

KVKeyCombinationRecorder::KeyHandling KVKeyCombinationRecorder::keyDown(const KeyEvent& event) {
    if (isNavigationEvent(event)) return KeyHandling::PassOn;
    record(event);
    return KeyHandling::Recorded;
}

void KVKeyCombinationRecorder::record(const KeyEvent& event) {
    std::optional<KVKeyCombination> combination;
    std::string text;
    if (virtualKeyCodeForEvent(event) == kDeleteKey && !(event.modifierFlags & eventflags::AllFour)) {
        // Delete alone clears the field.
    } else {
        combination = _keyCombinationForEvent(event);
        std::optional<std::string> display = displayStringForKeyCombination(combination);
        if (!display) {
            _host.beep();
            return;
        }
        text = *display;
    }
    if (!_host.shouldChangeText(text)) {
        _host.beep();
        return;
    }
    std::string error;
    bool unchanged = combination && _value && combination->isEquivalent(*_value);
    // Re-recording the current value is never refused: the check would find the value itself.
    if (!unchanged) {
        bool accepted = !_delegate || _delegate->validateKeyCombination(combination, &error);
        if (accepted) {
            setObjectValue(combination);
            _host.didChangeText();
        }
    }
    _host.makeFirstResponder(_delegate ? _delegate->nextFirstResponderForControl() : nullptr);
    if (!error.empty() && _delegate) _delegate->didFailToValidateKeyCombination(error);
}

}  // namespace corvalis
