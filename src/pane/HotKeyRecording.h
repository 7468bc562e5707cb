#pragma once
// What every table that records key combinations does around the recording
// field: the controller's hot keys pause while a combination is typed, the
// validator decides, a refused combination is said in an alert, and the focus
// goes back to the table afterwards.

#include <string>

#include "keys/KVKeyCombinationRecorder.h"
#include "pane/EditorView.h"

namespace corvalis {

class KVKeyCombinationValidator;
class NotificationCenter;

void suspendHotKeys(NotificationCenter& distributed);
void resumeHotKeys(NotificationCenter& distributed);
// Beeps and tells why the combination was refused, asking for another one.
void refuseKeyCombination(EditorView& view, const std::string& error);

class HotKeyRecording : public KeyCombinationFieldDelegate {
public:
    HotKeyRecording(KVKeyCombinationValidator& validator, NotificationCenter& distributed, EditorView& view)
        : validator_(validator), distributed_(distributed), view_(view) {}

    // The view that takes focus after recording (the table).
    void setTable(Responder table) { table_ = table; }

    void keyCombinationWillBeginEditing() override { suspendHotKeys(distributed_); }
    void keyCombinationWillEndEditing() override { resumeHotKeys(distributed_); }
    bool validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error) override;
    void didFailToValidateKeyCombination(const std::string& error) override { refuseKeyCombination(view_, error); }
    Responder nextFirstResponderForControl() override { return table_; }

private:
    KVKeyCombinationValidator& validator_;
    NotificationCenter& distributed_;
    EditorView& view_;
    Responder table_ = nullptr;
};

}  // namespace corvalis
