#include "pane/ControllerManager.h"

#include <algorithm>
#include <thread>

#include "pane/ControllerLocation.h"
#include "platform/ApplicationBundle.h"
#include "prefs/Backup.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

// Seconds from the Unix epoch to 2001-01-01, where property-list dates count from.
constexpr double kSecondsFrom1970To2001 = 978307200.0;

plist::Date now() {
    using namespace std::chrono;
    return {duration<double>(system_clock::now().time_since_epoch()).count() - kSecondsFrom1970To2001};
}

}  // namespace

ControllerManager::Options ControllerManager::defaultOptions() {
    return {corvalis::controllerPath(), installedControllerLocations()};
}

ControllerManager::ControllerManager(CorvalisPreferences& prefs, Processes& processes, LoginItems& loginItems,
                                     ControllerView& view, Options options)
    : _prefs(prefs), _processes(processes), _loginItems(loginItems), _view(view), _options(std::move(options)) {}

bool ControllerManager::isControllerRunning(ProcessHandle* process) {
    ProcessHandle found;
    bool running = _processes.IsControllerRunning(&found);
    if (process) *process = found;
    return running;
}

LaunchOutcome ControllerManager::_launchController() {
    // Opening an application that already runs does not start a second one.
    if (isControllerRunning()) return LaunchOutcome::AlreadyRunning;
    if (_processes.launchApplication(_options.controllerPath)) return LaunchOutcome::Launched;
    _view.beep();
    return LaunchOutcome::Failed;
}

bool ControllerManager::waitUntilGone(const ProcessHandle& process, std::chrono::milliseconds timeout) {
    using namespace std::chrono;
    const auto deadline = steady_clock::now() + timeout;
    auto pause = milliseconds(2);
    while (_processes.IsControllerStillRunning(process)) {
        if (steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, milliseconds(50));
    }
    return true;
}

QuitOutcome ControllerManager::_quitController() {
    ProcessHandle process;
    if (!_processes.IsControllerRunning(&process)) return QuitOutcome::NotRunning;
    // A refused request is not fatal: the process may be ending already, so wait all the same.
    _processes.QuitController(process);
    // The controller's status item goes with it; the desktop's tray closes the gap by itself.
    return waitUntilGone(process, _options.quitTimeout) ? QuitOutcome::Quit : QuitOutcome::StillRunning;
}

QuitOutcome ControllerManager::forceQuitController() {
    ProcessHandle process;
    if (!_processes.IsControllerRunning(&process)) return QuitOutcome::NotRunning;
    _processes.KillController(process);
    return waitUntilGone(process, _options.quitTimeout) ? QuitOutcome::Killed : QuitOutcome::StillRunning;
}

bool ControllerManager::_addToLoginItems(const std::string& path) {
    if (path.empty()) return false;
    return AddURLToLoginItems(_loginItems, path, false);
}

void ControllerManager::_removeFromLoginItems() {
    const auto& [user, everyone] = _options.installedLocations;
    if (user.empty() || everyone.empty()) return;
    RemoveAllLoginItemsWithURLsOrName(_loginItems, user, everyone, kControllerName);
    // A controller configured elsewhere ($CORVALIS_CONTROLLER) stands where an
    // installed one would, so its items go as well.
    const std::string& configured = _options.controllerPath;
    if (!configured.empty() && !isSameApplicationPath(configured, user) && !isSameApplicationPath(configured, everyone))
        RemoveAllLoginItemsWithURLsOrName(_loginItems, configured, configured, kControllerName);
}

long ControllerManager::_checkLoginItems() {
    auto items = _loginItems.snapshot();
    if (!items) return -1;
    std::optional<std::string> controllerProgram = applicationExecutable(_options.controllerPath);
    for (std::size_t index = 0; index < items->size(); ++index) {
        const LoginItem& item = (*items)[index];
        if (!item.resolves) continue;
        std::optional<std::string> identifier = bundleIdentifier(item.path);
        // A plain program has no bundle to name it: it is the controller when it is the configured one.
        if (!identifier && !isApplicationBundle(item.path) && controllerProgram && isSameFile(item.path, *controllerProgram))
            identifier = kControllerBundleIdentifier;
        if (identifier == kControllerBundleIdentifier) return static_cast<long>(index);
    }
    return -1;
}

void ControllerManager::_turnCorvalisControllerOnOrOff() {
    long index = _checkLoginItems();
    if (_view.isSwitchOn()) {
        if (index == -1) {
            _removeFromLoginItems();
            _addToLoginItems(_options.controllerPath);
        }
        if (!isControllerRunning()) _launchController();
    } else {
        if (index == -1) _removeFromLoginItems();
        _quitController();
    }
}

LaunchOutcome ControllerManager::_turnCorvalisControllerOn() {
    if (!_view.isSwitchOn()) return LaunchOutcome::NotNeeded;
    if (isControllerRunning()) return LaunchOutcome::AlreadyRunning;
    return _launchController();
}

TurnOnReport ControllerManager::onTurnOn() {
    TurnOnReport report;
    report.on = _view.isSwitchOn();
    _prefs.setBool(report.on, keys::TurnOnCorvalis);
    _removeFromLoginItems();
    if (report.on) {
        report.loginItemAdded = _addToLoginItems(_options.controllerPath);
        report.saved = _prefs.saveToDefaults();
        report.launch = _launchController();
    } else {
        report.saved = _prefs.saveToDefaults();
        report.quit = _quitController();
    }
    return report;
}

ImportReport ControllerManager::importFromBackup(const plist::Dictionary& settings,
                                                 const std::function<bool()>& reloadAndSave) {
    ImportReport report;
    ImportControllerHooks hooks{
        [&] { return report.wasRunning = isControllerRunning(); },
        [&] {
            report.quit = _quitController();
            report.markedImportDate = settings[keys::TurnOnCorvalis].toBool().value_or(false);
        },
    };
    importSettings(_prefs, settings, hooks, now());
    report.restored = reloadAndSave ? reloadAndSave() : _prefs.saveToDefaults();
    _afterImportFromBackup(report);
    return report;
}

void ControllerManager::_afterImportFromBackup(ImportReport& report) {
    // Should the save have failed, the store still holds the imported settings,
    // and the controller follows them all the same.
    bool on = _prefs.boolForKey(keys::TurnOnCorvalis);
    _view.setSwitchOn(on);
    _removeFromLoginItems();
    if (on) {
        report.loginItemAdded = _addToLoginItems(_options.controllerPath);
        report.launch = _launchController();
    }
}

}  // namespace corvalis
