#pragma once
// The user's keyboard layout, as far as key names need it: what one physical
// key types with no modifiers held. Implemented with xkbcommon in platform/linux.

#include <cstdint>
#include <optional>
#include <string>

namespace corvalis {

class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;

    // The UTF-8 text the key with this evdev code types with no modifier down
    // (keypad keys as with Num Lock on): "" when it types nothing, none when
    // the layout cannot translate at all.
    virtual std::optional<std::string> translateKey(std::uint16_t evdevKeyCode) const = 0;
    // Equal for two readings of the same layout; tells a real change from a repeated notice.
    virtual std::string identity() const = 0;
};

}  // namespace corvalis
