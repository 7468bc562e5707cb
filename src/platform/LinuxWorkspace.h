#pragma once
// The workspace of a Linux machine. Known applications: ".app" bundles in the
// system Applications folder and one level of subfolders below it, then the
// desktop entries of the XDG data folders' applications/ (the first entry of a
// desktop file id wins, entries with Hidden=true are left out).
//
// A desktop entry's info dictionary speaks the bundle terms: CFBundleIdentifier
// (the desktop file id), CFBundleName (Name), LSUIElement (NoDisplay: the entry
// has no menu or launcher presence of its own), and LSBackgroundOnly from the
// key X-Corvalis-BackgroundOnly ("true"/"false"), which an application sets in
// its entry when it has no windows at all. Keys with values other than
// "true"/"false" are left out.

#include "platform/Workspace.h"

namespace corvalis {

class LinuxWorkspace : public Workspace {
public:
    std::string systemApplicationsFolder() const override;
    std::vector<std::string> knownApplications() const override;
    std::optional<std::string> bundleIdentifierForApplication(const std::string& path) const override;
    std::optional<plist::Dictionary> infoDictionaryForBundle(const std::string& path) const override;
};

// The key by which a desktop entry says its application is background-only.
inline constexpr const char* kDesktopBackgroundOnlyKey = "X-Corvalis-BackgroundOnly";

// Folder walks for known applications stop after this many entries in all.
inline constexpr std::size_t kMaxApplicationScanEntries = 20000;

}  // namespace corvalis
