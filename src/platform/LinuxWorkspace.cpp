#include "platform/LinuxWorkspace.h"

#include <sys/stat.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <set>
#include <utility>

#include "platform/ApplicationBundle.h"
#include "platform/DesktopEntry.h"
#include "plist/PlistIO.h"

namespace corvalis {

namespace fs = std::filesystem;

namespace {

bool isDirectory(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isApplicationBundleWithInfo(const std::string& path) {
    struct stat info {};
    return path.ends_with(".app") && hasPackageExtension(path) && isDirectory(path) &&
           ::stat((path + "/Contents/Info.plist").c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// Walks breadth-first below `root` (at most `maxDepth` levels), never into packages
// or hidden folders, calling `visit` for each entry until the shared budget is spent.
template <class Visit>
void walk(const std::string& root, int maxDepth, std::size_t& budget, Visit visit) {
    std::deque<std::pair<fs::path, int>> folders{{fs::path(root), 1}};
    while (!folders.empty() && budget > 0) {
        auto [folder, depth] = std::move(folders.front());
        folders.pop_front();
        std::error_code error;
        fs::directory_iterator it(folder, fs::directory_options::skip_permission_denied, error);
        for (; !error && it != fs::directory_iterator() && budget > 0; it.increment(error)) {
            --budget;
            const fs::path& entry = it->path();
            std::string name = entry.filename().string();
            if (name.empty() || name.front() == '.') continue;
            visit(entry.string());
            std::error_code typeError;
            if (depth < maxDepth && !hasPackageExtension(name) && it->is_directory(typeError) && !it->is_symlink(typeError))
                folders.emplace_back(entry, depth + 1);
        }
    }
}

}  // namespace

std::string LinuxWorkspace::systemApplicationsFolder() const {
    if (const char* configured = std::getenv("CORVALIS_APPLICATIONS_DIR"); configured && *configured) return configured;
    if (isDirectory("/Applications")) return "/Applications";
    return "/usr/share/applications";
}

std::vector<std::string> LinuxWorkspace::knownApplications() const {
    std::vector<std::string> applications;
    std::size_t budget = kMaxApplicationScanEntries;
    // Bundles sit in the Applications folder or one folder below it (Utilities).
    walk(systemApplicationsFolder(), 2, budget, [&](const std::string& path) {
        if (isApplicationBundleWithInfo(path)) applications.push_back(path);
    });

    std::vector<std::string> dataFolders = xdgDataFolders();
    std::set<std::string> seenIds;
    for (const std::string& folder : dataFolders) {
        walk(folder + "/applications", 4, budget, [&](const std::string& path) {
            if (!path.ends_with(".desktop")) return;
            std::string id = desktopFileId(path, dataFolders);
            // An entry shadows entries of the same id in later folders, even when it is hidden.
            if (!seenIds.insert(id).second) return;
            auto entry = DesktopEntry::read(path);
            if (entry && entry->isApplication() && entry->booleanValue("Hidden") != true) applications.push_back(path);
        });
    }
    return applications;
}

std::optional<std::string> LinuxWorkspace::bundleIdentifierForApplication(const std::string& path) const {
    if (path.ends_with(".desktop")) {
        auto entry = DesktopEntry::read(path);
        if (!entry || !entry->isApplication()) return std::nullopt;
        return desktopFileId(path, xdgDataFolders());
    }
    if (!isApplicationBundleWithInfo(path)) return std::nullopt;
    auto info = infoDictionaryForBundle(path);
    const std::string* identifier = info ? (*info)["CFBundleIdentifier"].string() : nullptr;
    if (!identifier || identifier->empty()) return std::nullopt;
    return *identifier;
}

std::optional<plist::Dictionary> LinuxWorkspace::infoDictionaryForBundle(const std::string& path) const {
    if (path.ends_with(".desktop")) {
        auto entry = DesktopEntry::read(path);
        if (!entry || !entry->isApplication()) return std::nullopt;
        plist::Dictionary info;
        info.set("CFBundleIdentifier", desktopFileId(path, xdgDataFolders()));
        if (auto name = entry->value("Name")) info.set("CFBundleName", *name);
        if (auto noDisplay = entry->booleanValue("NoDisplay")) info.set("LSUIElement", *noDisplay);
        if (auto backgroundOnly = entry->booleanValue(kDesktopBackgroundOnlyKey)) info.set("LSBackgroundOnly", *backgroundOnly);
        return info;
    }
    if (!hasPackageExtension(path) || !isDirectory(path)) return std::nullopt;
    std::error_code error;
    if (!fs::exists(fs::path(path) / "Contents" / "Info.plist", error)) return plist::Dictionary();  // declares nothing
    return readInfoPlist(path);
}

}  // namespace corvalis
