#include "fileutils/PathPredicates.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <vector>

#include "fileutils/KVOperatingSystem.h"
#include "fileutils/PathLimits.h"
#include "platform/DesktopEntry.h"

namespace corvalis {

namespace {

bool statPath(const std::string& path, struct stat& info) {
    return isPathWithinLimit(path) && ::stat(path.c_str(), &info) == 0;
}

bool lstatPath(const std::string& path, struct stat& info) {
    return isPathWithinLimit(path) && ::lstat(path.c_str(), &info) == 0;
}

// The name of what the path leads to: a link to a bundle is that bundle.
std::string targetName(const std::string& path) {
    std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return std::string(lastPathComponent(real ? std::string_view(real.get()) : std::string_view(path)));
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

bool isSpaceSeparatorOrTab(char32_t c) {
    return c == U'\t' || c == U' ' || c == 0x00A0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

}  // namespace

bool isDirectory(const std::string& path) {
    struct stat info {};
    return statPath(path, info) && S_ISDIR(info.st_mode);
}

std::string_view lastPathComponent(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    auto slash = path.rfind('/');
    return slash == std::string_view::npos || path == "/" ? path : path.substr(slash + 1);
}

std::string_view pathExtension(std::string_view path) {
    std::string_view name = lastPathComponent(path);
    auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return name.substr(dot + 1);
}

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
