#include "keys/KVKeyCombinationValidator.h"

#include "keys/ComKestrovaShortcutsController.h"
#include "keys/KVKeyCombinationCenter.h"
#include "keys/KeyStrings.h"
#include "prefs/CorvalisPreferences.h"
#include "text/Localization.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

constexpr std::uint16_t kOlderFormBase = 1000;

bool sameKey(const Dictionary& record, const KVKeyCombination& combination) {
    std::optional<std::uint16_t> code = storedVirtualKeyCode(record);
    return code && *code == combination.virtualKeyCode() &&
           storedModifiers(record).value_or(0) == combination.modifiers();
}

const char* hotKeyMessage(std::size_t index) {
    switch (index) {
    case 0: return keystrings::KeyCombinationExistsAlready1;
    case 1: return keystrings::KeyCombinationExistsAlready2;
    case 2: return keystrings::KeyCombinationExistsAlready3;
    default: return keystrings::KeyCombinationExistsAlready4;
    }
}

const char* groupMessage(std::int64_t action) {
    switch (action) {
    case 0: return keystrings::KeyCombinationExistsAlready6;
    case 1: return keystrings::KeyCombinationExistsAlready7;
    default: return keystrings::KeyCombinationExistsAlready8;
    }
}

}  // namespace

std::string KVKeyCombinationValidator::commandName(const std::string& commandId) const {
    if (!_shortcutsController) return "";
    const auto& names = _shortcutsController->localizedCommands();
    auto found = names.find(commandId);
    return found == names.end() ? "" : found->second;
}

bool KVKeyCombinationValidator::validateKeyCombination(const std::optional<KVKeyCombination>& combination,
                                                       std::string* error) {
    if (error) error->clear();
    if (!combination) return true;

    if (std::optional<Array> hotKeys = _prefs.arrayForKey(keys::HotKeys)) {
        for (std::size_t i = 0; i < hotKeys->size(); ++i) {
            const Dictionary* record = (*hotKeys)[i].dictionary();
            if (!record || !sameKey(*record, *combination)) continue;
            if (error) *error = LocalizedFormat(hotKeyMessage(i), {combination->text()});
            return false;
        }
    }
    if (std::optional<Dictionary> shortcuts = _prefs.dictForKey(keys::KeyboardShortcuts)) {
        for (const auto& [commandId, value] : *shortcuts) {
            const Dictionary* record = value.dictionary();
            if (!record || !sameKey(*record, *combination)) continue;
            if (error)
                *error = LocalizedFormat(keystrings::KeyCombinationExistsAlready5,
                                         {combination->text(), commandName(commandId)});
            return false;
        }
    }
    if (std::optional<Array> groups = _prefs.arrayForKey(keys::Groups)) {
        for (const Value& value : *groups) {
            const Dictionary* group = value.dictionary();
            const Dictionary* shortcut = group ? (*group)[keys::KeyboardShortcut].dictionary() : nullptr;
            if (!shortcut || !sameKey(*shortcut, *combination)) continue;
            if (error) {
                std::int64_t action = (*shortcut)[keys::Action].toInt64().value_or(0);
                const std::string* name = (*group)[keys::Name].string();
                *error = LocalizedFormat(groupMessage(action), {combination->text(), name ? *name : std::string()});
            }
            return false;
        }
    }
    return true;
}

bool KVKeyCombinationValidator::validateKeyboardShortcut(const Dictionary& record) {
    std::optional<KVKeyCombination> combination = KVKeyCombination::fromDictionary(record);
    if (!combination) return true;
    std::optional<Array> hotKeys = _prefs.arrayForKey(keys::HotKeys);
    if (!hotKeys) return true;
    for (const Value& value : *hotKeys)
        if (const Dictionary* hotKey = value.dictionary(); hotKey && sameKey(*hotKey, *combination)) return false;
    return true;
}

std::optional<KVKeyCombination> KVKeyCombinationValidator::keyCombinationForGroup(const Dictionary* group,
                                                                                  bool /*update*/) const {
    if (!group) return std::nullopt;
    return KVKeyCombination::fromValue((*group)[keys::KeyboardShortcut]);
}

void KVKeyCombinationValidator::initializeHotKeys() {
    // Without a layout every character would look untypable and lose its key for good.
    if (!KVKeyCombinationCenter::sharedCenter().layout()) return;
    std::optional<Array> hotKeys = _prefs.arrayForKey(keys::HotKeys);
    if (!hotKeys) return;
    for (std::size_t i = 0; i < hotKeys->size(); ++i) {
        std::optional<Dictionary> record = plist::asDictionary((*hotKeys)[i]);
        if (!record) continue;
        std::optional<std::uint16_t> stored = storedVirtualKeyCode(*record);
        if (!stored || *stored < kOlderFormBase) continue;
        auto character = static_cast<std::uint8_t>((*record)[keys::Character].toInt64().value_or(0));
        // One byte is one character only below 0x80; other bytes are not UTF-8 on their own.
        std::optional<std::uint16_t> code;
        if (character != 0 && character < 0x80)
            code = KVKeyCombinationCenter::sharedCenter().stringToVirtualKeyCode(std::string(1, static_cast<char>(character)));
        if (!code) {
            character = 0;
            code = static_cast<std::uint16_t>(*stored - kOlderFormBase);
        }
        Dictionary converted{{keys::Character, Value::uint8(character)},
                             {keys::Modifiers, (*record)[keys::Modifiers]},
                             {keys::VirtualKeyCode, Value::uint16(*code)},
                             {keys::Position, (*record)[keys::Position]}};
        hotKeys->set(i, converted);
        _prefs.synchronizeHotKey(converted, static_cast<int>(i));
    }
}

void KVKeyCombinationValidator::onKeyboardChanged() {
    KVKeyCombinationCenter::sharedCenter().layoutChanged();
    _updateGroupShortcut = 1;
    _updateHotKeys = 1;
    _updateKeyboardShortcuts = 1;
    updateKeyboardShortcutForGroup(_selectedGroup ? _selectedGroup() : std::nullopt);
    updateHotKeys();
    updateKeyboardShortcuts();
}

void KVKeyCombinationValidator::updateKeyboardShortcutForGroup(const std::optional<Dictionary>& group) {
    if (_updateGroupShortcut == 0) return;
    if (group && _groupShortcutField) _groupShortcutField();
    if (_updateGroupShortcut == 1) _updateGroupShortcut = 0;
}

void KVKeyCombinationValidator::updateHotKeys() {
    if (_updateHotKeys == 0) return;
    if (_hotKeysTable) _hotKeysTable();
    if (_updateHotKeys == 1) _updateHotKeys = 0;
}

void KVKeyCombinationValidator::updateKeyboardShortcuts() {
    if (_updateKeyboardShortcuts == 0) return;
    if (_keyboardShortcutsTable) _keyboardShortcutsTable();
    if (_updateKeyboardShortcuts == 1) _updateKeyboardShortcuts = 0;
}

}  // namespace corvalis
