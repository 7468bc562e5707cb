#include "fileutils/AliasResolution.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <array>
#include <deque>
#include <set>
#include <utility>
#include <vector>

#include "fileutils/AliasRecord.h"
#include "fileutils/KVOperatingSystem.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"

namespace corvalis {

namespace {

// How far the search for a moved file looks: below the nearest existing folder
// of the old path and below that folder's parent, this many levels deep, and no
// more entries than this in all. A file moved further away is found only by its
// bundle identifier.
constexpr int kAliasSearchDepth = 3;
constexpr std::size_t kAliasSearchMaxEntries = 5000;

// What tells one file from another, from a single statx call.
struct FileKey {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t birthNs = 0;  // 0 when the file system keeps no birth time
    bool isDirectory = false;
};

std::optional<FileKey> fileKeyOf(const std::string& path, bool followLinks) {
    struct statx info {};
    if (!isPathWithinLimit(path) ||
        ::statx(AT_FDCWD, path.c_str(), followLinks ? 0 : AT_SYMLINK_NOFOLLOW, STATX_TYPE | STATX_INO | STATX_BTIME, &info) != 0)
        return std::nullopt;
    FileKey key;
    key.device = makedev(info.stx_dev_major, info.stx_dev_minor);
    key.inode = info.stx_ino;
    if (info.stx_mask & STATX_BTIME)
        key.birthNs = static_cast<std::uint64_t>(info.stx_btime.tv_sec) * 1000000000u + info.stx_btime.tv_nsec;
    key.isDirectory = S_ISDIR(info.stx_mode);
    return key;
}

// Same device and inode, and (where both are known) the same birth: inodes are reused soon after a file goes.
bool isFileOf(const FileIdentity& identity, const FileKey& key) {
    return key.device == identity.device && key.inode == identity.inode &&
           (identity.birthNs == 0 || key.birthNs == 0 || key.birthNs == identity.birthNs);
}

bool lstatPath(const std::string& path, struct stat& info) {
    return isPathWithinLimit(path) && ::lstat(path.c_str(), &info) == 0;
}

std::optional<std::string> readLink(const std::string& path) {
    if (!isPathWithinLimit(path)) return std::nullopt;
    std::array<char, 4096> buffer{};
    ssize_t length = ::readlink(path.c_str(), buffer.data(), buffer.size());
    if (length < 0 || static_cast<std::size_t>(length) >= buffer.size()) return std::nullopt;
    return std::string(buffer.data(), static_cast<std::size_t>(length));
}

// Breadth-first search for the entry with the identity, near `oldPath` and on its device.
std::optional<std::string> findMovedFile(const FileIdentity& identity) {
    std::string anchor(parentPath(identity.path));
    if (anchor.empty() || anchor.front() != '/') return std::nullopt;
    while (anchor != "/" && !isDirectory(anchor)) anchor = std::string(parentPath(anchor));
    std::vector<std::string> roots{anchor};
    if (anchor != "/") roots.emplace_back(parentPath(anchor));

    std::size_t budget = kAliasSearchMaxEntries;
    std::set<std::pair<dev_t, ino_t>> walked;
    for (const std::string& root : roots) {
        std::deque<std::pair<std::string, int>> folders{{root, 1}};
        while (!folders.empty() && budget > 0) {
            auto [folder, depth] = std::move(folders.front());
            folders.pop_front();
            struct stat folderInfo {};
            if (!lstatPath(folder, folderInfo) || folderInfo.st_dev != identity.device ||
                !walked.insert({folderInfo.st_dev, folderInfo.st_ino}).second)
                continue;
            DIR* dir = ::opendir(folder.c_str());
            if (!dir) continue;
            while (dirent* entry = ::readdir(dir)) {
                std::string name = entry->d_name;
                if (name == "." || name == "..") continue;
                if (budget == 0) break;
                --budget;
                std::string path = folder == "/" ? "/" + name : folder + "/" + name;
                std::optional<FileKey> key = fileKeyOf(path, false);
                if (!key || key->device != identity.device) continue;
                if (isFileOf(identity, *key)) {
                    ::closedir(dir);
                    return path;
                }
                if (key->isDirectory && depth < kAliasSearchDepth && !hasPackageExtension(name))
                    folders.emplace_back(path, depth + 1);
            }
            ::closedir(dir);
        }
    }
    return std::nullopt;
}

template <class Accept>
std::optional<std::string> resolvedAccepting(const std::string& path, Accept accept) {
    auto resolved = KVOperatingSystem::is10_8orLater() ? ResolvePath(path) : ResolvePathLegacy(path);
    if (resolved && accept(*resolved)) return resolved;
    return std::nullopt;
}

}  // namespace

std::optional<std::string> ResolvePath(const std::string& path) {
    if (!fileExistsAtPath(path)) return std::nullopt;
    if (IsSymbolicLink(path)) return readLink(path);
    return path;
}

std::optional<std::string> ResolvePathLegacy(const std::string& path) {
    if (!fileExistsAtPath(path)) return std::nullopt;
    // Alias files are links here, so both branches give the link's own text.
    if (MyIsAliasFile(path)) return readLink(StandardizedPath(path));
    if (IsSymbolicLink(path)) return readLink(path);
    return path;
}

std::optional<std::string> ResolvedApplicationPath(const std::string& path) {
    return resolvedAccepting(path, [](const std::string& resolved) { return IsApplication(resolved); });
}

std::optional<std::string> ResolvedApplicationOrScriptPath(const std::string& path) {
    return resolvedAccepting(path, [](const std::string& resolved) { return IsApplication(resolved) || IsScript(resolved); });
}

std::optional<std::string> ResolvedFolderPath(const std::string& path) {
    return resolvedAccepting(path, [](const std::string& resolved) { return IsFolder(resolved); });
}

std::optional<plist::Data> AliasData(const std::string& path, const Workspace& workspace) {
    std::optional<FileKey> key = fileKeyOf(path, true);
    if (!key) return std::nullopt;
    FileIdentity identity{path, key->device, key->inode, "", key->birthNs};
    if (IsApplication(path)) identity.bundleIdentifier = workspace.bundleIdentifierForApplication(path).value_or("");
    return encodeAliasRecord(identity);
}

AliasResolution ResolveAliasData(const plist::Data& aliasData, const Workspace& workspace) {
    auto identity = decodeAliasRecord(aliasData);
    auto found = [&](const std::string& path) {
        AliasResolution resolution{path, false, AliasData(path, workspace)};
        // The same application keeps its identifier when the workspace cannot tell it at the new place.
        auto remade = resolution.updatedData ? decodeAliasRecord(*resolution.updatedData) : std::nullopt;
        if (remade && identity && remade->bundleIdentifier.empty() && IsApplication(path)) {
            remade->bundleIdentifier = identity->bundleIdentifier;
            resolution.updatedData = encodeAliasRecord(*remade);
        }
        resolution.wasChanged = resolution.updatedData.has_value();
        return resolution;
    };
    if (!identity) {
        // A classic record cannot be kept up to date here: it is replaced by one of ours.
        auto classic = classicAliasPosixPath(aliasData);
        if (classic && fileExistsAtPath(*classic)) return found(*classic);
        return {};
    }
    if (std::optional<FileKey> key = fileKeyOf(identity->path, true); key && isFileOf(*identity, *key))
        return AliasResolution{identity->path, false, std::nullopt};
    if (auto moved = findMovedFile(*identity)) return found(*moved);
    if (!identity->bundleIdentifier.empty())
        if (auto application = workspace.absolutePathForAppBundleWithIdentifier(identity->bundleIdentifier);
            application && fileExistsAtPath(*application))
            return found(*application);
    return {};
}

}  // namespace corvalis
