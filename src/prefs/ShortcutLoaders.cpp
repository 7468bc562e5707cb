// The hot keys of the four menus and the keyboard shortcuts of the commands.

#include <string>

#include "prefs/CorvalisPreferences.h"
#include "prefs/DefaultValues.h"
#include "schema/PreferenceKeys.h"
#include "prefs/RecordSupport.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

constexpr std::size_t kHotKeyCount = 4;
constexpr int kFirstCommandId = 1000;
constexpr int kLastCommandId = 1017;
constexpr const char* kToggleSingleApplicationModeId = "1009";

// A hot key the controller can register: a record with a number for each part of its key.
bool isUsableHotKey(const Value& value) {
    const Dictionary* record = value.dictionary();
    return record && (*record)[keys::Character].isNumber() && (*record)[keys::Modifiers].isNumber() &&
           (*record)[keys::VirtualKeyCode].isNumber();
}

std::uint16_t keyCodeOf(const Dictionary& record) {
    return static_cast<std::uint16_t>(record[keys::VirtualKeyCode].toInt64().value_or(0));
}

std::uint32_t modifiersOf(const Dictionary& record) {
    return static_cast<std::uint32_t>(record[keys::Modifiers].toInt64().value_or(0));
}

}  // namespace

void CorvalisPreferences::_loadHotKeys() {
    // Anything but four usable records (an empty array too) counts as no hot keys at all.
    if (std::optional<Array> stored = storedArray(keys::HotKeys)) {
        bool usable = stored->size() == kHotKeyCount;
        for (const Value& hotKey : *stored) usable = usable && isUsableHotKey(hotKey);
        bool clash = false;
        for (std::size_t i = 0; usable && i + 1 < stored->size(); ++i)
            for (std::size_t j = i + 1; j < stored->size(); ++j) {
                const Dictionary& a = *(*stored)[i].dictionary();
                const Dictionary& b = *(*stored)[j].dictionary();
                if (keyCodeOf(a) == keyCodeOf(b) && modifiersOf(a) == modifiersOf(b)) clash = true;
            }
        // Two menus on one key cannot both work: all four go back to the factory keys.
        if (!usable || clash) working().remove(keys::HotKeys);
    }
    Array hotKeys = arrayForKey(keys::HotKeys)->deepCopy();
    for (std::size_t i = 0; i < hotKeys.size(); ++i) {
        const Dictionary& record = *hotKeys[i].dictionary();
        std::optional<std::int32_t> position = record[keys::Position].toInt32();
        if (position && *position >= 0 && *position <= 5) continue;
        hotKeys.set(i, Dictionary{{keys::Character, record[keys::Character]},
                                  {keys::Modifiers, record[keys::Modifiers]},
                                  {keys::VirtualKeyCode, record[keys::VirtualKeyCode]},
                                  {keys::Position, Value::int32(0)}});
    }
    working().set(keys::HotKeys, hotKeys);
}

void CorvalisPreferences::_loadKeyboardShortcuts() {
    Dictionary result;
    std::optional<Dictionary> stored = storedDictionary(keys::KeyboardShortcuts);
    for (int id = kFirstCommandId; id <= kLastCommandId; ++id) {
        std::string key = std::to_string(id);
        const Value& entry = stored ? (*stored)[key] : Value();
        result.set(key, entry.dictionary() ? entry.deepCopy() : Value(Dictionary{{keys::Enabled, false}}));
    }
    if (!stored) {
        // Older versions kept only the hot key of single application mode, under a key of its own.
        if (std::optional<Dictionary> legacy = storedDictionary(keys::ToggleSingleApplicationModeHotKey)) {
            Dictionary entry;
            for (const char* part : {keys::Character, keys::Modifiers, keys::VirtualKeyCode})
                if ((*legacy)[part].isNumber()) entry.set(part, (*legacy)[part]);
            entry.set(keys::Enabled, true);
            result.set(kToggleSingleApplicationModeId, entry);
        }
    }
    working().remove(keys::ToggleSingleApplicationModeHotKey);
    working().set(keys::KeyboardShortcuts, result);
}

}  // namespace corvalis
