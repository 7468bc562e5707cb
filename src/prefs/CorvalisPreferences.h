#pragma once
// The one object through which the pane reads and writes the controller's
// preferences: a working copy of the whole domain with typed access and
// factory defaults, written back whole, with each change announced to the
// running controller first.

#include <optional>
#include <string>
#include <vector>

#include "platform/DomainStore.h"
#include "platform/NotificationCenter.h"
#include "plist/Value.h"

namespace corvalis {

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

    // Removes obsolete keys; run by loadPreferences after the record loaders.
    void _cleanUpPreferences();

private:
    plist::Dictionary& working();
    void post(const char* name, const plist::Dictionary& userInfo);
    // The stored value, or the factory default stored in its place when the
    // stored one is absent or fails `acceptable`.
    plist::Value valueOrDefault(const std::string& key, bool (*acceptable)(const plist::Value&));

    DomainStore& _store;
    NotificationCenter& _distributed;
    std::string _appID;
    std::optional<plist::Dictionary> _prefsData;
};

}  // namespace corvalis
