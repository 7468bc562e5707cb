#pragma once
// Backup files of the settings: an XML property list { "Settings": the whole
// domain, "Version": 1 } with the extension "cvbu", written and read back with
// the two checks an import makes before anything changes.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

#include "plist/Value.h"

namespace corvalis {

class CorvalisPreferences;

inline constexpr const char* kBackupExtension = "cvbu";
// `path` named as a backup file: ".cvbu" is added unless the name already ends
// in it, so a name typed with another extension keeps it and gets ours too.
std::string withBackupExtension(std::string path);
inline constexpr std::int64_t kBackupFormatVersion = 1;
// Larger files are refused unread: no settings domain comes near this size.
inline constexpr std::uintmax_t kMaxBackupFileBytes = 64u * 1024 * 1024;

enum class BackupCheck {
    Valid,
    Invalid,       // unreadable, no settings dictionary, nothing recognised, or no numeric version
    WrongVersion,  // readable settings of another format version
};

struct BackupContents {
    BackupCheck check = BackupCheck::Invalid;
    plist::Dictionary settings;  // when Valid
    std::string fileVersion;     // the file's "Version" as text, when WrongVersion
    std::string readError;       // why the file itself could not be read ("" when it was)
};

// The backup of `settings` as the bytes of its file.
std::string backupFileText(const plist::Dictionary& settings);
// Writes the backup atomically (temporary file, flush, rename); false with `error` set on failure.
bool writeBackupFile(const std::filesystem::path& path, const plist::Dictionary& settings, std::string& error);

// Both checks on a backup's bytes, and on a file (size-limited before reading).
BackupContents checkBackup(std::span<const std::uint8_t> bytes);
BackupContents readBackupFile(const std::filesystem::path& path);

// The import message for a failed check, in the user's language: "ImportBackupError2"
// with the file's display name, or "ImportBackupError1" with this pane's and the file's versions.
std::string backupErrorText(const BackupContents& contents, const std::string& displayName);

// What an import asks of the controller while the settings are replaced; the
// pane supplies these, and without them the controller is left alone.
struct ImportControllerHooks {
    std::function<bool()> isControllerRunning;
    std::function<void()> quitController;
};

// Replaces the settings with a checked backup's: quits a running controller
// first (marking the settings with "ImportFromBackupDate" when they turn it on
// again), then installs and loads them. `now` is the import's moment.
void importSettings(CorvalisPreferences& prefs, const plist::Dictionary& settings,
                    const ImportControllerHooks& hooks, plist::Date now);

}  // namespace corvalis
