#pragma once
// Helpers shared by the test programs: temporary folders, whole-file I/O,
// scoped environment variables and running commands through the shell.

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace corvalis::test {

// A fresh folder under the system's temporary folder, removed with its contents.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& contents);

// Sets (or with none, unsets) an environment variable for the life of the object.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const std::optional<std::string>& value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        set(name, value);
    }
    ~ScopedEnv() { set(name_, old_); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    static void set(const char* name, const std::optional<std::string>& value) {
        value ? ::setenv(name, value->c_str(), 1) : ::unsetenv(name);
    }
    const char* name_;
    std::optional<std::string> old_;
};

std::string shellQuoted(const std::string& text);

struct CommandRun {
    int status = -1;     // the exit status, -1 when it did not exit normally
    std::string output;  // standard output and error together
};
CommandRun runCommand(const std::string& command);

}  // namespace corvalis::test
