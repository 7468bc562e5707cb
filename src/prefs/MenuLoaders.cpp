// The four menus: factory menus, normalisation of stored menus, and the
// one-time migration from the older per-section switches.

#include <algorithm>
#include <span>
#include <string_view>

#include "fileutils/PathResolution.h"
#include "fileutils/KVOperatingSystem.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/MenuItemKinds.h"
#include "schema/PreferenceKeys.h"
#include "prefs/RecordSupport.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Type;
using plist::Value;
using records::MenuBuilder;

namespace {

constexpr std::string_view kOpenKinds[] = {items::Groups, items::DockApplications, items::RecentApplications,
                              items::ApplicationsFolder, items::DeveloperApplicationsFolder,
                              items::SystemPreferences, items::Folder};
constexpr std::string_view kQuitKinds[] = {items::RunningApplications, items::QuitOthers, items::QuitAll, items::QuitExcluded,
                              items::Groups, items::ExcludedApplications, items::BackgroundOnlyApplications};
constexpr std::string_view kSwitchKinds[] = {items::ActiveApplicationWindows, items::RunningApplications, items::SwitchToPrevious,
                                items::HideOthers, items::ShowAll, items::Groups,
                                items::ToggleSingleApplicationMode};
constexpr std::string_view kSpecialKinds[] = {
    items::Volumes,     items::Home,          items::Library,        items::RecentFolders,  items::RecentDocuments,
    items::RecentServers, items::AddressBook, items::iPhotoLibrary,  items::ApertureLibrary, items::SystemMemory,
    items::Uptime,      items::RelaunchFinder, items::QuitLaunchFinder, items::RelaunchDock, items::LoginWindow,
    items::Sleep,       items::Restart,       items::ShutDown,       items::LogOut,         items::Folder,
    items::File};

bool accepts(std::span<const std::string_view> kinds, std::string_view kind) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

// A copy of a kept record in which fields of the wrong type are dropped, so
// that the editors and the controller never meet them.
Dictionary keptRecord(const Dictionary& record) {
    Dictionary copy = record.deepCopy();
    auto require = [&copy](const char* key, bool (*ok)(const Value&)) {
        const Value& value = copy[key];
        if (!value.isAbsent() && !ok(value)) copy.remove(key);
    };
    auto isString = [](const Value& v) { return v.type() == Type::String; };
    auto isNumber = [](const Value& v) { return v.isNumber(); };
    require(keys::Path, isString);
    require(keys::Name, isString);
    require(keys::AliasData, [](const Value& v) { return v.type() == Type::Data; });
    require(keys::NameIsCustom, isNumber);
    require(keys::Depth, isNumber);
    require(keys::BrowserDepth, isNumber);
    return copy;
}

// Walks a stored menu, keeping the records `keep` accepts under the separator rule.
template <class Keep>
Array normalisedMenu(const Array& stored, Keep keep) {
    MenuBuilder menu;
    for (const Value& item : stored) {
        const Dictionary* record = item.dictionary();
        const std::string* kind = record ? (*record)[keys::Item].string() : nullptr;
        if (!kind) continue;
        if (*kind == items::Separator) {
            menu.addSeparator();
            continue;
        }
        if (std::optional<Dictionary> kept = keep(*kind, *record)) menu.add(std::move(*kept));
    }
    return menu.finish();
}

}  // namespace

// ---- Factory menus -----------------------------------------------------------

Array CorvalisPreferences::defaultOpenMenu() const {
    MenuBuilder menu;
    menu.add(items::Groups);
    menu.addSeparator();
    menu.add(items::DockApplications);
    menu.add(items::RecentApplications);
    menu.addSeparator();
    menu.add(items::ApplicationsFolder);
    if (_environment.developerApplicationsFolderExists()) menu.add(items::DeveloperApplicationsFolder);
    menu.addSeparator();
    menu.add(items::SystemPreferences);
    return menu.finish();
}

Array CorvalisPreferences::defaultQuitMenu() const {
    MenuBuilder menu;
    menu.add(items::RunningApplications);
    menu.addSeparator();
    menu.add(items::QuitOthers);
    menu.add(items::QuitAll);
    menu.addSeparator();
    menu.add(items::Groups);
    return menu.finish();
}

Array CorvalisPreferences::defaultSwitchMenu() const {
    MenuBuilder menu;
    menu.add(items::RunningApplications);
    menu.addSeparator();
    menu.add(items::SwitchToPrevious);
    menu.add(items::HideOthers);
    menu.add(items::ShowAll);
    menu.addSeparator();
    menu.add(items::Groups);
    return menu.finish();
}

Array CorvalisPreferences::defaultSpecialMenu() const {
    MenuBuilder menu;
    menu.add(items::Volumes);
    menu.add(items::Home);
    menu.addSeparator();
    menu.add(items::RecentFolders);
    menu.add(items::RecentDocuments);
    menu.add(items::RecentServers);
    menu.addSeparator();
    if (_environment.addressBookInstalled()) menu.add(items::AddressBook);
    if (_environment.iPhotoLibraryAvailable()) menu.add(items::iPhotoLibrary);
    if (_environment.apertureLibraryAvailable()) menu.add(items::ApertureLibrary);
    menu.addSeparator();
    menu.add(items::SystemMemory);
    menu.add(items::Uptime);
    menu.addSeparator();
    menu.addSeparator();
    menu.add(items::RelaunchFinder);
    menu.add(items::RelaunchDock);
    menu.addSeparator();
    menu.add(items::LoginWindow);
    menu.addSeparator();
    menu.add(items::Sleep);
    menu.add(items::Restart);
    menu.add(items::ShutDown);
    menu.addSeparator();
    menu.add(items::LogOut);
    return menu.finish();
}

// ---- Loaders -----------------------------------------------------------------

bool CorvalisPreferences::_loadOpenMenuItems() {
    bool developer = _environment.developerApplicationsFolderExists();
    std::optional<Array> stored = storedArray(keys::OpenMenuItems);
    bool built = !stored;
    Array menu;
    if (stored) {
        menu = normalisedMenu(*stored, [&](const std::string& kind, const Dictionary& record) -> std::optional<Dictionary> {
            if (!accepts(kOpenKinds, kind) || (kind == items::DeveloperApplicationsFolder && !developer))
                return std::nullopt;
            Dictionary kept = keptRecord(record);
            const std::string* path = kept[keys::Path].string();
            if (path && !kept[keys::NameIsCustom].toBool().value_or(false))
                kept.set(keys::Name, LocalizedFolderName(*path));
            return kept;
        });
        // The applications browser's choice of sections may name items that are gone.
        if (menu.size() < stored->size()) working().remove(keys::BrowserShowWhat);
    } else {
        MenuBuilder builder;
        builder.add(items::Groups);
        builder.addSeparator();
        if (legacyBool(keys::ShowDockApplications, true)) builder.add(items::DockApplications);
        if (legacyBool(keys::ShowRecentApplications, true)) builder.add(items::RecentApplications);
        builder.addSeparator();
        if (legacyBool(keys::ShowApplicationsFolder, true)) builder.add(items::ApplicationsFolder);
        if (developer && legacyBool(keys::ShowDeveloperApplicationsFolder, true))
            builder.add(items::DeveloperApplicationsFolder);
        builder.addSeparator();
        if (std::optional<Array> folders = storedArray(keys::Folders)) {
            for (const Value& entry : *folders) {
                const Dictionary* folder = entry.dictionary();
                const std::string* path = folder ? (*folder)[keys::Path].string() : nullptr;
                if (!path) continue;  // nothing to show without a folder
                std::string localized = LocalizedFolderName(*path);
                const std::string* name = (*folder)[keys::Name].string();
                Dictionary item{{keys::Item, items::Folder},
                                {keys::Name, name ? *name : localized},
                                {keys::Path, *path},
                                {keys::NameIsCustom, name != nullptr && *name != localized}};
                for (const char* depth : {keys::Depth, keys::BrowserDepth})
                    if ((*folder)[depth].isNumber()) item.set(depth, (*folder)[depth]);
                builder.add(std::move(item));
            }
        }
        builder.addSeparator();
        if (legacyBool(keys::ShowSystemPreferences, true)) builder.add(items::SystemPreferences);
        menu = builder.finish();
        working().remove(keys::BrowserShowWhat);
    }
    removeKeys({keys::ShowDockApplications, keys::ShowRecentApplications, keys::ShowApplicationsFolder,
                keys::ShowDeveloperApplicationsFolder, keys::Folders, keys::ShowSystemPreferences});
    working().set(keys::OpenMenuItems, menu);
    return built;
}

bool CorvalisPreferences::_loadQuitMenuItems(bool addExcludedApplications) {
    std::optional<Array> stored = storedArray(keys::QuitMenuItems);
    Array menu;
    if (stored) {
        menu = normalisedMenu(*stored, [](const std::string& kind, const Dictionary& record) -> std::optional<Dictionary> {
            if (!accepts(kQuitKinds, kind)) return std::nullopt;
            return keptRecord(record);
        });
    } else {
        MenuBuilder builder;
        builder.add(items::RunningApplications);
        builder.addSeparator();
        builder.add(items::QuitOthers);
        builder.add(items::QuitAll);
        builder.addSeparator();
        builder.add(items::Groups);
        builder.addSeparator();
        if (addExcludedApplications) builder.add(items::ExcludedApplications);
        if (legacyBool(keys::AddBackgroundOnlyApplications, false)) builder.add(items::BackgroundOnlyApplications);
        menu = builder.finish();
    }
    removeKeys({keys::AddExcludedApplications, keys::AddBackgroundOnlyApplications});
    working().set(keys::QuitMenuItems, menu);
    return !stored;
}

bool CorvalisPreferences::_loadSwitchMenuItems() {
    std::optional<Array> stored = storedArray(keys::SwitchMenuItems);
    Array menu;
    if (stored) {
        menu = normalisedMenu(*stored, [](const std::string& kind, const Dictionary& record) -> std::optional<Dictionary> {
            if (!accepts(kSwitchKinds, kind)) return std::nullopt;
            return keptRecord(record);
        });
    } else {
        MenuBuilder builder;
        if (legacyBool(keys::AddActiveApplicationWindows, false)) builder.add(items::ActiveApplicationWindows);
        builder.addSeparator();
        builder.add(items::RunningApplications);
        builder.addSeparator();
        builder.add(items::SwitchToPrevious);
        builder.add(items::HideOthers);
        builder.add(items::ShowAll);
        builder.addSeparator();
        builder.add(items::Groups);
        builder.addSeparator();
        if (legacyBool(keys::ShowSingleApplicationModeCommand, false)) builder.add(items::ToggleSingleApplicationMode);
        menu = builder.finish();
    }
    removeKeys({keys::AddActiveApplicationWindows, keys::ShowSingleApplicationModeCommand});
    working().set(keys::SwitchMenuItems, menu);
    return !stored;
}

bool CorvalisPreferences::_loadSpecialMenuItems() {
    std::optional<Array> stored = storedArray(keys::SpecialMenuItems);
    Array menu;
    if (stored) {
        bool library = KVOperatingSystem::is10_7orLater();
        // Unlike the Open menu, names here always follow the file: this menu has no custom names.
        menu = normalisedMenu(*stored, [&](const std::string& kind, const Dictionary& record) -> std::optional<Dictionary> {
            if (!accepts(kSpecialKinds, kind) || (kind == items::Library && !library)) return std::nullopt;
            Dictionary kept = keptRecord(record);
            if (const std::string* path = kept[keys::Path].string())
                kept.set(keys::Name, LocalizedFolderName(*path));
            return kept;
        });
    } else {
        MenuBuilder builder;
        if (legacyBool(keys::ShowDisks, true)) builder.add(items::Volumes);
        if (legacyBool(keys::ShowHome, true)) builder.add(items::Home);
        builder.addSeparator();
        builder.add(items::RecentFolders);
        builder.add(items::RecentDocuments);
        builder.add(items::RecentServers);
        builder.addSeparator();
        if (_environment.addressBookInstalled()) builder.add(items::AddressBook);
        if (_environment.iPhotoLibraryAvailable()) builder.add(items::iPhotoLibrary);
        if (_environment.apertureLibraryAvailable()) builder.add(items::ApertureLibrary);
        builder.addSeparator();
        if (legacyBool(keys::ShowSystemMemory, true)) builder.add(items::SystemMemory);
        if (legacyBool(keys::ShowUptime, true)) builder.add(items::Uptime);
        builder.addSeparator();
        if (legacyBool(keys::ShowRelaunchOrQuitAndLaunchFinder, true))
            builder.add(legacyBool(keys::ShowQuitAndLaunchFinder, false) ? items::QuitLaunchFinder
                                                                           : items::RelaunchFinder);
        if (legacyBool(keys::ShowRelaunchDock, true)) builder.add(items::RelaunchDock);
        builder.addSeparator();
        builder.add(items::LoginWindow);
        builder.addSeparator();
        bool power = legacyBool(keys::ShowSleepRestartShutDown, true);
        for (const char* kind : {items::Sleep, items::Restart, items::ShutDown})
            if (power) builder.add(kind);
        builder.addSeparator();
        if (legacyBool(keys::ShowLogOut, true)) builder.add(items::LogOut);
        menu = builder.finish();
    }
    removeKeys({keys::ShowDisks, keys::ShowHome, keys::ShowSystemMemory, keys::ShowUptime,
                keys::ShowRelaunchOrQuitAndLaunchFinder, keys::ShowQuitAndLaunchFinder, keys::ShowRelaunchDock,
                keys::ShowSleepRestartShutDown, keys::ShowLogOut});
    working().set(keys::SpecialMenuItems, menu);
    return !stored;
}

}  // namespace corvalis
