#include "platform/linux/LinuxProcesses.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>

#include <fcntl.h>
#include <linux/close_range.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "platform/ApplicationBundle.h"
#include "platform/linux/BusProtocol.h"

extern char** environ;

namespace corvalis {

namespace {

// Variables that would let the started program take the focus as if the user had started it.
constexpr const char* kStartupTokens[] = {"DESKTOP_STARTUP_ID=", "XDG_ACTIVATION_TOKEN="};

struct StatFields {
    char state = '?';
    std::uint64_t startTime = 0;
};

// State and start time from /proc/<pid>/stat. The command name in parentheses
// may hold spaces and parentheses itself, so fields are counted after the last ')'.
std::optional<StatFields> readStat(int pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::size_t close = text.rfind(')');
    if (close == std::string::npos || close + 2 >= text.size()) return std::nullopt;
    StatFields fields;
    fields.state = text[close + 2];
    // After ") " come state (field 3) ... starttime (field 22): 19 fields further on.
    std::size_t position = close + 2;
    for (int skip = 0; skip < 19; ++skip) {
        position = text.find(' ', position);
        if (position == std::string::npos) return std::nullopt;
        ++position;
    }
    std::from_chars(text.data() + position, text.data() + text.size(), fields.startTime);
    return fields;
}

int openPidfd(int pid) { return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)); }

void reportErrno(int fd) {
    int error = errno;
    [[maybe_unused]] ssize_t ignored = ::write(fd, &error, sizeof error);
}

}  // namespace

LinuxProcesses::LinuxProcesses(std::string controllerPath, QDBusConnection bus)
    : controllerPath_(std::move(controllerPath)), bus_(std::move(bus)) {}

std::optional<ProcessHandle> LinuxProcesses::processWithId(int pid) {
    if (pid <= 0) return std::nullopt;
    std::optional<StatFields> fields = readStat(pid);
    // A zombie has ended; only its exit status waits to be collected.
    if (!fields || fields->state == 'Z' || fields->state == 'X' || fields->state == 'x') return std::nullopt;
    return ProcessHandle{pid, fields->startTime};
}

bool LinuxProcesses::IsControllerRunning(ProcessHandle* process) {
    if (!process) return false;
    *process = ProcessHandle{};
    return findByBusName(process) || findByExecutable(process);
}

bool LinuxProcesses::findByBusName(ProcessHandle* process) {
    if (!bus_.isConnected() || !bus_.interface()) return false;
    QDBusReply<uint> pid = bus_.interface()->servicePid(QString::fromLatin1(bus::kControllerBusName));
    if (!pid.isValid()) return false;
    std::optional<ProcessHandle> found = processWithId(static_cast<int>(pid.value()));
    if (!found) return false;
    *process = *found;
    return true;
}

bool LinuxProcesses::findByExecutable(ProcessHandle* process) {
    std::optional<std::string> executable = applicationExecutable(controllerPath_);
    struct stat wanted {};
    if (!executable || ::stat(executable->c_str(), &wanted) != 0) return false;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const std::string name = entry.path().filename().string();
        int pid = 0;
        auto [end, parseError] = std::from_chars(name.data(), name.data() + name.size(), pid);
        if (parseError != std::errc() || end != name.data() + name.size() || pid == ::getpid()) continue;
        struct stat owner {}, running {};
        if (::stat(entry.path().c_str(), &owner) != 0 || owner.st_uid != ::getuid()) continue;
        if (::stat((entry.path() / "exe").c_str(), &running) != 0) continue;
        if (running.st_dev != wanted.st_dev || running.st_ino != wanted.st_ino) continue;
        if (std::optional<ProcessHandle> found = processWithId(pid)) {
            *process = *found;
            return true;
        }
    }
    return false;
}

bool LinuxProcesses::IsControllerStillRunning(const ProcessHandle& process) {
    std::optional<ProcessHandle> now = processWithId(process.pid);
    return now && (process.startTime == 0 || now->startTime == process.startTime);
}

int LinuxProcesses::signal(const ProcessHandle& process, int number) {
    // Held open, a pidfd keeps the process id from being reused while we check
    // that it is still the same process and signal it.
    int pidfd = openPidfd(process.pid);
    if (pidfd < 0 && errno != ENOSYS) return -1;
    int result = -1;
    if (IsControllerStillRunning(process))
        result = pidfd >= 0 ? static_cast<int>(::syscall(SYS_pidfd_send_signal, pidfd, number, nullptr, 0))
                            : ::kill(process.pid, number);
    if (pidfd >= 0) ::close(pidfd);
    return result == 0 ? 0 : -1;
}

int LinuxProcesses::QuitController(const ProcessHandle& process) { return signal(process, SIGTERM); }

int LinuxProcesses::KillController(const ProcessHandle& process) { return signal(process, SIGKILL); }

bool LinuxProcesses::launchApplication(const std::string& path) {
    std::optional<std::string> program = applicationExecutable(path);
    if (!program) return false;

    // Everything the children use is made before forking: after fork only
    // async-signal-safe calls are allowed in a threaded process.
    std::vector<char*> argv{program->data(), nullptr};
    std::vector<char*> envp;
    for (char** variable = environ; variable && *variable; ++variable) {
        bool token = false;
        for (const char* prefix : kStartupTokens) token = token || std::strncmp(*variable, prefix, std::strlen(prefix)) == 0;
        if (!token) envp.push_back(*variable);
    }
    envp.push_back(nullptr);
    long maxDescriptor = ::sysconf(_SC_OPEN_MAX);
    if (maxDescriptor < 0 || maxDescriptor > 65536) maxDescriptor = 65536;

    int errorPipe[2];
    if (::pipe2(errorPipe, O_CLOEXEC) != 0) return false;
    pid_t intermediate = ::fork();
    if (intermediate < 0) {
        ::close(errorPipe[0]);
        ::close(errorPipe[1]);
        return false;
    }
    if (intermediate == 0) {
        // A new session, then a second fork: the program belongs to no terminal
        // of ours and is adopted by init instead of waiting to be reaped by us.
        ::close(errorPipe[0]);
        if (::setsid() < 0) {
            reportErrno(errorPipe[1]);
            ::_exit(1);
        }
        pid_t grandchild = ::fork();
        if (grandchild < 0) {
            reportErrno(errorPipe[1]);
            ::_exit(1);
        }
        if (grandchild > 0) ::_exit(0);

        sigset_t none;
        ::sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        struct sigaction standard {};
        standard.sa_handler = SIG_DFL;
        for (int number = 1; number < NSIG; ++number) ::sigaction(number, &standard, nullptr);
        int null = ::open("/dev/null", O_RDWR);
        if (null < 0) {
            reportErrno(errorPipe[1]);
            ::_exit(127);
        }
        ::dup2(null, 0);
        ::dup2(null, 1);
        ::dup2(null, 2);
        // Every other inherited descriptor closes at exec (the error pipe too,
        // which tells the parent that exec succeeded).
        if (::syscall(SYS_close_range, 3u, ~0u, CLOSE_RANGE_CLOEXEC) != 0)
            for (int fd = 3; fd < maxDescriptor; ++fd) ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        if (::chdir("/") != 0) {
            reportErrno(errorPipe[1]);
            ::_exit(127);
        }
        ::execve(argv[0], argv.data(), envp.data());
        reportErrno(errorPipe[1]);
        ::_exit(127);
    }

    ::close(errorPipe[1]);
    int status = 0;
    while (::waitpid(intermediate, &status, 0) < 0 && errno == EINTR) {
    }
    int childError = 0;
    ssize_t n;
    while ((n = ::read(errorPipe[0], &childError, sizeof childError)) < 0 && errno == EINTR) {
    }
    ::close(errorPipe[0]);
    return n == 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace corvalis
