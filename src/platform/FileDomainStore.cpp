#include "platform/FileDomainStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
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
    std::vector<std::uint8_t> bytes;
    std::string error;
};

FileReadResult readWholeFile(const fs::path& path) {
    FileReadResult result;
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (errno != ENOENT) {
            result.exists = true;
            result.error = std::strerror(errno);
        }
        return result;
    }
    result.exists = true;
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        result.error = "not a regular file";
    } else if (static_cast<std::uintmax_t>(info.st_size) > kMaxDomainFileBytes) {
        result.error = "file larger than " + std::to_string(kMaxDomainFileBytes / (1024 * 1024)) + " MB";
    } else {
        result.bytes.resize(static_cast<std::size_t>(info.st_size));
        std::size_t done = 0;
        while (done < result.bytes.size()) {
            ssize_t n = ::read(fd, result.bytes.data() + done, result.bytes.size() - done);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        result.bytes.resize(done);  // the file may have shrunk while being read
    }
    ::close(fd);
    return result;
}

// ".NAME." for the file NAME: the start of the names of its temporary files.
std::string temporaryPrefix(const fs::path& path) {
    std::string prefix = ".";
    prefix += path.filename().string();
    prefix += '.';
    return prefix;
}

// Writes `bytes` to a temporary file beside `path`, flushes it and renames it over `path`.
std::string replaceFileAtomically(const fs::path& path, const std::vector<std::uint8_t>& bytes) {
    std::string temp = (path.parent_path() / (temporaryPrefix(path) + "XXXXXX")).string();
    int fd = ::mkostemp(temp.data(), O_CLOEXEC);
    if (fd < 0) return std::string("cannot create a temporary file: ") + std::strerror(errno);
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

// Saves killed between creating and renaming their temporary file leave it
// behind; clear those that are clearly abandoned (another process may be
// writing a fresh one right now).
void removeAbandonedTemporaryFiles(const fs::path& path) {
    std::string prefix = temporaryPrefix(path);
    auto cutoff = fs::file_time_type::clock::now() - std::chrono::minutes(10);
    std::error_code ec;
    for (fs::directory_iterator it(path.parent_path(), ec), end; !ec && it != end; it.increment(ec)) {
        std::string name = it->path().filename().string();
        if (name.size() != prefix.size() + 6 || name.compare(0, prefix.size(), prefix) != 0) continue;
        std::error_code ignored;
        if (it->last_write_time(ignored) < cutoff) fs::remove(it->path(), ignored);
    }
}

}  // namespace

FileDomainStore::FileDomainStore(fs::path folder) : folder_(std::move(folder)) {}

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
        if (!it->second) return std::nullopt;
        return plist::asDictionary(plist::parse(std::span<const std::uint8_t>(*it->second)).value);
    }
    fs::path path = pathForDomain(name);
    std::optional<FileStamp> before = stampOf(path);
    FileReadResult file = readWholeFile(path);
    if (!file.exists) return std::nullopt;
    if (!file.error.empty()) {
        setAside(name, path, file.error);
        return std::nullopt;
    }
    plist::ParseResult parsed = plist::parse(std::span<const std::uint8_t>(file.bytes));
    if (!parsed.ok()) {
        setAside(name, path, parsed.error);
        return std::nullopt;
    }
    auto domain = plist::asDictionary(parsed.value);
    if (!domain) {
        setAside(name, path, std::string("the file holds a ") + plist::typeName(parsed.value.type()) + ", not a dictionary");
        return std::nullopt;
    }
    // Only a file that did not change while it was read vouches for what was read.
    if (before && before == stampOf(path)) read_[name] = {plist::contentKey(*domain), *before};
    return domain;
}

std::optional<FileDomainStore::FileStamp> FileDomainStore::stampOf(const fs::path& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return std::nullopt;
    return FileStamp{info.st_dev, info.st_ino, info.st_size,
                     static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec};
}

void FileDomainStore::removePersistentDomainForName(const std::string& name) {
    if (isUsableDomainName(name)) pending_[name] = std::nullopt;
}

void FileDomainStore::setPersistentDomain(const plist::Dictionary& domain, const std::string& name) {
    if (!isUsableDomainName(name)) return;
    if (auto it = read_.find(name); it != read_.end()) {
        if (plist::hasContentKey(domain, it->second.contentKey) && stampOf(pathForDomain(name)) == it->second.stamp) {
            pending_.erase(name);  // the file already holds it
            return;
        }
        read_.erase(it);
    }
    plist::WriteResult written = plist::serialize(domain, plist::Format::Binary);
    if (!written.ok()) {
        lastWriteError_ = written.error;
        return;
    }
    pending_[name] = std::move(written.bytes);
}

bool FileDomainStore::synchronize(const std::string& name) {
    auto it = pending_.find(name);
    if (it == pending_.end()) return true;
    fs::path path = pathForDomain(name);
    std::string error;
    if (unmovable_.contains(name)) {
        error = "the unreadable file there could not be moved aside, so it is not replaced";
    } else if (it->second) {
        std::error_code ec;
        fs::create_directories(folder_, ec);
        if (ec)
            error = "cannot create " + folder_.string() + ": " + ec.message();
        else
            error = replaceFileAtomically(path, *it->second);
        // Leftovers come from saves killed in earlier processes: one look per domain is enough.
        if (swept_.insert(name).second) removeAbandonedTemporaryFiles(path);
    } else if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
        error = std::string("cannot remove: ") + std::strerror(errno);
    }
    read_.erase(name);
    if (!error.empty()) {
        lastWriteError_ = path.string() + ": " + error;
        return false;
    }
    pending_.erase(it);
    return true;
}

std::vector<SetAsideDomain> FileDomainStore::takeSetAsideDomains() { return std::exchange(setAside_, {}); }

void FileDomainStore::setAside(const std::string& name, const fs::path& path, const std::string& reason) {
    std::string base = path.string() + ".unreadable-" + timestamp();
    std::string target = base;
    for (int n = 2; fs::exists(fs::symlink_status(target)); ++n) target = base + "-" + std::to_string(n);
    if (::rename(path.c_str(), target.c_str()) != 0) {
        // The file stays where it is; saving over it must not happen silently either.
        unmovable_.insert(name);
        setAside_.push_back({name, path.string(), "", reason + " (could not be moved aside: " + std::strerror(errno) + ")"});
        return;
    }
    setAside_.push_back({name, path.string(), target, reason});
}

}  // namespace corvalis
