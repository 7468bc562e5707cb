#include "menus/MenusController.h"

#include "keys/KVKeyCombinationValidator.h"
#include "pane/ApplicationsBrowserLink.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {
constexpr const char* kMenusPane = "Menus";
}  // namespace

void synchronizeOption(CorvalisPreferences& prefs, const char* key, bool on) {
    prefs.setBool(on, key);
    prefs.synchronizeValue(Value(on), key);
}

MenusController::MenusController(CorvalisPreferences& prefs, KVKeyCombinationValidator& validator,
                                 NotificationCenter& local, NotificationCenter& distributed,
                                 BrowserLinkSource browser, MenusView& view)
    : HotKeyRecording(validator, distributed, view),
      _prefs(prefs),
      _validator(validator),
      _local(local),
      _browser(std::move(browser)),
      _view(view),
      _previews(prefs) {}

MenusController::~MenusController() {
    if (_universalAccessObserver) _local.removeObserver(*_universalAccessObserver);
}

void MenusController::addEditor(const std::string& identifier, MenuEditor& editor) {
    if (_paneControllers.emplace(identifier, &editor).second) _order.push_back(identifier);
    if (_selectedTab.empty()) _selectedTab = identifier;
}

MenuEditor* MenusController::editor(const std::string& identifier) const {
    auto found = _paneControllers.find(identifier);
    return found == _paneControllers.end() ? nullptr : found->second;
}

void MenusController::initializePane(bool firstTime) {
    for (const std::string& identifier : _order) editor(identifier)->initializePane(firstTime);
    _previews.forget();
}

void MenusController::updatePane(std::string& report) {
    willShowPane();
    for (const std::string& identifier : _order) editor(identifier)->updatePane(report);
}

void MenusController::willShowPane() { _validator.updateHotKeys(); }

void MenusController::windowDidBecomeMain() {
    _validator.updateHotKeys();
    for (const std::string& identifier : _order)
        editor(identifier)->sheetWindowDidBecomeMain(_sheetShown && identifier == _selectedTab);
}

bool MenusController::option(const char* key) const { return _prefs.boolForKey(key); }

bool MenusController::includeTerminatedApplications() const {
    return _prefs.boolForKey(keys::IncludeTerminatedApplications);
}

int MenusController::includeTerminatedApplicationsWhere() const {
    return _prefs.intForKey(keys::IncludeTerminatedApplicationsWhere);
}

void MenusController::onIncludeTerminatedApplications(bool on, int where) {
    _prefs.setBool(on, keys::IncludeTerminatedApplications);
    _prefs.synchronizeIncludeTerminatedApps(on, where);
}

void MenusController::onIncludeTerminatedApplicationsWhere(int where, bool include) {
    if (where == includeTerminatedApplicationsWhere()) return;
    _prefs.setInt(where, keys::IncludeTerminatedApplicationsWhere);
    _prefs.synchronizeIncludeTerminatedApps(include, where);
}

const char* MenusController::enableKey(int row) {
    static const char* const keysByRow[kHotKeyRows] = {keys::EnableOpenMenuHotKey, keys::EnableQuitMenuHotKey,
                                                       keys::EnableSwitchMenuHotKey, keys::EnableSpecialMenuHotKey};
    return row >= 0 && row < kHotKeyRows ? keysByRow[row] : nullptr;
}

const char* MenusController::menuNameKey(int row) {
    static const char* const names[kHotKeyRows] = {"Open", "Quit", "Switch", "Special"};
    return row >= 0 && row < kHotKeyRows ? names[row] : nullptr;
}

std::optional<Dictionary> MenusController::hotKeyRecord(int row) const {
    if (!enableKey(row)) return std::nullopt;
    std::optional<Array> hotKeys = _prefs.arrayForKey(keys::HotKeys);
    return hotKeys ? plist::asDictionary((*hotKeys)[static_cast<std::size_t>(row)]) : std::nullopt;
}

bool MenusController::hotKeyEnabled(int row) const { return enableKey(row) && _prefs.boolForKey(enableKey(row)); }

std::optional<KVKeyCombination> MenusController::hotKeyCombination(int row) const {
    std::optional<Dictionary> record = hotKeyRecord(row);
    return record ? KVKeyCombination::fromDictionary(*record) : std::nullopt;
}

int MenusController::hotKeyPosition(int row) const {
    std::optional<Dictionary> record = hotKeyRecord(row);
    return record ? (*record)[keys::Position].toInt32().value_or(0) : 0;
}

void MenusController::storeHotKey(int row, const Dictionary& record) {
    std::optional<Array> hotKeys = _prefs.arrayForKey(keys::HotKeys);
    if (!hotKeys || static_cast<std::size_t>(row) >= hotKeys->size()) return;
    hotKeys->set(static_cast<std::size_t>(row), record);
    _prefs.synchronizeHotKey(record, row);
    _validator.updateHotKeys();
}

void MenusController::setHotKeyEnabled(int row, bool enabled) {
    if (!enableKey(row)) return;
    synchronizeOption(_prefs, enableKey(row), enabled);
    _validator.updateHotKeys();
}

void MenusController::setHotKeyCombination(int row, const std::optional<KVKeyCombination>& combination) {
    std::optional<Dictionary> old = hotKeyRecord(row);
    if (!old || !combination) return;
    Dictionary record = combination->dictionary();
    record.set(keys::Position, Value::int32(hotKeyPosition(row)));
    storeHotKey(row, record);
}

void MenusController::setHotKeyPosition(int row, int position) {
    std::optional<Dictionary> old = hotKeyRecord(row);
    if (!old || position < 0 || position >= kPositions) return;
    Dictionary record;
    for (const char* part : {keys::Character, keys::Modifiers, keys::VirtualKeyCode})
        if (!(*old)[part].isAbsent()) record.set(part, (*old)[part]);
    record.set(keys::Position, Value::int32(position));
    storeHotKey(row, record);
}

bool MenusController::validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error) {
    // A menu's hot key cannot be cleared, only replaced.
    if (!combination) {
        _view.beep();
        return false;
    }
    return HotKeyRecording::validateKeyCombination(combination, error);
}

void MenusController::onConfigureMenus() {
    for (const std::string& identifier : _order) editor(identifier)->willBeginSheet();
    _view.beginConfigureMenusSheet();
    _sheetShown = true;
    if (MenuEditor* shown = editor(_selectedTab)) shown->didBeginSheet();
    if (ApplicationsBrowserLink* link = browser()) link->synchronizeDragApplicationsInfoWithPane(_selectedTab);
    if (!_universalAccessObserver)
        _universalAccessObserver = _local.addObserver(notifications::OpenUniversalAccess, "",
                                                      [this](const Notification&) { onOpenUniversalAccess(); });
}

void MenusController::tabWillSelect(const std::string& identifier) {
    _selectedTab = identifier;
    if (MenuEditor* shown = editor(identifier)) shown->willShowPane();
}

void MenusController::tabDidSelect(const std::string& identifier) {
    if (ApplicationsBrowserLink* link = browser()) link->synchronizeDragApplicationsInfoWithPane(identifier);
}

void MenusController::onCloseConfigureMenus(bool button) {
    if (!_sheetShown) return;
    if (_universalAccessObserver) _local.removeObserver(*_universalAccessObserver);
    _universalAccessObserver.reset();
    for (const std::string& identifier : _order) editor(identifier)->didEndSheet();
    if (ApplicationsBrowserLink* link = browser()) link->synchronizeDragApplicationsInfoWithPane(kMenusPane);
    _sheetShown = false;
    _view.endConfigureMenusSheet(button ? 1 : 0);
}

void MenusController::_configureMenusSheetDidEnd(int returnCode) {
    if (returnCode == 0) _view.openUniversalAccess();
}

}  // namespace corvalis
