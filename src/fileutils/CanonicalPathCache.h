#pragma once
// A quick answer, over passes on many stored paths, to "would checking this
// path change it?": a path that exists and is already canonical (no link, no
// "." or ".." anywhere) is left as it is by CheckPath. Each folder, and each of
// its ancestors, is looked at once a pass; the names found in a folder are
// trusted while the folder itself has not changed since (any entry created,
// removed or renamed in it changes its times).

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "plist/Value.h"

namespace corvalis {

class CanonicalPathCache {
public:
    // A new pass over the paths: each folder is looked at again, once.
    void beginPass();
    // True when something that is not a symbolic link exists at `path`, and `path` is its canonical path.
    bool isCanonicalAndExists(const std::string& path);
    // True when checking the record's path would leave it as it is: it has alias
    // data, and its "Path" names an existing file canonically.
    bool isRecordCurrent(const plist::Value& record);

private:
    struct Folder {
        std::uint64_t pass = 0;
        bool canonical = false;
        struct stat seen {};
        std::unordered_set<std::string> present;
    };
    Folder& folderFor(std::string_view parent);

    std::unordered_map<std::string, Folder> folders_;
    std::uint64_t pass_ = 1;
    // The folder of the previous path: members of a list mostly share one.
    std::string lastParent_;
    Folder* last_ = nullptr;
};

}  // namespace corvalis
