#pragma once
// Keyboard layouts read and translated with xkbcommon.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/KeyboardLayout.h"

struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace corvalis {

// A layout by its XKB names ("fr", "de" with variant "nodeadkeys", "us,de").
struct XkbLayoutNames {
    std::string layout;
    std::string variant;
};

class XkbKeyboardLayout : public KeyboardLayout {
public:
    // The named layout from the system's keyboard data; none when it does not compile.
    static std::shared_ptr<XkbKeyboardLayout> fromNames(const XkbLayoutNames& names);
    // The user's layout now: the X server's active one when there is a server,
    // else XKB_DEFAULT_LAYOUT/XKB_DEFAULT_VARIANT, else the system keyboard
    // configuration, else "us".
    static std::shared_ptr<XkbKeyboardLayout> current();
    // The X server's keymap and active group; none without a server.
    static std::shared_ptr<XkbKeyboardLayout> fromXServer();
    // XKBLAYOUT and XKBVARIANT of a keyboard configuration file such as /etc/default/keyboard.
    static std::optional<XkbLayoutNames> namesFromKeyboardConfiguration(const std::filesystem::path& file);

    ~XkbKeyboardLayout() override;
    XkbKeyboardLayout(const XkbKeyboardLayout&) = delete;
    XkbKeyboardLayout& operator=(const XkbKeyboardLayout&) = delete;

    std::optional<std::string> translateKey(std::uint16_t evdevKeyCode) const override;
    std::string identity() const override { return _identity; }

private:
    XkbKeyboardLayout(xkb_context* context, xkb_keymap* keymap, unsigned group, std::string identity);

    xkb_context* _context;
    xkb_keymap* _keymap;
    xkb_state* _state;
    std::string _identity;
};

}  // namespace corvalis
