#pragma once
// The keys of the controller's preferences domain and of its records, each
// spelled once. The factory defaults of the domain keys are in DefaultValues.

namespace corvalis::keys {

// Keys with a factory default, in the order the defaults list them.
inline constexpr const char* TurnOnCorvalis = "TurnOnCorvalis";
inline constexpr const char* CheckForUpdates = "CheckForUpdates";
inline constexpr const char* CheckForUpdatesFrequency = "CheckForUpdatesFrequency";
inline constexpr const char* CheckForUpdatesResult = "CheckForUpdatesResult";
inline constexpr const char* ShowMenuPanel = "ShowMenuPanel";
inline constexpr const char* PanelPosition = "PanelPosition";
inline constexpr const char* PanelCoordinate = "PanelCoordinate";
inline constexpr const char* PanelSize = "PanelSize";
inline constexpr const char* AutoHidePanel = "AutoHidePanel";
inline constexpr const char* PanelButtons = "PanelButtons";
inline constexpr const char* ShowStatusItem = "ShowStatusItem";
inline constexpr const char* StatusItemPosition = "StatusItemPosition";
inline constexpr const char* StatusItemButtons = "StatusItemButtons";
inline constexpr const char* TurnOnSingleApplicationMode = "TurnOnSingleApplicationMode";
inline constexpr const char* ShowAllWhenTurningSingleApplicationModeOff = "ShowAllWhenTurningSingleApplicationModeOff";
inline constexpr const char* Groups = "Groups";
inline constexpr const char* KeepGroupsAndApplicationsArranged = "KeepGroupsAndApplicationsArranged";
inline constexpr const char* ArrangeWhat = "ArrangeWhat";
inline constexpr const char* ShowGroupInfo = "ShowGroupInfo";
inline constexpr const char* CustomApplications = "CustomApplications";
inline constexpr const char* ShowApplicationInfo = "ShowApplicationInfo";
inline constexpr const char* ShowWindowRestorationInfo = "ShowWindowRestorationInfo";
inline constexpr const char* BrowserShowWhat = "BrowserShowWhat";
inline constexpr const char* BrowserInfo = "BrowserInfo";
inline constexpr const char* BrowserApplicationsFolderDepth = "BrowserApplicationsFolderDepth";
inline constexpr const char* BrowserDeveloperApplicationsFolderDepth = "BrowserDeveloperApplicationsFolderDepth";
inline constexpr const char* ShowIcons = "ShowIcons";
inline constexpr const char* UseSmallerFontSize = "UseSmallerFontSize";
inline constexpr const char* RemoveNoApplicationRunningGroups = "RemoveNoApplicationRunningGroups";
inline constexpr const char* GroupsAreSelectable = "GroupsAreSelectable";
inline constexpr const char* IncludeTerminatedApplications = "IncludeTerminatedApplications";
inline constexpr const char* IncludeTerminatedApplicationsWhere = "IncludeTerminatedApplicationsWhere";
inline constexpr const char* EnableOpenMenuHotKey = "EnableOpenMenuHotKey";
inline constexpr const char* EnableQuitMenuHotKey = "EnableQuitMenuHotKey";
inline constexpr const char* EnableSwitchMenuHotKey = "EnableSwitchMenuHotKey";
inline constexpr const char* EnableSpecialMenuHotKey = "EnableSpecialMenuHotKey";
inline constexpr const char* HotKeys = "HotKeys";
inline constexpr const char* ShowOpenMenuInfo = "ShowOpenMenuInfo";
inline constexpr const char* DockApplicationsSortAlphabetically = "DockApplicationsSortAlphabetically";
inline constexpr const char* RecentApplications = "RecentApplications";
inline constexpr const char* RecentApplicationsMaxNum = "RecentApplicationsMaxNum";
inline constexpr const char* RecentApplicationsSortAlphabetically = "RecentApplicationsSortAlphabetically";
inline constexpr const char* ApplicationsFolderDepth = "ApplicationsFolderDepth";
inline constexpr const char* DeveloperApplicationsFolderDepth = "DeveloperApplicationsFolderDepth";
inline constexpr const char* HierarchicalFolderMenus = "HierarchicalFolderMenus";
inline constexpr const char* AutoSynchronizeFolderMenus = "AutoSynchronizeFolderMenus";
inline constexpr const char* RunningApplicationsSortAlphabetically = "RunningApplicationsSortAlphabetically";
inline constexpr const char* MarkApplicationMode = "MarkApplicationMode";
inline constexpr const char* MarkApplicationsUsingRosetta = "MarkApplicationsUsingRosetta";
inline constexpr const char* ShowProcessID = "ShowProcessID";
inline constexpr const char* ShowExcludedApplicationInfo = "ShowExcludedApplicationInfo";
inline constexpr const char* SwitchMenuRunningApplicationsSortAlphabetically = "SwitchMenuRunningApplicationsSortAlphabetically";
inline constexpr const char* ReopenApplicationsOnSwitch = "ReopenApplicationsOnSwitch";
inline constexpr const char* AddApplicationWindows = "AddApplicationWindows";
inline constexpr const char* SwitchMenuExcludedApplications = "SwitchMenuExcludedApplications";
inline constexpr const char* ShowSwitchMenuExcludedApplicationInfo = "ShowSwitchMenuExcludedApplicationInfo";
inline constexpr const char* ShowSpecialMenuInfo = "ShowSpecialMenuInfo";
inline constexpr const char* RecentFolders = "RecentFolders";
inline constexpr const char* RecentFoldersMaxNum = "RecentFoldersMaxNum";
inline constexpr const char* ShowFinderRecentFolders = "ShowFinderRecentFolders";
inline constexpr const char* RecentDocumentsSortAlphabetically = "RecentDocumentsSortAlphabetically";
inline constexpr const char* RecentServersSortAlphabetically = "RecentServersSortAlphabetically";
inline constexpr const char* QuickCopyPathCommand = "QuickCopyPathCommand";
inline constexpr const char* LastCopyPathCommand = "LastCopyPathCommand";
inline constexpr const char* ShowInternalDisks = "ShowInternalDisks";
inline constexpr const char* ShowExternalDisks = "ShowExternalDisks";
inline constexpr const char* ShowEjectableDisks = "ShowEjectableDisks";
inline constexpr const char* ShowNetworkDisks = "ShowNetworkDisks";
inline constexpr const char* ShowInactiveDisks = "ShowInactiveDisks";
inline constexpr const char* ResolveAliases = "ResolveAliases";
inline constexpr const char* ShowPreviews = "ShowPreviews";
inline constexpr const char* FramePreviews = "FramePreviews";
inline constexpr const char* ShowTitleAndAuthor = "ShowTitleAndAuthor";
inline constexpr const char* ShowFullPagePreviewsForTextFiles = "ShowFullPagePreviewsForTextFiles";
inline constexpr const char* PlayMusic = "PlayMusic";
inline constexpr const char* PlayMovies = "PlayMovies";
inline constexpr const char* DisablePreviewsOnNetworkDisks = "DisablePreviewsOnNetworkDisks";
inline constexpr const char* EnableFilterExtensions = "EnableFilterExtensions";
inline constexpr const char* FilteredExtensions = "FilteredExtensions";
inline constexpr const char* ArtworkMaxSize = "ArtworkMaxSize";
inline constexpr const char* ImageMaxSize = "ImageMaxSize";
inline constexpr const char* MovieMaxSize = "MovieMaxSize";
inline constexpr const char* PDFMaxSize = "PDFMaxSize";
inline constexpr const char* TextFileMaxSize = "TextFileMaxSize";
inline constexpr const char* OtherFileMaxSize = "OtherFileMaxSize";
inline constexpr const char* ShowApertureNumberOfVersions = "ShowApertureNumberOfVersions";
inline constexpr const char* ShowiPhotoLibrary = "ShowiPhotoLibrary";
inline constexpr const char* ShowiPhotoRolls = "ShowiPhotoRolls";
inline constexpr const char* ShowiPhotoItemCounts = "ShowiPhotoItemCounts";
inline constexpr const char* AddApplicationPath = "AddApplicationPath";
inline constexpr const char* AddFileFolderPath = "AddFileFolderPath";
inline constexpr const char* ShowDockApplications = "ShowDockApplications";
inline constexpr const char* ShowRecentApplications = "ShowRecentApplications";
inline constexpr const char* ShowApplicationsFolder = "ShowApplicationsFolder";
inline constexpr const char* ShowDeveloperApplicationsFolder = "ShowDeveloperApplicationsFolder";
inline constexpr const char* ShowSystemPreferences = "ShowSystemPreferences";
inline constexpr const char* Folders = "Folders";
inline constexpr const char* AddExcludedApplications = "AddExcludedApplications";
inline constexpr const char* AddBackgroundOnlyApplications = "AddBackgroundOnlyApplications";
inline constexpr const char* AddActiveApplicationWindows = "AddActiveApplicationWindows";
inline constexpr const char* ShowSingleApplicationModeCommand = "ShowSingleApplicationModeCommand";
inline constexpr const char* ShowDisks = "ShowDisks";
inline constexpr const char* ShowHome = "ShowHome";
inline constexpr const char* ShowSystemMemory = "ShowSystemMemory";
inline constexpr const char* ShowUptime = "ShowUptime";
inline constexpr const char* ShowRelaunchOrQuitAndLaunchFinder = "ShowRelaunchOrQuitAndLaunchFinder";
inline constexpr const char* ShowQuitAndLaunchFinder = "ShowQuitAndLaunchFinder";
inline constexpr const char* ShowRelaunchDock = "ShowRelaunchDock";
inline constexpr const char* ShowSleepRestartShutDown = "ShowSleepRestartShutDown";
inline constexpr const char* ShowLogOut = "ShowLogOut";

// Keys without a factory default: their readers check presence and type first.
inline constexpr const char* OpenMenuItems = "OpenMenuItems";
inline constexpr const char* QuitMenuItems = "QuitMenuItems";
inline constexpr const char* SwitchMenuItems = "SwitchMenuItems";
inline constexpr const char* SpecialMenuItems = "SpecialMenuItems";
inline constexpr const char* KeyboardShortcuts = "KeyboardShortcuts";
inline constexpr const char* SwitchMenuMarkApplicationMode = "SwitchMenuMarkApplicationMode";
inline constexpr const char* SwitchMenuMarkApplicationsUsingRosetta = "SwitchMenuMarkApplicationsUsingRosetta";
inline constexpr const char* ShowAddBackgroundOnlyApplicationsCommand = "ShowAddBackgroundOnlyApplicationsCommand";
inline constexpr const char* ButtonColors = "ButtonColors";
inline constexpr const char* RoundPanel = "RoundPanel";
inline constexpr const char* BackgroundOpacity = "BackgroundOpacity";
inline constexpr const char* FrameOpacity = "FrameOpacity";
inline constexpr const char* HidePanelOnFullScreen = "HidePanelOnFullScreen";
inline constexpr const char* StatusItemWidgetsDistance = "StatusItemWidgetsDistance";
inline constexpr const char* StatusItemMenuOffset = "StatusItemMenuOffset";
inline constexpr const char* AllowGroupSeparators = "AllowGroupSeparators";
inline constexpr const char* AddQuitOthersToGroups = "AddQuitOthersToGroups";
inline constexpr const char* AskConfirmation = "AskConfirmation";
inline constexpr const char* CheckForUpdatesLast = "CheckForUpdatesLast";
inline constexpr const char* CheckForUpdatesNewVersion = "CheckForUpdatesNewVersion";
inline constexpr const char* CheckForUpdatesSkipVersion = "CheckForUpdatesSkipVersion";
inline constexpr const char* CheckForUpdatesMaxVersion = "CheckForUpdatesMaxVersion";

// User-info keys by which the controller's "CheckForUpdatesChanged" says that an update key is gone.
inline constexpr const char* RemoveCheckForUpdatesLast = "RemoveCheckForUpdatesLast";
inline constexpr const char* RemoveCheckForUpdatesNewVersion = "RemoveCheckForUpdatesNewVersion";
inline constexpr const char* RemoveCheckForUpdatesSkipVersion = "RemoveCheckForUpdatesSkipVersion";

// Obsolete keys removed on every load.
inline constexpr const char* IsTrustedChecked = "IsTrustedChecked";
inline constexpr const char* ClassicApplicationsFolderDepth = "ClassicApplicationsFolderDepth";
inline constexpr const char* BrowserClassicApplicationsFolderDepth = "BrowserClassicApplicationsFolderDepth";
inline constexpr const char* ShowClassicApplicationsFolder = "ShowClassicApplicationsFolder";
inline constexpr const char* ShowStartStopRestartClassic = "ShowStartStopRestartClassic";

// Button records of "PanelButtons" and "StatusItemButtons".
inline constexpr const char* Color = "Color";
inline constexpr const char* Visible = "Visible";

// Group records.
inline constexpr const char* Name = "Name";
inline constexpr const char* CanBeDeleted = "CanBeDeleted";
inline constexpr const char* Hide = "Hide";
inline constexpr const char* AutoOpen = "AutoOpen";
inline constexpr const char* Applications = "Applications";

// Hot key records of "HotKeys" (and key combinations generally).
inline constexpr const char* Character = "Character";
inline constexpr const char* Modifiers = "Modifiers";
inline constexpr const char* VirtualKeyCode = "VirtualKeyCode";
inline constexpr const char* Position = "Position";

// Menu item records of the four menus.
inline constexpr const char* Item = "Item";
inline constexpr const char* Path = "Path";
inline constexpr const char* AliasData = "AliasData";
inline constexpr const char* NameIsCustom = "NameIsCustom";
inline constexpr const char* Depth = "Depth";
inline constexpr const char* BrowserDepth = "BrowserDepth";

// User group records (beside the keys every group has) and their command shortcuts.
inline constexpr const char* Icon = "Icon";
inline constexpr const char* IconData = "IconData";
inline constexpr const char* ShowInOpenMenu = "ShowInOpenMenu";
inline constexpr const char* ShowInQuitMenu = "ShowInQuitMenu";
inline constexpr const char* ShowInSwitchMenu = "ShowInSwitchMenu";
inline constexpr const char* KeyboardShortcut = "KeyboardShortcut";
inline constexpr const char* CommandID = "CommandID";
inline constexpr const char* Enabled = "Enabled";
inline constexpr const char* Action = "Action";
// The payload keys of the shortcut changes ("CommandId", unlike the records' "CommandID", is what the controller reads).
inline constexpr const char* CommandId = "CommandId";
inline constexpr const char* KeyCombination = "KeyCombination";

// Custom application records and their launch options.
inline constexpr const char* Options = "Options";
// An application entry of the custom applications editor that was just changed.
inline constexpr const char* Updated = "Updated";
inline constexpr const char* ForceRosetta = "ForceRosetta";
inline constexpr const char* Force32BitMode = "Force32BitMode";
inline constexpr const char* DontHideInSingleAppMode = "DontHideInSingleAppMode";
inline constexpr const char* DontHideOnHideOthers = "DontHideOnHideOthers";
inline constexpr const char* DontActivate = "DontActivate";
inline constexpr const char* HideMeOrOthers = "HideMeOrOthers";
inline constexpr const char* DontAddToRecentApps = "DontAddToRecentApps";
inline constexpr const char* DontAddToRecentItems = "DontAddToRecentItems";

// Keys of older versions, migrated and removed on load.
inline constexpr const char* Mark64BitApplications = "Mark64BitApplications";
inline constexpr const char* ToggleSingleApplicationModeHotKey = "ToggleSingleApplicationModeHotKey";

// Backup files, and the mark an import leaves in the settings.
inline constexpr const char* Settings = "Settings";
inline constexpr const char* Version = "Version";
inline constexpr const char* ImportFromBackupDate = "ImportFromBackupDate";

// The name of the undeletable group that holds the excluded applications.
inline constexpr const char* ExcludedApplicationsGroupName = "ExcludedApplications";

}  // namespace corvalis::keys
