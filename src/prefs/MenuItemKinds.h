#pragma once
// The values of a menu item record's "Item": what the controller shows for it.

namespace corvalis::items {

inline constexpr const char* Separator = "Separator";
inline constexpr const char* Folder = "Folder";
inline constexpr const char* File = "File";
inline constexpr const char* Groups = "Groups";

// Open menu.
inline constexpr const char* DockApplications = "DockApplications";
inline constexpr const char* RecentApplications = "RecentApplications";
inline constexpr const char* ApplicationsFolder = "ApplicationsFolder";
inline constexpr const char* DeveloperApplicationsFolder = "DeveloperApplicationsFolder";
inline constexpr const char* SystemPreferences = "SystemPreferences";

// Quit and Switch menus.
inline constexpr const char* RunningApplications = "RunningApplications";
inline constexpr const char* QuitOthers = "QuitOthers";
inline constexpr const char* QuitAll = "QuitAll";
inline constexpr const char* QuitExcluded = "QuitExcluded";
inline constexpr const char* ExcludedApplications = "ExcludedApplications";
inline constexpr const char* BackgroundOnlyApplications = "BackgroundOnlyApplications";
inline constexpr const char* ActiveApplicationWindows = "ActiveApplicationWindows";
inline constexpr const char* SwitchToPrevious = "SwitchToPrevious";
inline constexpr const char* HideOthers = "HideOthers";
inline constexpr const char* ShowAll = "ShowAll";
inline constexpr const char* ToggleSingleApplicationMode = "ToggleSingleApplicationMode";

// Special menu.
inline constexpr const char* Volumes = "Volumes";
inline constexpr const char* Home = "Home";
inline constexpr const char* Library = "Library";
inline constexpr const char* RecentFolders = "RecentFolders";
inline constexpr const char* RecentDocuments = "RecentDocuments";
inline constexpr const char* RecentServers = "RecentServers";
inline constexpr const char* AddressBook = "AddressBook";
inline constexpr const char* iPhotoLibrary = "iPhotoLibrary";
inline constexpr const char* ApertureLibrary = "ApertureLibrary";
inline constexpr const char* SystemMemory = "SystemMemory";
inline constexpr const char* Uptime = "Uptime";
inline constexpr const char* RelaunchFinder = "RelaunchFinder";
inline constexpr const char* QuitLaunchFinder = "QuitLaunchFinder";
inline constexpr const char* RelaunchDock = "RelaunchDock";
inline constexpr const char* LoginWindow = "LoginWindow";
inline constexpr const char* Sleep = "Sleep";
inline constexpr const char* Restart = "Restart";
inline constexpr const char* ShutDown = "ShutDown";
inline constexpr const char* LogOut = "LogOut";
// The Add pull-down's entry that asks for files or folders (no record has it).
inline constexpr const char* FileOrFolder = "FileOrFolder";

}  // namespace corvalis::items
