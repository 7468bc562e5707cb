// Single-valued settings checked on load: invalid values are removed so that
// the factory defaults apply, and keys of older versions are carried over.

#include <algorithm>

#include "fileutils/KVOperatingSystem.h"
#include "fileutils/KVVersionComparator.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/PaneVersion.h"
#include "schema/PreferenceKeys.h"
#include "prefs/RecordSupport.h"

namespace corvalis {

using plist::Dictionary;
using plist::Type;
using plist::Value;

namespace {

// The copy-path commands the controller offers, as four-character codes.
constexpr std::int32_t kCopyPathCommands[] = {
    0x63504873,  // cPHs
    0x63505058,  // cPPX
    0x6350546C,  // cPTl
    0x6350556C,  // cPUl
    0x63505773,  // cPWs
    0x63506C73,  // cPls
};

}  // namespace

void CorvalisPreferences::_loadIncludeTerminatedAppsWhere() {
    std::optional<std::int32_t> where = simpleStringForKey(keys::IncludeTerminatedApplicationsWhere).toInt32();
    if (!where || (*where != 1 && *where != 2)) working().remove(keys::IncludeTerminatedApplicationsWhere);
}

void CorvalisPreferences::_loadQuickCopyPathCommand() {
    // Stored as decimal text; a number or any other code is not one the controller reads.
    const std::string* text = simpleStringForKey(keys::QuickCopyPathCommand).string();
    bool known = text && std::ranges::find(kCopyPathCommands, records::leadingIntValue(*text)) !=
                             std::end(kCopyPathCommands);
    if (!known) working().remove(keys::QuickCopyPathCommand);
}

void CorvalisPreferences::_loadMarkAppMode() {
    Dictionary& prefs = working();
    if (!prefs[keys::MarkApplicationMode].isNumber()) {
        prefs.remove(keys::MarkApplicationMode);
        if (prefs[keys::Mark64BitApplications].isNumber())
            prefs.set(keys::MarkApplicationMode, *prefs[keys::Mark64BitApplications].toBool());
    }
    prefs.remove(keys::Mark64BitApplications);
    if (!prefs[keys::SwitchMenuMarkApplicationMode].isNumber())
        prefs.set(keys::SwitchMenuMarkApplicationMode, boolForKey(keys::MarkApplicationMode));
    if (KVOperatingSystem::is10_7orLater()) {
        prefs.set(keys::MarkApplicationsUsingRosetta, false);
        prefs.set(keys::SwitchMenuMarkApplicationsUsingRosetta, false);
    } else if (!prefs[keys::SwitchMenuMarkApplicationsUsingRosetta].isNumber()) {
        prefs.set(keys::SwitchMenuMarkApplicationsUsingRosetta, boolForKey(keys::MarkApplicationsUsingRosetta));
    }
}

bool CorvalisPreferences::_loadCheckForUpdates() {
    Dictionary& prefs = working();
    // The version texts are strings and the last check a date; anything else counts as missing.
    for (const char* key : {keys::CheckForUpdatesNewVersion, keys::CheckForUpdatesSkipVersion,
                            keys::CheckForUpdatesMaxVersion})
        if (!prefs[key].isAbsent() && !prefs[key].string()) prefs.remove(key);
    if (prefs[keys::CheckForUpdatesLast].type() != Type::Date) prefs.remove(keys::CheckForUpdatesLast);

    const std::string current = kPaneVersion;
    if (!prefs.contains(keys::CheckForUpdatesLast)) prefs.remove(keys::CheckForUpdatesResult);
    std::int32_t result = intForKey(keys::CheckForUpdatesResult);
    bool maxVersionStored = prefs.contains(keys::CheckForUpdatesMaxVersion);

    const KVVersionComparator& versions = KVVersionComparator::defaultComparator();
    if (const std::string* newVersion = prefs[keys::CheckForUpdatesNewVersion].string()) {
        int order = versions.compareVersion(current, *newVersion);
        if ((result == 0 && order != 0) || (result != 0 && order >= 0)) prefs.remove(keys::CheckForUpdatesNewVersion);
    }
    if (const std::string* skipped = prefs[keys::CheckForUpdatesSkipVersion].string())
        if (versions.compareVersion(current, *skipped) >= 0) prefs.remove(keys::CheckForUpdatesSkipVersion);
    const std::string* maxVersion = prefs[keys::CheckForUpdatesMaxVersion].string();
    if (!maxVersion || versions.compareVersion(*maxVersion, current) < 0)
        prefs.set(keys::CheckForUpdatesMaxVersion, current);

    if (result >= -4 && result <= -1) {
        prefs.remove(keys::CheckForUpdatesNewVersion);
    } else if (result == -5) {
        removeKeys({keys::CheckForUpdatesLast, keys::CheckForUpdatesNewVersion, keys::CheckForUpdatesSkipVersion});
    } else if (result == 0 || result == 1) {
        if (!prefs.contains(keys::CheckForUpdatesNewVersion))
            removeKeys({keys::CheckForUpdatesLast, keys::CheckForUpdatesResult, keys::CheckForUpdatesSkipVersion});
    } else {
        removeKeys({keys::CheckForUpdatesLast, keys::CheckForUpdatesResult, keys::CheckForUpdatesNewVersion,
                    keys::CheckForUpdatesSkipVersion});
    }

    std::optional<std::int32_t> frequency = prefs[keys::CheckForUpdatesFrequency].toInt32();
    if (!frequency || (*frequency != 1 && *frequency != 7 && *frequency != 30))
        prefs.remove(keys::CheckForUpdatesFrequency);

    boolForKey(keys::CheckForUpdates);
    intForKey(keys::CheckForUpdatesFrequency);
    intForKey(keys::CheckForUpdatesResult);
    return !maxVersionStored;
}

}  // namespace corvalis
