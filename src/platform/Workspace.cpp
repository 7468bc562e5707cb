#include "platform/Workspace.h"

#include "platform/LinuxWorkspace.h"

namespace corvalis {

bool hasPackageExtension(std::string_view name) {
    while (name.size() > 1 && name.back() == '/') name.remove_suffix(1);
    for (std::string_view extension : {".app", ".bundle", ".framework", ".plugin", ".prefPane", ".xpc"}) {
        // A name that is only the extension (".app") is a hidden file, not a package.
        if (name.size() > extension.size() && name.ends_with(extension) && name[name.size() - extension.size() - 1] != '/')
            return true;
    }
    return false;
}

const Workspace& Workspace::shared() {
    static const LinuxWorkspace workspace;
    return workspace;
}

std::optional<std::string> Workspace::absolutePathForAppBundleWithIdentifier(const std::string& identifier) const {
    if (identifier.empty()) return std::nullopt;
    for (const std::string& path : knownApplications())
        if (bundleIdentifierForApplication(path) == identifier) return path;
    return std::nullopt;
}

}  // namespace corvalis
