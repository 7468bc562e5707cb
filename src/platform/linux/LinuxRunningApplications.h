#pragma once
// Running applications read from /proc: a process belongs to an application when
// its executable lies inside a ".app" bundle, or when it was launched from a
// desktop entry (GIO_LAUNCHED_DESKTOP_FILE or BAMF_DESKTOP_FILE_HINT in its
// environment). Launches and quits are found by polling while observed.

#include <QObject>
#include <QTimer>
#include <map>
#include <string>

#include "platform/RunningApplications.h"

namespace corvalis {

class Workspace;

class LinuxRunningApplications : public QObject, public RunningApplications {
    Q_OBJECT

public:
    // `procRoot` is /proc except in tests; only processes of this user are considered.
    explicit LinuxRunningApplications(const Workspace& workspace, std::string procRoot = "/proc",
                                      int pollIntervalMs = 2000);

    std::vector<RunningApplication> runningApplications() override;
    Token addObserver(Observer launched, Observer terminated) override;
    void removeObserver(Token token) override;

    // The application a process belongs to, if any (path empty otherwise).
    RunningApplication applicationOfProcess(int pid) const;

private slots:
    void poll();

private:
    const Workspace& workspace_;
    std::string procRoot_;
    QTimer timer_;
    Token last_ = 0;
    std::map<Token, std::pair<Observer, Observer>> observers_;
    std::vector<RunningApplication> known_;
};

}  // namespace corvalis
