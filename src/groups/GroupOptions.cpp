#include "groups/GroupOptions.h"

#include "fileutils/PathLimits.h"
#include "groups/GroupsController.h"
#include "keys/KVKeyCombinationValidator.h"
#include "keys/KeyStrings.h"
#include "pane/HotKeyRecording.h"
#include "platform/NotificationCenter.h"
#include "plist/Utf8.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Dictionary;
using plist::Value;

GroupOptions::GroupOptions(GroupsController& groups, CorvalisPreferences& prefs, KVKeyCombinationValidator& validator,
                           NotificationCenter& distributed, EditorView& view)
    : _groups(groups), _prefs(prefs), _validator(validator), _distributed(distributed), _view(view) {}

std::optional<Dictionary> GroupOptions::group() const { return _groups.selectedGroup(); }

bool GroupOptions::flag(const char* key) const {
    std::optional<Dictionary> selected = group();
    return selected && (*selected)[key].toBool().value_or(false);
}

std::string GroupOptions::iconName() const {
    std::optional<Dictionary> selected = group();
    return selected ? (*selected)[keys::Icon].stringOr("") : "";
}

Dictionary GroupOptions::shortcut() const {
    std::optional<Dictionary> selected = group();
    return selected ? plist::asDictionary((*selected)[keys::KeyboardShortcut]).value_or(Dictionary()) : Dictionary();
}

bool GroupOptions::shortcutEnabled() const { return shortcut()[keys::Enabled].toBool().value_or(false); }

int GroupOptions::shortcutAction() const { return std::clamp(shortcut()[keys::Action].toInt32().value_or(0), 0, 2); }

std::optional<KVKeyCombination> GroupOptions::keyCombination() const {
    std::optional<Dictionary> selected = group();
    return selected ? _validator.keyCombinationForGroup(&*selected, true) : std::nullopt;
}

void GroupOptions::setFlag(const char* key, bool on) {
    std::optional<Dictionary> selected = group();
    if (!selected) return;
    selected->set(key, on);
    _groups.selectedGroupDidChange();
}

void GroupOptions::setIcon(const std::string& name, const std::optional<plist::Data>& iconData) {
    std::optional<Dictionary> selected = group();
    if (!selected) return;
    if (name == kCustomIcon && iconData) {
        selected->set(keys::Icon, _groups._newUniqueIconName());
        selected->set(keys::IconData, *iconData);
    } else {
        selected->set(keys::Icon, name == kCustomIcon ? std::string() : name);
        selected->remove(keys::IconData);
    }
    _groups.selectedGroupDidChange();
}

bool GroupOptions::setIconFromFile(const std::string& path, const IconFileReader& read) {
    if (!isPathWithinLimit(path) || !plist::detail::isValidUtf8(path)) return false;
    setIcon(kCustomIcon, read(path));
    _prefs.setOpenPanelPath(path, keys::AddFileFolderPath);
    return true;
}

Dictionary GroupOptions::rewrittenShortcut(const Dictionary& changes) const {
    Dictionary old = shortcut();
    Dictionary record{{keys::CommandID, old[keys::CommandID]},
                      {keys::Enabled, old[keys::Enabled].toBool().value_or(false)},
                      {keys::Action, Value::int32(old[keys::Action].toInt32().value_or(0))}};
    if (old.contains(keys::VirtualKeyCode))
        for (const char* part : {keys::Character, keys::Modifiers, keys::VirtualKeyCode}) record.set(part, old[part]);
    for (const auto& [key, value] : changes) record.set(key, value);
    return record;
}

void GroupOptions::store(const Dictionary& record) {
    if (std::optional<Dictionary> selected = group()) selected->set(keys::KeyboardShortcut, record);
}

void GroupOptions::setShortcutEnabled(bool enabled) {
    if (!group()) return;
    Dictionary record = rewrittenShortcut(Dictionary{{keys::Enabled, enabled}});
    store(record);
    _groups.selectedGroupDidChange();
    _prefs.synchronizeShortcut(Dictionary{{keys::CommandId, record[keys::CommandID]}, {keys::Enabled, enabled}},
                               changes::ChangeKeyboardShortcutEnabled);
}

void GroupOptions::setShortcutAction(int action) {
    if (!group() || action < 0 || action > 2) return;
    store(rewrittenShortcut(Dictionary{{keys::Action, Value::int32(action)}}));
    _groups.selectedGroupDidChange();
}

void GroupOptions::setKeyCombination(const std::optional<KVKeyCombination>& combination) {
    if (!group()) return;
    Dictionary old = shortcut();
    Dictionary record = combination ? combination->dictionary() : Dictionary();
    record.set(keys::CommandID, old[keys::CommandID]);
    record.set(keys::Enabled, old[keys::Enabled].toBool().value_or(false));
    record.set(keys::Action, Value::int32(old[keys::Action].toInt32().value_or(0)));
    store(record);
    _groups.selectedGroupDidChange();
    _prefs.synchronizeShortcut(Dictionary{{keys::CommandId, record[keys::CommandID]}, {keys::KeyCombination, record}},
                               changes::ChangeKeyboardShortcut);
}

void GroupOptions::keyCombinationWillBeginEditing() {
    suspendHotKeys(_distributed);
}

void GroupOptions::keyCombinationWillEndEditing() {
    resumeHotKeys(_distributed);
}

bool GroupOptions::validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error) {
    return _validator.validateKeyCombination(combination, error);
}

void GroupOptions::didFailToValidateKeyCombination(const std::string& error) {
    refuseKeyCombination(_view, error);
}

}  // namespace corvalis
