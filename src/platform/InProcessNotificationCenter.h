#pragma once
// Synchronous in-process dispatch: the pane's local notification centre, and
// the stand-in for the distributed centre in tests.

#include <vector>

#include "platform/NotificationCenter.h"

namespace corvalis {

class InProcessNotificationCenter : public NotificationCenter {
public:
    void post(const Notification& notification) override;
    Token addObserver(std::string name, std::string object, Observer observer) override;
    void removeObserver(Token token) override;

    // Every notification posted so far, oldest first (tests read what was sent).
    const std::vector<Notification>& posted() const { return posted_; }
    void clearPosted() { posted_.clear(); }

private:
    struct Registration {
        Token token;
        std::string name;
        std::string object;
        Observer observer;
    };
    std::vector<Registration> observers_;
    std::vector<Notification> posted_;
    Token nextToken_ = 1;
};

// Whether a notification passes an observer's name and object filters ("" matches all).
bool notificationMatches(const Notification& notification, const std::string& name, const std::string& object);

}  // namespace corvalis
