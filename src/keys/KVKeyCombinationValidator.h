#pragma once
// One combination may drive only one thing: checks a new combination against
// the menus' hot keys, the commands' shortcuts and the groups' shortcuts, and
// converts hot keys kept in the older form.

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "keys/KVKeyCombination.h"
#include "plist/Value.h"

namespace corvalis {

class CorvalisPreferences;

class KVKeyCombinationValidator {
public:
    explicit KVKeyCombinationValidator(CorvalisPreferences& prefs) : _prefs(prefs) {}

    // Wiring to the tabs that show combinations (each optional).
    // The commands' names by id, as the Shortcuts tab shows them (null: none named).
    void setLocalizedCommands(const std::map<std::string, std::string>* names) { _localizedCommands = names; }
    void setSelectedGroup(std::function<std::optional<plist::Dictionary>()> selectedGroup) {
        _selectedGroup = std::move(selectedGroup);
    }
    void setGroupShortcutField(std::function<void()> updateDisplayString) { _groupShortcutField = std::move(updateDisplayString); }
    void setHotKeysTable(std::function<void()> reloadData) { _hotKeysTable = std::move(reloadData); }
    void setKeyboardShortcutsTable(std::function<void()> reloadData) { _keyboardShortcutsTable = std::move(reloadData); }

    // True when the combination is free (none is always free); otherwise the
    // message tells who has it. The item being edited is not excluded.
    bool validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error = nullptr);
    // True when a command shortcut record has no combination or none of the hot keys'.
    bool validateKeyboardShortcut(const plist::Dictionary& record);
    // The group's combination; none without a group or a "VirtualKeyCode". `update` is not used.
    std::optional<KVKeyCombination> keyCombinationForGroup(const plist::Dictionary* group, bool update) const;
    // Rewrites hot keys of the older form (code 1000 + key, with the key's character)
    // for the current layout, telling the controller of each. Nothing without a layout.
    void initializeHotKeys();

    // After a change of keyboard layout: reads the layout again and redraws every combination.
    void onKeyboardChanged();
    void updateKeyboardShortcutForGroup(const std::optional<plist::Dictionary>& group);
    void updateHotKeys();
    void updateKeyboardShortcuts();

    std::int32_t groupShortcutRefresh() const { return _updateGroupShortcut; }
    std::int32_t hotKeysRefresh() const { return _updateHotKeys; }
    std::int32_t keyboardShortcutsRefresh() const { return _updateKeyboardShortcuts; }

private:
    std::string commandName(const std::string& commandId) const;

    CorvalisPreferences& _prefs;
    const std::map<std::string, std::string>* _localizedCommands = nullptr;
    std::function<std::optional<plist::Dictionary>()> _selectedGroup;
    std::function<void()> _groupShortcutField;
    std::function<void()> _hotKeysTable;
    std::function<void()> _keyboardShortcutsTable;
    // A redraw is pending while its flag is not 0.
    std::int32_t _updateGroupShortcut = 0;
    std::int32_t _updateHotKeys = 0;
    std::int32_t _updateKeyboardShortcuts = 0;
};

}  // namespace corvalis
