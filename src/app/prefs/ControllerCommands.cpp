#include <cstdlib>
#include <iostream>

#include "app/prefs/ControllerCommands.h"
#include "pane/ControllerLocation.h"
#include "pane/ControllerManager.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/XdgAutostartLoginItems.h"
#include "text/Localization.h"
#include "schema/PreferenceKeys.h"

namespace corvalis::cli {

namespace {

// The command stands in for the pane's on/off switch; a failed launch is told by its outcome, not by a beep.
class CommandLineSwitch : public ControllerView {
public:
    explicit CommandLineSwitch(bool on) : on_(on) {}
    bool isSwitchOn() const override { return on_; }
    void setSwitchOn(bool on) override { on_ = on; }
    void beep() override {}

private:
    bool on_;
};

// Prints where the controller's login item is, or that there is none; false when the list cannot be read.
bool reportLoginItem(Context& context, ControllerManager& manager, XdgAutostartLoginItems& loginItems) {
    auto items = loginItems.snapshot();
    if (!items) {
        context.err << "corvalis-prefs: " << LocalizedString("LoginItemsUnreadable") << "\n";
        return false;
    }
    long index = manager._checkLoginItems();
    if (index < 0)
        context.out << LocalizedString("LoginItemAbsent") << "\n";
    else
        context.out << LocalizedFormat("LoginItemPresent",
                                       {(loginItems.folder() / (*items)[static_cast<std::size_t>(index)].id).string()})
                    << "\n";
    return true;
}

// The controller lines common to turn-on and an import that turns it on.
bool reportLaunch(Context& context, const char* command, ControllerManager& manager, bool loginItemAdded,
                  LaunchOutcome launch) {
    bool ok = true;
    if (loginItemAdded) {
        context.out << LocalizedString("LoginItemAdded") << "\n";
    } else {
        context.err << "corvalis-prefs " << command << ": " << LocalizedString("LoginItemNotAdded") << "\n";
        ok = false;
    }
    switch (launch) {
    case LaunchOutcome::Launched: context.out << LocalizedString("ControllerStarted") << "\n"; break;
    case LaunchOutcome::AlreadyRunning: context.out << LocalizedString("ControllerAlreadyRunning") << "\n"; break;
    default:
        context.err << "corvalis-prefs " << command << ": "
                    << LocalizedFormat("ControllerNotStarted", {manager.controllerPath()}) << "\n";
        ok = false;
    }
    return ok;
}

int turn(Context& context, bool on) {
    const char* name = on ? "turn-on" : "turn-off";
    bool force = !on && context.args.size() == 1 && context.args[0] == "--force";
    if (!force && wrongArgumentCount(context, 0, name)) return Usage;

    Session session(context);
    if (!session.load(context)) return Failure;
    // A controller started from here reads the settings this command wrote.
    ::setenv("CORVALIS_PREFERENCES_DIR", context.domainDir.c_str(), 1);
    LinuxProcesses processes(controllerPath());
    XdgAutostartLoginItems loginItems;
    CommandLineSwitch view(on);
    ControllerManager manager(session.prefs, processes, loginItems, view);

    TurnOnReport report = manager.onTurnOn();
    int status = Success;
    if (!report.saved && !session.reportWriteError(context)) status = Failure;
    context.out << LocalizedString(on ? "CorvalisTurnedOn" : "CorvalisTurnedOff") << "\n";
    if (on) {
        if (!reportLaunch(context, "turn-on", manager, report.loginItemAdded, report.launch)) status = Failure;
        return status;
    }

    QuitOutcome quit = report.quit;
    if (quit == QuitOutcome::StillRunning && force) quit = manager.forceQuitController();
    switch (quit) {
    case QuitOutcome::NotRunning: context.out << LocalizedString("ControllerNotRunning") << "\n"; break;
    case QuitOutcome::Quit: context.out << LocalizedString("ControllerQuit") << "\n"; break;
    case QuitOutcome::Killed: context.out << LocalizedString("ControllerKilled") << "\n"; break;
    case QuitOutcome::StillRunning:
        context.err << "corvalis-prefs turn-off: " << LocalizedString("ControllerDoesNotQuit")
                    << (force ? "\n" : " Use turn-off --force to end it.\n");
        status = Failure;
        break;
    }
    if (!reportLoginItem(context, manager, loginItems)) status = Failure;
    return status;
}

int status(Context& context) {
    if (wrongArgumentCount(context, 0, "status")) return Usage;
    Session session(context);
    // Reads the stored settings as they are: looking must not rewrite them.
    bool on = session.prefs.loadFromDefaults()[keys::TurnOnCorvalis].toBool().value_or(false);
    LinuxProcesses processes(controllerPath());
    XdgAutostartLoginItems loginItems;
    CommandLineSwitch view(on);
    ControllerManager manager(session.prefs, processes, loginItems, view);

    ProcessHandle process;
    if (manager.isControllerRunning(&process))
        context.out << LocalizedFormat("ControllerRunning", {static_cast<long long>(process.pid)}) << "\n";
    else
        context.out << LocalizedString("ControllerNotRunning") << "\n";
    bool readable = reportLoginItem(context, manager, loginItems);
    context.out << keys::TurnOnCorvalis << ": " << (on ? "true" : "false") << "\n";
    return readable ? Success : Failure;
}

}  // namespace

bool importSettingsWithController(Context& context, Session& session, const plist::Dictionary& settings) {
    ::setenv("CORVALIS_PREFERENCES_DIR", context.domainDir.c_str(), 1);
    LinuxProcesses processes(controllerPath());
    XdgAutostartLoginItems loginItems;
    CommandLineSwitch view(false);  // set from the imported settings
    ControllerManager manager(session.prefs, processes, loginItems, view);
    ImportReport report = manager.importFromBackup(settings);
    bool ok = true;
    if (report.quit == QuitOutcome::Quit) context.out << LocalizedString("ControllerQuit") << "\n";
    if (report.quit == QuitOutcome::StillRunning) {
        context.err << "corvalis-prefs restore: " << LocalizedString("ControllerDoesNotQuit") << "\n";
        ok = false;
    }
    if (view.isSwitchOn()) ok = reportLaunch(context, "restore", manager, report.loginItemAdded, report.launch) && ok;
    return ok;
}

std::vector<Command> controllerCommands() {
    return {
        {"turn-on", "",
         "Does what turning the settings window's switch on does: stores TurnOnCorvalis,\n"
         "replaces the controller's login item, saves, and starts the controller.\n"
         "Exit status 1 when the login item could not be added or the controller not started.",
         [](Context& context) { return turn(context, true); }},
        {"turn-off", "[--force]",
         "Does what turning the settings window's switch off does: stores TurnOnCorvalis,\n"
         "removes the controller's login items, saves, and quits the controller, waiting\n"
         "until it is gone. A controller that does not quit within ten seconds is left\n"
         "running (exit status 1) unless --force is given, which then ends it.",
         [](Context& context) { return turn(context, false); }},
        {"status", "",
         "Tells whether the controller runs (and its process id), whether it starts at\n"
         "login (and from which autostart entry), and the stored TurnOnCorvalis.", status},
    };
}

}  // namespace corvalis::cli
