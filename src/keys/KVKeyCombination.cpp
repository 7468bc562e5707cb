#include "keys/KVKeyCombination.h"

#include "keys/KVKeyCombinationCenter.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

using plist::Dictionary;
using plist::Value;

std::optional<std::uint16_t> storedVirtualKeyCode(const Dictionary& record) {
    std::optional<std::int64_t> code = record[keys::VirtualKeyCode].toInt64();
    if (!code) return std::nullopt;
    return static_cast<std::uint16_t>(*code);
}

std::optional<std::uint32_t> storedModifiers(const Dictionary& record) {
    std::optional<std::int64_t> mask = record[keys::Modifiers].toInt64();
    if (!mask) return std::nullopt;
    return static_cast<std::uint32_t>(*mask);
}

std::optional<KVKeyCombination> KVKeyCombination::fromDictionary(const Dictionary& record) {
    std::optional<std::uint16_t> code = storedVirtualKeyCode(record);
    if (!code) return std::nullopt;
    auto character = static_cast<std::uint8_t>(record[keys::Character].toInt64().value_or(0));
    return KVKeyCombination(character, *code, storedModifiers(record).value_or(0));
}

std::optional<KVKeyCombination> KVKeyCombination::fromValue(const Value& record) {
    const Dictionary* dictionary = record.dictionary();
    return dictionary ? fromDictionary(*dictionary) : std::nullopt;
}

Dictionary KVKeyCombination::dictionary() const {
    Dictionary record;
    storeInto(record);
    return record;
}

void KVKeyCombination::storeInto(const Dictionary& record) const {
    record.set(keys::Character, Value::uint8(_keyCode));
    record.set(keys::VirtualKeyCode, Value::uint16(_virtualKeyCode));
    record.set(keys::Modifiers, Value::uint32(_modifiers));
}

std::string KVKeyCombination::text() const { return KeyCombination(_keyCode, _virtualKeyCode, _modifiers); }

std::string BuildModifierString(std::uint32_t mask) {
    // The order of the original product (not the menu order); the controller's users know it.
    std::string prefix;
    if (mask & modifiers::Shift) prefix += "\u21E7";
    if (mask & modifiers::Control) prefix += "\u2303";
    if (mask & modifiers::Option) prefix += "\u2325";
    if (mask & modifiers::Command) prefix += "\u2318";
    return prefix;
}

std::string KeyCombination(std::uint8_t keyCode, std::uint16_t virtualKeyCode, std::uint32_t mask) {
    // The key with code 0 and no modifiers therefore has no text; kept as the controller shows it.
    if (keyCode == 0 && virtualKeyCode == 0 && mask == 0) return "";
    std::optional<std::string> name = KVKeyCombinationCenter::sharedCenter().virtualKeyCodeToString(virtualKeyCode);
    return BuildModifierString(mask) + name.value_or("");
}

}  // namespace corvalis
