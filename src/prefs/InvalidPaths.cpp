#include "fileutils/PathResolution.h"
#include "prefs/InvalidPaths.h"

#include "schema/PreferenceKeys.h"
#include "prefs/RecordSupport.h"

namespace corvalis {

using plist::Dictionary;
using plist::Value;

namespace {

// Adds the records of `list` whose path is invalid; records without a path have nothing to check.
void collect(const Value& list, const std::string& owner, std::vector<InvalidPath>& into) {
    const plist::Array* records = list.array();
    if (!records) return;
    for (const Value& entry : *records) {
        const Dictionary* record = entry.dictionary();
        const std::string* path = record ? (*record)[keys::Path].string() : nullptr;
        if (!path || IsValid(*path)) continue;
        const std::string* name = (*record)[keys::Name].string();
        into.push_back({*path, owner.empty() && name ? *name : owner});
    }
}

}  // namespace

std::vector<InvalidPathSection> invalidStoredPaths(const Dictionary& domain) {
    std::vector<InvalidPathSection> sections{{"Groups", {}},
                                             {"Custom applications", {}},
                                             {"Open menu", {}},
                                             {"Quit menu (excluded applications)", {}},
                                             {"Switch menu (excluded applications)", {}},
                                             {"Special menu", {}}};
    if (const plist::Array* groups = domain[keys::Groups].array()) {
        for (const Value& entry : *groups) {
            const Dictionary* group = entry.dictionary();
            if (!group) continue;
            // The excluded applications are edited, and counted, with the Quit menu.
            bool excluded = (*group)[keys::CanBeDeleted].toBool() == false;
            const std::string* name = (*group)[keys::Name].string();
            collect((*group)[keys::Applications], name ? *name : std::string(),
                    sections[excluded ? 3 : 0].paths);
        }
    }
    collect(domain[keys::CustomApplications], "", sections[1].paths);
    collect(domain[keys::OpenMenuItems], "", sections[2].paths);
    collect(domain[keys::SwitchMenuExcludedApplications], "", sections[4].paths);
    collect(domain[keys::SpecialMenuItems], "", sections[5].paths);
    std::erase_if(sections, [](const InvalidPathSection& section) { return section.paths.empty(); });
    return sections;
}

}  // namespace corvalis
