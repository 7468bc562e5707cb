#pragma once
// The stored virtual key codes are the original platform's (the controller
// reads them); this table ties each to the physical key's evdev code.

#include <cstdint>
#include <optional>

namespace corvalis {

// The evdev code of the key with this virtual key code; none for codes no keyboard has.
std::optional<std::uint16_t> evdevKeyCodeForVirtualKeyCode(std::uint16_t virtualKeyCode);
// The virtual key code of a physical key; none for keys the original keyboards lack.
std::optional<std::uint16_t> virtualKeyCodeForEvdevKeyCode(std::uint16_t evdevKeyCode);

// X11 key codes (Qt's native scan codes under X) are evdev codes plus 8.
inline constexpr std::uint32_t kX11KeyCodeOffset = 8;

}  // namespace corvalis
