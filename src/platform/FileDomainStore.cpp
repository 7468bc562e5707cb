#include "platform/FileDomainStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "plist/ContentKey.h"
#include "plist/PlistIO.h"

namespace corvalis {

namespace fs = std::filesystem;

namespace {

// A domain name becomes a file name: it must stay inside the folder.
bool isUsableDomainName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

std::string timestamp() {
    std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &parts);
    return text;
}

struct FileReadResult {
    bool exists = false;
    bool notOpened = false;  // refused before reading: permissions, not a regular file
    std::vector<std::uint8_t> bytes;
    std::string error;
};

FileReadResult readWholeFile(const fs::path& path) {
    FileReadResult result;
    // Non-blocking, so that a FIFO or a device is refused instead of waited on.
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) {
        if (errno != ENOENT) {
            result.exists = true;
            result.notOpened = true;
            result.error = std::strerror(errno);
        }
        return result;
    }
    result.exists = true;
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        result.notOpened = true;
        result.error = std::strerror(errno);
    } else if (!S_ISREG(info.st_mode)) {
        result.notOpened = true;
        result.error = "not a regular file";
    } else if (static_cast<std::uintmax_t>(info.st_size) > kMaxDomainFileBytes) {
        result.error = "larger than " + std::to_string(kMaxDomainFileBytes / (1024 * 1024)) + " MB";
    } else {
        result.bytes.resize(static_cast<std::size_t>(info.st_size));
        std::size_t done = 0;
        while (done < result.bytes.size()) {
            ssize_t n = ::read(fd, result.bytes.data() + done, result.bytes.size() - done);
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) {
                result.notOpened = true;
                result.error = std::strerror(errno);
            }
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        result.bytes.resize(done);  // the file may have shrunk while being read
    }
    ::close(fd);
    return result;
}

// The file a domain's path stands for: symbolic links (a dotfile manager's, say)
// are followed so that saving replaces their target and keeps the link.
fs::path followLinks(fs::path path) {
    for (int hops = 0; hops < 40; ++hops) {
        std::error_code ec;
        if (!fs::is_symlink(fs::symlink_status(path, ec))) return path;
        fs::path target = fs::read_symlink(path, ec);
        if (ec) return path;
        path = target.is_absolute() ? target : path.parent_path() / target;
    }
    return path;
}

// ".NAME." for the file NAME: the start of the names of its temporary files.
std::string temporaryPrefix(const fs::path& path) {
    std::string prefix = ".";
    prefix += path.filename().string();
    prefix += '.';
    return prefix;
}

// The domain's lock: an flock on ".NAME.lock" beside the file, held for one
// read-merge-write. The kernel releases it when its holder dies, so a writer
// killed while holding it blocks nobody; its holder removes the file when done.
class DomainLock {
public:
    explicit DomainLock(const fs::path& file) : path_(file.parent_path() / ("." + file.filename().string() + ".lock")) {
        for (;;) {
            fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
            if (fd_ < 0) {
                error_ = std::string("cannot lock: ") + std::strerror(errno);
                return;
            }
            int locked;
            while ((locked = ::flock(fd_, LOCK_EX)) != 0 && errno == EINTR) {}
            if (locked != 0) {
                error_ = std::string("cannot lock: ") + std::strerror(errno);
                ::close(fd_);
                fd_ = -1;
                return;
            }
            // Locked a file its last holder had already removed: take the one there now.
            struct stat held {}, there {};
            if (::fstat(fd_, &held) == 0 && ::stat(path_.c_str(), &there) == 0 && held.st_dev == there.st_dev &&
                held.st_ino == there.st_ino)
                return;
            ::close(fd_);
        }
    }
    ~DomainLock() {
        if (fd_ < 0) return;
        ::unlink(path_.c_str());
        ::close(fd_);
    }
    DomainLock(const DomainLock&) = delete;
    DomainLock& operator=(const DomainLock&) = delete;

    const std::string& error() const { return error_; }

private:
    fs::path path_;
    int fd_ = -1;
    std::string error_;
};

// Writes `bytes` to a temporary file beside `path`, flushes it and renames it over `path`.
std::string replaceFileAtomically(const fs::path& path, const std::vector<std::uint8_t>& bytes) {
    std::string temp = (path.parent_path() / (temporaryPrefix(path) + "XXXXXX")).string();
    int fd = ::mkostemp(temp.data(), O_CLOEXEC);
    if (fd < 0) return std::string("cannot create a temporary file: ") + std::strerror(errno);
    ::fchmod(fd, 0644);
    std::string error;
    std::size_t done = 0;
    while (error.empty() && done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0)
            error = std::string("cannot write: ") + std::strerror(errno);
        else
            done += static_cast<std::size_t>(n);
    }
    if (error.empty() && ::fdatasync(fd) != 0) error = std::string("cannot flush: ") + std::strerror(errno);
    if (::close(fd) != 0 && error.empty()) error = std::string("cannot close: ") + std::strerror(errno);
    if (error.empty() && ::rename(temp.c_str(), path.c_str()) != 0)
        error = std::string("cannot replace the file: ") + std::strerror(errno);
    if (!error.empty()) ::unlink(temp.c_str());
    return error;
}

// Temporary files left by saves killed before their rename. Called under the
// domain's lock: every writer fills its temporary file only while holding it,
// so none found then is still being written.
void removeAbandonedTemporaryFiles(const fs::path& path) {
    std::string prefix = temporaryPrefix(path);
    std::error_code ec;
    for (fs::directory_iterator it(path.parent_path(), ec), end; !ec && it != end; it.increment(ec)) {
        std::string name = it->path().filename().string();
        if (name.size() != prefix.size() + 6 || name.compare(0, prefix.size(), prefix) != 0) continue;
        std::error_code ignored;
        if (it->is_regular_file(ignored)) fs::remove(it->path(), ignored);
    }
}

std::map<std::string, std::string, std::less<>> contentKeys(const plist::Dictionary& domain) {
    std::map<std::string, std::string, std::less<>> keys;
    for (const auto& [key, value] : domain)
        if (!value.isAbsent()) keys.emplace(key, plist::contentKey(value));
    return keys;
}

// "an array", "a dictionary": the type of a value in a sentence.
std::string withArticle(plist::Type type) {
    std::string name = plist::typeName(type);
    bool vowel = !name.empty() && std::string_view("aeiou").find(name[0]) != std::string_view::npos;
    return (vowel ? "an " : "a ") + name;
}

}  // namespace

FileDomainStore::FileDomainStore(fs::path folder, Unreadable unreadable)
    : folder_(std::move(folder)), unreadable_(unreadable) {}

FileDomainStore::~FileDomainStore() {
    while (!pending_.empty()) {
        std::string name = pending_.begin()->first;
        if (!synchronize(name)) pending_.erase(name);
    }
}

fs::path FileDomainStore::defaultFolder() {
    if (const char* dir = std::getenv("CORVALIS_PREFERENCES_DIR"); dir && *dir) return dir;
    fs::path config;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg)
        config = xdg;
    else if (const char* home = std::getenv("HOME"); home && *home)
        config = fs::path(home) / ".config";
    else
        config = fs::current_path() / ".config";
    return config / "corvalis" / "Preferences";
}

fs::path FileDomainStore::pathForDomain(const std::string& name) const { return folder_ / (name + ".plist"); }

std::optional<plist::Dictionary> FileDomainStore::persistentDomainForName(const std::string& name) {
    if (!isUsableDomainName(name)) return std::nullopt;
    if (auto it = pending_.find(name); it != pending_.end()) {
        if (it->second.removeFile) return std::nullopt;
        return it->second.domain.deepCopy();
    }
    Loaded loaded = load(name, followLinks(pathForDomain(name)));
    base_[name] = loaded.domain ? contentKeys(*loaded.domain) : decltype(base_)::mapped_type{};
    return loaded.domain;
}

FileDomainStore::Loaded FileDomainStore::load(const std::string& name, const fs::path& path) {
    Loaded loaded;
    FileReadResult file = readWholeFile(path);
    if (!file.exists) return loaded;
    if (file.notOpened) {
        // Not a damaged file: leave it exactly as it is, and never write over it.
        loaded.refused = true;
        unmovable_.insert(name);
        setAside_.push_back({name, pathForDomain(name).string(), "", file.error, true});
        return loaded;
    }
    if (!file.error.empty()) {
        loaded.refused = !setAside(name, path, file.error);
        return loaded;
    }
    plist::ParseResult parsed = plist::parse(std::span<const std::uint8_t>(file.bytes));
    if (!parsed.ok()) {
        loaded.refused = !setAside(name, path, parsed.error);
        return loaded;
    }
    loaded.domain = plist::asDictionary(parsed.value);
    if (!loaded.domain)
        loaded.refused = !setAside(name, path, "it holds " + withArticle(parsed.value.type()) + ", not a dictionary");
    return loaded;
}

void FileDomainStore::removePersistentDomainForName(const std::string& name) {
    if (!isUsableDomainName(name)) return;
    Pending& pending = pending_[name];
    pending.removeFile = true;
    pending.domain = plist::Dictionary();
}

void FileDomainStore::setPersistentDomain(const plist::Dictionary& domain, const std::string& name) {
    if (!isUsableDomainName(name)) return;
    auto& base = base_[name];
    Pending& pending = pending_[name];
    // Removing and setting again is setting: what differs from the last read or write.
    pending.removeFile = false;
    auto now = contentKeys(domain);
    for (const auto& [key, content] : now) {
        auto was = base.find(key);
        if (was != base.end() && was->second == content) continue;
        pending.changed.insert(key);
        pending.removed.erase(key);
    }
    for (const auto& entry : base) {
        if (now.contains(entry.first)) continue;
        pending.removed.insert(entry.first);
        pending.changed.erase(entry.first);
    }
    base = std::move(now);
    if (pending.changed.empty() && pending.removed.empty()) {
        pending_.erase(name);  // the file already holds this process's settings
        return;
    }
    pending.domain = domain.deepCopy();
}

bool FileDomainStore::synchronize(const std::string& name) {
    auto it = pending_.find(name);
    if (it == pending_.end()) return true;
    std::string error;
    if (unmovable_.contains(name))
        error = "the file there could not be read, so it is not replaced";
    else
        error = write(name, it->second);
    if (!error.empty()) {
        lastWriteError_ = pathForDomain(name).string() + ": " + error;
        return false;
    }
    if (it->second.removeFile) base_[name].clear();
    pending_.erase(it);
    return true;
}

std::string FileDomainStore::write(const std::string& name, Pending& pending) {
    fs::path path = followLinks(pathForDomain(name));
    std::error_code ec;
    fs::create_directories(path.parent_path(), ec);
    if (ec) return "cannot create " + path.parent_path().string() + ": " + ec.message();
    DomainLock lock(path);
    if (!lock.error().empty()) return lock.error();
    removeAbandonedTemporaryFiles(path);
    if (pending.removeFile) {
        if (::unlink(path.c_str()) != 0 && errno != ENOENT) return std::string("cannot remove: ") + std::strerror(errno);
        return {};
    }
    // What other writers saved meanwhile stays; this process's changes go over it.
    Loaded current = load(name, path);
    if (current.refused) return "the file there could not be read, so it is not replaced";
    plist::Dictionary merged = current.domain ? *current.domain : pending.domain;
    if (current.domain) {
        for (const std::string& key : pending.removed) merged.remove(key);
        for (const std::string& key : pending.changed)
            if (const plist::Value* value = pending.domain.find(key)) merged.set(key, *value);
    }
    plist::WriteResult written = plist::serialize(merged, plist::Format::Binary);
    if (!written.ok()) return written.error;
    return replaceFileAtomically(path, written.bytes);
}
std::vector<SetAsideDomain> FileDomainStore::takeSetAsideDomains() { return std::exchange(setAside_, {}); }

bool FileDomainStore::setAside(const std::string& name, const fs::path& path, const std::string& reason) {
    std::string base = path.string() + ".unreadable-" + timestamp();
    std::string target = base;
    for (int n = 2; fs::exists(fs::symlink_status(target)); ++n) target = base + "-" + std::to_string(n);
    if (unreadable_ == Unreadable::LeaveInPlace || ::rename(path.c_str(), target.c_str()) != 0) {
        // The file stays where it is; saving over it must not happen silently either.
        unmovable_.insert(name);
        setAside_.push_back({name, pathForDomain(name).string(), "", reason});
        return false;
    }
    setAside_.push_back({name, pathForDomain(name).string(), target, reason});
    return true;
}

}  // namespace corvalis
