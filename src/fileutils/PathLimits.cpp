#include "fileutils/PathLimits.h"

#include <sys/stat.h>

#include <string>

namespace corvalis {

bool isPathWithinLimit(std::string_view path) {
    return !path.empty() && path.size() < kMaxPathBytes && path.find('\0') == std::string_view::npos;
}

bool fileExistsAtPath(std::string_view path) {
    if (!isPathWithinLimit(path)) return false;
    struct stat info {};
    return ::stat(std::string(path).c_str(), &info) == 0;
}

std::string_view parentPath(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    auto slash = path.rfind('/');
    if (slash == std::string_view::npos) return {};
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

}  // namespace corvalis
