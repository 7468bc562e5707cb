#include "fileutils/ApplicationEnumeration.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

#include "fileutils/PathLimits.h"
#include "fileutils/PathResolution.h"
#include "schema/PreferenceKeys.h"
#include "prefs/RecordSupport.h"

namespace corvalis {

namespace {

struct DirectoryEntry {
    std::string name;
    unsigned char type = DT_UNKNOWN;
};

// One folder's items, read whole and put in name order so that every walk of a
// tree meets its items in the same order (readdir's own order is arbitrary).
struct FolderListing {
    std::vector<DirectoryEntry> entries;
    std::size_t next = 0;
    std::int16_t endStatus = kErrFSNoMoreItems;  // what the fetch after the last item reports
};

std::int16_t statusForErrno(int error) {
    switch (error) {
    case EACCES:
    case EPERM: return kAfpAccessDenied;
    case ENOENT: return kFnfErr;
    case ENOTDIR: return kDirNFErr;
    default: return kIoErr;
    }
}

struct DirCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};

// Opens the folder and reads its items; the status of the failure otherwise.
std::int16_t openListing(const std::string& folder, FolderListing& listing) {
    int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return statusForErrno(errno);
    std::unique_ptr<DIR, DirCloser> dir(::fdopendir(fd));
    if (!dir) {
        int error = errno;
        ::close(fd);
        return statusForErrno(error);
    }
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(dir.get());
        if (!entry) {
            // Items read before a failure are still walked; the failure comes after them.
            if (errno != 0) listing.endStatus = statusForErrno(errno);
            break;
        }
        std::string_view name = entry->d_name;
        if (name == "." || name == "..") continue;
        listing.entries.push_back({std::string(name), entry->d_type});
    }
    std::sort(listing.entries.begin(), listing.entries.end(),
              [](const DirectoryEntry& a, const DirectoryEntry& b) { return a.name < b.name; });
    return kWalkNoErr;
}

std::string childPath(const std::string& folder, std::string_view name) {
    std::string path = folder;
    if (path.empty() || path.back() != '/') path += '/';
    path += name;
    return path;
}

std::optional<FolderIdentity> identityOf(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return std::nullopt;
    return FolderIdentity{info.st_dev, info.st_ino};
}

// What the walk needs to know of an item.
struct ItemInfo {
    bool isDirectory = false;
    bool isRegularFile = false;
    bool isSymbolicLink = false;
    FolderIdentity identity;
};

std::optional<ItemInfo> itemInfo(const std::string& path, bool followLinks) {
    struct stat info {};
    if ((followLinks ? ::stat(path.c_str(), &info) : ::lstat(path.c_str(), &info)) != 0) return std::nullopt;
    return ItemInfo{S_ISDIR(info.st_mode), S_ISREG(info.st_mode), S_ISLNK(info.st_mode), {info.st_dev, info.st_ino}};
}

bool isDesktopEntryName(std::string_view name) {
    return name.size() > 8 && name.ends_with(".desktop");
}

// The item's kept form after the alias rule: the item itself, the target of a
// symbolic link, or none when the item is to be skipped.
struct KeptItem {
    std::string path;
    ItemInfo info;
};

std::optional<KeptItem> applyAliasRule(const WalkContext& context, const FolderIdentity& folder,
                                       std::string itemPath, const ItemInfo& info) {
    if (!info.isSymbolicLink) return KeptItem{std::move(itemPath), info};
    // Chains of links are followed to the end, as alias resolution does.
    std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(itemPath.c_str(), nullptr), &std::free);
    if (!resolved) return KeptItem{std::move(itemPath), info};  // a broken link stays what it is
    std::string target = resolved.get();
    // A link to something in this same folder: the target is met here anyway.
    auto targetParent = identityOf(std::string(parentPath(target)));
    if (targetParent && *targetParent == folder) return std::nullopt;
    auto targetInfo = itemInfo(target, true);
    if (!targetInfo || context.hasVisited(targetInfo->identity)) return std::nullopt;
    return KeptItem{std::move(target), *targetInfo};
}

}  // namespace

bool WalkContext::hasVisited(const FolderIdentity& folder) const {
    return std::find(visitedFolders.begin(), visitedFolders.end(), folder) != visitedFolders.end();
}

void InsertApplication(const std::string& path, const plist::Array& applications) {
    applications.append(plist::Dictionary{{keys::Name, LocalizedApplicationName(path)}, {keys::Path, path}});
}

bool SameFolder(const std::string& first, const std::string& second) {
    if (!isPathWithinLimit(first) || !isPathWithinLimit(second)) return false;
    auto a = identityOf(first);
    auto b = identityOf(second);
    return a && b && *a == *b;
}

void IterateContainerLevel(WalkContext& context, const plist::Array& applications) {
    const std::string folder = context.currentPath;
    const FolderIdentity folderIdentity = context.currentIdentity;
    context.visitedFolders.push_back(folderIdentity);
    if (context.maximumLevels != 0 && context.currentLevel >= context.maximumLevels) return;

    FolderListing listing;
    if (std::int16_t status = openListing(folder, listing); status != kWalkNoErr) {
        context.result = status;
        return;
    }
    ++context.currentLevel;
    // The loop runs while the shared status is clear: a subfolder that fails to
    // open leaves its status here and so ends this folder's listing too.
    do {
        if (listing.next == listing.entries.size()) {
            context.itemsReturned = 0;
            context.result = listing.endStatus;
            break;
        }
        const DirectoryEntry& entry = listing.entries[listing.next++];
        context.itemsReturned = 1;
        context.result = kWalkNoErr;
        context.currentPath = childPath(folder, entry.name);

        std::optional<ItemInfo> info;
        if (entry.type == DT_REG)
            info = ItemInfo{false, true, false, {}};  // a plain file's identity is never needed
        else
            info = itemInfo(context.currentPath, false);
        if (!info) continue;  // vanished since the listing

        auto kept = applyAliasRule(context, folderIdentity, context.currentPath, *info);
        if (!kept || !isPathWithinLimit(kept->path)) continue;
        context.currentPath = kept->path;

        if (kept->info.isDirectory) {
            std::string_view name = std::string_view(kept->path).substr(kept->path.rfind('/') + 1);
            if (!hasPackageExtension(name)) {
                context.currentIdentity = kept->info.identity;
                IterateContainerLevel(context, applications);
            } else if (IsApplication(kept->path)) {
                // Packages are never entered. Of them only ".app" folders with
                // Contents/Info.plist are applications here.
                InsertApplication(kept->path, applications);
            }
        } else if (kept->info.isRegularFile) {
            if (isDesktopEntryName(kept->path) && IsApplication(kept->path)) InsertApplication(kept->path, applications);
        }
    } while (context.result == kWalkNoErr);

    if (context.result == kErrFSNoMoreItems || context.result == kAfpAccessDenied) context.result = kWalkNoErr;
    --context.currentLevel;
}

std::int16_t InsertApplicationsFromFolder(const std::string& folder, std::int32_t maximumLevels,
                                          const plist::Array& applications) {
    if (!isPathWithinLimit(folder)) return kFnfErr;
    std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(folder.c_str(), nullptr), &std::free);
    if (!resolved) return statusForErrno(errno);
    WalkContext context;
    context.currentPath = resolved.get();
    auto identity = identityOf(context.currentPath);
    if (!identity) return statusForErrno(errno);
    context.currentIdentity = *identity;
    // A negative maximum turns into a very large one, which is no limit in practice.
    context.maximumLevels = static_cast<std::uint64_t>(static_cast<std::int64_t>(maximumLevels));
    IterateContainerLevel(context, applications);
    return context.result;
}

bool ApplicationVersion(const std::string& bundleIdentifier, std::uint32_t& major, std::uint32_t& minor,
                        std::uint32_t& bugFix, const Workspace& workspace) {
    major = minor = bugFix = 0;
    auto application = workspace.absolutePathForAppBundleWithIdentifier(bundleIdentifier);
    if (!application) return false;
    auto info = workspace.infoDictionaryForBundle(*application);
    if (!info) return false;
    const std::string* version = (*info)["CFBundleVersion"].string();
    if (!version) return false;

    std::vector<std::int64_t> parts;
    for (std::size_t start = 0;;) {
        std::size_t dot = version->find('.', start);
        parts.push_back(records::leadingIntValue(std::string_view(*version).substr(start, dot - start)));
        if (dot == std::string::npos) break;
        start = dot + 1;
    }
    if (parts[0] < 0) return false;
    major = static_cast<std::uint32_t>(parts[0]);
    if (parts.size() > 1 && parts[1] >= 0) {
        minor = static_cast<std::uint32_t>(parts[1]);
        if (parts.size() > 2 && parts[2] >= 0) bugFix = static_cast<std::uint32_t>(parts[2]);
    }
    return true;
}

}  // namespace corvalis
