#include "prefs/DefaultValues.h"

#include <string>

#include "prefs/DefaultPreviewSizes.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

// Four visible buttons with the colour indexes 0 to 3.
Array defaultButtons() {
    Array buttons;
    for (short color = 0; color < 4; ++color)
        buttons.append(Dictionary{{keys::Color, Value::int16(color)}, {keys::Visible, true}});
    return buttons;
}

Array defaultGroups() {
    return Array{Dictionary{
        {keys::Name, keys::ExcludedApplicationsGroupName},
        {keys::CanBeDeleted, false},
        {keys::Hide, false},
        {keys::AutoOpen, false},
        {keys::Applications, Array()},
    }};
}

// Shift-Control with o, q, s and e for the Open, Quit, Switch and Special menus.
Array defaultHotKeys() {
    struct HotKey {
        unsigned char character;
        unsigned short virtualKeyCode;
    };
    constexpr HotKey kHotKeys[] = {{'o', 1018}, {'q', 1019}, {'s', 1020}, {'e', 1021}};
    constexpr unsigned kShiftControl = 0x1200;
    Array hotKeys;
    for (const HotKey& key : kHotKeys)
        hotKeys.append(Dictionary{
            {keys::Character, Value::uint8(key.character)},
            {keys::Modifiers, Value::uint32(kShiftControl)},
            {keys::VirtualKeyCode, Value::uint16(key.virtualKeyCode)},
            {keys::Position, Value::int32(0)},
        });
    return hotKeys;
}

Dictionary makeDefaultValues() {
    return Dictionary{
        {keys::TurnOnCorvalis, false},
        {keys::CheckForUpdates, false},
        {keys::CheckForUpdatesFrequency, Value::int32(7)},
        {keys::CheckForUpdatesResult, Value::int32(-5)},
        {keys::ShowMenuPanel, true},
        {keys::PanelPosition, Value::int32(0)},
        {keys::PanelCoordinate, Value::real32(0.5f)},
        {keys::PanelSize, Value::int32(0)},
        {keys::AutoHidePanel, false},
        {keys::PanelButtons, defaultButtons()},
        {keys::ShowStatusItem, false},
        {keys::StatusItemPosition, Value::int32(1)},
        {keys::StatusItemButtons, defaultButtons()},
        {keys::TurnOnSingleApplicationMode, false},
        {keys::ShowAllWhenTurningSingleApplicationModeOff, true},
        {keys::Groups, defaultGroups()},
        {keys::KeepGroupsAndApplicationsArranged, true},
        {keys::ArrangeWhat, Value::int32(0)},
        {keys::ShowGroupInfo, false},
        {keys::CustomApplications, Array()},
        {keys::ShowApplicationInfo, false},
        {keys::ShowWindowRestorationInfo, false},
        {keys::BrowserShowWhat, Value::int32(3)},
        {keys::BrowserInfo, false},
        {keys::BrowserApplicationsFolderDepth, Value::int32(2)},
        {keys::BrowserDeveloperApplicationsFolderDepth, Value::int32(2)},
        {keys::ShowIcons, true},
        {keys::UseSmallerFontSize, false},
        {keys::RemoveNoApplicationRunningGroups, false},
        {keys::GroupsAreSelectable, false},
        {keys::IncludeTerminatedApplications, true},
        {keys::IncludeTerminatedApplicationsWhere, Value::int32(1)},
        {keys::EnableOpenMenuHotKey, false},
        {keys::EnableQuitMenuHotKey, false},
        {keys::EnableSwitchMenuHotKey, false},
        {keys::EnableSpecialMenuHotKey, false},
        {keys::HotKeys, defaultHotKeys()},
        {keys::ShowOpenMenuInfo, false},
        {keys::DockApplicationsSortAlphabetically, true},
        {keys::RecentApplications, Array()},
        {keys::RecentApplicationsMaxNum, Value::int32(10)},
        {keys::RecentApplicationsSortAlphabetically, true},
        {keys::ApplicationsFolderDepth, Value::int32(2)},
        {keys::DeveloperApplicationsFolderDepth, Value::int32(2)},
        {keys::HierarchicalFolderMenus, false},
        {keys::AutoSynchronizeFolderMenus, true},
        {keys::RunningApplicationsSortAlphabetically, true},
        {keys::MarkApplicationMode, true},
        {keys::MarkApplicationsUsingRosetta, true},
        {keys::ShowProcessID, true},
        {keys::ShowExcludedApplicationInfo, false},
        {keys::SwitchMenuRunningApplicationsSortAlphabetically, true},
        {keys::ReopenApplicationsOnSwitch, false},
        {keys::AddApplicationWindows, false},
        {keys::SwitchMenuExcludedApplications, Array()},
        {keys::ShowSwitchMenuExcludedApplicationInfo, false},
        {keys::ShowSpecialMenuInfo, false},
        {keys::RecentFolders, Array()},
        {keys::RecentFoldersMaxNum, Value::int32(30)},
        {keys::ShowFinderRecentFolders, true},
        {keys::RecentDocumentsSortAlphabetically, true},
        {keys::RecentServersSortAlphabetically, true},
        {keys::QuickCopyPathCommand, std::to_string(kQuickCopyPathCommandCode)},
        {keys::LastCopyPathCommand, std::to_string(kLastCopyPathCommandCode)},
        {keys::ShowInternalDisks, true},
        {keys::ShowExternalDisks, true},
        {keys::ShowEjectableDisks, true},
        {keys::ShowNetworkDisks, true},
        {keys::ShowInactiveDisks, true},
        {keys::ResolveAliases, false},
        {keys::ShowPreviews, true},
        {keys::FramePreviews, true},
        {keys::ShowTitleAndAuthor, true},
        {keys::ShowFullPagePreviewsForTextFiles, true},
        {keys::PlayMusic, true},
        {keys::PlayMovies, true},
        {keys::DisablePreviewsOnNetworkDisks, false},
        {keys::EnableFilterExtensions, false},
        {keys::FilteredExtensions, Array()},
        {keys::ArtworkMaxSize, Value::real32(ArtworkDefaultSize())},
        {keys::ImageMaxSize, Value::real32(ImageDefaultSize())},
        {keys::MovieMaxSize, Value::real32(MovieDefaultSize())},
        {keys::PDFMaxSize, Value::real32(PDFDefaultSize())},
        {keys::TextFileMaxSize, Value::real32(TextFileDefaultSize())},
        {keys::OtherFileMaxSize, Value::real32(OtherFileDefaultSize())},
        {keys::ShowApertureNumberOfVersions, false},
        {keys::ShowiPhotoLibrary, false},
        {keys::ShowiPhotoRolls, false},
        {keys::ShowiPhotoItemCounts, false},
        {keys::AddApplicationPath, "/Applications"},
        {keys::AddFileFolderPath, "/"},
        {keys::ShowDockApplications, true},
        {keys::ShowRecentApplications, true},
        {keys::ShowApplicationsFolder, true},
        {keys::ShowDeveloperApplicationsFolder, true},
        {keys::ShowSystemPreferences, true},
        {keys::Folders, Array()},
        {keys::AddExcludedApplications, false},
        {keys::AddBackgroundOnlyApplications, false},
        {keys::AddActiveApplicationWindows, false},
        {keys::ShowSingleApplicationModeCommand, false},
        {keys::ShowDisks, true},
        {keys::ShowHome, true},
        {keys::ShowSystemMemory, true},
        {keys::ShowUptime, true},
        {keys::ShowRelaunchOrQuitAndLaunchFinder, true},
        {keys::ShowQuitAndLaunchFinder, false},
        {keys::ShowRelaunchDock, true},
        {keys::ShowSleepRestartShutDown, true},
        {keys::ShowLogOut, true},

    };
}

}  // namespace

const plist::Dictionary& defaultValues() {
    static const Dictionary defaults = makeDefaultValues();
    return defaults;
}

}  // namespace corvalis
