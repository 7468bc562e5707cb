#include "prefs/CorvalisPreferences.h"

#include <sys/stat.h>

#include <algorithm>

#include "fileutils/KVOperatingSystem.h"
#include "fileutils/PathLimits.h"
#include "prefs/DefaultValues.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

bool anyValue(const Value& value) { return !value.isAbsent(); }
bool isDictionary(const Value& value) { return value.type() == plist::Type::Dictionary; }
bool isArray(const Value& value) { return value.type() == plist::Type::Array; }
bool isString(const Value& value) { return value.type() == plist::Type::String; }

// A volume is a mount point: on this platform volumes are not only under /Volumes.
bool isMountPoint(const std::string& path) {
    std::string parent(parentPath(path));
    struct stat self {}, above {};
    if (parent.empty() || path == "/" || ::stat(path.c_str(), &self) != 0 || ::stat(parent.c_str(), &above) != 0)
        return false;
    return self.st_dev != above.st_dev;
}

}  // namespace

CorvalisPreferences::CorvalisPreferences(DomainStore& store, NotificationCenter& distributed)
    : _store(store), _distributed(distributed), _environment(LoadEnvironment::system(store)) {}

// ---- Loading and saving ------------------------------------------------------

bool CorvalisPreferences::loadPreferences() {
    if (_prefsData) return false;
    _appID = notifications::Domain;
    Dictionary loaded = loadFromDefaults();
    // The factory defaults are shared by the whole process and must never change: edit a copy.
    _prefsData = loaded.isSameObject(defaultValues()) ? loaded.deepCopy() : loaded;
    _loadHotKeys();
    bool excludedInQuitMenu = _loadGroups();
    _loadCustomApplications();
    _loadExcludedApplications();
    _loadOpenMenuItems();
    bool quitMenuBuilt = _loadQuitMenuItems(excludedInQuitMenu);
    bool switchMenuBuilt = _loadSwitchMenuItems();
    _loadSpecialMenuItems();
    _loadIncludeTerminatedAppsWhere();
    _loadQuickCopyPathCommand();
    _loadMarkAppMode();
    _loadKeyboardShortcuts();
    bool firstMeeting = _loadCheckForUpdates();
    _cleanUpPreferences();
    saveToDefaults();
    return firstMeeting && quitMenuBuilt && switchMenuBuilt;
}

Dictionary CorvalisPreferences::loadFromDefaults() {
    if (_appID.empty()) _appID = notifications::Domain;
    if (auto stored = _store.persistentDomainForName(_appID)) return *stored;
    return defaultValues();
}

bool CorvalisPreferences::saveToDefaults() {
    if (!_prefsData) return false;
    _store.removePersistentDomainForName(_appID);
    _store.setPersistentDomain(*_prefsData, _appID);
    return _store.synchronize(_appID);
}

std::optional<Array> CorvalisPreferences::storedArray(const char* key) const {
    return _prefsData ? plist::asArray((*_prefsData)[key]) : std::nullopt;
}

std::optional<Dictionary> CorvalisPreferences::storedDictionary(const char* key) const {
    return _prefsData ? plist::asDictionary((*_prefsData)[key]) : std::nullopt;
}

bool CorvalisPreferences::legacyBool(const char* key, bool fallback) const {
    if (std::optional<bool> stored = simpleStringForKey(key).toBool()) return *stored;
    return defaultValues()[key].toBool().value_or(fallback);
}

void CorvalisPreferences::removeKeys(std::initializer_list<const char*> keys) {
    for (const char* key : keys) working().remove(key);
}

void CorvalisPreferences::_cleanUpPreferences() {
    if (!_prefsData) return;
    if (KVOperatingSystem::is10_12orLater()) _prefsData->remove(keys::StatusItemPosition);
    for (const char* key : {keys::IsTrustedChecked, keys::ClassicApplicationsFolderDepth,
                            keys::BrowserClassicApplicationsFolderDepth, keys::ShowClassicApplicationsFolder,
                            keys::ShowStartStopRestartClassic})
        _prefsData->remove(key);
}

// ---- Change notifications ----------------------------------------------------

void CorvalisPreferences::post(const char* name, const Dictionary& userInfo) {
    _distributed.post({name, notifications::PaneObject, userInfo});
}

void CorvalisPreferences::synchronizeValue(const Value& value, const std::string& key) {
    post(notifications::CorvalisPaneChangedPrefs, Dictionary{{key, value}});
    saveToDefaults();
}

void CorvalisPreferences::synchronizeHotKey(const Value& value, int index) {
    static constexpr const char* kChangeKeys[] = {changes::ChangeOpenMenuHotKey, changes::ChangeQuitMenuHotKey,
                                                  changes::ChangeSwitchMenuHotKey, changes::ChangeSpecialMenuHotKey};
    if (index < 0 || index >= 4) return;
    synchronizeValue(value, kChangeKeys[index]);
}

void CorvalisPreferences::synchronizeShortcut(const Value& value, const std::string& key) {
    post(notifications::CorvalisPaneChangedShortcuts, Dictionary{{key, value}});
    saveToDefaults();
}

void CorvalisPreferences::synchronizeIncludeTerminatedApps(bool include, int where) {
    post(notifications::CorvalisPaneChangedPrefs,
         Dictionary{{keys::IncludeTerminatedApplications, include},
                    {keys::IncludeTerminatedApplicationsWhere, Value::int32(where)}});
    saveToDefaults();
}

// ---- Typed getters -----------------------------------------------------------

Dictionary& CorvalisPreferences::working() {
    if (!_prefsData) _prefsData = Dictionary();
    return *_prefsData;
}

Value CorvalisPreferences::valueOrDefault(const std::string& key, bool (*acceptable)(const Value&)) {
    const Value& stored = working()[key];
    if (!stored.isAbsent() && acceptable(stored)) return stored;
    Value fallback = defaultValues()[key].deepCopy();
    if (fallback.isAbsent()) return Value();
    working().set(key, fallback);
    return fallback;
}

Value CorvalisPreferences::objectForKey(const std::string& key) { return valueOrDefault(key, anyValue); }

std::optional<Dictionary> CorvalisPreferences::dictForKey(const std::string& key) {
    return plist::asDictionary(valueOrDefault(key, isDictionary));
}

std::optional<Array> CorvalisPreferences::arrayForKey(const std::string& key) {
    return plist::asArray(valueOrDefault(key, isArray));
}

std::optional<std::string> CorvalisPreferences::stringForKey(const std::string& key) {
    Value value = valueOrDefault(key, isString);
    if (const std::string* text = value.string()) return *text;
    return std::nullopt;
}

// A stored number answers directly; otherwise the default (or false, 0, 0.0
// when the key has none) is stored with the getter's own type and answered.
bool CorvalisPreferences::boolForKey(const std::string& key) {
    const Value& stored = working()[key];
    if (stored.isNumber()) return *stored.toBool();
    bool result = defaultValues()[key].toBool().value_or(false);
    working().set(key, result);
    return result;
}

std::int32_t CorvalisPreferences::intForKey(const std::string& key) {
    const Value& stored = working()[key];
    if (stored.isNumber()) return *stored.toInt32();
    std::int32_t result = defaultValues()[key].toInt32().value_or(0);
    working().set(key, Value::int32(result));
    return result;
}

float CorvalisPreferences::floatForKey(const std::string& key) {
    const Value& stored = working()[key];
    if (stored.isNumber()) return *stored.toFloat();
    float result = defaultValues()[key].toFloat().value_or(0.0f);
    working().set(key, Value::real32(result));
    return result;
}

const Value& CorvalisPreferences::simpleStringForKey(const std::string& key) const {
    static const Value absent;
    return _prefsData ? (*_prefsData)[key] : absent;
}

// ---- Setters -----------------------------------------------------------------

void CorvalisPreferences::setObject(const Value& value, const std::string& key) {
    if (value.isAbsent())
        working().remove(key);
    else
        working().set(key, value);
}

void CorvalisPreferences::removeObjectForKey(const std::string& key) {
    if (_prefsData) _prefsData->remove(key);
}

// ---- Derived values ----------------------------------------------------------

std::optional<std::vector<std::string>> CorvalisPreferences::buttonColors() const {
    const std::string* text = simpleStringForKey(keys::ButtonColors).string();
    if (!text) return std::nullopt;
    std::vector<std::string> parts;
    std::string::size_type start = 0;
    while (true) {
        auto end = text->find(';', start);
        parts.push_back(text->substr(start, end == std::string::npos ? std::string::npos : end - start));
        if (end == std::string::npos) break;
        start = end + 1;
    }
    if (parts.size() != 4) return std::nullopt;
    for (const char* color : {"Blue", "Red", "Green", "Yellow"})
        if (std::find(parts.begin(), parts.end(), color) == parts.end()) return std::nullopt;
    return parts;
}

bool CorvalisPreferences::hideAddBOAsCommand() const {
    Value value = simpleStringForKey(keys::ShowAddBackgroundOnlyApplicationsCommand);
    return !(value.isNumber() && value.toBool().value_or(false));
}

std::string CorvalisPreferences::getOpenPanelPathForKey(const std::string& key) {
    std::string path = stringForKey(key).value_or("");
    if (fileExistsAtPath(path)) return path;
    const std::string* fallback = defaultValues()[key].string();
    return fallback ? *fallback : std::string();
}

void CorvalisPreferences::setOpenPanelPath(const std::string& path, const std::string& key) {
    if (!fileExistsAtPath(path)) return;
    std::string parent(parentPath(path));
    bool isVolume = parent == "/Volumes" || isMountPoint(path);
    setString(isVolume || parent.empty() ? path : parent, key);
}

}  // namespace corvalis
