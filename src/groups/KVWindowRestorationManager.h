#pragma once
// The applications whose preferences say whether the system reopens their windows
// ("NSQuitAlwaysKeepsWindows"), found in the preferences folder and in Flatpak
// containers, and the one key written or removed there. One per process: the
// pane's Resume tab owns it.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/RunningApplications.h"
#include "plist/Value.h"

namespace corvalis {

class Workspace;

inline constexpr const char* kWindowPersistenceKey = "NSQuitAlwaysKeepsWindows";

struct WindowRestorationFolders {
    std::filesystem::path preferences;  // the domains: <preferences>/<domain>.plist
    std::filesystem::path containers;   // sandboxes: <containers>/<id>/config/corvalis/Preferences/<id>.plist
    // The store's folder, and $CORVALIS_CONTAINERS_DIR, else ~/.var/app.
    static WindowRestorationFolders system();
};

struct ApplicationDescription {
    std::string bundleIdentifier;
    bool keepsWindows = false;  // "NSQuitAlwaysKeepsWindows" as found (false for one just added)
    bool sandboxed = false;
    std::string applicationPath;
    std::string applicationName;
    std::vector<RunningApplication> running;
    // The domain's file could not be parsed when it was last written: it is left alone.
    bool changeable = true;
};

class KVWindowRestorationManager {
public:
    KVWindowRestorationManager(const Workspace& workspace, RunningApplications& running,
                               WindowRestorationFolders folders = WindowRestorationFolders::system());
    KVWindowRestorationManager(const KVWindowRestorationManager&) = delete;
    KVWindowRestorationManager& operator=(const KVWindowRestorationManager&) = delete;

    // Every installed application whose domain (or container) holds the key, and those listed
    // before whose path has vanished since, while their domain still holds it.
    void reloadApplications();
    const std::vector<ApplicationDescription>& applications() const { return _applications; }
    std::vector<ApplicationDescription>& applications() { return _applications; }

    // The container exists and its preferences file is not a symbolic link (a missing file still counts).
    bool isDomainSandboxedWithoutSymbolicLink(const std::string& bundleIdentifier) const;
    bool isRunningApplicationAtURL(const std::string& path) const;
    // A description with the key false; none for what is no application or has no identifier.
    std::optional<ApplicationDescription> createApplicationDescriptionWithURL(const std::string& path) const;

    // Sets the key (policy non-zero: true) or removes it, changing nothing else in the file.
    // False when the file is there but cannot be parsed or written: it is left as it was.
    bool setWindowPersistencyPolicy(int policy, const std::string& bundleIdentifier, bool sandboxed);
    bool clearWindowPersistencyPolicy(const std::string& bundleIdentifier, bool sandboxed);

    std::filesystem::path domainFile(const std::string& bundleIdentifier, bool sandboxed) const;

private:
    std::filesystem::path containerPreferences(const std::string& bundleIdentifier) const;
    bool write(const std::string& bundleIdentifier, bool sandboxed, std::optional<bool> value);
    std::vector<RunningApplication> runningWithIdentifier(const std::vector<RunningApplication>& all,
                                                          const std::string& bundleIdentifier) const;

    const Workspace& _workspace;
    RunningApplications& _running;
    WindowRestorationFolders _folders;
    std::vector<ApplicationDescription> _applications;
};

// The key's value in a domain file, read without touching the file: none when the
// file is missing, unreadable, too large, not a dictionary, or the value not a number.
std::optional<bool> readWindowPersistence(const std::filesystem::path& file);

}  // namespace corvalis
