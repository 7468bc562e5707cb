#pragma once
// The lists of the applications browser, one loader per source: folder walks
// (run on a worker thread, so they touch nothing but the file system), the
// running and recent applications, and the Dock's applications or, without a
// Dock, the desktop's favourites. Every list is made of application entries
// {"Name", "Path"}; an entry whose name or path is not valid UTF-8 is left out.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/RunningApplications.h"
#include "platform/Workspace.h"
#include "plist/Value.h"

namespace corvalis {

// Sorted by SortByNameAndPath, then each entry whose "Path" equals the one
// before it removed (one application found both directly and through a link).
void _sortAndRemoveDuplicates(plist::Array& applications);

// The applications under `folder`, `depth` levels deep (0: every level), sorted without duplicates.
plist::Array WalkFolderSource(const std::string& folder, std::int32_t depth);

// A folder of the Open menu is walked only when its path fits the path limit, exists and is not in a Trash.
bool isBrowsableFolder(const std::string& path);

// The image beside the source pop-up for a folder source.
enum class SourceIcon { None, BadLink, Trash };
SourceIcon sourceIconForFolder(const std::string& path);

// The launched applications (background-only ones left out), sorted.
plist::Array RunningApplicationEntries(const std::vector<RunningApplication>& running);
// The first `maximum` entries of the recent list whose "Path" exists, sorted.
plist::Array RecentApplicationEntries(const plist::Value& recent, std::int32_t maximum);
// The file tiles of the Dock's "persistent-apps" that resolve, sorted; tiles
// named like a separator are left out.
plist::Array DockApplicationEntries(const plist::Value& persistentApps, const Workspace& workspace);

// The desktop file ids of GNOME's favourite-apps as `gsettings get` prints them
// ("['a.desktop', 'b.desktop']", "@as []"); nothing for text of another shape.
std::vector<std::string> ParseFavoriteApps(std::string_view gsettingsOutput);
// The favourites that name known desktop entries, sorted.
plist::Array FavoriteApplicationEntries(const std::vector<std::string>& desktopIds, const Workspace& workspace);
// Asks gsettings for the favourites; nothing when it is missing, slow or fails.
std::vector<std::string> ReadGnomeFavoriteApps();

}  // namespace corvalis
