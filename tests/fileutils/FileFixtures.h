#pragma once
// Real files for the path tests: bundles and desktop entries.

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

}  // namespace corvalis::test
