#pragma once
// The one object through which the pane reads and writes the controller's
// preferences: a working copy of the whole domain with typed access and
// factory defaults, written back whole, with each change announced to the
// running controller first.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/DomainStore.h"
#include "platform/NotificationCenter.h"
#include "plist/Value.h"

namespace corvalis {

// What loading asks of the machine: which menu entries it can offer and what
// its processor runs. `system(store)` asks this machine (the photo libraries
// through the store's "com.apple.iApps" domain); tests answer for another.
struct LoadEnvironment {
    std::function<bool()> developerApplicationsFolderExists;
    std::function<bool()> addressBookInstalled;
    std::function<bool()> iPhotoLibraryAvailable;
    std::function<bool()> apertureLibraryAvailable;
    std::function<bool()> is64BitProcessor;

    static LoadEnvironment system(DomainStore& store);
};

class CorvalisPreferences {
public:
    // `distributed` carries the change notifications to the controller.
    CorvalisPreferences(DomainStore& store, NotificationCenter& distributed);

    // Loading and saving.

    // Loads the domain, normalises it and writes it back; false (and nothing
    // done) when already loaded. True means these preferences meet this
    // program for the first time.
    bool loadPreferences();
    bool isLoaded() const { return _prefsData.has_value(); }
    // The stored domain, or the factory defaults when there is none.
    plist::Dictionary loadFromDefaults();
    // Replaces the whole stored domain with the working copy; false when writing failed.
    bool saveToDefaults();
    // Replaces the stored domain with `settings` and loads it (normalised and saved again).
    void restoreDefaultsFromBackup(const plist::Dictionary& settings);
    // Whether `settings` holds at least one key this version recognises (legacy keys do not count).
    static bool isValidBackup(const plist::Dictionary& settings);
    // Forgets the working copy so that the next loadPreferences reads the domain again.
    void unload() { _prefsData.reset(); }

    // Change notifications: each posts first, then saves. None of them stores
    // the value: set it with a setter before calling.
    void synchronizeValue(const plist::Value& value, const std::string& key);
    void synchronizeHotKey(const plist::Value& value, int index);  // index 0-3: Open, Quit, Switch, Special
    void synchronizeShortcut(const plist::Value& value, const std::string& key);
    void synchronizeIncludeTerminatedApps(bool include, int where);

    // Typed getters. An absent key (or, here, one holding the wrong type) takes
    // its factory default, which is stored into the working copy and returned.
    plist::Value objectForKey(const std::string& key);
    std::optional<plist::Dictionary> dictForKey(const std::string& key);
    std::optional<plist::Array> arrayForKey(const std::string& key);
    std::optional<std::string> stringForKey(const std::string& key);
    bool boolForKey(const std::string& key);
    std::int32_t intForKey(const std::string& key);
    float floatForKey(const std::string& key);
    // Plain lookup: no default, nothing stored.
    const plist::Value& simpleStringForKey(const std::string& key) const;

    // Setters change the working copy only (no save, no notification).
    void setObject(const plist::Value& value, const std::string& key);
    void setDict(const plist::Dictionary& value, const std::string& key) { setObject(value, key); }
    void setArray(const plist::Array& value, const std::string& key) { setObject(value, key); }
    void setString(const std::string& value, const std::string& key) { setObject(value, key); }
    void setBool(bool value, const std::string& key) { setObject(value, key); }
    void setInt(std::int32_t value, const std::string& key) { setObject(plist::Value::int32(value), key); }
    void setFloat(float value, const std::string& key) { setObject(plist::Value::real32(value), key); }
    void removeObjectForKey(const std::string& key);

    // Derived values.

    // The four colour names in the order "ButtonColors" gives, or none unless it
    // is a permutation of Blue, Red, Green and Yellow separated by ";".
    std::optional<std::vector<std::string>> buttonColors() const;
    // True unless "ShowAddBackgroundOnlyApplicationsCommand" is a number that is true.
    bool hideAddBOAsCommand() const;
    // The stored folder when something exists there, else the key's factory default.
    std::string getOpenPanelPathForKey(const std::string& key);
    // Remembers the folder of a chosen item (a chosen volume itself); ignores paths that do not exist.
    void setOpenPanelPath(const std::string& path, const std::string& key);

    // The working copy itself (editors hold its arrays); empty before loading.
    plist::Dictionary prefsData() const { return _prefsData.value_or(plist::Dictionary()); }
    const std::string& appID() const { return _appID; }

    // Unreadable domain files that loading moved aside (to be told to the user).
    std::vector<SetAsideDomain> takeSetAsideDomains() { return _store.takeSetAsideDomains(); }

    // The factory menus, each a new array of { "Item": kind } records.
    plist::Array defaultOpenMenu() const;
    plist::Array defaultQuitMenu() const;
    plist::Array defaultSwitchMenu() const;
    plist::Array defaultSpecialMenu() const;

    // Run the group and application loaders again (no save, no notification).
    void reloadGroups() { _loadGroups(); }
    void reloadCustomApplications() { _loadCustomApplications(); }
    void reloadExcludedApplications() { _loadExcludedApplications(); }

    void setLoadEnvironment(LoadEnvironment environment) { _environment = std::move(environment); }
    const LoadEnvironment& loadEnvironment() const { return _environment; }

    // The record loaders, in the order loadPreferences runs them. Each rebuilds
    // its keys in canonical form; a value of the wrong type counts as missing.
    // The menu loaders return true when they had to build the menu.
    void _loadHotKeys();
    bool _loadGroups();  // whether the excluded applications belong in a migrated Quit menu
    void _loadCustomApplications();
    void _loadExcludedApplications();
    bool _loadOpenMenuItems();
    bool _loadQuitMenuItems(bool addExcludedApplications);
    bool _loadSwitchMenuItems();
    bool _loadSpecialMenuItems();
    void _loadIncludeTerminatedAppsWhere();
    void _loadQuickCopyPathCommand();
    void _loadMarkAppMode();
    void _loadKeyboardShortcuts();
    bool _loadCheckForUpdates();  // true when no "CheckForUpdatesMaxVersion" was stored
    // Removes obsolete keys; run by loadPreferences after the record loaders.
    void _cleanUpPreferences();

private:
    plist::Dictionary& working();
    void post(const char* name, const plist::Dictionary& userInfo);
    // The stored value, or the factory default stored in its place when the
    // stored one is absent or fails `acceptable`.
    plist::Value valueOrDefault(const std::string& key, bool (*acceptable)(const plist::Value&));

    // The stored value when it has the wanted type; otherwise none (a wrong type counts as missing).
    std::optional<plist::Array> storedArray(const char* key) const;
    std::optional<plist::Dictionary> storedDictionary(const char* key) const;
    // A legacy switch: its stored boolean, else its factory default, else `fallback`.
    bool legacyBool(const char* key, bool fallback) const;
    void removeKeys(std::initializer_list<const char*> keys);

    DomainStore& _store;
    NotificationCenter& _distributed;
    LoadEnvironment _environment;
    std::string _appID;
    std::optional<plist::Dictionary> _prefsData;
};

}  // namespace corvalis
