#pragma once
// The controller as a process: found, asked to quit, watched until it is gone,
// and applications started in the background.

#include <cstdint>
#include <string>

namespace corvalis {

// One process, robust against its id being reused by a later process.
struct ProcessHandle {
    int pid = 0;                   // 0: no process
    std::uint64_t startTime = 0;   // when it started, in the kernel's clock ticks since boot

    bool operator==(const ProcessHandle&) const = default;
};

class Processes {
public:
    virtual ~Processes() = default;

    // False at once when `process` is null. Otherwise sets it to the no-process
    // value, then to the running controller when there is one.
    virtual bool IsControllerRunning(ProcessHandle* process) = 0;
    // Asks the process to quit; 0 when asked, -1 when it does not exist or refused the request.
    virtual int QuitController(const ProcessHandle& process) = 0;
    // Ends the process without asking; 0 or -1 as QuitController.
    virtual int KillController(const ProcessHandle& process) = 0;
    // True until the process has ended (a process that ended but was not yet reaped counts as ended).
    virtual bool IsControllerStillRunning(const ProcessHandle& process) = 0;

    // Starts the application at `path` (a bundle or an executable file) without
    // arguments, detached from this process and without taking the focus;
    // false when it could not be started.
    virtual bool launchApplication(const std::string& path) = 0;
};

}  // namespace corvalis
