#pragma once
// Real keyboard layouts from the system's keyboard data, and preferences kept in memory.

#include "keys/KVKeyCombination.h"
#include "keys/KVKeyCombinationCenter.h"
#include "platform/linux/XkbKeyboardLayout.h"
#include "support/PrefsFixture.h"
#include "support/TestSupport.h"

namespace corvalis::test {

// Makes the key-name centre use a named layout until the end of the scope.
class ScopedLayout {
public:
    explicit ScopedLayout(const std::string& layout, const std::string& variant = "")
        : previous_(KVKeyCombinationCenter::sharedCenter().layout()) {
        auto named = XkbKeyboardLayout::fromNames({layout, variant});
        EXPECT_TRUE(named) << "no keyboard data for " << layout << "(" << variant << ")";
        KVKeyCombinationCenter::sharedCenter().setLayout(named);
    }
    ~ScopedLayout() { KVKeyCombinationCenter::sharedCenter().setLayout(previous_); }

private:
    std::shared_ptr<const KeyboardLayout> previous_;
};

inline plist::Dictionary hotKey(std::uint8_t character, std::uint32_t modifiers, std::uint16_t code,
                                std::int32_t position = 0) {
    return plist::Dictionary{{keys::Character, plist::Value::uint8(character)},
                             {keys::Modifiers, plist::Value::uint32(modifiers)},
                             {keys::VirtualKeyCode, plist::Value::uint16(code)},
                             {keys::Position, plist::Value::int32(position)}};
}

// The factory hot keys as they are stored once read under "us": ⇧⌃O, ⇧⌃Q, ⇧⌃S and ⇧⌃E.
inline plist::Array factoryHotKeys() {
    return plist::Array{hotKey('o', 0x1200, 31), hotKey('q', 0x1200, 12, 1), hotKey('s', 0x1200, 1, 2),
                        hotKey('e', 0x1200, 14, 3)};
}

// A command's stored record: its combination and whether it is on.
inline plist::Dictionary shortcutRecord(const KVKeyCombination& combination, bool enabled) {
    plist::Dictionary record = combination.dictionary();
    record.set(keys::Enabled, enabled);
    return record;
}

}  // namespace corvalis::test
