#pragma once
// The Options tab without its widgets: the controller's floating panel and status
// item, single-application mode, what each change stores and tells the
// controller, and the controller's own changes mirrored back into the store.

#include <functional>
#include <memory>
#include <string>

#include "groups/ButtonsSheetController.h"
#include "platform/NotificationCenter.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

class CorvalisPreferences;
class DomainStore;

// Where the Dock sits: the "com.apple.dock" domain's "orientation" and "autohide"
// when it has them, else at the bottom and not hiding.
struct DockPlacement {
    std::string orientation = "bottom";
    bool autohide = false;
};
DockPlacement readDockPlacement(DomainStore& domains);

// Whether a panel at edge `index` (0 top, 1 left, 2 bottom, 3 right) shares the Dock's
// edge: a hiding Dock shares none, unless the panel hides too.
bool sameDockPosition(int index, bool panelAutoHides, const DockPlacement& dock);

class OptionsController {
public:
    // `domains` is read for the Dock's placement; `local` carries the tab's notices to the other tabs.
    OptionsController(CorvalisPreferences& prefs, NotificationCenter& distributed, NotificationCenter& local,
                      DomainStore& domains);
    ~OptionsController();

    void initializePane(bool firstTime);
    // Told after the controller changed settings this tab shows, to show them again.
    void setControlsChangedHandler(std::function<void()> handler) { _controlsChanged = std::move(handler); }

    // What the controls show.
    bool showPanel();
    int panelPosition();
    int panelSize();
    bool autoHidePanel();
    bool showStatusItem();
    int statusItemPosition();
    bool singleApplicationMode();
    int turnOffSingleAppModeAction();  // 0 shows all applications, 1 leaves them hidden
    // The status item's position is a choice only on systems that let applications place it.
    static bool statusItemPositionShown();

    // The controls' actions.
    void onShowPanel(bool on);
    void onPanelPosition(int index);
    void onPanelSize(int index);
    void onAutoHidePanel(bool on);
    void onShowStatusItem(bool on);
    void onStatusItemPosition(int index);
    void onTurnOnSingleAppMode(bool on);
    void onTurnOffSingleAppModeAction(int index);
    // The buttons sheet: "PanelButtons" or "StatusItemButtons" while open.
    void onConfigurePanel() { _buttons->open(keys::PanelButtons); }
    void onConfigureStatusItem() { _buttons->open(keys::StatusItemButtons); }
    void onCloseConfigureButtons() { _buttons->close(); }
    ButtonsSheetController& buttons() { return *_buttons; }

    // The controller changed some of these settings: stored as far as they are valid.
    void onPanelChanged(const Notification& notification);

private:
    void setIndex(int index, const char* key);

    CorvalisPreferences& _prefs;
    NotificationCenter& _distributed;
    NotificationCenter& _local;
    DomainStore& _domains;
    std::unique_ptr<ButtonsSheetController> _buttons;
    std::function<void()> _controlsChanged;
    std::optional<NotificationCenter::Token> _observer;
};

}  // namespace corvalis
