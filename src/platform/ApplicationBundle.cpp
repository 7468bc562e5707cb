#include "platform/ApplicationBundle.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "plist/PlistIO.h"

namespace corvalis {

namespace fs = std::filesystem;

namespace {

// Info.plist files are small; anything larger is not one.
constexpr std::uintmax_t kMaxInfoPlistBytes = 1024 * 1024;

bool isExecutableFile(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

}  // namespace

bool isApplicationBundle(const std::string& path) {
    std::error_code error;
    return fs::path(withoutTrailingSlashes(path)).extension() == ".app" && fs::is_directory(path, error);
}

std::optional<plist::Dictionary> bundleInfoDictionary(const std::string& bundlePath) {
    if (!isApplicationBundle(bundlePath)) return std::nullopt;
    return readInfoPlist(bundlePath);
}

std::optional<plist::Dictionary> readInfoPlist(const std::string& packagePath) {
    fs::path file = fs::path(packagePath) / "Contents" / "Info.plist";
    std::error_code error;
    std::uintmax_t size = fs::file_size(file, error);
    if (error || size > kMaxInfoPlistBytes) return std::nullopt;
    std::ifstream in(file, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    plist::ParseResult parsed = plist::parse(std::string_view(bytes));
    if (!parsed.ok()) return std::nullopt;
    return plist::asDictionary(parsed.value);
}

std::optional<std::string> applicationExecutable(const std::string& path) {
    if (isApplicationBundle(path)) {
        std::string name = fs::path(withoutTrailingSlashes(path)).stem().string();
        if (auto info = bundleInfoDictionary(path)) {
            const std::string* declared = (*info)["CFBundleExecutable"].string();
            // A name with a slash would lead out of Contents/MacOS.
            if (declared && !declared->empty() && declared->find('/') == std::string::npos) name = *declared;
        }
        std::string program = (fs::path(withoutTrailingSlashes(path)) / "Contents" / "MacOS" / name).string();
        if (isExecutableFile(program)) return program;
        return std::nullopt;
    }
    if (isExecutableFile(path)) return path;
    return std::nullopt;
}

std::optional<std::string> bundleIdentifier(const std::string& path) {
    auto info = bundleInfoDictionary(path);
    if (!info) return std::nullopt;
    const std::string* identifier = (*info)["CFBundleIdentifier"].string();
    if (!identifier) return std::nullopt;
    return *identifier;
}

bool isSameFile(const std::string& first, const std::string& second) {
    struct stat a {}, b {};
    return ::stat(first.c_str(), &a) == 0 && ::stat(second.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

}  // namespace corvalis
