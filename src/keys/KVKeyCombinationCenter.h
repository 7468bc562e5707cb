#pragma once
// The names of keys under the user's current keyboard layout, and the way back
// from a name to a key. One instance for the process.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/KeyboardLayout.h"

namespace corvalis {

class KVKeyCombinationCenter {
public:
    using LayoutSource = std::function<std::shared_ptr<const KeyboardLayout>()>;

    static KVKeyCombinationCenter& sharedCenter();
    KVKeyCombinationCenter(const KVKeyCombinationCenter&) = delete;
    KVKeyCombinationCenter& operator=(const KVKeyCombinationCenter&) = delete;

    // The key's name: a fixed name for function, editing and arrow keys, else the
    // one character the layout types with it ("a"-"z" upper-cased, keypad keys
    // as "[3]"), "" when that is not exactly one character; none without a layout.
    std::optional<std::string> virtualKeyCodeToString(std::uint16_t virtualKeyCode) const;
    // The key whose name is `name` ("k" finds the key named "K"); the highest code wins a tie.
    std::optional<std::uint16_t> stringToVirtualKeyCode(std::string_view name) const;
    // False only for keypad keys, F1-F19 and the four arrows.
    static bool virtualKeyCodeRequiresModifiers(std::uint16_t virtualKeyCode);
    static bool isKeypadKey(std::uint16_t virtualKeyCode);

    // Where the current layout comes from; it is read at once.
    void setLayoutSource(LayoutSource source);
    // Reads the layout from the source again (after the system tells of a change);
    // true when it differs from the cached one, whose names are then rebuilt.
    bool layoutChanged();
    // Uses `layout` from now on (tests, and callers that read the layout themselves).
    void setLayout(std::shared_ptr<const KeyboardLayout> layout);
    std::shared_ptr<const KeyboardLayout> layout() const;

private:
    KVKeyCombinationCenter();
    void _cacheKeyboardLayout(std::shared_ptr<const KeyboardLayout> layout);
    void _regenerateNSStringToKeyCodeMapping();
    std::optional<std::string> translate(std::uint16_t virtualKeyCode) const;

    mutable std::recursive_mutex _lock;
    LayoutSource _source;
    std::shared_ptr<const KeyboardLayout> _layout;
    std::string _layoutIdentity;
    std::map<std::uint16_t, std::string> _specialKeys;
    std::map<std::string, std::uint16_t, std::less<>> _nameToKeyCode;
};

}  // namespace corvalis
