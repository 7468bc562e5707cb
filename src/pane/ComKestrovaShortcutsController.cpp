#include "pane/ComKestrovaShortcutsController.h"

#include "keys/KVKeyCombinationValidator.h"
#include "keys/KeyStrings.h"
#include "pane/HotKeyRecording.h"
#include "platform/NotificationCenter.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Dictionary;
using plist::Value;

ComKestrovaShortcutsController::ComKestrovaShortcutsController(CorvalisPreferences& prefs,
                                                               KVKeyCombinationValidator& validator,
                                                               NotificationCenter& distributed, ShortcutsView& view)
    : _prefs(prefs), _validator(validator), _distributed(distributed), _view(view) {
    _validator.setLocalizedCommands(&_localizedCommands);
    _validator.setKeyboardShortcutsTable([this] { _view.reloadData(); });
}

// The validator outlives the tab when other tabs share it.
ComKestrovaShortcutsController::~ComKestrovaShortcutsController() {
    _validator.setLocalizedCommands(nullptr);
    _validator.setKeyboardShortcutsTable({});
}

void ComKestrovaShortcutsController::initializePane(bool firstTime) {
    if (firstTime) {
        _commandIds.clear();
        _localizedCommands.clear();
        for (const FixedCommand& command : fixedCommands()) {
            std::string id = std::to_string(command.id);
            _commandIds.push_back(id);
            _localizedCommands[id] = LocalizedString(command.nameKey);
        }
    }
    _validateKeyboardShortcuts();
    _view.reloadData();
    _view.selectRows({});
    _view.scrollRowToVisible(EditorRow{0});
}

void ComKestrovaShortcutsController::willShowPane() { _validator.updateKeyboardShortcuts(); }

void ComKestrovaShortcutsController::updatePane(std::string& /*report*/) { _validator.updateKeyboardShortcuts(); }

void ComKestrovaShortcutsController::_validateKeyboardShortcuts() {
    std::optional<Dictionary> shortcuts = _prefs.dictForKey(keys::KeyboardShortcuts);
    if (!shortcuts) return;
    for (const std::string& id : _commandIds) {
        const Dictionary* record = (*shortcuts)[id].dictionary();
        if (!record || _validator.validateKeyboardShortcut(*record)) continue;
        // A hot key has this combination: the command loses it rather than both fighting over it.
        Dictionary cleared{{keys::Enabled, false}};
        shortcuts->set(id, cleared);
        _prefs.synchronizeShortcut(Dictionary{{keys::CommandId, id}, {keys::KeyCombination, cleared}},
                                   changes::ChangeKeyboardShortcut);
    }
}

std::optional<Dictionary> ComKestrovaShortcutsController::recordAt(int row) const {
    if (row < 0 || row >= numberOfRows()) return std::nullopt;
    std::optional<Dictionary> shortcuts = _prefs.dictForKey(keys::KeyboardShortcuts);
    if (!shortcuts) return std::nullopt;
    return plist::asDictionary((*shortcuts)[_commandIds[static_cast<std::size_t>(row)]]);
}

bool ComKestrovaShortcutsController::enabledAt(int row) const {
    std::optional<Dictionary> record = recordAt(row);
    return record && (*record)[keys::Enabled].toBool().value_or(false);
}

std::string ComKestrovaShortcutsController::commandAt(int row) const {
    if (row < 0 || row >= numberOfRows()) return "";
    return _localizedCommands.at(_commandIds[static_cast<std::size_t>(row)]);
}

std::optional<KVKeyCombination> ComKestrovaShortcutsController::keyCombinationAt(int row) const {
    std::optional<Dictionary> record = recordAt(row);
    return record ? KVKeyCombination::fromDictionary(*record) : std::nullopt;
}

void ComKestrovaShortcutsController::store(int row, const Dictionary& record) {
    std::optional<Dictionary> shortcuts = _prefs.dictForKey(keys::KeyboardShortcuts);
    if (!shortcuts) {
        shortcuts = Dictionary();
        _prefs.setDict(*shortcuts, keys::KeyboardShortcuts);
    }
    shortcuts->set(_commandIds[static_cast<std::size_t>(row)], record);
}

void ComKestrovaShortcutsController::setEnabled(bool enabled, int row) {
    if (row < 0 || row >= numberOfRows()) return;
    const std::string& id = _commandIds[static_cast<std::size_t>(row)];
    Dictionary record{{keys::Enabled, enabled}};
    if (std::optional<Dictionary> old = recordAt(row); old && old->contains(keys::VirtualKeyCode))
        for (const char* part : {keys::Character, keys::Modifiers, keys::VirtualKeyCode})
            record.set(part, (*old)[part]);
    store(row, record);
    _prefs.synchronizeShortcut(Dictionary{{keys::CommandId, id}, {keys::Enabled, enabled}},
                               changes::ChangeKeyboardShortcutEnabled);
    _validator.updateKeyboardShortcuts();
}

void ComKestrovaShortcutsController::setKeyCombination(const std::optional<KVKeyCombination>& combination, int row) {
    if (row < 0 || row >= numberOfRows()) return;
    const std::string& id = _commandIds[static_cast<std::size_t>(row)];
    std::optional<Dictionary> old = recordAt(row);
    Dictionary record = combination ? combination->dictionary() : Dictionary();
    Value enabled = old ? (*old)[keys::Enabled] : Value();
    record.set(keys::Enabled, enabled.isAbsent() ? Value(false) : enabled);
    store(row, record);
    _prefs.synchronizeShortcut(Dictionary{{keys::CommandId, id}, {keys::KeyCombination, record}},
                               changes::ChangeKeyboardShortcut);
    _validator.updateKeyboardShortcuts();
}

ShortcutTextColour ComKestrovaShortcutsController::keyCombinationTextColour(bool rowEnabled, bool windowIsKey,
                                                                            bool tableIsFirstResponder,
                                                                            bool rowSelected) {
    if (rowEnabled || (windowIsKey && tableIsFirstResponder && rowSelected)) return ShortcutTextColour::ControlText;
    return ShortcutTextColour::LightGrey;
}

void ComKestrovaShortcutsController::keyCombinationWillBeginEditing() {
    suspendHotKeys(_distributed);
}

void ComKestrovaShortcutsController::keyCombinationWillEndEditing() {
    resumeHotKeys(_distributed);
}

bool ComKestrovaShortcutsController::validateKeyCombination(const std::optional<KVKeyCombination>& combination,
                                                            std::string* error) {
    return _validator.validateKeyCombination(combination, error);
}

void ComKestrovaShortcutsController::didFailToValidateKeyCombination(const std::string& error) {
    refuseKeyCombination(_view, error);
}

}  // namespace corvalis
