#include "fileutils/CanonicalPathCache.h"

#include "fileutils/PathLimits.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

// Folders remembered at most; beyond, the cache starts again.
constexpr std::size_t kMaxFolders = 4096;

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

bool sameTime(const timespec& a, const timespec& b) { return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec; }

bool unchanged(const struct stat& before, const struct stat& now) {
    return before.st_dev == now.st_dev && before.st_ino == now.st_ino && sameTime(before.st_mtim, now.st_mtim) &&
           sameTime(before.st_ctim, now.st_ctim);
}

}  // namespace

void CanonicalPathCache::beginPass() {
    ++pass_;
    lastParent_.clear();
    last_ = nullptr;
    if (folders_.size() > kMaxFolders) folders_.clear();
}

CanonicalPathCache::Folder& CanonicalPathCache::folderFor(std::string_view parent) {
    if (last_ && parent == lastParent_) return *last_;
    std::string key(parent);
    // Map entries stay where they are while others are added, so this survives the look at the ancestors.
    Folder& folder = folders_[key];
    if (folder.pass != pass_) {
        folder.pass = pass_;
        struct stat now {};
        // Canonical when every folder on the way is a real folder, not a link: one lstat
        // each, ancestors shared by the whole pass, instead of a realpath per folder.
        bool canonical = key == "/" ? ::stat("/", &now) == 0
                                    : isPlainAbsolute(key) && folderFor(parentPath(key)).canonical &&
                                          ::lstat(key.c_str(), &now) == 0 && S_ISDIR(now.st_mode);
        if (!canonical || !folder.canonical || !unchanged(folder.seen, now)) folder.present.clear();
        folder.canonical = canonical;
        folder.seen = now;
    }
    lastParent_ = std::move(key);
    last_ = &folder;
    return folder;
}

bool CanonicalPathCache::isCanonicalAndExists(const std::string& path) {
    if (!isPathWithinLimit(path) || !isPlainAbsolute(path)) return false;
    Folder& folder = folderFor(parentPath(path));
    if (!folder.canonical) return false;
    std::string name = path.substr(path.rfind('/') + 1);
    if (folder.present.count(name)) return true;
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0 || S_ISLNK(info.st_mode)) return false;
    folder.present.insert(std::move(name));
    return true;
}

bool CanonicalPathCache::isRecordCurrent(const plist::Value& record) {
    const std::string* path = record[keys::Path].string();
    return path && record[keys::AliasData].data() && isCanonicalAndExists(*path);
}

}  // namespace corvalis
