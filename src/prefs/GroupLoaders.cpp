// Groups, custom applications and the applications excluded from the Switch
// menu, rebuilt in canonical form on every load.

#include "fileutils/NameOrder.h"
#include "fileutils/KVOperatingSystem.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/DefaultValues.h"
#include "text/Localization.h"
#include "schema/PreferenceKeys.h"
#include "prefs/RecordSupport.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

std::vector<Dictionary> applicationRecords(const Value& stored) {
    std::vector<Dictionary> result;
    if (const Array* applications = stored.array())
        for (const Value& application : *applications)
            if (std::optional<Dictionary> record = records::applicationRecord(application))
                result.push_back(std::move(*record));
    return result;
}

// The excluded applications form the group that cannot be deleted. A group
// that does not say so explicitly is a user group.
bool isExcludedGroup(const Dictionary& group) { return group[keys::CanBeDeleted].toBool() == false; }

// A valid "Action" is 0, 1 or 2; anything else disables the shortcut and keeps its key and command id.
Dictionary repairedShortcut(const Dictionary& shortcut) {
    std::optional<std::int64_t> action = shortcut[keys::Action].toInt64();
    if (!action || (*action >= 0 && *action <= 2)) return shortcut.deepCopy();
    Dictionary reset;
    if (shortcut[keys::VirtualKeyCode].isNumber())
        for (const char* key : {keys::Character, keys::VirtualKeyCode, keys::Modifiers})
            if (shortcut[key].isNumber()) reset.set(key, shortcut[key]);
    if (const std::string* id = shortcut[keys::CommandID].string()) reset.set(keys::CommandID, *id);
    reset.set(keys::Enabled, false);
    reset.set(keys::Action, Value::int32(0));
    return reset;
}

}  // namespace

bool CorvalisPreferences::_loadGroups() {
    std::optional<Array> stored = storedArray(keys::Groups);
    Array groups = stored ? *stored : defaultValues()[keys::Groups].array()->deepCopy();
    bool arranged = boolForKey(keys::KeepGroupsAndApplicationsArranged);
    std::int32_t arrangeWhat = intForKey(keys::ArrangeWhat);
    bool sortGroups = arranged && (arrangeWhat == 0 || arrangeWhat == 1);
    bool sortApplications = arranged && (arrangeWhat == 0 || arrangeWhat == 2);

    std::vector<Value> source(groups.begin(), groups.end());
    bool hasExcluded = false;
    for (const Value& group : source)
        if (const Dictionary* record = group.dictionary(); record && isExcludedGroup(*record)) hasExcluded = true;
    if (!hasExcluded) source.push_back(defaultValues()[keys::Groups].array()->operator[](0).deepCopy());

    std::vector<Dictionary> result;
    bool excludedSeen = false;
    bool excludedInQuitMenu = false;
    bool shortcutMissing = false;
    for (const Value& value : source) {
        const Dictionary* group = value.dictionary();
        if (!group) continue;
        bool excluded = isExcludedGroup(*group);
        if (excluded && excludedSeen) continue;  // only the first excluded group counts

        std::vector<Dictionary> applications = applicationRecords((*group)[keys::Applications]);
        if (excluded || sortApplications) records::sortByName(applications);
        Dictionary rebuilt;
        if (excluded) {
            excludedSeen = true;
            rebuilt.set(keys::Name, LocalizedString("ExcludedApplications"));
            if (applications.empty())
                excludedInQuitMenu = false;
            else if (std::optional<bool> show = (*group)[keys::ShowInQuitMenu].toBool())
                excludedInQuitMenu = *show;
            else
                excludedInQuitMenu = legacyBool(keys::AddExcludedApplications, false);
        } else {
            const std::string* name = (*group)[keys::Name].string();
            rebuilt.set(keys::Name, name ? *name : LocalizedString("UntitledGroup"));
        }
        rebuilt.set(keys::Applications, records::arrayOf(applications));
        rebuilt.set(keys::CanBeDeleted, !excluded);
        rebuilt.set(keys::AutoOpen, (*group)[keys::AutoOpen].toBool().value_or(false));
        rebuilt.set(keys::Hide, (*group)[keys::Hide].toBool().value_or(false));
        if (!excluded) {
            const std::string* icon = (*group)[keys::Icon].string();
            rebuilt.set(keys::Icon, icon ? *icon : "YellowFolder");
            if ((*group)[keys::IconData].data()) rebuilt.set(keys::IconData, (*group)[keys::IconData]);
            for (const char* key : {keys::ShowInOpenMenu, keys::ShowInQuitMenu, keys::ShowInSwitchMenu})
                rebuilt.set(key, (*group)[key].toBool().value_or(true));
            const Dictionary* shortcut = (*group)[keys::KeyboardShortcut].dictionary();
            Dictionary repaired = shortcut ? repairedShortcut(*shortcut) : Dictionary();
            // A shortcut without a command id cannot reach the controller: it gets a new id below.
            if (!repaired[keys::CommandID].string()) {
                repaired.remove(keys::CommandID);
                shortcutMissing = true;
            }
            if (shortcut) rebuilt.set(keys::KeyboardShortcut, repaired);
        }
        result.push_back(std::move(rebuilt));
    }
    if (sortGroups) records::sortByName(result);

    Array list = records::arrayOf(result);
    if (shortcutMissing) {
        for (const Dictionary& group : result) {
            if (isExcludedGroup(group)) continue;
            const Dictionary* shortcut = group[keys::KeyboardShortcut].dictionary();
            if (shortcut && (*shortcut)[keys::CommandID].string()) continue;
            std::string id = NewUniqueCommandId(list);
            if (shortcut)
                shortcut->set(keys::CommandID, id);
            else
                group.set(keys::KeyboardShortcut, Dictionary{{keys::CommandID, id},
                                                             {keys::Enabled, false},
                                                             {keys::Action, Value::int32(0)}});
        }
    }
    working().set(keys::Groups, list);
    return excludedInQuitMenu;
}

void CorvalisPreferences::_loadCustomApplications() {
    bool rosettaGone = KVOperatingSystem::is10_7orLater();
    bool is64Bit = _environment.is64BitProcessor();
    std::vector<Dictionary> result;
    std::optional<Array> stored = storedArray(keys::CustomApplications);
    for (const Value& value : stored.value_or(Array())) {
        std::optional<Dictionary> record = records::applicationRecord(value);
        if (!record) continue;
        if (const Dictionary* options = (*value.dictionary())[keys::Options].dictionary()) {
            Dictionary copy = options->deepCopy();
            for (const char* key : {keys::ForceRosetta, keys::Force32BitMode, keys::DontHideInSingleAppMode,
                                    keys::DontHideOnHideOthers})
                if (!copy[key].isAbsent() && !copy[key].isNumber()) copy.remove(key);
            if (rosettaGone) copy.remove(keys::ForceRosetta);
            if (!is64Bit) copy.remove(keys::Force32BitMode);
            // Older versions had one switch for both ways of hiding; without it there is nothing to copy.
            if (!copy.contains(keys::DontHideInSingleAppMode) && copy.contains(keys::DontHideOnHideOthers))
                copy.set(keys::DontHideInSingleAppMode, copy[keys::DontHideOnHideOthers]);
            record->set(keys::Options, copy);
        }
        result.push_back(std::move(*record));
    }
    records::sortByName(result);
    working().set(keys::CustomApplications, records::arrayOf(result));
}

void CorvalisPreferences::_loadExcludedApplications() {
    std::optional<Array> stored = storedArray(keys::SwitchMenuExcludedApplications);
    std::vector<Dictionary> result = applicationRecords(stored ? Value(*stored) : Value(Array()));
    records::sortByName(result);
    working().set(keys::SwitchMenuExcludedApplications, records::arrayOf(result));
}

}  // namespace corvalis
