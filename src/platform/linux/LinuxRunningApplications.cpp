#include "platform/linux/LinuxRunningApplications.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/Workspace.h"

namespace corvalis {

namespace {

namespace fs = std::filesystem;

std::optional<int> processId(const std::string& name) {
    int pid = 0;
    auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (error != std::errc() || end != name.data() + name.size() || pid <= 0) return std::nullopt;
    return pid;
}

// The innermost-first search would pick a helper bundle inside an application;
// the outermost ".app" is the application the user launched.
std::string enclosingBundle(const std::string& executable) {
    std::size_t at = executable.find(".app/");
    if (at == std::string::npos) return {};
    return executable.substr(0, at + 4);
}

std::string environmentValue(const std::string& environment, std::string_view key) {
    std::size_t start = 0;
    while (start < environment.size()) {
        std::size_t end = environment.find('\0', start);
        if (end == std::string::npos) end = environment.size();
        std::string_view entry(environment.data() + start, end - start);
        if (entry.size() > key.size() && entry.substr(0, key.size()) == key && entry[key.size()] == '=')
            return std::string(entry.substr(key.size() + 1));
        start = end + 1;
    }
    return {};
}

bool sameApplication(const RunningApplication& a, const RunningApplication& b) { return a.path == b.path; }

}  // namespace

LinuxRunningApplications::LinuxRunningApplications(const Workspace& workspace, std::string procRoot,
                                                   int pollIntervalMs)
    : workspace_(workspace), procRoot_(std::move(procRoot)) {
    timer_.setInterval(pollIntervalMs);
    connect(&timer_, &QTimer::timeout, this, &LinuxRunningApplications::poll);
}

RunningApplication LinuxRunningApplications::applicationOfProcess(int pid) const {
    RunningApplication application;
    std::string folder = procRoot_ + "/" + std::to_string(pid);
    std::error_code error;
    std::string executable = fs::read_symlink(folder + "/exe", error).string();
    std::string path = enclosingBundle(executable);
    if (path.empty()) {
        std::ifstream file(folder + "/environ", std::ios::binary);
        std::string environment((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        path = environmentValue(environment, "GIO_LAUNCHED_DESKTOP_FILE");
        if (path.empty()) path = environmentValue(environment, "BAMF_DESKTOP_FILE_HINT");
        if (!path.empty() && !fs::is_regular_file(path, error)) path.clear();
    }
    if (path.empty()) return application;
    application.pid = pid;
    application.path = path;
    application.bundleIdentifier = workspace_.bundleIdentifierForApplication(path).value_or("");
    if (auto info = workspace_.infoDictionaryForBundle(path)) {
        application.backgroundOnly = (*info)["LSBackgroundOnly"].toBool().value_or(false) ||
                                     (*info)["LSUIElement"].toBool().value_or(false);
    }
    return application;
}

std::vector<RunningApplication> LinuxRunningApplications::runningApplications() {
    std::vector<std::pair<int, std::string>> processes;
    std::error_code error;
    const uid_t user = getuid();
    for (fs::directory_iterator it(procRoot_, error), end; !error && it != end; it.increment(error)) {
        auto pid = processId(it->path().filename().string());
        if (!pid) continue;
        struct stat status {};
        if (::stat(it->path().c_str(), &status) != 0 || status.st_uid != user) continue;
        processes.emplace_back(*pid, it->path().string());
    }
    std::sort(processes.begin(), processes.end());
    std::vector<RunningApplication> applications;
    for (const auto& process : processes) {
        RunningApplication application = applicationOfProcess(process.first);
        if (application.path.empty()) continue;
        bool listed = std::any_of(applications.begin(), applications.end(),
                                  [&](const RunningApplication& a) { return sameApplication(a, application); });
        if (!listed) applications.push_back(std::move(application));
    }
    return applications;
}

RunningApplications::Token LinuxRunningApplications::addObserver(Observer launched, Observer terminated) {
    if (observers_.empty()) {
        known_ = runningApplications();
        timer_.start();
    }
    observers_.emplace(++last_, std::make_pair(std::move(launched), std::move(terminated)));
    return last_;
}

void LinuxRunningApplications::removeObserver(Token token) {
    observers_.erase(token);
    if (observers_.empty()) timer_.stop();
}

void LinuxRunningApplications::poll() {
    std::vector<RunningApplication> now = runningApplications();
    std::vector<RunningApplication> launched, terminated;
    for (const auto& application : now)
        if (std::none_of(known_.begin(), known_.end(), [&](const auto& a) { return sameApplication(a, application); }))
            launched.push_back(application);
    for (const auto& application : known_)
        if (std::none_of(now.begin(), now.end(), [&](const auto& a) { return sameApplication(a, application); }))
            terminated.push_back(application);
    known_ = std::move(now);
    // An observer may remove itself (or another) while being told.
    auto observers = observers_;
    for (const auto& application : launched)
        for (auto& [token, pair] : observers)
            if (observers_.count(token)) pair.first(application);
    for (const auto& application : terminated)
        for (auto& [token, pair] : observers)
            if (observers_.count(token)) pair.second(application);
}

}  // namespace corvalis
