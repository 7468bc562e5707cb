#include "pane/UpdatesController.h"

#include <QDateTime>

#include <cmath>

#include "text/Localization.h"
#include "prefs/NotificationNames.h"
#include "prefs/PaneVersion.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

constexpr double kSecondsFrom1970To2001 = 978307200.0;
constexpr auto kFormatChangeDelay = std::chrono::seconds(1);

// Each update value the controller may send, and the key by which it says the value is gone.
constexpr std::pair<const char*, const char*> kCopiedOrRemoved[] = {
    {keys::CheckForUpdatesLast, keys::RemoveCheckForUpdatesLast},
    {keys::CheckForUpdatesNewVersion, keys::RemoveCheckForUpdatesNewVersion},
    {keys::CheckForUpdatesSkipVersion, keys::RemoveCheckForUpdatesSkipVersion},
};

}  // namespace

std::string formatUpdateCheckDate(const plist::Date& date, const QLocale& locale) {
    double milliseconds = (date.seconds + kSecondsFrom1970To2001) * 1000.0;
    // A date from another program may be anything; one no clock can show gives no text.
    if (!std::isfinite(milliseconds) || std::abs(milliseconds) > 1e17) return {};
    auto msecs = static_cast<qint64>(milliseconds);
    QDateTime moment = QDateTime::fromMSecsSinceEpoch(msecs, Qt::LocalTime);
    // Qt has no combined "full date, short time" style; the two patterns are joined as most locales join them.
    QString pattern = locale.dateFormat(QLocale::LongFormat) + QLatin1Char(' ') + locale.timeFormat(QLocale::ShortFormat);
    return locale.toString(moment, pattern).toStdString();
}

UpdatesController::UpdatesController(CorvalisPreferences& prefs, NotificationCenter& distributed, UpdatesView& view)
    : _prefs(prefs), _distributed(distributed), _view(view),
      _formatDate([](const plist::Date& date) { return formatUpdateCheckDate(date); }) {}

UpdatesController::~UpdatesController() {
    *_alive = false;
    if (_observer) _distributed.removeObserver(*_observer);
}

void UpdatesController::initializeSoftwareUpdate(bool first) {
    bool automatically = _prefs.boolForKey(keys::CheckForUpdates);
    _view.setAutomaticallyCheckForUpdates(automatically);
    _view.selectCheckFrequency(_prefs.intForKey(keys::CheckForUpdatesFrequency));
    _view.setCheckFrequencyEnabled(automatically);
    _fillLastCheckAndResult();
    if (first && !_observer)
        _observer = _distributed.addObserver(notifications::CheckForUpdatesChanged, notifications::ControllerObject,
                                             [this](const Notification& n) { onCheckForUpdatesChanged(n); });
}

UpdateSheetState UpdatesController::sheetState() {
    bool on = _prefs.boolForKey(keys::TurnOnCorvalis);
    return {on, on, on && _prefs.boolForKey(keys::CheckForUpdates), on, !on};
}

void UpdatesController::showSoftwareUpdateSheet() { _view.showSoftwareUpdateSheet(sheetState()); }

void UpdatesController::onAutomaticallyCheckForUpdates(bool checked) {
    _view.setCheckFrequencyEnabled(checked);
    _prefs.setBool(checked, keys::CheckForUpdates);
    _prefs.synchronizeValue(checked, keys::CheckForUpdates);
}

void UpdatesController::onCheckFrequency(int days) {
    if (days != 1 && days != 7 && days != 30) return;
    _prefs.setInt(days, keys::CheckForUpdatesFrequency);
    _prefs.synchronizeValue(plist::Value::int32(days), keys::CheckForUpdatesFrequency);
}

void UpdatesController::onCheckNow() {
    _distributed.post({notifications::CheckForUpdates, notifications::PaneObject, std::nullopt});
}

void UpdatesController::onCheckForUpdatesChanged(const Notification& notification) {
    if (!notification.userInfo) return;
    const plist::Dictionary& info = *notification.userInfo;
    for (const auto& [key, removeKey] : kCopiedOrRemoved) {
        if (info.contains(key))
            _prefs.setObject(info[key], key);
        else if (info.contains(removeKey))
            _prefs.removeObjectForKey(key);
    }
    if (info.contains(keys::CheckForUpdatesResult)) {
        _prefs.setObject(info[keys::CheckForUpdatesResult], keys::CheckForUpdatesResult);
        _fillLastCheckAndResult();
    }
}

void UpdatesController::onCheckForUpdatesFormatChanged() {
    std::weak_ptr<bool> alive = _alive;
    _view.runLater(kFormatChangeDelay, [this, alive] {
        if (auto still = alive.lock(); still && *still) _fillLastCheckAndResult();
    });
}

UpdateTexts UpdatesController::_fillLastCheckAndResult() {
    int code = _prefs.intForKey(keys::CheckForUpdatesResult);
    std::optional<plist::Date> last = _prefs.simpleStringForKey(keys::CheckForUpdatesLast).date();
    // Without a stored time (the controller never wrote one) the line says so rather than show nothing.
    std::string never = LocalizedString("NeverChecked");
    std::string date = last ? _formatDate(*last) : never;
    const std::string* newVersion = _prefs.simpleStringForKey(keys::CheckForUpdatesNewVersion).string();

    UpdateTexts texts;
    switch (code) {
    case -5: texts = {LocalizedFormat("LastCheck", {never}), ""}; break;
    case 0: texts = {LocalizedFormat("LastCheck", {date}), LocalizedFormat("CheckResult2", {std::string(kPaneVersion)})}; break;
    case 1:
        texts = {LocalizedFormat("LastCheck", {date}), LocalizedFormat("CheckResult1", {newVersion ? *newVersion : ""})};
        break;
    case -1: texts = {LocalizedFormat("LastAttempt", {date}), LocalizedString("CheckResult5")}; break;
    case -2: texts = {LocalizedFormat("LastAttempt", {date}), LocalizedString("CheckResult4")}; break;
    case -3:
    case -4: texts = {LocalizedFormat("LastAttempt", {date}), LocalizedString("CheckResult3")}; break;
    default: texts = {LocalizedFormat("LastAttempt", {date}), ""}; break;
    }
    _view.setLastCheckAndResult(texts);
    return texts;
}

}  // namespace corvalis
