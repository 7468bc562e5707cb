#include "platform/DesktopEntry.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace corvalis {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) text.remove_suffix(1);
    return text;
}

std::string unescaped(std::string_view raw) {
    std::string text;
    text.reserve(raw.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] != '\\' || i + 1 == raw.size()) {
            text += raw[i];
            continue;
        }
        switch (raw[++i]) {
            case 's': text += ' '; break;
            case 'n': text += '\n'; break;
            case 't': text += '\t'; break;
            case 'r': text += '\r'; break;
            case '\\': text += '\\'; break;
            default: text += '\\'; text += raw[i]; break;  // list separators (\;) stay for the caller
        }
    }
    return text;
}

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    if (const passwd* entry = ::getpwuid(::getuid()); entry && entry->pw_dir) return entry->pw_dir;
    return "/";
}

}  // namespace

std::optional<DesktopEntry> DesktopEntry::read(const std::string& path) {
    if (path.size() < 8 || path.compare(path.size() - 8, 8, ".desktop") != 0) return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    // Read in small steps: entries are a few hundred bytes, and a huge file is not one.
    std::string text;
    char chunk[4096];
    while (in.read(chunk, sizeof chunk) || in.gcount() > 0) {
        text.append(chunk, static_cast<std::size_t>(in.gcount()));
        if (text.size() > kMaxDesktopEntryBytes) return std::nullopt;
    }
    DesktopEntry entry = parse(text);
    if (entry.values_.empty()) return std::nullopt;
    return entry;
}

DesktopEntry DesktopEntry::parse(std::string_view text) {
    DesktopEntry entry;
    bool inEntryGroup = false;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::string_view line = trimmed(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '[') {
            inEntryGroup = line == "[Desktop Entry]";
            continue;
        }
        std::size_t equals = line.find('=');
        if (!inEntryGroup || equals == std::string_view::npos) continue;
        std::string key(trimmed(line.substr(0, equals)));
        // The first occurrence wins; later duplicates are invalid in a desktop entry.
        entry.values_.try_emplace(std::move(key), std::string(trimmed(line.substr(equals + 1))));
    }
    return entry;
}

std::optional<std::string> DesktopEntry::value(const std::string& key) const {
    auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return unescaped(found->second);
}

std::optional<std::string> DesktopEntry::localizedValue(const std::string& key, std::string_view locale) const {
    // lang_COUNTRY.ENCODING@MODIFIER: the encoding never takes part in the match.
    std::string_view modifier;
    if (auto at = locale.find('@'); at != std::string_view::npos) {
        modifier = locale.substr(at + 1);
        locale = locale.substr(0, at);
    }
    if (auto dot = locale.find('.'); dot != std::string_view::npos) locale = locale.substr(0, dot);
    std::string_view language = locale.substr(0, locale.find('_'));
    std::string_view country = language.size() < locale.size() ? locale.substr(language.size() + 1) : "";

    std::vector<std::string> candidates;
    if (!language.empty() && language != "C" && language != "POSIX") {
        std::string full = std::string(language) + (country.empty() ? "" : "_" + std::string(country));
        if (!modifier.empty()) candidates.push_back(full + "@" + std::string(modifier));
        if (!country.empty()) candidates.push_back(full);
        if (!modifier.empty()) candidates.push_back(std::string(language) + "@" + std::string(modifier));
        candidates.emplace_back(language);
    }
    for (const std::string& candidate : candidates)
        if (auto found = value(key + "[" + candidate + "]")) return found;
    return value(key);
}

std::optional<bool> DesktopEntry::booleanValue(const std::string& key) const {
    auto text = value(key);
    if (text == "true") return true;
    if (text == "false") return false;
    return std::nullopt;
}

bool DesktopEntry::isApplication() const { return value("Type") == "Application"; }

std::string messagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(name); value && *value) return value;
    return "";
}

std::vector<std::string> xdgDataFolders() {
    std::vector<std::string> folders;
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    folders.push_back(dataHome && dataHome[0] == '/' ? std::string(dataHome) : homeFolder() + "/.local/share");
    const char* dataDirs = std::getenv("XDG_DATA_DIRS");
    std::string_view dirs = dataDirs && *dataDirs ? dataDirs : "/usr/local/share:/usr/share";
    while (!dirs.empty()) {
        std::size_t colon = dirs.find(':');
        std::string_view dir = dirs.substr(0, colon);
        dirs = colon == std::string_view::npos ? std::string_view() : dirs.substr(colon + 1);
        if (!dir.empty() && dir.front() == '/') folders.emplace_back(dir);
    }
    for (std::string& folder : folders)
        while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    return folders;
}

std::string desktopFileId(const std::string& path, const std::vector<std::string>& dataFolders) {
    for (const std::string& folder : dataFolders) {
        std::string prefix = folder + "/applications/";
        if (path.size() <= prefix.size() || path.compare(0, prefix.size(), prefix) != 0) continue;
        std::string id = path.substr(prefix.size());
        for (char& c : id)
            if (c == '/') c = '-';
        return id;
    }
    std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace corvalis
