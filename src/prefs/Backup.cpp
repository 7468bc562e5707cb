#include "prefs/Backup.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <set>
#include <sstream>

#include "plist/PlistIO.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/DefaultValues.h"
#include "prefs/NotificationNames.h"
#include "prefs/PaneVersion.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Dictionary;
using plist::Value;

// ---- The store's side --------------------------------------------------------

namespace {

const std::set<std::string>& recognisedKeys() {
    static const std::set<std::string> recognised = [] {
        std::set<std::string> set;
        for (const auto& [key, value] : defaultValues()) set.insert(key);
        for (const char* key : {keys::OpenMenuItems, keys::QuitMenuItems, keys::SwitchMenuItems, keys::SpecialMenuItems,
                                keys::KeyboardShortcuts, keys::SwitchMenuMarkApplicationMode,
                                keys::SwitchMenuMarkApplicationsUsingRosetta,
                                keys::ShowAddBackgroundOnlyApplicationsCommand, keys::ButtonColors, keys::RoundPanel,
                                keys::BackgroundOpacity, keys::FrameOpacity, keys::HidePanelOnFullScreen,
                                keys::StatusItemWidgetsDistance, keys::StatusItemMenuOffset,
                                keys::AllowGroupSeparators, keys::AddQuitOthersToGroups, keys::AskConfirmation})
            set.insert(key);
        // Keys only older versions wrote: a file holding nothing else is no backup of this version.
        for (const char* key :
             {keys::AddApplicationPath, keys::AddFileFolderPath, keys::ShowDockApplications,
              keys::ShowRecentApplications, keys::ShowApplicationsFolder, keys::ShowDeveloperApplicationsFolder,
              keys::ShowSystemPreferences, keys::Folders, keys::AddExcludedApplications,
              keys::AddBackgroundOnlyApplications, keys::AddActiveApplicationWindows,
              keys::ShowSingleApplicationModeCommand, keys::ShowDisks, keys::ShowHome, keys::ShowSystemMemory,
              keys::ShowUptime, keys::ShowRelaunchOrQuitAndLaunchFinder, keys::ShowQuitAndLaunchFinder,
              keys::ShowRelaunchDock, keys::ShowSleepRestartShutDown, keys::ShowLogOut})
            set.erase(key);
        return set;
    }();
    return recognised;
}

}  // namespace

bool CorvalisPreferences::isValidBackup(const Dictionary& settings) {
    const std::set<std::string>& recognised = recognisedKeys();
    for (const auto& [key, value] : settings)
        if (recognised.contains(key)) return true;
    return false;
}

void CorvalisPreferences::restoreDefaultsFromBackup(const Dictionary& settings) {
    if (_appID.empty()) _appID = notifications::Domain;
    _store.removePersistentDomainForName(_appID);
    _store.setPersistentDomain(settings, _appID);
    _store.synchronize(_appID);
    unload();
    loadPreferences();
}

// ---- Files -------------------------------------------------------------------

std::string backupFileText(const Dictionary& settings) {
    return plist::toXml(Dictionary{{keys::Settings, settings}, {keys::Version, Value::int32(kBackupFormatVersion)}});
}

bool writeBackupFile(const std::filesystem::path& path, const Dictionary& settings, std::string& error) {
    std::string text = backupFileText(settings);
    if (text.empty()) {
        error = "the settings cannot be written as a property list";
        return false;
    }
    std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
    std::string temp = folder.string();
    temp.append("/.").append(path.filename().string()).append(".XXXXXX");
    int fd = ::mkostemp(temp.data(), O_CLOEXEC);
    if (fd < 0) {
        error = std::strerror(errno);
        return false;
    }
    ::fchmod(fd, 0644);
    std::size_t done = 0;
    while (error.empty() && done < text.size()) {
        ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0)
            error = std::strerror(errno);
        else
            done += static_cast<std::size_t>(n);
    }
    if (error.empty() && ::fdatasync(fd) != 0) error = std::strerror(errno);
    if (::close(fd) != 0 && error.empty()) error = std::strerror(errno);
    if (error.empty() && ::rename(temp.c_str(), path.c_str()) != 0) error = std::strerror(errno);
    if (!error.empty()) ::unlink(temp.c_str());
    return error.empty();
}

namespace {

std::string numberText(const Value& number) {
    if (const plist::Integer* integer = number.integer())
        return integer->isSigned() ? std::to_string(integer->toInt64()) : std::to_string(integer->toUInt64());
    std::ostringstream text;
    text << number.toDouble().value_or(0);
    return text.str();
}

}  // namespace

BackupContents checkBackup(std::span<const std::uint8_t> bytes) {
    BackupContents contents;
    plist::ParseResult parsed = plist::parse(bytes);
    const Dictionary* root = parsed.ok() ? parsed.value.dictionary() : nullptr;
    const Dictionary* settings = root ? (*root)[keys::Settings].dictionary() : nullptr;
    if (!settings || !CorvalisPreferences::isValidBackup(*settings)) return contents;
    // A version must be a number; booleans are not versions.
    const Value& version = (*root)[keys::Version];
    if (!version.isNumber() || version.type() == plist::Type::Boolean) return contents;
    if (version.toDouble() != static_cast<double>(kBackupFormatVersion)) {
        contents.check = BackupCheck::WrongVersion;
        contents.fileVersion = numberText(version);
        return contents;
    }
    contents.check = BackupCheck::Valid;
    contents.settings = *settings;
    return contents;
}

BackupContents readBackupFile(const std::filesystem::path& path) {
    BackupContents failed;
    // Non-blocking, so that a FIFO or a device is refused instead of waited on.
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) {
        failed.readError = std::strerror(errno);
        return failed;
    }
    struct stat info {};
    std::vector<std::uint8_t> bytes;
    if (::fstat(fd, &info) != 0)
        failed.readError = std::strerror(errno);
    else if (!S_ISREG(info.st_mode))
        failed.readError = "not a regular file";
    else if (static_cast<std::uintmax_t>(info.st_size) > kMaxBackupFileBytes)
        failed.readError = "larger than " + std::to_string(kMaxBackupFileBytes / (1024 * 1024)) + " MB";
    if (failed.readError.empty()) {
        // Read at most one byte beyond the limit: a file that grew meanwhile is still refused.
        bytes.resize(static_cast<std::size_t>(info.st_size) + 1);
        std::size_t done = 0;
        while (done < bytes.size()) {
            ssize_t n = ::read(fd, bytes.data() + done, bytes.size() - done);
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) failed.readError = std::strerror(errno);
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        bytes.resize(done);
        if (done > kMaxBackupFileBytes) failed.readError = "larger than " + std::to_string(kMaxBackupFileBytes / (1024 * 1024)) + " MB";
    }
    ::close(fd);
    if (!failed.readError.empty()) return failed;
    return checkBackup(bytes);
}

std::string withBackupExtension(std::string path) {
    const std::string suffix = std::string(".") + kBackupExtension;
    if (!path.ends_with(suffix)) path += suffix;
    return path;
}

std::string backupErrorText(const BackupContents& contents, const std::string& displayName) {
    if (contents.check == BackupCheck::WrongVersion)
        return LocalizedFormat("ImportBackupError1", {std::string(kPaneVersion), contents.fileVersion});
    return LocalizedFormat("ImportBackupError2", {displayName});
}

// ---- Import ------------------------------------------------------------------

void importSettings(CorvalisPreferences& prefs, const Dictionary& settings, const ImportControllerHooks& hooks,
                    plist::Date now) {
    Dictionary copy = settings.deepCopy();
    if (hooks.isControllerRunning && hooks.isControllerRunning()) {
        if (hooks.quitController) hooks.quitController();
        // The controller reads this mark when it starts again with the imported settings.
        if (copy[keys::TurnOnCorvalis].toBool().value_or(false)) copy.set(keys::ImportFromBackupDate, now);
    }
    prefs.restoreDefaultsFromBackup(copy);
}

}  // namespace corvalis
