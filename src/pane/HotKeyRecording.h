#pragma once
// What every table that records key combinations does around the recording
// field: the controller's hot keys pause while a combination is typed, the
// validator decides, a refused combination is said in an alert, and the focus
// goes back to the table afterwards.

#include "keys/KVKeyCombinationRecorder.h"
#include "pane/EditorView.h"

namespace corvalis {

class KVKeyCombinationValidator;
class NotificationCenter;

class HotKeyRecording : public KeyCombinationFieldDelegate {
public:
    HotKeyRecording(KVKeyCombinationValidator& validator, NotificationCenter& distributed, EditorView& view)
        : validator_(validator), distributed_(distributed), view_(view) {}

    // The view that takes focus after recording (the table).
    void setTable(Responder table) { table_ = table; }

    void keyCombinationWillBeginEditing() override;
    void keyCombinationWillEndEditing() override;
    bool validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error) override;
    void didFailToValidateKeyCombination(const std::string& error) override;
    Responder nextFirstResponderForControl() override { return table_; }

private:
    KVKeyCombinationValidator& validator_;
    NotificationCenter& distributed_;
    EditorView& view_;
    Responder table_ = nullptr;
};

}  // namespace corvalis
