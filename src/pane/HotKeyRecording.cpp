#include "pane/HotKeyRecording.h"

#include "keys/KVKeyCombinationValidator.h"
#include "keys/KeyStrings.h"
#include "platform/NotificationCenter.h"
#include "prefs/NotificationNames.h"
#include "text/Localization.h"

namespace corvalis {

void suspendHotKeys(NotificationCenter& distributed) {
    distributed.post(Notification{notifications::SuspendHotKeys, notifications::PaneObject, std::nullopt});
}

void resumeHotKeys(NotificationCenter& distributed) {
    distributed.post(Notification{notifications::ResumeHotKeys, notifications::PaneObject, std::nullopt});
}

void refuseKeyCombination(EditorView& view, const std::string& error) {
    view.beep();
    view.ask(EditorAlert{EditorAlert::Style::Warning, error, LocalizedString(keystrings::ChooseAnotherCombination),
                         {LocalizedString(keystrings::OK)}},
             {});
}

bool HotKeyRecording::validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error) {
    return validator_.validateKeyCombination(combination, error);
}

}  // namespace corvalis
