#include "groups/GroupTexts.h"

#include <algorithm>

#include "fileutils/PathPredicates.h"
#include "keys/KVKeyCombinationRecorder.h"
#include "keys/KVKeyCombinationValidator.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Dictionary;
using plist::Value;

MemberCounts memberCounts(const Dictionary& group) {
    MemberCounts counts;
    if (const plist::Array* members = group[keys::Applications].array())
        for (const Value& member : *members) {
            if (IsScript(member[keys::Path].stringOr(""))) ++counts.scripts;
            else ++counts.applications;
        }
    return counts;
}

namespace {

std::string phrase(long count, const char* one, const char* many) {
    return count == 1 ? LocalizedString(one) : LocalizedFormat(many, {static_cast<long long>(count)});
}

}  // namespace

std::string groupInfo(const Dictionary& group) {
    MemberCounts counts = memberCounts(group);
    if (counts.applications == 0 && counts.scripts == 0) return LocalizedString("GroupInfo1");
    std::string applications = phrase(counts.applications, "GroupInfo4", "GroupInfo5");
    std::string scripts = phrase(counts.scripts, "GroupInfo6", "GroupInfo7");
    if (counts.scripts == 0) return LocalizedFormat("GroupInfo2", {applications});
    if (counts.applications == 0) return LocalizedFormat("GroupInfo2", {scripts});
    return LocalizedFormat("GroupInfo3", {applications, scripts});
}

std::string groupToolTip(const Dictionary& group, const KVKeyCombinationValidator& validator) {
    std::string text = group[keys::Name].stringOr("");
    MemberCounts counts = memberCounts(group);
    if (counts.applications > 0) text += "\n" + LocalizedFormat("ToolTip2", {static_cast<long long>(counts.applications)});
    if (counts.scripts > 0) text += "\n" + LocalizedFormat("ToolTip3", {static_cast<long long>(counts.scripts)});
    if (counts.applications == 0 && counts.scripts == 0) text += "\n" + LocalizedString("ToolTip1");
    auto line = [&](const std::string& item) { text += "\n" + LocalizedFormat("ToolTip4", {item}); };
    const std::pair<const char*, const char*> menus[] = {{keys::ShowInOpenMenu, groupstrings::ShowInOpenMenuBox},
                                                         {keys::ShowInQuitMenu, groupstrings::ShowInQuitMenuBox},
                                                         {keys::ShowInSwitchMenu, groupstrings::ShowInSwitchMenuBox}};
    for (const auto& [key, title] : menus)
        if (group[key].toBool().value_or(false)) line(LocalizedString(title));
    if (group[keys::AutoOpen].toBool().value_or(false))
        line(LocalizedString(group[keys::Hide].toBool().value_or(false) ? groupstrings::OpenAutomaticallyAndHide
                                                                        : groupstrings::AutoOpenBox));
    if (std::optional<KVKeyCombination> combination = validator.keyCombinationForGroup(&group, false)) {
        const Value& shortcut = group[keys::KeyboardShortcut];
        int action = std::clamp(shortcut[keys::Action].toInt32().value_or(0), 0, 2);
        line(LocalizedFormat(shortcut[keys::Enabled].toBool().value_or(false) ? groupstrings::ActiveShortcut
                                                                              : groupstrings::InactiveShortcut,
                             {LocalizedString(groupstrings::Actions[action]),
                              KVKeyCombinationRecorder::displayStringForKeyCombination(combination).value_or("")}));
    }
    return text;
}

}  // namespace corvalis
