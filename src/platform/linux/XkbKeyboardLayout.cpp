#include "platform/linux/XkbKeyboardLayout.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace corvalis {

namespace {

using ContextPtr = std::unique_ptr<xkb_context, decltype(&xkb_context_unref)>;

ContextPtr newContext() {
    // The names are always given explicitly, so the environment must not add its own.
    ContextPtr context(xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES), &xkb_context_unref);
    // A layout that does not compile is answered with "none"; its details are no use on the terminal.
    if (context) xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    return context;
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string unquoted(std::string text) {
    while (!text.empty() && (text.back() == '\r' || text.back() == ' ' || text.back() == '\t')) text.pop_back();
    if (text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front())
        text = text.substr(1, text.size() - 2);
    return text;
}

}  // namespace

XkbKeyboardLayout::XkbKeyboardLayout(xkb_context* context, xkb_keymap* keymap, unsigned group, std::string identity)
    : _context(context), _keymap(keymap), _state(xkb_state_new(keymap)), _identity(std::move(identity)) {
    // Keypad keys are named by their digits, as with Num Lock on; Num Lock changes no other key.
    xkb_mod_index_t numLock = xkb_keymap_mod_get_index(keymap, XKB_MOD_NAME_NUM);
    xkb_mod_mask_t locked = numLock == XKB_MOD_INVALID ? 0 : xkb_mod_mask_t{1} << numLock;
    if (_state) xkb_state_update_mask(_state, 0, 0, locked, 0, 0, group);
}

XkbKeyboardLayout::~XkbKeyboardLayout() {
    if (_state) xkb_state_unref(_state);
    xkb_keymap_unref(_keymap);
    xkb_context_unref(_context);
}

std::shared_ptr<XkbKeyboardLayout> XkbKeyboardLayout::fromNames(const XkbLayoutNames& names) {
    ContextPtr context = newContext();
    if (!context || names.layout.empty()) return nullptr;
    xkb_rule_names rules{};
    rules.layout = names.layout.c_str();
    rules.variant = names.variant.empty() ? nullptr : names.variant.c_str();
    xkb_keymap* keymap = xkb_keymap_new_from_names(context.get(), &rules, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (!keymap) return nullptr;
    std::string identity = "names:" + names.layout + "(" + names.variant + ")";
    return std::shared_ptr<XkbKeyboardLayout>(new XkbKeyboardLayout(context.release(), keymap, 0, identity));
}

std::shared_ptr<XkbKeyboardLayout> XkbKeyboardLayout::fromXServer() {
    if (environment("DISPLAY").empty()) return nullptr;
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> guard(connection, &xcb_disconnect);
    if (!connection || xcb_connection_has_error(connection)) return nullptr;
    if (!xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                     XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr))
        return nullptr;
    std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
    if (device == -1) return nullptr;
    ContextPtr context = newContext();
    if (!context) return nullptr;
    xkb_keymap* keymap = xkb_x11_keymap_new_from_device(context.get(), connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (!keymap) return nullptr;
    // The server's state tells which of its layouts (groups) is active.
    xkb_layout_index_t group = 0;
    if (xkb_state* state = xkb_x11_state_new_from_device(keymap, connection, device)) {
        group = xkb_state_serialize_layout(state, XKB_STATE_LAYOUT_EFFECTIVE);
        xkb_state_unref(state);
    }
    std::string identity;
    if (char* text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1)) {
        identity = "x11:" + std::to_string(group) + ":" + std::to_string(std::hash<std::string>{}(text));
        std::free(text);
    }
    return std::shared_ptr<XkbKeyboardLayout>(new XkbKeyboardLayout(context.release(), keymap, group, identity));
}

std::optional<XkbLayoutNames> XkbKeyboardLayout::namesFromKeyboardConfiguration(const std::filesystem::path& file) {
    std::ifstream in(file);
    if (!in) return std::nullopt;
    XkbLayoutNames names;
    for (std::string line; std::getline(in, line);) {
        auto start = line.find_first_not_of(" \t");
        if (start == std::string::npos || line[start] == '#') continue;
        line = line.substr(start);
        if (line.rfind("XKBLAYOUT=", 0) == 0) names.layout = unquoted(line.substr(10));
        if (line.rfind("XKBVARIANT=", 0) == 0) names.variant = unquoted(line.substr(11));
    }
    if (names.layout.empty()) return std::nullopt;
    return names;
}

std::shared_ptr<XkbKeyboardLayout> XkbKeyboardLayout::current() {
    if (auto server = fromXServer()) return server;
    if (std::string layout = environment("XKB_DEFAULT_LAYOUT"); !layout.empty())
        if (auto named = fromNames({layout, environment("XKB_DEFAULT_VARIANT")})) return named;
    if (auto configured = namesFromKeyboardConfiguration("/etc/default/keyboard"))
        if (auto named = fromNames(*configured)) return named;
    return fromNames({"us", ""});
}

std::optional<std::string> XkbKeyboardLayout::translateKey(std::uint16_t evdevKeyCode) const {
    if (!_state) return std::nullopt;
    char buffer[64];
    int length = xkb_state_key_get_utf8(_state, evdevKeyCode + 8, buffer, sizeof buffer);
    if (length < 0) return std::nullopt;
    // Dead keys have no character of their own and come back empty.
    return std::string(buffer, std::min<std::size_t>(static_cast<std::size_t>(length), sizeof buffer - 1));
}

}  // namespace corvalis
