#include "fileutils/browser/OpenMenuPaths.h"

#include <set>

#include "fileutils/AliasResolution.h"
#include "fileutils/PathChecking.h"
#include "prefs/MenuItemKinds.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

bool isSeparator(const plist::Value& item) {
    const std::string* kind = item[keys::Item].string();
    return kind && *kind == items::Separator;
}

const std::string* pathOf(const plist::Value& item) { return item[keys::Path].string(); }

}  // namespace

std::vector<OpenMenuPathChange> RepairOpenMenuPaths(plist::Array& items, const Workspace& workspace) {
    std::vector<OpenMenuPathChange> changes;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!pathOf(items[i])) continue;
        std::optional<plist::Dictionary> record = plist::asDictionary(items[i]);
        if (record && CheckOpenMenuItemPath(*record, workspace))
            changes.push_back({static_cast<int>(i), true, false});
    }
    if (!changes.empty()) RemoveDuplicateOpenMenuPaths(items, changes, workspace);
    return changes;
}

void RemoveDuplicateOpenMenuPaths(plist::Array& items, std::vector<OpenMenuPathChange>& changes,
                                  const Workspace& workspace, const std::function<void(int row)>& removeRow) {
    auto remove = [&](std::size_t row) {
        if (removeRow) removeRow(static_cast<int>(row));
        else items.removeAt(row);
    };
    std::set<std::string> seen;
    std::set<std::string> removedPaths;
    for (std::size_t i = 0; i < items.size();) {
        const std::string* path = pathOf(items[i]);
        if (!path || seen.insert(*path).second) {
            ++i;
            continue;
        }
        removedPaths.insert(*path);
        remove(i);
        changes.push_back({static_cast<int>(i), true, true});
        if (i == 0 || !isSeparator(items[i - 1])) continue;
        // The separator before the removed row now meets another one, or ends the menu.
        if (i == items.size() || isSeparator(items[i])) {
            std::size_t separator = i < items.size() ? i : i - 1;
            remove(separator);
            changes.push_back({static_cast<int>(separator), false, false});
            if (separator < i) --i;
        }
    }
    for (const std::string& path : removedPaths)
        for (const plist::Value& item : items) {
            const std::string* itemPath = pathOf(item);
            if (!itemPath || *itemPath != path) continue;
            std::optional<plist::Dictionary> record = plist::asDictionary(item);
            if (!record) break;
            if (std::optional<plist::Data> alias = AliasData(path, workspace)) record->set(keys::AliasData, *alias);
            else record->remove(keys::AliasData);
            break;
        }
}

std::vector<int> OpenMenuFolderRows(const plist::Array& items) {
    std::vector<int> rows;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (pathOf(items[i])) rows.push_back(static_cast<int>(i));
    return rows;
}

int OpenMenuFolderIndex(const plist::Array& items, int row) {
    if (row < 0 || static_cast<std::size_t>(row) >= items.size() || !pathOf(items[row])) return -1;
    int index = -1;
    for (int i = 0; i <= row; ++i)
        if (pathOf(items[i])) ++index;
    return index;
}

}  // namespace corvalis
