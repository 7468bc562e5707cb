#pragma once
// The string keys of key names, conflict messages and command names, each spelled once.

namespace corvalis::keystrings {

// Names of the keys that have no character.
inline constexpr const char* Help = "Help";
inline constexpr const char* Space = "Space";

// "That combination is taken": by hot key 1, 2, 3, 4 and later; by a command;
// by a group whose shortcut opens, hides (Action 0, 1) or does something else.
inline constexpr const char* KeyCombinationExistsAlready1 = "KeyCombinationExistsAlready1";
inline constexpr const char* KeyCombinationExistsAlready2 = "KeyCombinationExistsAlready2";
inline constexpr const char* KeyCombinationExistsAlready3 = "KeyCombinationExistsAlready3";
inline constexpr const char* KeyCombinationExistsAlready4 = "KeyCombinationExistsAlready4";
inline constexpr const char* KeyCombinationExistsAlready5 = "KeyCombinationExistsAlready5";
inline constexpr const char* KeyCombinationExistsAlready6 = "KeyCombinationExistsAlready6";
inline constexpr const char* KeyCombinationExistsAlready7 = "KeyCombinationExistsAlready7";
inline constexpr const char* KeyCombinationExistsAlready8 = "KeyCombinationExistsAlready8";
inline constexpr const char* ChooseAnotherCombination = "ChooseAnotherCombination";
inline constexpr const char* OK = "OK";

// The controller's fixed commands.
inline constexpr const char* ToggleAutoHidePanelCommand = "ToggleAutoHidePanelCommand";
inline constexpr const char* QuitOthersCommand = "QuitOthersCommand";
inline constexpr const char* QuitAllCommand = "QuitAllCommand";
inline constexpr const char* QuitExcludedCommand = "QuitExcludedCommand";
inline constexpr const char* HideActiveApplicationCommand = "HideActiveApplicationCommand";
inline constexpr const char* SwitchToPreviousApplicationCommand = "SwitchToPreviousApplicationCommand";
inline constexpr const char* SwitchToFinderCommand = "SwitchToFinderCommand";
inline constexpr const char* SwitchToFinderAndHideOthersCommand = "SwitchToFinderAndHideOthersCommand";
inline constexpr const char* HideOthersCommand = "HideOthersCommand";
inline constexpr const char* ShowAllCommand = "ShowAllCommand";
inline constexpr const char* MinimizeAllCommand = "MinimizeAllCommand";
inline constexpr const char* BringAllToFrontCommand = "BringAllToFrontCommand";
inline constexpr const char* ToggleSingleApplicationModeCommand = "ToggleSingleApplicationModeCommand";
inline constexpr const char* QuitLaunchFinderCommand = "QuitLaunchFinderCommand";
inline constexpr const char* RelaunchFinderCommand = "RelaunchFinderCommand";
inline constexpr const char* RelaunchDockCommand = "RelaunchDockCommand";
inline constexpr const char* LoginWindowCommand = "LoginWindowCommand";
inline constexpr const char* ShowPreferencesCommand = "ShowPreferencesCommand";

}  // namespace corvalis::keystrings
