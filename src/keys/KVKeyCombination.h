#pragma once
// One keyboard combination (a menu's hot key, a group's or a command's
// shortcut), its stored dictionary form and its text (⇧⌘K, ⌥F5, ⌃[3]).

#include <cstdint>
#include <optional>
#include <string>

#include "plist/Value.h"

namespace corvalis {

// The stored modifier mask (the original platform's classic event modifiers).
namespace modifiers {
inline constexpr std::uint32_t Command = 0x0100;
inline constexpr std::uint32_t Shift = 0x0200;
inline constexpr std::uint32_t Option = 0x0800;
inline constexpr std::uint32_t Control = 0x1000;
}  // namespace modifiers

class KVKeyCombination {
public:
    KVKeyCombination() = default;
    KVKeyCombination(std::uint8_t keyCode, std::uint16_t virtualKeyCode, std::uint32_t modifiers)
        : _keyCode(keyCode), _virtualKeyCode(virtualKeyCode), _modifiers(modifiers) {}

    static KVKeyCombination keyCombinationWithKeyCode(std::uint8_t keyCode, std::uint16_t virtualKeyCode,
                                                      std::uint32_t modifiers) {
        return {keyCode, virtualKeyCode, modifiers};
    }
    // The combination of a stored record ("VirtualKeyCode", "Modifiers",
    // "Character"); none when it has no "VirtualKeyCode" number.
    static std::optional<KVKeyCombination> fromDictionary(const plist::Dictionary& record);
    static std::optional<KVKeyCombination> fromValue(const plist::Value& record);

    std::uint8_t keyCode() const { return _keyCode; }
    std::uint16_t virtualKeyCode() const { return _virtualKeyCode; }
    std::uint32_t modifiers() const { return _modifiers; }
    void setKeyCode(std::uint8_t keyCode) { _keyCode = keyCode; }
    void setVirtualKeyCode(std::uint16_t virtualKeyCode) { _virtualKeyCode = virtualKeyCode; }
    void setModifiers(std::uint32_t modifiers) { _modifiers = modifiers; }

    // All three fields equal.
    bool isEqual(const KVKeyCombination& other) const {
        return _modifiers == other._modifiers && _virtualKeyCode == other._virtualKeyCode &&
               _keyCode == other._keyCode;
    }
    // The same key and modifiers; the kept character does not count. Conflicts are decided by this.
    bool isEquivalent(const KVKeyCombination& other) const {
        return _modifiers == other._modifiers && _virtualKeyCode == other._virtualKeyCode;
    }
    bool operator==(const KVKeyCombination& other) const { return isEqual(other); }

    // { "Character": uint8, "VirtualKeyCode": uint16, "Modifiers": uint32 }.
    plist::Dictionary dictionary() const;
    // Stores the three fields into `record`, keeping its other keys.
    void storeInto(plist::Dictionary& record) const;

    // KeyCombination() of the three fields.
    std::string text() const;

private:
    std::uint8_t _keyCode = 0;
    std::uint16_t _virtualKeyCode = 0;
    std::uint32_t _modifiers = 0;
};

// The text of a combination: the glyphs of its modifiers in the order Shift,
// Control, Option, Command, then the key's name. All-zero gives "".
std::string KeyCombination(std::uint8_t keyCode, std::uint16_t virtualKeyCode, std::uint32_t modifiers);
// The modifier glyphs alone, in the same order.
std::string BuildModifierString(std::uint32_t modifiers);

// A record's "VirtualKeyCode" and "Modifiers" read at the widths the controller
// reads them (16 and 32 bits unsigned); none when either is not a number.
std::optional<std::uint16_t> storedVirtualKeyCode(const plist::Dictionary& record);
std::optional<std::uint32_t> storedModifiers(const plist::Dictionary& record);

}  // namespace corvalis
