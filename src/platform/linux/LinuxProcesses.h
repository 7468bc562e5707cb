#pragma once
// The controller among this user's processes: the owner of its bus name, or
// else a process running the configured controller's executable (found in
// /proc). Quitting is SIGTERM, ending is SIGKILL; applications are started in
// a session of their own with no descriptor of ours and no startup token, so
// they neither take the focus nor outlive us as our children.

#include <QDBusConnection>

#include <string>

#include "platform/Processes.h"

namespace corvalis {

class LinuxProcesses : public Processes {
public:
    // `controllerPath`: the controller bundle or executable.
    explicit LinuxProcesses(std::string controllerPath, QDBusConnection bus = QDBusConnection::sessionBus());

    bool IsControllerRunning(ProcessHandle* process) override;
    int QuitController(const ProcessHandle& process) override;
    int KillController(const ProcessHandle& process) override;
    bool IsControllerStillRunning(const ProcessHandle& process) override;
    bool launchApplication(const std::string& path) override;

    // The handle of a live process by id, with its start time; none when there is no such process.
    static std::optional<ProcessHandle> processWithId(int pid);

private:
    bool findByBusName(ProcessHandle* process);
    bool findByExecutable(ProcessHandle* process);
    int signal(const ProcessHandle& process, int number);

    std::string controllerPath_;
    QDBusConnection bus_;
};

}  // namespace corvalis
