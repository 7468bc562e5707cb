#include "fileutils/PathChecking.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <functional>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

#include "fileutils/AliasResolution.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

constexpr const char* kIAppsDomain = "com.apple.iApps";
constexpr const char* kIPhotoRecentDatabases = "iPhotoRecentDatabases";
constexpr const char* kApertureLibraries = "ApertureLibraries";
constexpr const char* kAddressBookIdentifier = "com.apple.AddressBook";
constexpr const char* kDeveloperApplicationsFolder = "/Developer/Applications/";

// The file's own path: links and "." or ".." resolved, as the file system spells it.
// The kernel names an open file in three calls whatever the depth, where realpath
// looks at every component; realpath remains for a system without /proc.
std::optional<std::string> canonicalPath(const std::string& path) {
    int fd = ::open(path.c_str(), O_PATH | O_CLOEXEC);
    if (fd >= 0) {
        char link[PATH_MAX];
        std::string self = "/proc/self/fd/" + std::to_string(fd);
        ssize_t length = ::readlink(self.c_str(), link, sizeof link);
        ::close(fd);
        if (length > 0 && length < static_cast<ssize_t>(sizeof link) && link[0] == '/') {
            std::string canonical(link, static_cast<std::size_t>(length));
            if (!isPathWithinLimit(canonical)) return std::nullopt;
            return canonical;
        }
    }
    std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    if (!real || !isPathWithinLimit(real.get())) return std::nullopt;
    return std::string(real.get());
}

// The fields of a file reference, wherever they are kept, and how its name is derived.
struct Reference {
    std::string path;
    std::optional<plist::Data> aliasData;  // a copy: setting the other fields may move the record's storage
    std::function<void(const std::string&)> setPath;
    std::function<void(const std::string&)> setNameFor;  // the name of this path
    std::function<void(const plist::Data&)> setAliasData;
    std::function<void()> removeAliasData;
};

bool check(const Reference& reference, const Workspace& workspace) {
    const std::string& path = reference.path;
    if (!isPathWithinLimit(path)) return false;
    // Naming the file answers whether it exists too; only a failure needs a second look.
    if (auto canonical = canonicalPath(path); canonical || fileExistsAtPath(path)) {
        if (!canonical) return false;
        bool changed = *canonical != path;
        if (changed) {
            reference.setPath(*canonical);
            reference.setNameFor(*canonical);
        }
        if (reference.aliasData) return changed;
        auto data = AliasData(*canonical, workspace);
        if (!data) return changed;
        reference.setAliasData(*data);
        if (!changed) reference.setNameFor(path);
        return true;
    }
    if (!reference.aliasData) return false;
    AliasResolution resolution = ResolveAliasData(*reference.aliasData, workspace);
    if (resolution.path) {
        std::string resolved = *resolution.path;
        reference.setPath(resolved);
        reference.setNameFor(resolved);
        if (resolution.wasChanged && resolution.updatedData) reference.setAliasData(*resolution.updatedData);
    } else {
        reference.removeAliasData();
    }
    return true;
}

bool checkRecord(plist::Dictionary& record, std::function<std::optional<std::string>(const std::string&)> nameFor,
                 const Workspace& workspace) {
    const std::string* path = record[keys::Path].string();
    if (!path) return false;
    Reference reference;
    reference.path = *path;
    // Alias data of another type is as good as none: it is made again.
    if (const plist::Data* data = record[keys::AliasData].data()) reference.aliasData = *data;
    reference.setPath = [&](const std::string& value) { record.set(keys::Path, value); };
    reference.setNameFor = [&](const std::string& value) {
        if (auto name = nameFor(value)) record.set(keys::Name, *name);
    };
    reference.setAliasData = [&](const plist::Data& value) { record.set(keys::AliasData, value); };
    reference.removeAliasData = [&] { record.remove(keys::AliasData); };
    return check(reference, workspace);
}

bool libraryAvailable(DomainStore& store, const char* key) {
    store.synchronize(kIAppsDomain);
    auto domain = store.persistentDomainForName(kIAppsDomain);
    if (!domain) return false;
    auto libraries = plist::asArray((*domain)[key]);
    if (!libraries || libraries->empty()) return false;
    const std::string* first = (*libraries)[0].string();
    if (!first) return false;
    auto path = PathOfUrlString(*first);
    return path && !path->empty() && fileExistsAtPath(*path);
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool isUrlCharacter(char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
    return std::string_view("-._~:/?#[]@!$&'()*+,;=%").find(c) != std::string_view::npos;
}

}  // namespace

bool CheckPath(plist::Dictionary& record, const Workspace& workspace) {
    return checkRecord(record, [](const std::string& path) { return LocalizedApplicationName(path); }, workspace);
}

bool CheckOpenMenuItemPath(plist::Dictionary& record, const Workspace& workspace) {
    bool nameIsCustom = record[keys::NameIsCustom].toBool().value_or(false);
    return checkRecord(
        record,
        [nameIsCustom](const std::string& path) -> std::optional<std::string> {
            if (nameIsCustom) return std::nullopt;
            return DisplayNameAtPath(path);
        },
        workspace);
}

bool CheckNewPath(std::string& path, std::string& name, std::optional<plist::Data>& aliasData,
                  const Workspace& workspace) {
    Reference reference;
    reference.path = path;
    reference.aliasData = aliasData;
    reference.setPath = [&](const std::string& value) { path = value; };
    reference.setNameFor = [&](const std::string& value) { name = LocalizedApplicationName(value); };
    reference.setAliasData = [&](const plist::Data& value) { aliasData = value; };
    reference.removeAliasData = [&] { aliasData.reset(); };
    return check(reference, workspace);
}

std::optional<std::string> PathOfUrlString(const std::string& url) {
    for (std::size_t i = 0; i < url.size(); ++i) {
        if (!isUrlCharacter(url[i])) return std::nullopt;
        if (url[i] == '%' && (i + 2 >= url.size() || hexDigit(url[i + 1]) < 0 || hexDigit(url[i + 2]) < 0))
            return std::nullopt;
    }
    std::string_view rest(url);
    // A scheme is letters, digits, "+", "-" and "." before the first ":", starting with a letter.
    if (auto colon = rest.find(':'); colon != std::string_view::npos && colon > 0 && std::isalpha(static_cast<unsigned char>(rest[0])) &&
                                     rest.substr(0, colon).find_first_not_of(
                                         "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-.") ==
                                         std::string_view::npos)
        rest.remove_prefix(colon + 1);
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        rest.remove_prefix(std::min(rest.find_first_of("/?#"), rest.size()));
    }
    rest = rest.substr(0, rest.find_first_of("?#"));
    std::string path;
    for (std::size_t i = 0; i < rest.size(); ++i) {
        if (rest[i] == '%') {
            path += static_cast<char>(hexDigit(rest[i + 1]) * 16 + hexDigit(rest[i + 2]));
            i += 2;
        } else {
            path += rest[i];
        }
    }
    if (path.find('\0') != std::string::npos) return std::nullopt;
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

std::vector<std::string> Filenames(const std::vector<std::string>& fileUrls) {
    std::vector<std::string> paths;
    paths.reserve(fileUrls.size());
    for (const std::string& url : fileUrls) paths.push_back(PathOfUrlString(url).value_or(""));
    return paths;
}

int GetApplicationsFolderRef(std::string* outPath, const Workspace& workspace) {
    std::string folder = workspace.systemApplicationsFolder();
    if (!IsFolder(folder)) return kFileNotFoundErr;
    if (outPath) *outPath = folder;
    return kNoErr;
}

int GetDeveloperApplicationsFolderRef(std::string* outPath) {
    if (!fileExistsAtPath(kDeveloperApplicationsFolder)) return kFileNotFoundErr;
    if (outPath) *outPath = kDeveloperApplicationsFolder;
    return kNoErr;
}

bool IsAddressBookInstalled(const Workspace& workspace) {
    return workspace.absolutePathForAppBundleWithIdentifier(kAddressBookIdentifier).has_value();
}

bool IsIPhotoLibraryAvailable(DomainStore& store) { return libraryAvailable(store, kIPhotoRecentDatabases); }

bool IsApertureLibraryAvailable(DomainStore& store) { return libraryAvailable(store, kApertureLibraries); }

int iconErrorForPath(const std::string& path) {
    if (!fileExistsAtPath(path)) return 1;
    return IsInTrash(path) ? 2 : 0;
}

}  // namespace corvalis
