#pragma once
// What a path a user picked stands for: predicates on paths, the resolvers of
// alias files (symbolic links here: one level, the link's stored text), display
// names, and alias data (a file-identity record kept beside each stored path).
// A missing result is an empty optional; no function keeps state or reports errors.

#include <optional>
#include <string>
#include <string_view>

#include "platform/Workspace.h"
#include "plist/Value.h"

namespace corvalis {

// --- Predicates -------------------------------------------------------------

// The standardized path is an alias file; symbolic links are the alias files here.
bool MyIsAliasFile(const std::string& path);
// The path itself (not what it points to) is a symbolic link.
bool IsSymbolicLink(const std::string& path);
// A ".app" folder with Contents/Info.plist, or a desktop entry of Type=Application (links followed).
bool IsApplication(const std::string& path);
// The extension is "applescript", "scpt" or "scptd", in any case; the file need not exist.
bool IsScript(const std::string& path);
// A folder (links followed) that is not a package.
bool IsFolder(const std::string& path);
// A folder (links followed) whose name ends in .app, .bundle, .framework, .plugin, .prefPane or .xpc.
bool IsPackage(const std::string& path);
// Something exists at the path and it is not in a Trash.
bool IsValid(const std::string& path);
// The path contains ".Trash" or lies in ${XDG_DATA_HOME:-~/.local/share}/Trash.
bool IsInTrash(const std::string& path);
// Empty, or only "-" characters.
bool IsSeparator(std::string_view text);

// Not empty and holds a character other than white space (space, tab, other
// space separators; line breaks count as content).
bool isValid(std::string_view text);
// Each line feed and carriage return replaced by a space.
std::string noNewlineString(std::string_view text);

// Foundation's standardized form: "~" expanded, "." and empty components and a
// trailing "/" removed, ".." folded in absolute paths.
std::string StandardizedPath(std::string_view path);

// --- Resolution ---------------------------------------------------------------

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

// --- Names ----------------------------------------------------------------------

// The name a file browser shows: a desktop entry's Name for the user's locale
// (LC_ALL, LC_MESSAGES, LANG), a ".app" folder's name without ".app", for "/"
// the root file system's label (else "Computer", localized), else the file name.
std::string DisplayNameAtPath(const std::string& path);
// DisplayNameAtPath without a trailing ".app", ".applescript", ".scpt" or ".scptd" (case-sensitive).
std::string LocalizedApplicationName(const std::string& path);
// DisplayNameAtPath unchanged.
std::string LocalizedFolderName(const std::string& path);

// --- Alias data -----------------------------------------------------------------

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

// --- Application presentation ------------------------------------------------------

// Reads LSUIElement (else NSUIElement) and LSBackgroundOnly of the application's
// info dictionary into the outputs (either may be null). False without a bundle
// path or dictionary; for an empty dictionary true only before 10.10.
bool CopyApplicationInfoDictionaryPresentationOptions(const std::string& bundlePath, bool* outIsUIElement,
                                                      bool* outIsBackgroundOnly,
                                                      const Workspace& workspace = Workspace::shared());

}  // namespace corvalis
