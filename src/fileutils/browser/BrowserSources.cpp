#include "fileutils/browser/BrowserSources.h"

#include <QProcess>

#include <algorithm>
#include <cctype>

#include "fileutils/AliasResolution.h"
#include "fileutils/ApplicationEnumeration.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/NameOrder.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "plist/Utf8.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

constexpr int kGsettingsTimeoutMs = 2000;

bool isStorable(const plist::Value& entry) {
    const std::string* name = entry[keys::Name].string();
    const std::string* path = entry[keys::Path].string();
    return name && path && plist::detail::isValidUtf8(*name) && plist::detail::isValidUtf8(*path);
}

// An entry for the path, unless its path or name could not be stored as text.
void appendEntry(const std::string& path, plist::Array& applications) {
    if (!plist::detail::isValidUtf8(path)) return;
    std::string name = LocalizedApplicationName(path);
    if (!plist::detail::isValidUtf8(name)) return;
    applications.append(plist::Dictionary{{keys::Name, name}, {keys::Path, path}});
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

std::optional<std::string> resolvedAlias(const plist::Value& data, const Workspace& workspace) {
    const plist::Data* bytes = data.data();
    if (!bytes) return std::nullopt;
    return ResolveAliasData(*bytes, workspace).path;
}

// Where a Dock file tile points: its bookmark, else its URL when something is
// there, else its alias data; none when nothing resolves.
std::optional<std::string> dockTilePath(const plist::Value& tileData, const Workspace& workspace) {
    if (!tileData["book"].isAbsent()) return resolvedAlias(tileData["book"], workspace);
    const plist::Value& fileData = tileData["file-data"];
    const std::string* url = fileData["_CFURLString"].string();
    if (!url || fileData["_CFURLAliasData"].isAbsent()) return std::nullopt;
    std::optional<std::string> path = url->starts_with("/") ? std::optional<std::string>(*url) : PathOfUrlString(*url);
    if (path && !path->empty() && fileExistsAtPath(*path)) return path;
    return resolvedAlias(fileData["_CFURLAliasData"], workspace);
}

}  // namespace

void _sortAndRemoveDuplicates(plist::Array& applications) {
    sortUsingFunction(applications, SortByNameAndPath);
    plist::Array unique;
    unique.reserve(applications.size());
    const std::string* previous = nullptr;
    for (const plist::Value& entry : applications) {
        const std::string* path = entry[keys::Path].string();
        if (previous && path && *path == *previous) continue;
        unique.append(entry);
        previous = path;
    }
    applications.replaceContents(unique);
}

plist::Array WalkFolderSource(const std::string& folder, std::int32_t depth) {
    plist::Array found;
    InsertApplicationsFromFolder(folder, depth, found);
    plist::Array applications;
    applications.reserve(found.size());
    for (const plist::Value& entry : found)
        if (isStorable(entry)) applications.append(entry);
    _sortAndRemoveDuplicates(applications);
    return applications;
}

bool isBrowsableFolder(const std::string& path) {
    return isPathWithinLimit(path) && fileExistsAtPath(path) && !IsInTrash(path);
}

SourceIcon sourceIconForFolder(const std::string& path) {
    if (!isPathWithinLimit(path) || !fileExistsAtPath(path)) return SourceIcon::BadLink;
    return IsInTrash(path) ? SourceIcon::Trash : SourceIcon::None;
}

plist::Array RunningApplicationEntries(const std::vector<RunningApplication>& running) {
    plist::Array applications;
    for (const RunningApplication& application : running)
        if (!application.backgroundOnly && !application.path.empty()) appendEntry(application.path, applications);
    sortUsingFunction(applications, SortByNameAndPath);
    return applications;
}

plist::Array RecentApplicationEntries(const plist::Value& recent, std::int32_t maximum) {
    plist::Array applications;
    const plist::Array* list = recent.array();
    if (!list) return applications;
    for (const plist::Value& item : *list) {
        if (static_cast<std::int64_t>(applications.size()) >= maximum) break;
        const std::string* path = item[keys::Path].string();
        if (path && isPathWithinLimit(*path) && fileExistsAtPath(*path)) appendEntry(*path, applications);
    }
    sortUsingFunction(applications, SortByNameAndPath);
    return applications;
}

plist::Array DockApplicationEntries(const plist::Value& persistentApps, const Workspace& workspace) {
    plist::Array applications;
    const plist::Array* tiles = persistentApps.array();
    if (!tiles) return applications;
    for (const plist::Value& tile : *tiles) {
        const std::string* type = tile["tile-type"].string();
        if (!type || !equalsIgnoringCase(*type, "file-tile")) continue;
        std::optional<std::string> path = dockTilePath(tile["tile-data"], workspace);
        if (!path || path->empty() || IsSeparator(LocalizedApplicationName(*path))) continue;
        appendEntry(*path, applications);
    }
    sortUsingFunction(applications, SortByNameAndPath);
    return applications;
}

std::vector<std::string> ParseFavoriteApps(std::string_view text) {
    std::vector<std::string> ids;
    std::size_t open = text.find('[');
    std::size_t close = text.rfind(']');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return ids;
    std::string_view list = text.substr(open + 1, close - open - 1);
    for (std::size_t at = 0; at < list.size();) {
        std::size_t quote = list.find_first_of("'\"", at);
        if (quote == std::string_view::npos) break;
        std::size_t end = list.find(list[quote], quote + 1);
        if (end == std::string_view::npos) break;
        std::string id(list.substr(quote + 1, end - quote - 1));
        if (!id.empty()) ids.push_back(std::move(id));
        at = end + 1;
    }
    return ids;
}

plist::Array FavoriteApplicationEntries(const std::vector<std::string>& desktopIds, const Workspace& workspace) {
    plist::Array applications;
    for (const std::string& id : desktopIds)
        if (std::optional<std::string> path = workspace.absolutePathForAppBundleWithIdentifier(id))
            appendEntry(*path, applications);
    sortUsingFunction(applications, SortByNameAndPath);
    return applications;
}

std::vector<std::string> ReadGnomeFavoriteApps() {
    QProcess gsettings;
    gsettings.start("gsettings", {"get", "org.gnome.shell", "favorite-apps"});
    if (!gsettings.waitForFinished(kGsettingsTimeoutMs) || gsettings.exitStatus() != QProcess::NormalExit ||
        gsettings.exitCode() != 0) {
        gsettings.kill();
        gsettings.waitForFinished(kGsettingsTimeoutMs);
        return {};
    }
    return ParseFavoriteApps(gsettings.readAllStandardOutput().toStdString());
}

}  // namespace corvalis
