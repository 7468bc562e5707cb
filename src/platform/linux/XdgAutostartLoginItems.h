#pragma once
// Login items as XDG autostart entries: one desktop entry per item in
// ${XDG_CONFIG_HOME:-~/.config}/autostart. An item's application is the
// program its Exec= line starts (the enclosing bundle when that program is
// Name.app/Contents/MacOS/*), its name the entry's Name=. Entries are written
// whole through a temporary file and a rename; entries this object did not
// match are never changed.

#include <filesystem>

#include "platform/LoginItems.h"

namespace corvalis {

class XdgAutostartLoginItems : public LoginItems {
public:
    explicit XdgAutostartLoginItems(std::filesystem::path folder = defaultFolder());

    static std::filesystem::path defaultFolder();
    const std::filesystem::path& folder() const { return folder_; }

    // Entries in file-name order; ids are file names. Entries the user turned
    // off (Hidden=true) and entries that are not applications are not items.
    std::optional<std::vector<LoginItem>> snapshot() override;
    bool insertLast(const std::string& path, bool hidden) override;
    bool remove(const LoginItem& item) override;

    // The path of the entry file written by the last successful insertLast.
    const std::filesystem::path& lastWrittenEntry() const { return lastWritten_; }

private:
    std::filesystem::path folder_;
    std::filesystem::path lastWritten_;
};

// Desktop entry text helpers (exposed for tests).
namespace desktop_entry {

// A value as the file holds it: \\ \n \t \r escaped, a leading space as \s.
std::string escapeValue(const std::string& value);
// The Exec= value that runs `program` with no arguments; none for a program
// name no entry can carry (control characters).
std::optional<std::string> execLine(const std::string& program);
// The program of an (unescaped) Exec= value: its first argument, unquoted.
std::optional<std::string> programOfExec(const std::string& exec);

}  // namespace desktop_entry

}  // namespace corvalis
