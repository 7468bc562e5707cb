#pragma once
// The Shortcuts tab without its widgets: the table of the controller's fixed
// commands and their key combinations, what each edit stores and tells the
// controller, and the controller's hot keys paused while a key is recorded.

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "keys/FixedCommands.h"
#include "keys/KVKeyCombination.h"
#include "keys/KVKeyCombinationRecorder.h"
#include "pane/EditorView.h"
#include "pane/HotKeyRecording.h"

namespace corvalis {

class CorvalisPreferences;
class KVKeyCombinationValidator;
class NotificationCenter;

// What the logic asks of the table: an editor's view, and redrawing every row
// when key names change (no model signal says that).
class ShortcutsView : public virtual EditorView {
public:
    virtual void reloadData() = 0;
};

enum class ShortcutTextColour { ControlText, LightGrey };

class ComKestrovaShortcutsController : public HotKeyRecording {
public:
    ComKestrovaShortcutsController(CorvalisPreferences& prefs, KVKeyCombinationValidator& validator,
                                   NotificationCenter& distributed, ShortcutsView& view);
    ~ComKestrovaShortcutsController() override;

    // Builds the command list the first time; every time clears combinations
    // taken by hot keys, then shows the table from the top with nothing selected.
    void initializePane(bool firstTime);
    void willShowPane();
    void updatePane(std::string& report);

    // Command id → its name in the user's language.
    const std::map<std::string, std::string>& localizedCommands() const { return _localizedCommands; }
    const std::vector<std::string>& commandIds() const { return _commandIds; }

    // The table's columns.
    int numberOfRows() const { return static_cast<int>(_commandIds.size()); }
    bool enabledAt(int row) const;
    std::string commandAt(int row) const;
    std::optional<KVKeyCombination> keyCombinationAt(int row) const;
    void setEnabled(bool enabled, int row);
    void setKeyCombination(const std::optional<KVKeyCombination>& combination, int row);

    // A disabled row's combination is grey unless it is being worked on
    // (selected in the focused table of the key window).
    static ShortcutTextColour keyCombinationTextColour(bool rowEnabled, bool windowIsKey, bool tableIsFirstResponder,
                                                       bool rowSelected);

    void _validateKeyboardShortcuts();

private:
    std::optional<plist::Dictionary> recordAt(int row) const;
    void store(int row, const plist::Dictionary& record);

    CorvalisPreferences& _prefs;
    KVKeyCombinationValidator& _validator;
    ShortcutsView& _view;
    std::vector<std::string> _commandIds;
    std::map<std::string, std::string> _localizedCommands;
};

}  // namespace corvalis
