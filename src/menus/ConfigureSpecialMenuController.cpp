#include "menus/ConfigureSpecialMenuController.h"

#include "fileutils/AliasResolution.h"
#include "fileutils/ApplicationEnumeration.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/KVOperatingSystem.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "plist/Utf8.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/MenuItemKinds.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

// The pop-up's formats by tag, as the controller knows them.
constexpr const char* kQuickCopyPathCodes[ConfigureSpecialMenuController::kQuickCopyPathFormats] = {
    "cPls", "cPPX", "cPTl", "cPHs", "cPWs", "cPUl"};

std::uint32_t fourCharCode(const char* code) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(code[i]);
    return value;
}

std::string homeFolder() { return expandTilde("~"); }

std::string libraryFolder() { return expandTilde("~/Library"); }

}  // namespace

const char* iPhotoLibraryTitleKey(bool installed, std::uint32_t major, std::uint32_t minor) {
    if (!installed) return "iPhotoLibrary";
    if (major <= 6) return "iPhoto6Library";
    if (major <= 8) return "iPhoto7Library";
    if (major == 9 && minor <= 3) return "iPhoto9Library";
    return "iPhotoLibrary";
}

const char* apertureLibraryTitleKey(bool installed, std::uint32_t major) {
    return installed && major < 3 ? "Aperture2Library" : "ApertureLibrary";
}

ConfigureSpecialMenuController::ConfigureSpecialMenuController(CorvalisPreferences& prefs,
                                                               NotificationCenter& distributed,
                                                               const Workspace& workspace, QObject* parent)
    : PathMenuItemListModel(prefs, keys::SpecialMenuItems, changes::ChangeSpecialMenuItems, keys::ShowSpecialMenuInfo,
                            PathWords{items::FileOrFolder, "AddFileOrFolder", "ChangeFileOrFolder1",
                                      "ChangeFileOrFolder2", "SpecialMenuSummary", true, false},
                            parent),
      _distributed(distributed),
      _workspace(workspace) {}

ConfigureSpecialMenuController::~ConfigureSpecialMenuController() {
    if (_observer) _distributed.removeObserver(*_observer);
}

void ConfigureSpecialMenuController::initializePane(bool firstTime) {
    if (firstTime) {
        _observer = _distributed.addObserver(notifications::SpecialMenuItemsChanged, notifications::ControllerObject,
                                             [this](const Notification& n) { onSpecialMenuItemsChanged(n); });
    }
    PathMenuItemListModel::initializePane(firstTime);
}

std::string ConfigureSpecialMenuController::displayNameAt(int row) const {
    // A file's name is looked up each time: it may have been renamed since it was added.
    if (kindAt(row) == items::File)
        if (const std::string* path = pathAt(row)) return LocalizedFolderName(*path);
    return PathMenuItemListModel::displayNameAt(row);
}

void ConfigureSpecialMenuController::chooseLibraryTitles() const {
    // Fixed once, when first shown: finding the applications walks every installed one, which
    // the pane's start-up should not wait for.
    if (!_iPhotoLibrary.empty()) return;
    std::uint32_t major = 0, minor = 0, bugFix = 0;
    bool iPhoto = ApplicationVersion("com.apple.iPhoto", major, minor, bugFix, _workspace);
    _iPhotoLibrary = iPhotoLibraryTitleKey(iPhoto, major, minor);
    bool aperture = ApplicationVersion("com.apple.Aperture", major, minor, bugFix, _workspace);
    _apertureLibrary = apertureLibraryTitleKey(aperture, major);
}

std::string ConfigureSpecialMenuController::kindTitle(const std::string& kind) const {
    if (kind == items::Library) return LocalizedFolderName(libraryFolder());
    if (kind == items::AddressBook && KVOperatingSystem::is10_8orLater()) return LocalizedString("Contacts");
    if (kind == items::iPhotoLibrary || kind == items::ApertureLibrary) {
        chooseLibraryTitles();
        return LocalizedString((kind == items::iPhotoLibrary ? _iPhotoLibrary : _apertureLibrary).c_str());
    }
    return PathMenuItemListModel::kindTitle(kind);
}

Qt::ItemFlags ConfigureSpecialMenuController::flags(const QModelIndex& index) const {
    return PathMenuItemListModel::flags(index) & ~Qt::ItemIsEditable;
}

void ConfigureSpecialMenuController::_onMenuTableViewDoubleClick(int row) {
    if (row < 0 || row >= rowCount()) return;
    if (selection().size() >= 2) selectRows({row});
    _updatePaths(true);
    onChangeItem();
}

std::vector<std::string> ConfigureSpecialMenuController::fixedKinds() const {
    return {items::Volumes,        items::Home,          items::Library,         items::RecentFolders,
            items::RecentDocuments, items::RecentServers, items::AddressBook,     items::iPhotoLibrary,
            items::ApertureLibrary, items::SystemMemory,  items::Uptime,          items::RelaunchFinder,
            items::QuitLaunchFinder, items::RelaunchDock, items::LoginWindow,     items::Sleep,
            items::Restart,        items::ShutDown,      items::LogOut};
}

std::vector<std::string> ConfigureSpecialMenuController::unavailableKinds() const {
    if (KVOperatingSystem::is10_7orLater()) return {};
    return {items::Library};
}

std::vector<std::string> ConfigureSpecialMenuController::alwaysOfferedKinds() const {
    return {items::FileOrFolder, items::Separator};
}

Array ConfigureSpecialMenuController::defaultMenu() const { return _prefs.defaultSpecialMenu(); }

std::string ConfigureSpecialMenuController::kindPath(const std::string& kind) const {
    if (kind == items::Home) return homeFolder();
    if (kind == items::Library) return libraryFolder();
    return {};
}

std::optional<std::string> ConfigureSpecialMenuController::usablePath(const std::string& path) const {
    // Kept as chosen, aliases and links included; applications belong to other menus.
    if (!plist::detail::isValidUtf8(path) || !isPathWithinLimit(path)) return std::nullopt;
    if (!fileExistsAtPath(path) || IsApplication(path)) return std::nullopt;
    return path;
}

Dictionary ConfigureSpecialMenuController::newPathRecord(const std::string& path) const {
    Dictionary record{{keys::Item, IsFolder(path) ? items::Folder : items::File},
                      {keys::Name, LocalizedFolderName(path)},
                      {keys::Path, path}};
    if (std::optional<plist::Data> alias = AliasData(path)) record.set(keys::AliasData, *alias);
    return record;
}

void ConfigureSpecialMenuController::repointRecord(Dictionary& record, const std::string& path) const {
    record.set(keys::Item, IsFolder(path) ? items::Folder : items::File);
    record.set(keys::Path, path);
    record.set(keys::Name, LocalizedFolderName(path));
    record.remove(keys::AliasData);
    if (std::optional<plist::Data> alias = AliasData(path)) record.set(keys::AliasData, *alias);
}

bool ConfigureSpecialMenuController::checkPathRecord(Dictionary& record) const { return CheckPath(record, _workspace); }

bool ConfigureSpecialMenuController::showsDiskOptions() const {
    for (int row = 0; row < rowCount(); ++row)
        if (kindAt(row) == items::Volumes) return true;
    return false;
}

bool ConfigureSpecialMenuController::showsDisks(const char* key) const { return _prefs.boolForKey(key); }

void ConfigureSpecialMenuController::onShowDisks(const char* key, bool on) {
    _prefs.setBool(on, key);
    _prefs.synchronizeValue(Value(on), key);
}

bool ConfigureSpecialMenuController::resolveAliases() const { return _prefs.boolForKey(keys::ResolveAliases); }

void ConfigureSpecialMenuController::onResolveAliases(bool on) {
    _prefs.setBool(on, keys::ResolveAliases);
    _prefs.synchronizeValue(Value(on), keys::ResolveAliases);
}

std::string ConfigureSpecialMenuController::quickCopyPathCommandText(int tag) {
    if (tag < 0 || tag >= kQuickCopyPathFormats) return {};
    return std::to_string(fourCharCode(kQuickCopyPathCodes[tag]));
}

int ConfigureSpecialMenuController::quickCopyPathCommand() const {
    std::optional<std::string> stored = _prefs.stringForKey(keys::QuickCopyPathCommand);
    for (int tag = 0; stored && tag < kQuickCopyPathFormats; ++tag)
        if (quickCopyPathCommandText(tag) == *stored) return tag;
    return -1;
}

void ConfigureSpecialMenuController::onQuickCopyPathCommand(int tag) {
    std::string text = quickCopyPathCommandText(tag);
    if (text.empty()) return;
    _prefs.setString(text, keys::QuickCopyPathCommand);
    _prefs.synchronizeValue(Value(text), keys::QuickCopyPathCommand);
}

void ConfigureSpecialMenuController::onSpecialMenuItemsChanged(const Notification&) {
    // Whatever the message carries, the menu itself is ours: only its paths are looked at again.
    _updatePaths(false);
    _synchronizeOpenPanel();
}

}  // namespace corvalis
