#pragma once
// Synchronous in-process dispatch: the pane's local notification centre, and
// the stand-in for the distributed centre in tests.

#include <vector>

#include "platform/NotificationCenter.h"
#include "platform/ObserverList.h"

namespace corvalis {

class InProcessNotificationCenter : public NotificationCenter {
public:
    // The pane's own centre keeps nothing; tests keep every post to read it back.
    explicit InProcessNotificationCenter(bool keepPosted = true) : keepPosted_(keepPosted) {}

    void post(const Notification& notification) override;
    Token addObserver(std::string name, std::string object, Observer observer) override;
    void removeObserver(Token token) override;

    // Every notification posted so far, oldest first (tests read what was sent).
    const std::vector<Notification>& posted() const { return posted_; }
    void clearPosted() { posted_.clear(); }

private:
    bool keepPosted_;
    ObserverList observers_;
    std::vector<Notification> posted_;
};

}  // namespace corvalis
