#pragma once
// Applications as folders ("Name.app" with Contents/Info.plist) or as plain
// executable files: what the controller functions need to start one and to
// recognise it.

#include <optional>
#include <string>

#include "plist/Value.h"

namespace corvalis {

// True for a folder whose name ends in ".app".
bool isApplicationBundle(const std::string& path);

// The bundle's Contents/Info.plist as a dictionary; none when missing or unreadable.
std::optional<plist::Dictionary> bundleInfoDictionary(const std::string& bundlePath);
// Any package's Contents/Info.plist as a dictionary; none when missing, too large or unreadable.
std::optional<plist::Dictionary> readInfoPlist(const std::string& packagePath);

// The program to run for `path`: Contents/MacOS/<CFBundleExecutable> of a bundle
// (the bundle's name without ".app" when the key is missing), or `path` itself
// when it is an executable file. None when there is no executable file.
std::optional<std::string> applicationExecutable(const std::string& path);

// "CFBundleIdentifier" of a bundle; none for anything else.
std::optional<std::string> bundleIdentifier(const std::string& path);

// True when both paths name the same existing file (same device and inode).
bool isSameFile(const std::string& first, const std::string& second);

}  // namespace corvalis
