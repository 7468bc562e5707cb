#pragma once
// The pane's part in running the controller: starting and quitting it, keeping
// it among the login items exactly while it is turned on, and the controller's
// share of an import from a backup. No widgets: the on/off switch and the beep
// are reached through ControllerView.

#include <array>
#include <chrono>
#include <functional>
#include <string>

#include "platform/LoginItems.h"
#include "platform/Processes.h"
#include "plist/Value.h"
#include "prefs/CorvalisPreferences.h"

namespace corvalis {

class ControllerView {
public:
    virtual ~ControllerView() = default;
    virtual bool isSwitchOn() const = 0;
    virtual void setSwitchOn(bool on) = 0;
    virtual void beep() = 0;
};

enum class QuitOutcome {
    NotRunning,    // there was no controller to quit
    Quit,          // it quit when asked
    StillRunning,  // asked, but still there after the wait: the user may agree to forceQuitController
    Killed,        // ended without being asked (forceQuitController)
};

enum class LaunchOutcome { NotNeeded, Launched, AlreadyRunning, Failed };

// What onTurnOn did, for the command line to tell.
struct TurnOnReport {
    bool on = false;
    bool loginItemAdded = false;
    bool saved = false;
    LaunchOutcome launch = LaunchOutcome::NotNeeded;
    QuitOutcome quit = QuitOutcome::NotRunning;
};

// What the controller's part of an import did.
struct ImportReport {
    bool wasRunning = false;
    QuitOutcome quit = QuitOutcome::NotRunning;
    bool markedImportDate = false;  // "ImportFromBackupDate" was set in the imported settings
    bool restored = false;          // the imported settings were saved
    bool loginItemAdded = false;
    LaunchOutcome launch = LaunchOutcome::NotNeeded;
};

class ControllerManager {
public:
    struct Options {
        std::string controllerPath;                      // the bundle (or program) to start
        std::array<std::string, 2> installedLocations;   // where stale login items may point
        std::chrono::milliseconds quitTimeout{10000};    // how long a quitting controller may take
    };
    // The controller of this installation ($CORVALIS_CONTROLLER or the pane's resources).
    static Options defaultOptions();

    ControllerManager(CorvalisPreferences& prefs, Processes& processes, LoginItems& loginItems, ControllerView& view,
                      Options options = defaultOptions());

    const std::string& controllerPath() const { return _options.controllerPath; }
    // True, with the process when asked for, while the controller runs.
    bool isControllerRunning(ProcessHandle* process = nullptr);

    // Starts the controller in the background unless it already runs; beeps when it cannot.
    LaunchOutcome _launchController();
    // Asks a running controller to quit and waits (sleeping between looks) until
    // it is gone or the quit timeout has passed.
    QuitOutcome _quitController();
    // Ends the controller without asking and waits until it is gone; only once the user agreed.
    QuitOutcome forceQuitController();

    bool _addToLoginItems(const std::string& path);
    // Removes the items of both installed locations (and of the configured
    // controller) and any broken item named "Corvalis".
    void _removeFromLoginItems();
    // The index of the first login item that starts the controller, or -1.
    long _checkLoginItems();

    // Brings the controller in line with the switch as the pane is selected.
    // Turned off, a login item found for the controller stays where it is.
    void _turnCorvalisControllerOnOrOff();
    // Starts the controller when the switch is on and it does not run.
    LaunchOutcome _turnCorvalisControllerOn();

    // The on/off switch was flipped: stores "TurnOnCorvalis", replaces the login
    // item, saves, and then (so that a starting controller reads the new
    // settings) launches or quits the controller.
    TurnOnReport onTurnOn();

    // Imports `settings` (a checked backup's "Settings") with the controller's
    // part around the store's own import (importSettings of prefs/Backup.h,
    // which quits a running controller and marks the settings when they turn
    // it on again): then `reloadAndSave` (the pane's reloads and the save; a
    // plain save when empty), then _afterImportFromBackup.
    ImportReport importFromBackup(const plist::Dictionary& settings, const std::function<bool()>& reloadAndSave = {});
    // The switch follows the imported "TurnOnCorvalis"; the login item is
    // replaced and the controller started when it is on.
    void _afterImportFromBackup(ImportReport& report);

private:
    bool waitUntilGone(const ProcessHandle& process, std::chrono::milliseconds timeout);

    CorvalisPreferences& _prefs;
    Processes& _processes;
    LoginItems& _loginItems;
    ControllerView& _view;
    Options _options;
};

}  // namespace corvalis
