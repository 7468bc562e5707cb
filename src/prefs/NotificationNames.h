#pragma once
// Names and objects of the notifications the pane exchanges with the controller
// (distributed) and among its own tabs (local), and the change keys that label
// each payload. Each is spelled once, here.

namespace corvalis::notifications {

// The domain, and the objects of the two directions of the distributed notifications.
inline constexpr const char* Domain = "com.kestrova.Corvalis";
inline constexpr const char* PaneObject = "com.kestrova.Corvalis";
inline constexpr const char* ControllerObject = "com.kestrova.Corvalis.Controller";

// Pane to controller.
inline constexpr const char* CorvalisPaneChangedPrefs = "CorvalisPaneChangedPrefs";
inline constexpr const char* CorvalisPaneChangedShortcuts = "CorvalisPaneChangedShortcuts";
inline constexpr const char* CheckForUpdates = "CheckForUpdates";
inline constexpr const char* SuspendHotKeys = "SuspendHotKeys";
inline constexpr const char* ResumeHotKeys = "ResumeHotKeys";

// Controller to pane.
inline constexpr const char* CustomAppsChanged = "CustomAppsChanged";
inline constexpr const char* GroupsChanged = "GroupsChanged";
inline constexpr const char* OpenMenuItemsChanged = "OpenMenuItemsChanged";
inline constexpr const char* SpecialMenuItemsChanged = "SpecialMenuItemsChanged";
inline constexpr const char* SwitchMenuExcludedAppsChanged = "SwitchMenuExcludedAppsChanged";
inline constexpr const char* CorvalisPanelChanged = "CorvalisPanelChanged";
inline constexpr const char* CheckForUpdatesChanged = "CheckForUpdatesChanged";

// Within the pane (local centre, no object).
inline constexpr const char* OpenMenuItemsAddedOrRearranged = "com.kestrova.Corvalis - Open Menu Items Added Or Rearranged";
inline constexpr const char* OpenMenuItemChanged = "com.kestrova.Corvalis - Open Menu Item Changed";
inline constexpr const char* OpenMenuItemsRemoved = "com.kestrova.Corvalis - Open Menu Items Removed";
inline constexpr const char* OpenMenuItemsUpdated = "com.kestrova.Corvalis - Open Menu Items Updated";
inline constexpr const char* ExcludedApplicationsChanged = "com.kestrova.Corvalis - Excluded Applications Changed";
inline constexpr const char* OpenUniversalAccess = "com.kestrova.Corvalis - Open Universal Access";
inline constexpr const char* RecentItemsChanged = "com.kestrova.Corvalis - Recent Items Changed";
inline constexpr const char* SingleApplicationModeToggled = "com.kestrova.Corvalis - Single Application Mode Toggled";

}  // namespace corvalis::notifications

namespace corvalis::changes {

// User-info keys of the hot key changes, by menu index (Open, Quit, Switch, Special).
inline constexpr const char* ChangeOpenMenuHotKey = "ChangeOpenMenuHotKey";
inline constexpr const char* ChangeQuitMenuHotKey = "ChangeQuitMenuHotKey";
inline constexpr const char* ChangeSwitchMenuHotKey = "ChangeSwitchMenuHotKey";
inline constexpr const char* ChangeSpecialMenuHotKey = "ChangeSpecialMenuHotKey";

// User-info keys of the Open menu's changes: the whole menu from the pane, a folder's depth from the controller.
inline constexpr const char* ChangeOpenMenuItems = "ChangeOpenMenuItems";
inline constexpr const char* ChangeOpenMenuItemDepth = "ChangeOpenMenuItemDepth";
// The Special menu, whole, from the pane.
inline constexpr const char* ChangeSpecialMenuItems = "ChangeSpecialMenuItems";

// User-info keys of the Quit and Switch menus' changes: each the whole menu, or the Switch menu's whole excluded list.
inline constexpr const char* ChangeQuitMenuItems = "ChangeQuitMenuItems";
inline constexpr const char* ChangeSwitchMenuItems = "ChangeSwitchMenuItems";
inline constexpr const char* ChangeSwitchMenuExcludedApps = "ChangeSwitchMenuExcludedApps";

// User-info keys of the command shortcut changes.
inline constexpr const char* ChangeKeyboardShortcut = "ChangeKeyboardShortcut";
inline constexpr const char* ChangeKeyboardShortcutEnabled = "ChangeKeyboardShortcutEnabled";

// One Open menu folder's browser depth, from the applications browser ({"Index": folder count, "BrowserDepth"}).
inline constexpr const char* ChangeOpenMenuItemBrowserDepth = "ChangeOpenMenuItemBrowserDepth";
// User-info keys of the Open menu editor's local notifications and of the depth changes.
inline constexpr const char* Index = "Index";
inline constexpr const char* Paths = "Paths";

// User-info keys of the group changes; "ChangeExcludedApplications" rides along in "ChangeGroups".
inline constexpr const char* ChangeGroups = "ChangeGroups";
inline constexpr const char* ChangeArrangement = "ChangeArrangement";
inline constexpr const char* ChangeExcludedApplications = "ChangeExcludedApplications";
inline constexpr const char* RemoveKeyboardShortcut = "RemoveKeyboardShortcut";
// The custom applications, both ways: { "CustomApplications": array }.
inline constexpr const char* ChangeCustomApps = "ChangeCustomApps";

}  // namespace corvalis::changes
