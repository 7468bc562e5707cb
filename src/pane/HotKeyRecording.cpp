#include "pane/HotKeyRecording.h"

#include "keys/KVKeyCombinationValidator.h"
#include "keys/KeyStrings.h"
#include "platform/NotificationCenter.h"
#include "prefs/NotificationNames.h"
#include "text/Localization.h"

namespace corvalis {

void HotKeyRecording::keyCombinationWillBeginEditing() {
    distributed_.post(Notification{notifications::SuspendHotKeys, notifications::PaneObject, std::nullopt});
}

void HotKeyRecording::keyCombinationWillEndEditing() {
    distributed_.post(Notification{notifications::ResumeHotKeys, notifications::PaneObject, std::nullopt});
}

bool HotKeyRecording::validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error) {
    return validator_.validateKeyCombination(combination, error);
}

void HotKeyRecording::didFailToValidateKeyCombination(const std::string& error) {
    view_.beep();
    view_.ask(EditorAlert{EditorAlert::Style::Warning, error, LocalizedString(keystrings::ChooseAnotherCombination),
                          {LocalizedString(keystrings::OK)}},
              {});
}

}  // namespace corvalis
