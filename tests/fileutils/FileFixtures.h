#pragma once
// Real files for the path tests: bundles, desktop entries and scoped environment variables.

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "support/TestSupport.h"

namespace corvalis::test {

// A ".app" folder; with `info`, its Contents/Info.plist holds those dictionary entries.
inline std::string makeBundle(const std::filesystem::path& path, const std::optional<std::string>& info) {
    std::filesystem::create_directories(path / "Contents");
    if (info) writeFile(path / "Contents" / "Info.plist", "<plist version=\"1.0\"><dict>" + *info + "</dict></plist>");
    return path.string();
}

inline std::string makeDesktopEntry(const std::filesystem::path& path, const std::string& lines) {
    std::filesystem::create_directories(path.parent_path());
    writeFile(path, "[Desktop Entry]\n" + lines);
    return path.string();
}

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

}  // namespace corvalis::test
