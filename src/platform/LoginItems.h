#pragma once
// The programs the desktop session starts when the user logs in.

#include <optional>
#include <string>
#include <vector>

namespace corvalis {

struct LoginItem {
    std::string id;     // which item of the list (stable while the item exists)
    std::string name;   // the name the user sees
    std::string path;   // the application it starts (a bundle or a program)
    bool resolves = false;  // whether `path` names something that exists now
};

class LoginItems {
public:
    virtual ~LoginItems() = default;

    // The items in list order; none when the list cannot be read.
    virtual std::optional<std::vector<LoginItem>> snapshot() = 0;
    // Adds the application at `path` at the end; `hidden` asks the session to
    // start it hidden. False when nothing was added.
    virtual bool insertLast(const std::string& path, bool hidden) = 0;
    // Removes one item of an earlier snapshot; false when it could not be removed.
    virtual bool remove(const LoginItem& item) = 0;
};

// True when an item for `path` was added.
bool AddURLToLoginItems(LoginItems& items, const std::string& path, bool hidden);

// Removes every item that resolves to `first` or `second`, and every item that
// does not resolve and is called exactly `name`.
void RemoveAllLoginItemsWithURLsOrName(LoginItems& items, const std::string& first, const std::string& second,
                                       const std::string& name);

// Whether two application paths name the same thing: equal once normalised
// (a folder's trailing slash does not count), or the same existing file.
bool isSameApplicationPath(const std::string& first, const std::string& second);

}  // namespace corvalis
