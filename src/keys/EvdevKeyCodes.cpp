#include "keys/EvdevKeyCodes.h"

#include <array>
#include <utility>

namespace corvalis {

namespace {

// Virtual key code → evdev code (linux/input-event-codes.h). 0 marks codes that
// no ANSI, ISO or JIS keyboard of the original platform sends.
constexpr std::array<std::uint16_t, 128> kEvdevForVirtual = [] {
    std::array<std::uint16_t, 128> t{};
    auto set = [&t](int virtualKey, int evdev) { t[virtualKey] = static_cast<std::uint16_t>(evdev); };
    // Letters, digits and punctuation of the main block.
    set(0x00, 30);   // A
    set(0x01, 31);   // S
    set(0x02, 32);   // D
    set(0x03, 33);   // F
    set(0x04, 35);   // H
    set(0x05, 34);   // G
    set(0x06, 44);   // Z
    set(0x07, 45);   // X
    set(0x08, 46);   // C
    set(0x09, 47);   // V
    set(0x0A, 86);   // ISO section: the extra ISO key (KEY_102ND)
    set(0x0B, 48);   // B
    set(0x0C, 16);   // Q
    set(0x0D, 17);   // W
    set(0x0E, 18);   // E
    set(0x0F, 19);   // R
    set(0x10, 21);   // Y
    set(0x11, 20);   // T
    set(0x12, 2);    // 1
    set(0x13, 3);    // 2
    set(0x14, 4);    // 3
    set(0x15, 5);    // 4
    set(0x16, 7);    // 6
    set(0x17, 6);    // 5
    set(0x18, 13);   // =
    set(0x19, 10);   // 9
    set(0x1A, 8);    // 7
    set(0x1B, 12);   // -
    set(0x1C, 9);    // 8
    set(0x1D, 11);   // 0
    set(0x1E, 27);   // ]
    set(0x1F, 24);   // O
    set(0x20, 22);   // U
    set(0x21, 26);   // [
    set(0x22, 23);   // I
    set(0x23, 25);   // P
    set(0x24, 28);   // Return
    set(0x25, 38);   // L
    set(0x26, 36);   // J
    set(0x27, 40);   // '
    set(0x28, 37);   // K
    set(0x29, 39);   // ;
    set(0x2A, 43);   // backslash
    set(0x2B, 51);   // ,
    set(0x2C, 53);   // /
    set(0x2D, 49);   // N
    set(0x2E, 50);   // M
    set(0x2F, 52);   // .
    set(0x30, 15);   // Tab
    set(0x31, 57);   // Space
    set(0x32, 41);   // ` (left of 1)
    set(0x33, 14);   // Delete (backspace)
    set(0x35, 1);    // Escape
    // Modifier keys.
    set(0x36, 126);  // right Command
    set(0x37, 125);  // Command
    set(0x38, 42);   // Shift
    set(0x39, 58);   // Caps Lock
    set(0x3A, 56);   // Option
    set(0x3B, 29);   // Control
    set(0x3C, 54);   // right Shift
    set(0x3D, 100);  // right Option
    set(0x3E, 97);   // right Control
    set(0x3F, 464);  // fn
    // Keypad; its clear key sits where other keyboards have Num Lock.
    set(0x41, 83);   // .
    set(0x43, 55);   // *
    set(0x45, 78);   // +
    set(0x47, 69);   // clear
    set(0x4B, 98);   // /
    set(0x4C, 96);   // enter
    set(0x4E, 74);   // -
    set(0x51, 117);  // =
    set(0x52, 82);   // 0
    set(0x53, 79);   // 1
    set(0x54, 80);   // 2
    set(0x55, 81);   // 3
    set(0x56, 75);   // 4
    set(0x57, 76);   // 5
    set(0x58, 77);   // 6
    set(0x59, 71);   // 7
    set(0x5B, 72);   // 8
    set(0x5C, 73);   // 9
    set(0x5F, 95);   // JIS keypad comma
    // Volume keys.
    set(0x48, 115);
    set(0x49, 114);
    set(0x4A, 113);
    // JIS keys.
    set(0x5D, 124);  // yen
    set(0x5E, 89);   // underscore (ro)
    set(0x66, 123);  // eisu
    set(0x68, 122);  // kana
    // Function keys.
    set(0x7A, 59);   // F1
    set(0x78, 60);   // F2
    set(0x63, 61);   // F3
    set(0x76, 62);   // F4
    set(0x60, 63);   // F5
    set(0x61, 64);   // F6
    set(0x62, 65);   // F7
    set(0x64, 66);   // F8
    set(0x65, 67);   // F9
    set(0x6D, 68);   // F10
    set(0x67, 87);   // F11
    set(0x6F, 88);   // F12
    set(0x69, 183);  // F13
    set(0x6B, 184);  // F14
    set(0x71, 185);  // F15
    set(0x6A, 186);  // F16
    set(0x40, 187);  // F17
    set(0x4F, 188);  // F18
    set(0x50, 189);  // F19
    set(0x5A, 190);  // F20
    // Navigation block; Help sits where other keyboards have Insert.
    set(0x72, 110);  // Help
    set(0x73, 102);  // Home
    set(0x74, 104);  // Page Up
    set(0x75, 111);  // forward delete
    set(0x77, 107);  // End
    set(0x79, 109);  // Page Down
    set(0x7B, 105);  // left
    set(0x7C, 106);  // right
    set(0x7D, 108);  // down
    set(0x7E, 103);  // up
    set(0x6E, 127);  // context menu
    return t;
}();

// Keys of other keyboards that the original platform reads as one of its own:
// Print Screen, Scroll Lock and Pause are its F13, F14 and F15.
constexpr std::pair<std::uint16_t, std::uint16_t> kExtraEvdevKeys[] = {{99, 0x69}, {70, 0x6B}, {119, 0x71}};

}  // namespace

std::optional<std::uint16_t> evdevKeyCodeForVirtualKeyCode(std::uint16_t virtualKeyCode) {
    if (virtualKeyCode >= kEvdevForVirtual.size() || kEvdevForVirtual[virtualKeyCode] == 0) return std::nullopt;
    return kEvdevForVirtual[virtualKeyCode];
}

std::optional<std::uint16_t> virtualKeyCodeForEvdevKeyCode(std::uint16_t evdevKeyCode) {
    if (evdevKeyCode == 0) return std::nullopt;
    for (std::size_t code = 0; code < kEvdevForVirtual.size(); ++code)
        if (kEvdevForVirtual[code] == evdevKeyCode) return static_cast<std::uint16_t>(code);
    for (const auto& [evdev, code] : kExtraEvdevKeys)
        if (evdev == evdevKeyCode) return code;
    return std::nullopt;
}

}  // namespace corvalis
