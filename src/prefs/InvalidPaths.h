#pragma once
// The stored paths that no longer lead anywhere (missing, or in the Trash),
// gathered as the pane's summary lines count them: one section per tab or menu.

#include <string>
#include <vector>

#include "plist/Value.h"

namespace corvalis {

struct InvalidPath {
    std::string path;
    std::string owner;  // the group or menu item name, when there is one
};

struct InvalidPathSection {
    std::string title;  // "Groups", "Custom applications", "Open menu", ...
    std::vector<InvalidPath> paths;
};

// Every section, in the order the pane reports them; sections without an invalid path are left out.
std::vector<InvalidPathSection> invalidStoredPaths(const plist::Dictionary& domain);

}  // namespace corvalis
