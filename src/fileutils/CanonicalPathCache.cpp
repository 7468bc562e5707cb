#include "fileutils/CanonicalPathCache.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <memory>

#include "fileutils/PathLimits.h"

namespace corvalis {

namespace {

// Folders kept open at once; lists of applications mostly share a few folders.
constexpr std::size_t kMaxOpenFolders = 64;

// Absolute, and without empty, "." or ".." components or a trailing slash.
bool isPlainAbsolute(std::string_view path) {
    if (path.size() < 2 || path.front() != '/' || path.back() == '/') return false;
    for (std::size_t start = 1; start <= path.size();) {
        std::size_t end = path.find('/', start);
        if (end == std::string_view::npos) end = path.size();
        std::string_view part = path.substr(start, end - start);
        if (part.empty() || part == "." || part == "..") return false;
        start = end + 1;
    }
    return true;
}

}  // namespace

CanonicalPathCache::~CanonicalPathCache() { forget(); }

void CanonicalPathCache::forget() {
    for (auto& [path, folder] : folders_)
        if (folder.fd >= 0) ::close(folder.fd);
    folders_.clear();
    lastParent_.clear();
    lastFd_ = -1;
}

int CanonicalPathCache::folderFor(std::string_view parent) {
    if (parent == lastParent_) return lastFd_;
    std::string key(parent);
    auto found = folders_.find(key);
    if (found == folders_.end()) {
        if (folders_.size() >= kMaxOpenFolders) forget();
        Folder folder;
        std::unique_ptr<char, decltype(&std::free)> real(::realpath(key.c_str(), nullptr), &std::free);
        if (real && key == real.get()) folder.fd = ::open(key.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        found = folders_.emplace(key, folder).first;
    }
    lastParent_ = key;
    lastFd_ = found->second.fd;
    return lastFd_;
}

bool CanonicalPathCache::isCanonicalAndExists(const std::string& path) {
    if (!isPathWithinLimit(path) || !isPlainAbsolute(path)) return false;
    int folder = folderFor(parentPath(path));
    if (folder < 0) return false;
    struct stat info {};
    const char* name = path.c_str() + path.rfind('/') + 1;
    return ::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) == 0 && !S_ISLNK(info.st_mode);
}

}  // namespace corvalis
