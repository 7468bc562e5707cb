#include "platform/linux/XdgAutostartLoginItems.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "fileutils/DisplayNames.h"
#include "platform/ApplicationBundle.h"
#include "platform/DesktopEntry.h"

namespace corvalis {

namespace fs = std::filesystem;

namespace desktop_entry {

std::string escapeValue(const std::string& value) {
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        char c = value[i];
        if (c == '\\') out += "\\\\";
        else if (c == '\n') out += "\\n";
        else if (c == '\t') out += "\\t";
        else if (c == '\r') out += "\\r";
        else if (c == ' ' && i == 0) out += "\\s";  // readers strip the space after '='
        else out += c;
    }
    return out;
}

std::optional<std::string> execLine(const std::string& program) {
    std::string out = "\"";
    for (char c : program) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) return std::nullopt;
        if (c == '"' || c == '`' || c == '$' || c == '\\') out += '\\';
        if (c == '%') out += '%';  // %% is a literal percent sign, not a field code
        out += c;
    }
    return out + "\"";
}

std::optional<std::string> programOfExec(const std::string& exec) {
    std::size_t i = exec.find_first_not_of(' ');
    if (i == std::string::npos) return std::nullopt;
    std::string word;
    if (exec[i] == '"') {
        bool closed = false;
        for (++i; i < exec.size(); ++i) {
            if (exec[i] == '\\' && i + 1 < exec.size()) {
                word += exec[++i];
            } else if (exec[i] == '"') {
                closed = true;
                break;
            } else {
                word += exec[i];
            }
        }
        if (!closed) return std::nullopt;
    } else {
        word = exec.substr(i, exec.find(' ', i) - i);
    }
    std::string program;
    for (std::size_t j = 0; j < word.size(); ++j) {
        program += word[j];
        if (word[j] == '%' && j + 1 < word.size() && word[j + 1] == '%') ++j;
    }
    if (program.empty()) return std::nullopt;
    return program;
}

}  // namespace desktop_entry

namespace {

constexpr int kMaxNameCandidates = 1000;

struct EntryKeys {
    std::string type, name, exec, hidden;
};

// The keys of the [Desktop Entry] group that tell what an entry starts; the first occurrence counts.
std::optional<EntryKeys> readEntry(const fs::path& file) {
    std::optional<DesktopEntry> entry = DesktopEntry::read(file.string());
    if (!entry) return std::nullopt;
    auto value = [&](const char* key) { return entry->value(key).value_or(""); };
    return EntryKeys{value("Type"), value("Name"), value("Exec"), value("Hidden")};
}

// A program named without a folder is looked up in $PATH, as the session does.
std::optional<std::string> findInPath(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::stringstream folders(path ? path : "/usr/local/bin:/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (folder.empty()) continue;
        std::string candidate = folder + "/" + program;
        if (::access(candidate.c_str(), X_OK) == 0) return candidate;
    }
    return std::nullopt;
}

// Name.app/Contents/MacOS/program stands for Name.app.
std::string applicationOfProgram(const std::string& program) {
    fs::path macos = fs::path(program).parent_path();
    fs::path contents = macos.parent_path();
    fs::path bundle = contents.parent_path();
    if (macos.filename() == "MacOS" && contents.filename() == "Contents" && bundle.extension() == ".app")
        return bundle.string();
    return program;
}

std::string fileNameWord(const std::string& name) {
    std::string word;
    for (char c : name) word += std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' ? c : '_';
    return word.empty() ? "Application" : word;
}

bool writeAll(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

XdgAutostartLoginItems::XdgAutostartLoginItems(fs::path folder) : folder_(std::move(folder)) {}

fs::path XdgAutostartLoginItems::defaultFolder() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && config[0] == '/') return fs::path(config) / "autostart";
    const char* home = std::getenv("HOME");
    if (!home || !*home) {
        const passwd* user = ::getpwuid(::getuid());
        home = user ? user->pw_dir : "/";
    }
    return fs::path(home) / ".config" / "autostart";
}

std::optional<std::vector<LoginItem>> XdgAutostartLoginItems::snapshot() {
    std::error_code error;
    if (!fs::exists(folder_, error)) {
        if (error) return std::nullopt;
        return std::vector<LoginItem>{};  // nobody has added an item yet
    }
    fs::directory_iterator it(folder_, error);
    if (error) return std::nullopt;
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : it) {
        std::string name = entry.path().filename().string();
        if (name.size() > 8 && name.ends_with(".desktop") && name[0] != '.' && entry.is_regular_file(error))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());

    std::vector<LoginItem> items;
    for (const std::string& name : names) {
        std::optional<EntryKeys> keys = readEntry(folder_ / name);
        if (!keys || keys->hidden == "true" || (!keys->type.empty() && keys->type != "Application")) continue;
        LoginItem item{name, keys->name, "", false};
        if (std::optional<std::string> program = desktop_entry::programOfExec(keys->exec)) {
            if (program->find('/') == std::string::npos) program = findInPath(*program).value_or(*program);
            item.path = applicationOfProgram(*program);
            item.resolves = item.path.starts_with('/') && fs::exists(item.path, error);
        }
        items.push_back(std::move(item));
    }
    return items;
}

bool XdgAutostartLoginItems::insertLast(const std::string& path, bool hidden) {
    std::error_code error;
    std::string application = fs::absolute(path, error).lexically_normal().string();
    if (error) return false;
    while (application.size() > 1 && application.back() == '/') application.pop_back();
    std::optional<std::string> program = applicationExecutable(application);
    if (!program) return false;
    std::optional<std::string> exec = desktop_entry::execLine(*program);
    if (!exec) return false;
    std::string name = LocalizedApplicationName(application);

    std::string text = "[Desktop Entry]\nType=Application\nName=" + desktop_entry::escapeValue(name) +
                       "\nExec=" + desktop_entry::escapeValue(*exec) + "\n";
    if (hidden) text += "X-Corvalis-LaunchHidden=true\n";

    fs::create_directories(folder_, error);
    if (error) return false;
    // Written beside its final place under a name no session reads, then linked
    // in under a free name: readers see no entry or a whole one, and no other
    // program's entry is ever replaced.
    std::string temporary = (folder_ / ".corvalis-entry-XXXXXX").string();
    int fd = ::mkstemp(temporary.data());
    if (fd < 0) return false;
    bool written = writeAll(fd, text) && ::fchmod(fd, 0644) == 0 && ::fsync(fd) == 0;
    written = ::close(fd) == 0 && written;
    bool linked = false;
    if (written) {
        std::string base = "com.kestrova.Corvalis." + fileNameWord(name);
        for (int n = 1; n <= kMaxNameCandidates && !linked; ++n) {
            fs::path entry = folder_ / (base + (n == 1 ? "" : "-" + std::to_string(n)) + ".desktop");
            if (::link(temporary.c_str(), entry.c_str()) == 0) {
                linked = true;
                lastWritten_ = entry;
            } else if (errno != EEXIST) {
                break;
            }
        }
    }
    ::unlink(temporary.c_str());
    if (linked) {
        int folderFd = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folderFd >= 0) {
            ::fsync(folderFd);
            ::close(folderFd);
        }
    }
    return linked;
}

bool XdgAutostartLoginItems::remove(const LoginItem& item) {
    if (item.id.empty() || item.id.find('/') != std::string::npos || item.id[0] == '.') return false;
    return ::unlink((folder_ / item.id).c_str()) == 0;
}

}  // namespace corvalis
