#pragma once
// The update settings: whether and how often the controller checks for new
// versions, a request to check now, and the two lines telling how the last
// check went. The controller does the checking and stores its outcome; this
// only edits the settings and shows what it stored. No widgets: the sheet is
// reached through UpdatesView.

#include <QLocale>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/NotificationCenter.h"
#include "plist/Value.h"
#include "prefs/CorvalisPreferences.h"

namespace corvalis {

// Which controls of the sheet are usable: all of them only while the controller is on.
struct UpdateSheetState {
    bool checkboxEnabled = false;
    bool checkNowEnabled = false;
    bool frequencyEnabled = false;
    bool textsEnabled = false;      // drawn in the normal text colour rather than the disabled one
    bool showTurnOnNotice = false;  // the caution image and the text saying the controller is off

    bool operator==(const UpdateSheetState&) const = default;
};

struct UpdateTexts {
    std::string lastCheck;    // "Last check: ..." or "Last attempt: ..."
    std::string checkResult;  // what was found, or empty

    bool operator==(const UpdateTexts&) const = default;
};

class UpdatesView {
public:
    virtual ~UpdatesView() = default;
    virtual void setAutomaticallyCheckForUpdates(bool checked) = 0;
    virtual void selectCheckFrequency(int days) = 0;
    virtual void setCheckFrequencyEnabled(bool enabled) = 0;
    virtual void setLastCheckAndResult(const UpdateTexts& texts) = 0;
    virtual void showSoftwareUpdateSheet(const UpdateSheetState& state) = 0;
    // Runs `action` once, `delay` from now, on this thread.
    virtual void runLater(std::chrono::milliseconds delay, std::function<void()> action) = 0;
};

// A check's time as the date line shows it: the full date and the short time
// of `locale`, in the system's time zone.
std::string formatUpdateCheckDate(const plist::Date& date, const QLocale& locale = QLocale::system());

class UpdatesController {
public:
    using DateFormatter = std::function<std::string(const plist::Date&)>;

    // `distributed` carries "CheckForUpdates" to the controller and its answers back.
    UpdatesController(CorvalisPreferences& prefs, NotificationCenter& distributed, UpdatesView& view);
    ~UpdatesController();
    UpdatesController(const UpdatesController&) = delete;
    UpdatesController& operator=(const UpdatesController&) = delete;

    // Sets the controls from the settings and refreshes the texts; the first
    // time also starts listening to the controller's "CheckForUpdatesChanged".
    void initializeSoftwareUpdate(bool first);
    UpdateSheetState sheetState();
    void showSoftwareUpdateSheet();

    void onAutomaticallyCheckForUpdates(bool checked);
    // `days` is the chosen item's tag: 1, 7 or 30 (anything else is ignored).
    void onCheckFrequency(int days);
    // Asks the controller to check at once.
    void onCheckNow();
    // Copies the controller's new update values (or removes those it names
    // with "Remove..." keys) into the working copy without saving; the texts
    // change only when the notification carries an outcome.
    void onCheckForUpdatesChanged(const Notification& notification);
    // The date format or time zone changed: the texts follow a second later.
    void onCheckForUpdatesFormatChanged();

    UpdateTexts _fillLastCheckAndResult();

    // Formats dates with something other than the system locale (tests).
    void setDateFormatter(DateFormatter formatter) { _formatDate = std::move(formatter); }

private:
    CorvalisPreferences& _prefs;
    NotificationCenter& _distributed;
    UpdatesView& _view;
    DateFormatter _formatDate;
    std::optional<NotificationCenter::Token> _observer;
    // Lets a delayed refresh find out that this object is gone.
    std::shared_ptr<bool> _alive = std::make_shared<bool>(true);
};

}  // namespace corvalis
