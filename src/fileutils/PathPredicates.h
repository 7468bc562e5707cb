#pragma once
// What a path a user picked is: an application, a script, a folder, a package,
// an alias file (symbolic links here), something in a Trash; the standardized
// form of a path and the checks made on names typed for it. Nothing keeps
// state or reports errors: a failed look at the disk answers false.

#include <string>
#include <string_view>

#include "platform/Workspace.h"

namespace corvalis {

// The standardized path is an alias file; symbolic links are the alias files here.
bool MyIsAliasFile(const std::string& path);
// The path itself (not what it points to) is a symbolic link.
bool IsSymbolicLink(const std::string& path);
// A ".app" folder with Contents/Info.plist, or a desktop entry of Type=Application (links followed).
bool IsApplication(const std::string& path);
// The extension is "applescript", "scpt" or "scptd", in any case; the file need not exist.
bool IsScript(const std::string& path);
// A folder (links followed) that is not a package.
bool IsFolder(const std::string& path);
// A folder (links followed) whose name ends in .app, .bundle, .framework, .plugin, .prefPane or .xpc.
bool IsPackage(const std::string& path);
// Something exists at the path and it is not in a Trash.
bool IsValid(const std::string& path);
// The path contains ".Trash" or lies in ${XDG_DATA_HOME:-~/.local/share}/Trash.
bool IsInTrash(const std::string& path);
// Empty, or only "-" characters.
bool IsSeparator(std::string_view text);

// Not empty and holds a character other than white space (space, tab, other
// space separators; line breaks count as content).
bool isValid(std::string_view text);
// Each line feed and carriage return replaced by a space.
std::string noNewlineString(std::string_view text);

// Foundation's standardized form: "~" expanded, "." and empty components and a
// trailing "/" removed, ".." folded in absolute paths.
std::string StandardizedPath(std::string_view path);

// A folder, links followed (packages too).
bool isDirectory(const std::string& path);
// The last component ("/" for the root), trailing slashes ignored.
std::string_view lastPathComponent(std::string_view path);
// The last component's extension as Foundation's pathExtension answers it ("" for ".scpt").
std::string_view pathExtension(std::string_view path);

// Reads LSUIElement (else NSUIElement) and LSBackgroundOnly of the application's
// info dictionary into the outputs (either may be null). False without a bundle
// path or dictionary; for an empty dictionary true only before 10.10.
bool CopyApplicationInfoDictionaryPresentationOptions(const std::string& bundlePath, bool* outIsUIElement,
                                                      bool* outIsBackgroundOnly,
                                                      const Workspace& workspace = Workspace::shared());

}  // namespace corvalis
