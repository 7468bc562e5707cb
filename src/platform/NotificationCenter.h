#pragma once
// Broadcast of named notifications with an object and an optional property-list
// user info. The same interface serves the distributed centre (to and from the
// controller, over the session bus) and the pane's in-process local centre.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "plist/Value.h"

namespace corvalis {

struct Notification {
    std::string name;
    std::string object;                         // "" for the local centre's notifications
    std::optional<plist::Dictionary> userInfo;  // none when the notification carries nothing
};

class NotificationCenter {
public:
    using Observer = std::function<void(const Notification&)>;
    using Token = std::uint64_t;

    virtual ~NotificationCenter() = default;

    // Delivered at once (the distributed posts are never coalesced or deferred).
    virtual void post(const Notification& notification) = 0;
    // An empty name or object matches every notification.
    virtual Token addObserver(std::string name, std::string object, Observer observer) = 0;
    virtual void removeObserver(Token token) = 0;
};

}  // namespace corvalis
