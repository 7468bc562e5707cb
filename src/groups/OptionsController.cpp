#include "groups/OptionsController.h"

#include <algorithm>
#include <cctype>

#include "fileutils/KVOperatingSystem.h"
#include "platform/DomainStore.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/NotificationNames.h"

namespace corvalis {

namespace {

constexpr const char* kDockDomain = "com.apple.dock";

bool equalsIgnoringCase(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

// The type each mirrored key must have; a value of another type is not applied.
enum class Kind { Int, Float, Bool, Array, String };

struct MirroredKey {
    const char* key;
    Kind kind;
    const char* localNotice = nullptr;  // posted to the other tabs after storing
};

constexpr MirroredKey kMirroredKeys[] = {
    {keys::PanelPosition, Kind::Int},
    {keys::PanelCoordinate, Kind::Float},
    {keys::PanelSize, Kind::Int},
    {keys::AutoHidePanel, Kind::Bool},
    {keys::ShowStatusItem, Kind::Bool},
    {keys::StatusItemPosition, Kind::Int},
    {keys::PanelButtons, Kind::Array},
    {keys::StatusItemButtons, Kind::Array},
    {keys::ApplicationsFolderDepth, Kind::Int},
    {keys::DeveloperApplicationsFolderDepth, Kind::Int},
    {keys::RecentFoldersMaxNum, Kind::Int},
    {keys::RecentApplicationsMaxNum, Kind::Int, notifications::RecentItemsChanged},
    {keys::RecentApplications, Kind::Array, notifications::RecentItemsChanged},
    {keys::TurnOnSingleApplicationMode, Kind::Bool, notifications::SingleApplicationModeToggled},
    {keys::RecentFolders, Kind::Array},
    {keys::LastCopyPathCommand, Kind::String},
    {keys::DockApplicationsSortAlphabetically, Kind::Bool},
    {keys::RecentApplicationsSortAlphabetically, Kind::Bool},
    {keys::ShowProcessID, Kind::Bool},
    {keys::ShowFinderRecentFolders, Kind::Bool},
    {keys::RecentDocumentsSortAlphabetically, Kind::Bool},
    {keys::RecentServersSortAlphabetically, Kind::Bool},
    {keys::ShowApertureNumberOfVersions, Kind::Bool},
    {keys::ShowiPhotoLibrary, Kind::Bool},
    {keys::ShowiPhotoRolls, Kind::Bool},
    {keys::ShowiPhotoItemCounts, Kind::Bool},
};

// The value as it is to be stored, or absent when it is not of the key's type.
plist::Value typed(const plist::Value& value, Kind kind) {
    switch (kind) {
    case Kind::Int:
        if (value.integer() && value.toInt32()) return plist::Value::int32(*value.toInt32());
        break;
    case Kind::Float:
        if ((value.integer() || value.real()) && value.toFloat()) return plist::Value::real32(*value.toFloat());
        break;
    case Kind::Bool:
        if (value.boolean()) return *value.boolean();
        break;
    case Kind::Array:
        if (value.array()) return value;
        break;
    case Kind::String:
        if (value.string()) return value;
        break;
    }
    return {};
}

}  // namespace

DockPlacement readDockPlacement(DomainStore& domains) {
    DockPlacement dock;
    if (std::optional<plist::Dictionary> domain = domains.persistentDomainForName(kDockDomain)) {
        dock.orientation = (*domain)["orientation"].stringOr(dock.orientation);
        dock.autohide = (*domain)["autohide"].toBool().value_or(false);
    }
    return dock;
}

bool sameDockPosition(int index, bool panelAutoHides, const DockPlacement& dock) {
    if (!panelAutoHides && dock.autohide) return false;
    static constexpr const char* kEdges[] = {"top", "left", "bottom", "right"};
    if (index < 0) return false;
    if (index >= 4) return true;
    return equalsIgnoringCase(dock.orientation, kEdges[index]);
}

OptionsController::OptionsController(CorvalisPreferences& prefs, NotificationCenter& distributed,
                                     NotificationCenter& local, DomainStore& domains)
    : _prefs(prefs),
      _distributed(distributed),
      _local(local),
      _domains(domains),
      _buttons(std::make_unique<ButtonsSheetController>(prefs)) {}

OptionsController::~OptionsController() {
    if (_observer) _distributed.removeObserver(*_observer);
}

void OptionsController::initializePane(bool firstTime) {
    if (!firstTime) return;
    _buttons->close();
    _observer = _distributed.addObserver(notifications::CorvalisPanelChanged, notifications::ControllerObject,
                                         [this](const Notification& notification) { onPanelChanged(notification); });
}

bool OptionsController::showPanel() { return _prefs.boolForKey(keys::ShowMenuPanel); }
int OptionsController::panelPosition() { return _prefs.intForKey(keys::PanelPosition); }
int OptionsController::panelSize() { return _prefs.intForKey(keys::PanelSize); }
bool OptionsController::autoHidePanel() { return _prefs.boolForKey(keys::AutoHidePanel); }
bool OptionsController::showStatusItem() { return _prefs.boolForKey(keys::ShowStatusItem); }
// Read only where it is a choice: on later systems reading it would bring the removed key back.
int OptionsController::statusItemPosition() {
    return statusItemPositionShown() ? _prefs.intForKey(keys::StatusItemPosition) : 0;
}
bool OptionsController::singleApplicationMode() { return _prefs.boolForKey(keys::TurnOnSingleApplicationMode); }
int OptionsController::turnOffSingleAppModeAction() {
    return _prefs.boolForKey(keys::ShowAllWhenTurningSingleApplicationModeOff) ? 0 : 1;
}
bool OptionsController::statusItemPositionShown() { return !KVOperatingSystem::is10_12orLater(); }

void OptionsController::onShowPanel(bool on) {
    _prefs.setBool(on, keys::ShowMenuPanel);
    _prefs.synchronizeValue(on, keys::ShowMenuPanel);
}

void OptionsController::onPanelPosition(int index) {
    if (index == panelPosition()) return;
    float coordinate = sameDockPosition(index, autoHidePanel(), readDockPlacement(_domains)) ? 0.0f : 0.5f;
    _prefs.setInt(index, keys::PanelPosition);
    _prefs.setFloat(coordinate, keys::PanelCoordinate);
    _prefs.synchronizeValue(plist::Dictionary{{keys::PanelPosition, plist::Value::int32(index)},
                                              {keys::PanelCoordinate, plist::Value::real32(coordinate)}},
                            keys::PanelPosition);
}

void OptionsController::setIndex(int index, const char* key) {
    if (index == _prefs.intForKey(key)) return;
    _prefs.setInt(index, key);
    _prefs.synchronizeValue(plist::Value::int32(index), key);
}

void OptionsController::onPanelSize(int index) { setIndex(index, keys::PanelSize); }
void OptionsController::onStatusItemPosition(int index) { setIndex(index, keys::StatusItemPosition); }

void OptionsController::onAutoHidePanel(bool on) {
    _prefs.setBool(on, keys::AutoHidePanel);
    _prefs.synchronizeValue(on, keys::AutoHidePanel);
}

void OptionsController::onShowStatusItem(bool on) {
    _prefs.setBool(on, keys::ShowStatusItem);
    _prefs.synchronizeValue(on, keys::ShowStatusItem);
}

void OptionsController::onTurnOnSingleAppMode(bool on) {
    _prefs.setBool(on, keys::TurnOnSingleApplicationMode);
    _prefs.synchronizeValue(on, keys::TurnOnSingleApplicationMode);
}

void OptionsController::onTurnOffSingleAppModeAction(int index) {
    bool showAll = index == 0;
    _prefs.setBool(showAll, keys::ShowAllWhenTurningSingleApplicationModeOff);
    _prefs.synchronizeValue(showAll, keys::ShowAllWhenTurningSingleApplicationModeOff);
}

void OptionsController::onPanelChanged(const Notification& notification) {
    if (!notification.userInfo) return;
    for (const auto& [key, value] : *notification.userInfo) {
        if (key == keys::ImportFromBackupDate) {
            _prefs.removeObjectForKey(key);
            continue;
        }
        auto mirrored = std::find_if(std::begin(kMirroredKeys), std::end(kMirroredKeys),
                                     [&key](const MirroredKey& entry) { return key == entry.key; });
        if (mirrored == std::end(kMirroredKeys)) continue;
        plist::Value stored = typed(value, mirrored->kind);
        if (stored.isAbsent()) continue;
        _prefs.setObject(stored, key);
        if (mirrored->localNotice) _local.post({mirrored->localNotice, "", std::nullopt});
    }
    _buttons->reloadFromStore();
    if (_controlsChanged) _controlsChanged();
}

}  // namespace corvalis
