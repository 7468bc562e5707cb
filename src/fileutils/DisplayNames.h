#pragma once
// The names the user sees for files, folders and applications.

#include <string>

namespace corvalis {

// The name a file browser shows: a desktop entry's Name for the user's locale
// (LC_ALL, LC_MESSAGES, LANG), a ".app" folder's name without ".app", for "/"
// the root file system's label (else "Computer", localized), else the file name.
std::string DisplayNameAtPath(const std::string& path);
// DisplayNameAtPath without a trailing ".app", ".applescript", ".scpt" or ".scptd" (case-sensitive).
std::string LocalizedApplicationName(const std::string& path);
// DisplayNameAtPath unchanged.
std::string LocalizedFolderName(const std::string& path);

}  // namespace corvalis
