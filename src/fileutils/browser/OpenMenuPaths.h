#pragma once
// Keeping the Open menu's folder paths right, for the applications browser and
// the Open menu editor alike: each path record checked, duplicates that a
// repair produced removed (with the separator left beside one), the survivors'
// alias data made again. Also the arithmetic that ties browser sources to Open
// menu rows.

#include <functional>
#include <string>
#include <vector>

#include "platform/Workspace.h"
#include "plist/Value.h"

namespace corvalis {

// One row the repair changed: re-pointed (isFolder, not removed), or removed as
// a duplicate (a folder) or as the separator left next to one.
struct OpenMenuPathChange {
    int index = 0;
    bool isFolder = true;
    bool removeDuplicate = false;
    bool operator==(const OpenMenuPathChange&) const = default;
};

// CheckOpenMenuItemPath on every record with a "Path"; when any changed,
// duplicates removed as RemoveDuplicateOpenMenuPaths does. The changes in the
// order made; none means the menu is untouched.
std::vector<OpenMenuPathChange> RepairOpenMenuPaths(plist::Array& items, const Workspace& workspace = Workspace::shared());

// Walking from the top, the second and later records with an already seen
// "Path" are removed; a separator then left after another separator, or left
// last, goes too. Each survivor of a removed path gets fresh "AliasData" (or
// loses it when none can be made). Appends what it removed to `changes`.
// A list model passes `removeRow`, which must take that row out of `items`
// itself, so that its views hear of each removal.
void RemoveDuplicateOpenMenuPaths(plist::Array& items, std::vector<OpenMenuPathChange>& changes,
                                  const Workspace& workspace = Workspace::shared(),
                                  const std::function<void(int row)>& removeRow = {});

// The rows of the Open menu that have a "Path", in order: the browser's folder sources.
std::vector<int> OpenMenuFolderRows(const plist::Array& items);
// The folder's place among the rows with a "Path" (what "Index" counts in the
// controller's messages); -1 when the row has none.
int OpenMenuFolderIndex(const plist::Array& items, int row);

}  // namespace corvalis
