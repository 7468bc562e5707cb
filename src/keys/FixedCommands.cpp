#include "keys/FixedCommands.h"

#include "keys/KeyStrings.h"
#include "text/Localization.h"

namespace corvalis {

const std::vector<FixedCommand>& fixedCommands() {
    static const std::vector<FixedCommand> commands = {
        {1000, keystrings::ToggleAutoHidePanelCommand},
        {1001, keystrings::QuitOthersCommand},
        {1002, keystrings::QuitAllCommand},
        {1017, keystrings::QuitExcludedCommand},
        {1003, keystrings::HideActiveApplicationCommand},
        {1004, keystrings::SwitchToPreviousApplicationCommand},
        {1015, keystrings::SwitchToFinderCommand},
        {1016, keystrings::SwitchToFinderAndHideOthersCommand},
        {1005, keystrings::HideOthersCommand},
        {1006, keystrings::ShowAllCommand},
        {1007, keystrings::MinimizeAllCommand},
        {1008, keystrings::BringAllToFrontCommand},
        {1009, keystrings::ToggleSingleApplicationModeCommand},
        {1010, keystrings::QuitLaunchFinderCommand},
        {1011, keystrings::RelaunchFinderCommand},
        {1012, keystrings::RelaunchDockCommand},
        {1013, keystrings::LoginWindowCommand},
        {1014, keystrings::ShowPreferencesCommand},
    };
    return commands;
}

std::map<std::string, std::string> localizedFixedCommands() {
    std::map<std::string, std::string> names;
    for (const FixedCommand& command : fixedCommands()) names[std::to_string(command.id)] = LocalizedString(command.nameKey);
    return names;
}

}  // namespace corvalis
