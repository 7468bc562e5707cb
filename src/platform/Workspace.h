#pragma once
// The workspace: which applications exist on this machine and what their
// bundles declare. Applications are ".app" folders (Contents/Info.plist) and
// freedesktop desktop entries (Type=Application).

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plist/Value.h"

namespace corvalis {

// A folder of this name is a package (shown and handled as one file): it ends in
// .app, .bundle, .framework, .plugin, .prefPane or .xpc.
bool hasPackageExtension(std::string_view name);

class Workspace {
public:
    virtual ~Workspace() = default;

    // The workspace of this machine (LinuxWorkspace), made on first use.
    static const Workspace& shared();

    // The system domain's Applications folder: $CORVALIS_APPLICATIONS_DIR, else
    // /Applications when it exists, else /usr/share/applications.
    virtual std::string systemApplicationsFolder() const = 0;

    // Every application the bundle-identifier search knows, in the order it searches.
    virtual std::vector<std::string> knownApplications() const = 0;

    // "CFBundleIdentifier" of an application bundle, or a desktop entry's desktop
    // file id ("org.example.Foo.desktop"); none for anything else.
    virtual std::optional<std::string> bundleIdentifierForApplication(const std::string& path) const = 0;

    // The first known application whose bundle identifier is `identifier`; none when there is none.
    virtual std::optional<std::string> absolutePathForAppBundleWithIdentifier(const std::string& identifier) const;

    // A bundle's Contents/Info.plist (empty for a package without one); a desktop
    // entry in the same terms (see LinuxWorkspace); none for anything else or an unreadable file.
    virtual std::optional<plist::Dictionary> infoDictionaryForBundle(const std::string& path) const = 0;
};

}  // namespace corvalis
