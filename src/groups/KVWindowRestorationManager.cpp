#include "groups/KVWindowRestorationManager.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <system_error>

#include "fileutils/DisplayNames.h"
#include "fileutils/PathPredicates.h"
#include "platform/FileDomainStore.h"
#include "platform/Workspace.h"
#include "plist/PlistIO.h"

namespace corvalis {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDesktopSuffix = ".desktop";

bool isDirectory(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

// Identifier → application, built once per scan: looking each domain up among all
// known applications would read every bundle once per domain.
std::map<std::string, std::string> applicationsByIdentifier(const Workspace& workspace) {
    std::map<std::string, std::string> found;
    for (const std::string& path : workspace.knownApplications())
        if (std::optional<std::string> identifier = workspace.bundleIdentifierForApplication(path))
            found.emplace(*identifier, path);
    return found;
}

}  // namespace

WindowRestorationFolders WindowRestorationFolders::system() {
    if (const char* containers = std::getenv("CORVALIS_CONTAINERS_DIR"); containers && *containers)
        return {FileDomainStore::defaultFolder(), containers};
    const char* home = std::getenv("HOME");
    return {FileDomainStore::defaultFolder(), fs::path(home && *home ? home : ".") / ".var" / "app"};
}

std::optional<bool> readWindowPersistence(const fs::path& file) {
    std::error_code error;
    std::uintmax_t size = fs::file_size(file, error);
    if (error || size > kMaxDomainFileBytes) return std::nullopt;
    std::ifstream in(file, std::ios::binary);
    if (!in) return std::nullopt;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    if (size > 0 && !in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size)))
        return std::nullopt;
    plist::ParseResult parsed = plist::parse(std::span<const std::uint8_t>(bytes));
    if (!parsed.ok()) return std::nullopt;
    const plist::Value& value = parsed.value[kWindowPersistenceKey];
    return value.isNumber() ? value.toBool() : std::nullopt;
}

KVWindowRestorationManager::KVWindowRestorationManager(const Workspace& workspace, RunningApplications& running,
                                                       WindowRestorationFolders folders)
    : _workspace(workspace), _running(running), _folders(std::move(folders)) {}

fs::path KVWindowRestorationManager::containerPreferences(const std::string& bundleIdentifier) const {
    return _folders.containers / bundleIdentifier / "config" / "corvalis" / "Preferences";
}

fs::path KVWindowRestorationManager::domainFile(const std::string& bundleIdentifier, bool sandboxed) const {
    return (sandboxed ? containerPreferences(bundleIdentifier) : _folders.preferences) / (bundleIdentifier + ".plist");
}

bool KVWindowRestorationManager::isDomainSandboxedWithoutSymbolicLink(const std::string& bundleIdentifier) const {
    if (!isDirectory(_folders.containers / bundleIdentifier)) return false;
    std::error_code error;
    return !fs::is_symlink(domainFile(bundleIdentifier, true), error);
}

std::vector<RunningApplication> KVWindowRestorationManager::runningWithIdentifier(
    const std::vector<RunningApplication>& all, const std::string& bundleIdentifier) const {
    std::vector<RunningApplication> result;
    for (const RunningApplication& application : all)
        if (application.bundleIdentifier == bundleIdentifier) result.push_back(application);
    return result;
}

void KVWindowRestorationManager::reloadApplications() {
    // The domains of the preferences folder, then each container's name moved to the end, once.
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(_folders.preferences, error), end; !error && it != end; it.increment(error))
        if (it->path().extension() == ".plist") names.push_back(it->path().stem().string());
    std::vector<std::string> containers;
    if (isDirectory(_folders.containers))
        for (fs::directory_iterator it(_folders.containers, error), end; !error && it != end; it.increment(error)) {
            std::string name = it->path().filename().string();
            if (!name.starts_with('.') && it->is_directory(error)) containers.push_back(name);
        }
    std::erase_if(names, [&containers](const std::string& name) {
        return std::find(containers.begin(), containers.end(), name) != containers.end();
    });
    names.insert(names.end(), containers.begin(), containers.end());

    std::vector<ApplicationDescription> found;
    std::map<std::string, std::string> applications;
    bool applicationsListed = false;
    std::vector<RunningApplication> running;
    for (const std::string& name : names) {
        bool sandboxed = isDomainSandboxedWithoutSymbolicLink(name);
        std::optional<bool> keeps = readWindowPersistence(domainFile(name, sandboxed));
        if (!keeps) continue;
        if (!applicationsListed) {
            applications = applicationsByIdentifier(_workspace);
            running = _running.runningApplications();
            applicationsListed = true;
        }
        auto application = applications.find(name);
        if (application == applications.end()) application = applications.find(name + kDesktopSuffix);
        if (application == applications.end()) {
            // Deleted or moved while listed: the row stays, at its old path, until the user removes it.
            auto listed = std::find_if(_applications.begin(), _applications.end(), [&name](const ApplicationDescription& a) {
                return a.bundleIdentifier == name;
            });
            if (listed != _applications.end() && !IsValid(listed->applicationPath))
                found.push_back({name, *keeps, sandboxed, listed->applicationPath, listed->applicationName,
                                 runningWithIdentifier(running, name), true});
            continue;
        }
        found.push_back({name, *keeps, sandboxed, application->second, LocalizedApplicationName(application->second),
                         runningWithIdentifier(running, name), true});
    }
    _applications = std::move(found);
}

bool KVWindowRestorationManager::isRunningApplicationAtURL(const std::string& path) const {
    std::optional<std::string> identifier = _workspace.bundleIdentifierForApplication(path);
    return identifier && !runningWithIdentifier(_running.runningApplications(), *identifier).empty();
}

std::optional<ApplicationDescription> KVWindowRestorationManager::createApplicationDescriptionWithURL(
    const std::string& path) const {
    std::optional<std::string> identifier = _workspace.bundleIdentifierForApplication(path);
    if (!identifier || identifier->empty()) return std::nullopt;
    return ApplicationDescription{*identifier,
                                  false,
                                  isDomainSandboxedWithoutSymbolicLink(*identifier),
                                  path,
                                  LocalizedApplicationName(path),
                                  runningWithIdentifier(_running.runningApplications(), *identifier),
                                  true};
}

bool KVWindowRestorationManager::setWindowPersistencyPolicy(int policy, const std::string& bundleIdentifier,
                                                            bool sandboxed) {
    return write(bundleIdentifier, sandboxed, policy != 0);
}

bool KVWindowRestorationManager::clearWindowPersistencyPolicy(const std::string& bundleIdentifier, bool sandboxed) {
    return write(bundleIdentifier, sandboxed, std::nullopt);
}

// Through the store's locked read-merge-write: only this key changes, a link stays a
// link, and a file that cannot be parsed is left exactly as it is.
bool KVWindowRestorationManager::write(const std::string& bundleIdentifier, bool sandboxed, std::optional<bool> value) {
    if (bundleIdentifier.empty()) return false;
    FileDomainStore store(domainFile(bundleIdentifier, sandboxed).parent_path(), FileDomainStore::Unreadable::LeaveInPlace);
    std::optional<plist::Dictionary> domain = store.persistentDomainForName(bundleIdentifier);
    if (!store.takeSetAsideDomains().empty()) return false;
    if (!domain) {
        if (!value) return true;
        domain = plist::Dictionary();
    }
    if (value) domain->set(kWindowPersistenceKey, *value);
    else if (!domain->remove(kWindowPersistenceKey)) return true;
    store.setPersistentDomain(*domain, bundleIdentifier);
    return store.synchronize(bundleIdentifier);
}

}  // namespace corvalis
