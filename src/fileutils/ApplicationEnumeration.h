#pragma once
// Filling lists of applications by walking a folder tree, and reading an
// installed application's version. An application entry is a dictionary
// {"Name": LocalizedApplicationName, "Path": absolute path}.
//
// Applications here are ".app" folders holding Contents/Info.plist and desktop entries
// (*.desktop, Type=Application); symbolic links are the alias files the walk
// follows. Folders that are packages (.app, .bundle, .framework, .plugin,
// .prefPane, .xpc) are never entered.

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Workspace.h"
#include "plist/Value.h"

namespace corvalis {

// Statuses of the walk (the file system's classic codes).
inline constexpr std::int16_t kWalkNoErr = 0;
inline constexpr std::int16_t kIoErr = -36;                // a folder could not be read
inline constexpr std::int16_t kFnfErr = -43;               // a folder vanished or never existed
inline constexpr std::int16_t kDirNFErr = -120;            // not a folder
inline constexpr std::int16_t kErrFSNoMoreItems = -1417;   // a folder's items are exhausted
inline constexpr std::int16_t kAfpAccessDenied = -5000;    // a folder may not be read

// The identity of a folder: what SameFolder compares.
struct FolderIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const FolderIdentity&) const = default;
};

// The state shared by every level of one walk.
struct WalkContext {
    // The container being walked, then each item in turn (one slot, reused).
    std::string currentPath;
    FolderIdentity currentIdentity;
    std::uint64_t maximumLevels = 0;  // 0: no limit
    std::uint64_t currentLevel = 0;
    std::int16_t result = kWalkNoErr;  // shared by all levels
    std::uint64_t itemsReturned = 0;   // by the last fetch (0 or 1)
    // Every folder met, entered or not; compared by identity, never by path text.
    std::vector<FolderIdentity> visitedFolders;

    bool hasVisited(const FolderIdentity& folder) const;
};

// Appends the applications found under `folder` to `applications`, entering
// subfolders up to `maximumLevels` deep (1: only the folder's own items; 0: no
// limit). Items come in name order, each subfolder walked where it is met.
// Returns the final status; entries found before an error stay in the array.
std::int16_t InsertApplicationsFromFolder(const std::string& folder, std::int32_t maximumLevels,
                                          plist::Array& applications);

// Walks the level whose folder is context.currentPath, recursing into subfolders.
void IterateContainerLevel(WalkContext& context, plist::Array& applications);

// Appends {"Name": LocalizedApplicationName(path), "Path": path}.
void InsertApplication(const std::string& path, plist::Array& applications);

// Both paths name existing folders (links followed) that are the same file.
bool SameFolder(const std::string& first, const std::string& second);

// The "CFBundleVersion" of the application with `bundleIdentifier`, split at ".":
// major, then minor, then bug-fix, each read as a number (text that is no number
// reads as 0). False when there is no such application, no readable info
// dictionary, no version, or a negative major number. The outputs start at 0.
bool ApplicationVersion(const std::string& bundleIdentifier, std::uint32_t& major, std::uint32_t& minor,
                        std::uint32_t& bugFix, const Workspace& workspace = Workspace::shared());

}  // namespace corvalis
