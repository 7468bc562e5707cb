#pragma once
// Finding what a stored path stands for now: the resolvers of alias files
// (symbolic links here: one level, the link's stored text), and alias data (a
// file-identity record kept beside each stored path). A missing result is an
// empty optional; no function keeps state or reports errors.

#include <optional>
#include <string>

#include "platform/Workspace.h"
#include "plist/Value.h"

namespace corvalis {

// The current resolver: none when nothing exists (dangling links too); a link's
// stored text (one level, relative text kept relative); else the path.
std::optional<std::string> ResolvePath(const std::string& path);
// The resolver of systems before 10.8: the same outcomes, decided by MyIsAliasFile first.
std::optional<std::string> ResolvePathLegacy(const std::string& path);
// Resolved (resolver chosen by system version) and only when IsApplication holds for the result.
std::optional<std::string> ResolvedApplicationPath(const std::string& path);
// As ResolvedApplicationPath, accepting an application or a script.
std::optional<std::string> ResolvedApplicationOrScriptPath(const std::string& path);
// As ResolvedApplicationPath, accepting a folder.
std::optional<std::string> ResolvedFolderPath(const std::string& path);

// A new alias record for the existing file at `path`; none when the path is too
// long or nothing exists there.
std::optional<plist::Data> AliasData(const std::string& path, const Workspace& workspace = Workspace::shared());

struct AliasResolution {
    std::optional<std::string> path;     // none: the file could not be found
    bool wasChanged = false;             // the record must be replaced by `updatedData`
    std::optional<plist::Data> updatedData;
};

// Finds the file an alias record stands for: the stored path while it is the same
// file (device and inode); else the same file moved nearby (searched on its device
// below the nearest existing folder of the old path and that folder's parent, 3
// levels deep, 5000 entries at most, never inside packages); else the application
// with the stored bundle identifier. Classic Alias Manager records are read for
// their POSIX path only, and always reported for replacement by a record of ours.
AliasResolution ResolveAliasData(const plist::Data& aliasData, const Workspace& workspace = Workspace::shared());

}  // namespace corvalis
