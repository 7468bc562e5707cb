#pragma once
// The user's running applications, as the workspace reports launched and
// background applications: found by process, followed while someone observes.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace corvalis {

struct RunningApplication {
    int pid = 0;
    // The application itself: its bundle folder or its desktop entry.
    std::string path;
    // "CFBundleIdentifier" or the desktop file id; may be empty.
    std::string bundleIdentifier;
    // Declares LSBackgroundOnly or LSUIElement, or is a hidden desktop entry (NoDisplay=true).
    bool backgroundOnly = false;

    bool operator==(const RunningApplication&) const = default;
};

class RunningApplications {
public:
    using Observer = std::function<void(const RunningApplication&)>;
    using Token = std::uint64_t;

    virtual ~RunningApplications() = default;

    // Every running application of the user, one entry per application (the
    // lowest process id of its processes), background-only ones included.
    virtual std::vector<RunningApplication> runningApplications() = 0;
    // The applications the user sees running: runningApplications() without the background-only ones.
    std::vector<RunningApplication> launchedApplications();

    // Told of each application that starts or ends from now on, on the thread
    // that observes (the main thread). Following costs a poll every few seconds
    // while at least one observer is registered.
    virtual Token addObserver(Observer launched, Observer terminated) = 0;
    virtual void removeObserver(Token token) = 0;
};

}  // namespace corvalis
