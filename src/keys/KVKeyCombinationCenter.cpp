#include "keys/KVKeyCombinationCenter.h"

#include <algorithm>

#include "keys/EvdevKeyCodes.h"
#include "keys/KeyStrings.h"
#include "text/Localization.h"

namespace corvalis {

namespace {

constexpr std::uint16_t kKeypadKeys[] = {65, 67, 69, 75, 78, 81, 82, 83, 84, 85, 86, 87, 88, 89, 91, 92};

// Bit n stands for code 64 + n: F1-F19 and the four arrows may be used alone.
constexpr std::uint64_t kNoModifierKeys = [] {
    std::uint64_t bits = 0;
    for (int code : {64, 79, 80, 96, 97, 98, 99, 100, 101, 103, 105, 106, 107, 109, 111, 113, 118, 120, 122, 123,
                     124, 125, 126})
        bits |= std::uint64_t{1} << (code - 64);
    return bits;
}();

// Decodes one UTF-8 sequence; none when `text` is not exactly one code point.
std::optional<char32_t> singleCodePoint(std::string_view text) {
    if (text.empty()) return std::nullopt;
    auto lead = static_cast<unsigned char>(text[0]);
    std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || text.size() != length) return std::nullopt;
    char32_t point = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) point = (point << 6) | (static_cast<unsigned char>(text[i]) & 0x3F);
    return point;
}

}  // namespace

KVKeyCombinationCenter& KVKeyCombinationCenter::sharedCenter() {
    static KVKeyCombinationCenter center;
    return center;
}

KVKeyCombinationCenter::KVKeyCombinationCenter() {
    _specialKeys = {
        {122, "F1"},  {120, "F2"},  {99, "F3"},   {118, "F4"},  {96, "F5"},   {97, "F6"},   {98, "F7"},
        {100, "F8"},  {101, "F9"},  {109, "F10"}, {103, "F11"}, {111, "F12"}, {105, "F13"}, {107, "F14"},
        {113, "F15"}, {106, "F16"}, {64, "F17"},  {79, "F18"},  {80, "F19"},
        {114, LocalizedString(keystrings::Help)}, {49, LocalizedString(keystrings::Space)},
        {51, "\u232B"},  // delete
        {117, "\u2326"},  // forward delete
        {71, "\u2327"},  // keypad clear
        {123, "\u2190"}, {124, "\u2192"}, {126, "\u2191"}, {125, "\u2193"},
        {119, "\u2198"},  // end
        {115, "\u2196"},  // home
        {53, "\u238B"},  // escape
        {121, "\u21DF"},  // page down
        {116, "\u21DE"},  // page up
        {36, "\u21A9"},  // return
        {76, "\u2305"},  // enter
        {48, "\u21E5"},  // tab
    };
}

bool KVKeyCombinationCenter::isKeypadKey(std::uint16_t virtualKeyCode) {
    return std::find(std::begin(kKeypadKeys), std::end(kKeypadKeys), virtualKeyCode) != std::end(kKeypadKeys);
}

bool KVKeyCombinationCenter::virtualKeyCodeRequiresModifiers(std::uint16_t virtualKeyCode) {
    if (isKeypadKey(virtualKeyCode)) return false;
    if (virtualKeyCode < 64 || virtualKeyCode > 126) return true;
    return !(kNoModifierKeys & (std::uint64_t{1} << (virtualKeyCode - 64)));
}

std::optional<std::string> KVKeyCombinationCenter::translate(std::uint16_t virtualKeyCode) const {
    if (!_layout) return std::nullopt;
    std::optional<std::uint16_t> evdev = evdevKeyCodeForVirtualKeyCode(virtualKeyCode);
    if (!evdev) return std::string();  // no such key: it types nothing
    std::optional<std::string> typed = _layout->translateKey(*evdev);
    if (!typed) return std::nullopt;
    // One UTF-16 unit or nothing: dead keys, ligatures and astral characters have no name,
    // nor do control characters (the keys that type them have fixed names).
    std::optional<char32_t> point = singleCodePoint(*typed);
    if (!point || *point > 0xFFFF || *point < 0x20 || *point == 0x7F) return std::string();
    if (*point >= 'a' && *point <= 'z') return std::string(1, static_cast<char>(*point - 'a' + 'A'));
    return *typed;
}

std::optional<std::string> KVKeyCombinationCenter::virtualKeyCodeToString(std::uint16_t virtualKeyCode) const {
    std::lock_guard guard(_lock);
    if (auto special = _specialKeys.find(virtualKeyCode); special != _specialKeys.end()) return special->second;
    std::optional<std::string> name = translate(virtualKeyCode);
    if (name && isKeypadKey(virtualKeyCode)) return FormatText("[%@]", {*name});
    return name;
}

std::optional<std::uint16_t> KVKeyCombinationCenter::stringToVirtualKeyCode(std::string_view name) const {
    std::lock_guard guard(_lock);
    std::string key(name);
    if (key.size() == 1 && key[0] >= 'a' && key[0] <= 'z') key[0] = static_cast<char>(key[0] - 'a' + 'A');
    auto found = _nameToKeyCode.find(key);
    if (found == _nameToKeyCode.end()) return std::nullopt;
    return found->second;
}

void KVKeyCombinationCenter::_regenerateNSStringToKeyCodeMapping() {
    _nameToKeyCode.clear();
    for (std::uint16_t code = 0; code <= 127; ++code) {
        std::optional<std::string> name = virtualKeyCodeToString(code);
        if (name && !name->empty()) _nameToKeyCode[*name] = code;  // a later code overwrites an earlier one
    }
}

void KVKeyCombinationCenter::_cacheKeyboardLayout(std::shared_ptr<const KeyboardLayout> layout) {
    _layout = std::move(layout);
    _layoutIdentity = _layout ? _layout->identity() : std::string();
    _regenerateNSStringToKeyCodeMapping();
}

void KVKeyCombinationCenter::setLayout(std::shared_ptr<const KeyboardLayout> layout) {
    std::lock_guard guard(_lock);
    _cacheKeyboardLayout(std::move(layout));
}

void KVKeyCombinationCenter::setLayoutSource(LayoutSource source) {
    std::lock_guard guard(_lock);
    _source = std::move(source);
    _cacheKeyboardLayout(_source ? _source() : nullptr);
}

bool KVKeyCombinationCenter::layoutChanged() {
    std::lock_guard guard(_lock);
    if (!_source) return false;
    std::shared_ptr<const KeyboardLayout> current = _source();
    std::string identity = current ? current->identity() : std::string();
    if (current && _layout && identity == _layoutIdentity) return false;
    _cacheKeyboardLayout(std::move(current));
    return true;
}

std::shared_ptr<const KeyboardLayout> KVKeyCombinationCenter::layout() const {
    std::lock_guard guard(_lock);
    return _layout;
}

}  // namespace corvalis
