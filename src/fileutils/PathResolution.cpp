#include "fileutils/PathResolution.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <array>
#include <cctype>
#include <cstdlib>
#include <deque>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "fileutils/AliasRecord.h"
#include "fileutils/KVOperatingSystem.h"
#include "fileutils/PathLimits.h"
#include "platform/DesktopEntry.h"
#include "text/Localization.h"

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

bool statPath(const std::string& path, struct stat& info) {
    return isPathWithinLimit(path) && ::stat(path.c_str(), &info) == 0;
}

bool lstatPath(const std::string& path, struct stat& info) {
    return isPathWithinLimit(path) && ::lstat(path.c_str(), &info) == 0;
}

bool isDirectory(const std::string& path) {
    struct stat info {};
    return statPath(path, info) && S_ISDIR(info.st_mode);
}

std::string_view lastComponent(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    auto slash = path.rfind('/');
    return slash == std::string_view::npos || path == "/" ? path : path.substr(slash + 1);
}

// The extension of the last component as Foundation's pathExtension answers it.
std::string_view pathExtension(std::string_view path) {
    std::string_view name = lastComponent(path);
    auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return name.substr(dot + 1);
}

// The name of what the path leads to: a link to a bundle is that bundle.
std::string targetName(const std::string& path) {
    std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return std::string(lastComponent(real ? std::string_view(real.get()) : std::string_view(path)));
}

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    if (const passwd* entry = ::getpwuid(::getuid()); entry && entry->pw_dir) return entry->pw_dir;
    return "/";
}

std::string lowercased(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::optional<std::string> readLink(const std::string& path) {
    if (!isPathWithinLimit(path)) return std::nullopt;
    std::array<char, 4096> buffer{};
    ssize_t length = ::readlink(path.c_str(), buffer.data(), buffer.size());
    if (length < 0 || static_cast<std::size_t>(length) >= buffer.size()) return std::nullopt;
    return std::string(buffer.data(), static_cast<std::size_t>(length));
}

// The root file system's label when a block device carries one; else "Computer".
std::string rootVolumeName() {
    struct stat root {};
    if (::stat("/", &root) == 0) {
        if (DIR* labels = ::opendir("/dev/disk/by-label")) {
            std::string found;
            while (dirent* entry = ::readdir(labels)) {
                std::string name = entry->d_name;
                if (name == "." || name == "..") continue;
                struct stat device {};
                if (::stat(("/dev/disk/by-label/" + name).c_str(), &device) == 0 && S_ISBLK(device.st_mode) &&
                    device.st_rdev == root.st_dev) {
                    found = name;
                    break;
                }
            }
            ::closedir(labels);
            // udev writes unsafe characters of a label as \xNN.
            std::string label;
            for (std::size_t i = 0; i < found.size(); ++i) {
                if (found.compare(i, 2, "\\x") == 0 && i + 3 < found.size() &&
                    std::isxdigit(static_cast<unsigned char>(found[i + 2])) &&
                    std::isxdigit(static_cast<unsigned char>(found[i + 3]))) {
                    label += static_cast<char>(std::stoi(found.substr(i + 2, 2), nullptr, 16));
                    i += 3;
                } else {
                    label += found[i];
                }
            }
            if (!label.empty()) return label;
        }
    }
    return LocalizedString("RootVolumeName");
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

bool isSpaceSeparatorOrTab(char32_t c) {
    return c == U'\t' || c == U' ' || c == 0x00A0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

}  // namespace

bool MyIsAliasFile(const std::string& path) { return IsSymbolicLink(StandardizedPath(path)); }

bool IsSymbolicLink(const std::string& path) {
    struct stat info {};
    return lstatPath(path, info) && S_ISLNK(info.st_mode);
}

bool IsApplication(const std::string& path) {
    struct stat info {};
    if (!statPath(path, info)) return false;
    if (S_ISDIR(info.st_mode)) {
        std::string name = targetName(path);
        struct stat plist {};
        return name.ends_with(".app") && hasPackageExtension(name) &&
               statPath(path + "/Contents/Info.plist", plist) && S_ISREG(plist.st_mode);
    }
    if (!S_ISREG(info.st_mode)) return false;
    auto entry = DesktopEntry::read(path);
    return entry && entry->isApplication();
}

bool IsScript(const std::string& path) {
    std::string extension = lowercased(pathExtension(path));
    return extension == "applescript" || extension == "scpt" || extension == "scptd";
}

bool IsPackage(const std::string& path) { return isDirectory(path) && hasPackageExtension(targetName(path)); }

bool IsFolder(const std::string& path) { return isDirectory(path) && !hasPackageExtension(targetName(path)); }

bool IsValid(const std::string& path) { return fileExistsAtPath(path) && !IsInTrash(path); }

bool IsInTrash(const std::string& path) {
    if (path.find(".Trash") != std::string::npos) return true;
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    std::string trash = (dataHome && dataHome[0] == '/' ? std::string(dataHome) : homeFolder() + "/.local/share") + "/Trash";
    trash = StandardizedPath(trash);
    std::string standardized = StandardizedPath(path);
    return standardized == trash || standardized.starts_with(trash + "/");
}

bool IsSeparator(std::string_view text) { return text.find_first_not_of('-') == std::string_view::npos; }

bool isValid(std::string_view text) {
    // Decodes UTF-8 just far enough to tell the space separators from everything else.
    for (std::size_t i = 0; i < text.size();) {
        auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 1;
        if ((lead >= 0x80 && length == 1) || i + length > text.size()) return true;  // broken sequences are content
        char32_t c = length == 1 ? lead : lead & (0x7F >> length);
        for (std::size_t k = 1; k < length; ++k) c = (c << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
        if (!isSpaceSeparatorOrTab(c)) return true;
        i += length;
    }
    return false;
}

std::string noNewlineString(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c == '\n' || c == '\r') c = ' ';
    return result;
}

std::string StandardizedPath(std::string_view path) {
    std::string expanded;
    if (path == "~" || path.starts_with("~/"))
        expanded = homeFolder() + std::string(path.substr(1));
    else
        expanded = std::string(path);
    bool absolute = !expanded.empty() && expanded.front() == '/';
    std::vector<std::string_view> parts;
    std::string_view rest(expanded);
    while (!rest.empty()) {
        auto slash = rest.find('/');
        std::string_view part = rest.substr(0, slash);
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
        if (part.empty() || part == ".") continue;
        if (part == ".." && absolute) {
            if (!parts.empty()) parts.pop_back();
            continue;
        }
        parts.push_back(part);
    }
    std::string result = absolute ? "/" : "";
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) result += '/';
        result += parts[i];
    }
    if (result.empty() && !expanded.empty()) return absolute ? "/" : ".";
    return result;
}

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

std::string DisplayNameAtPath(const std::string& path) {
    std::string_view name = lastComponent(path);
    if (name == "/") return rootVolumeName();
    if (name.ends_with(".desktop")) {
        if (auto entry = DesktopEntry::read(path))
            if (auto localized = entry->localizedValue("Name", messagesLocale()); localized && !localized->empty())
                return *localized;
    }
    // Application bundles show without their extension, as file browsers hide it.
    if (name.size() > 4 && name.ends_with(".app") && isDirectory(path)) name.remove_suffix(4);
    return std::string(name);
}

namespace {
bool isApplicationExtension(std::string_view extension) {
    return extension == "app" || extension == "applescript" || extension == "scpt" || extension == "scptd";
}
}  // namespace

std::string LocalizedApplicationName(const std::string& path) {
    // "X.app" ends as "X" whether or not the bundle's extension was hidden first;
    // only a name like "X.app.app" depends on it, so only then is the disk asked.
    std::string_view last = lastComponent(path);
    if (last.size() > 4 && last.ends_with(".app") && !isApplicationExtension(pathExtension(last.substr(0, last.size() - 4))))
        return std::string(last.substr(0, last.size() - 4));
    std::string name = DisplayNameAtPath(path);
    std::string_view extension = pathExtension(name);
    if (isApplicationExtension(extension)) name.resize(name.size() - extension.size() - 1);
    return name;
}

std::string LocalizedFolderName(const std::string& path) { return DisplayNameAtPath(path); }

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

bool CopyApplicationInfoDictionaryPresentationOptions(const std::string& bundlePath, bool* outIsUIElement,
                                                      bool* outIsBackgroundOnly, const Workspace& workspace) {
    bool isUIElement = false, isBackgroundOnly = false;
    if (outIsUIElement) *outIsUIElement = false;
    if (outIsBackgroundOnly) *outIsBackgroundOnly = false;
    if (bundlePath.empty()) return false;
    auto info = workspace.infoDictionaryForBundle(bundlePath);
    if (!info) return false;
    if (info->empty()) return !KVOperatingSystem::is10_10orLater();

    // A string counts only when it is exactly "1"; a boolean counts as itself.
    auto flag = [](const plist::Value& value) {
        if (const std::string* text = value.string()) return *text == "1";
        if (value.type() == plist::Type::Boolean) return value.boolean().value_or(false);
        return false;
    };
    const plist::Value* uiElement = info->find("LSUIElement");
    if (!uiElement) uiElement = info->find("NSUIElement");
    if (uiElement) isUIElement = flag(*uiElement);
    if (const plist::Value* backgroundOnly = info->find("LSBackgroundOnly")) isBackgroundOnly = flag(*backgroundOnly);
    if (outIsUIElement) *outIsUIElement = isUIElement;
    if (outIsBackgroundOnly) *outIsBackgroundOnly = isBackgroundOnly;
    return true;
}

}  // namespace corvalis
