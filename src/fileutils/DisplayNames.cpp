#include "fileutils/DisplayNames.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cctype>

#include "fileutils/PathPredicates.h"
#include "platform/DesktopEntry.h"
#include "text/Localization.h"

namespace corvalis {

namespace {

// The root file system's label when a block device carries one; else "Computer".
std::string rootVolumeName() {
    struct stat root {};
    if (::stat("/", &root) == 0) {
        if (DIR* labels = ::opendir("/dev/disk/by-label")) {
            std::string found;
            while (dirent* entry = ::readdir(labels)) {
                std::string name = entry->d_name;
                if (name == "." || name == "..") continue;
                struct stat device {};
                if (::stat(("/dev/disk/by-label/" + name).c_str(), &device) == 0 && S_ISBLK(device.st_mode) &&
                    device.st_rdev == root.st_dev) {
                    found = name;
                    break;
                }
            }
            ::closedir(labels);
            // udev writes unsafe characters of a label as \xNN.
            std::string label;
            for (std::size_t i = 0; i < found.size(); ++i) {
                if (found.compare(i, 2, "\\x") == 0 && i + 3 < found.size() &&
                    std::isxdigit(static_cast<unsigned char>(found[i + 2])) &&
                    std::isxdigit(static_cast<unsigned char>(found[i + 3]))) {
                    label += static_cast<char>(std::stoi(found.substr(i + 2, 2), nullptr, 16));
                    i += 3;
                } else {
                    label += found[i];
                }
            }
            if (!label.empty()) return label;
        }
    }
    return LocalizedString("RootVolumeName");
}

bool isApplicationExtension(std::string_view extension) {
    return extension == "app" || extension == "applescript" || extension == "scpt" || extension == "scptd";
}

}  // namespace

std::string DisplayNameAtPath(const std::string& path) {
    std::string_view name = lastPathComponent(path);
    if (name == "/") return rootVolumeName();
    if (name.ends_with(".desktop")) {
        if (auto entry = DesktopEntry::read(path))
            if (auto localized = entry->localizedValue("Name", messagesLocale()); localized && !localized->empty())
                return *localized;
    }
    // Application bundles show without their extension, as file browsers hide it.
    if (name.size() > 4 && name.ends_with(".app") && isDirectory(path)) name.remove_suffix(4);
    return std::string(name);
}

std::string LocalizedApplicationName(const std::string& path) {
    // "X.app" ends as "X" whether or not the bundle's extension was hidden first;
    // only a name like "X.app.app" depends on it, so only then is the disk asked.
    std::string_view last = lastPathComponent(path);
    if (last.size() > 4 && last.ends_with(".app") && !isApplicationExtension(pathExtension(last.substr(0, last.size() - 4))))
        return std::string(last.substr(0, last.size() - 4));
    std::string name = DisplayNameAtPath(path);
    std::string_view extension = pathExtension(name);
    if (isApplicationExtension(extension)) name.resize(name.size() - extension.size() - 1);
    return name;
}

std::string LocalizedFolderName(const std::string& path) { return DisplayNameAtPath(path); }

}  // namespace corvalis
