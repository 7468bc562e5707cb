#pragma once
// Checking the file references kept in records ("Path" + "AliasData"): an
// existing path is made canonical and given alias data; a vanished one is found
// again through its alias data. Also probes of the Applications folders and of
// other applications' libraries.

#include <optional>
#include <string>
#include <vector>

#include "platform/DomainStore.h"
#include "platform/Workspace.h"
#include "plist/Value.h"

namespace corvalis {

// Status codes of the folder probes.
inline constexpr int kNoErr = 0;
inline constexpr int kFileNotFoundErr = -43;

// Repairs a record's "Path", "Name" (LocalizedApplicationName) and "AliasData"; true when it changed the record.
bool CheckPath(plist::Dictionary& record, const Workspace& workspace = Workspace::shared());
// As CheckPath for an Open menu item: the name is the display name, and none is
// written when "NameIsCustom" is true.
bool CheckOpenMenuItemPath(plist::Dictionary& record, const Workspace& workspace = Workspace::shared());
// As CheckPath on loose values; a failed resolution empties `aliasData` (and answers true).
bool CheckNewPath(std::string& path, std::string& name, std::optional<plist::Data>& aliasData,
                  const Workspace& workspace = Workspace::shared());

// The paths of file URLs ("file:///a%20b" gives "/a b"), in order; "" for a URL without a path.
std::vector<std::string> Filenames(const std::vector<std::string>& fileUrls);
// The path of a URL string, percent-decoded; none for text that is not a valid URL.
std::optional<std::string> PathOfUrlString(const std::string& url);

// kNoErr when the system Applications folder exists (its path copied to `outPath`), else kFileNotFoundErr.
int GetApplicationsFolderRef(std::string* outPath = nullptr, const Workspace& workspace = Workspace::shared());
// kNoErr when "/Developer/Applications/" exists (copied to `outPath`), else kFileNotFoundErr.
int GetDeveloperApplicationsFolderRef(std::string* outPath = nullptr);
// An application with the identifier "com.apple.AddressBook" is known.
bool IsAddressBookInstalled(const Workspace& workspace = Workspace::shared());
// The first "iPhotoRecentDatabases" entry of the "com.apple.iApps" domain names an existing file.
bool IsIPhotoLibraryAvailable(DomainStore& store);
// The first "ApertureLibraries" entry of the "com.apple.iApps" domain names an existing file.
bool IsApertureLibraryAvailable(DomainStore& store);

// The icon service's error code: 0 the path exists outside the Trash, 1 nothing
// exists there, 2 it exists in the Trash.
int iconErrorForPath(const std::string& path);

}  // namespace corvalis
