#pragma once
// Freedesktop desktop entries: the [Desktop Entry] group of a *.desktop file,
// its localized values and the desktop file id under the XDG data folders.

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvalis {

class DesktopEntry {
public:
    // The entry of a *.desktop file; none when it is not a readable desktop entry.
    static std::optional<DesktopEntry> read(const std::string& path);
    static DesktopEntry parse(std::string_view text);

    // The raw value (escapes resolved: \s \n \t \r \\); none when the key is absent.
    std::optional<std::string> value(const std::string& key) const;
    // Key[locale] for the best match of `locale` ("de_CH.UTF-8@euro" tries
    // de_CH@euro, de_CH, de@euro, de), else the plain key.
    std::optional<std::string> localizedValue(const std::string& key, std::string_view locale) const;
    // "true" or "false"; none for anything else.
    std::optional<bool> booleanValue(const std::string& key) const;
    // Type=Application.
    bool isApplication() const;

private:
    std::map<std::string, std::string, std::less<>> values_;
};

// The user's message locale: LC_ALL, else LC_MESSAGES, else LANG ("" when none is set).
std::string messagesLocale();

// The XDG data folders in precedence order: ${XDG_DATA_HOME:-~/.local/share},
// then ${XDG_DATA_DIRS:-/usr/local/share:/usr/share} (relative entries ignored).
std::vector<std::string> xdgDataFolders();

// The desktop file id of an entry: its path below the first data folder's
// applications/ that holds it, "/" turned into "-"; else its file name.
std::string desktopFileId(const std::string& path, const std::vector<std::string>& dataFolders);

// Entries larger than this are not desktop entries.
inline constexpr std::size_t kMaxDesktopEntryBytes = 1024 * 1024;

}  // namespace corvalis
