#pragma once
// A quick answer, during one pass over many stored paths, to "would checking
// this path change it?": a path that exists and is already canonical (no link,
// no "." or ".." anywhere) is left as it is by CheckPath. Each folder is
// resolved once and kept open, so a path costs one stat relative to its folder.

#include <string>
#include <string_view>
#include <unordered_map>

namespace corvalis {

class CanonicalPathCache {
public:
    CanonicalPathCache() = default;
    ~CanonicalPathCache();
    CanonicalPathCache(const CanonicalPathCache&) = delete;
    CanonicalPathCache& operator=(const CanonicalPathCache&) = delete;

    // True when something that is not a symbolic link exists at `path`, and `path` is its canonical path.
    bool isCanonicalAndExists(const std::string& path);

private:
    struct Folder {
        int fd = -1;  // -1 when the folder is missing or not canonical
    };
    void forget();
    int folderFor(std::string_view parent);

    std::unordered_map<std::string, Folder> folders_;
    // The folder of the previous path: members of a list mostly share one.
    std::string lastParent_;
    int lastFd_ = -1;
};

}  // namespace corvalis
