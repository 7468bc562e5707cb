#include "platform/InProcessNotificationCenter.h"

#include <algorithm>

namespace corvalis {

bool notificationMatches(const Notification& notification, const std::string& name, const std::string& object) {
    return (name.empty() || name == notification.name) && (object.empty() || object == notification.object);
}

void InProcessNotificationCenter::post(const Notification& notification) {
    posted_.push_back(notification);
    // Observers may add or remove observers while being called: walk a snapshot,
    // and skip any registration removed meanwhile.
    std::vector<Token> tokens;
    for (const Registration& r : observers_)
        if (notificationMatches(notification, r.name, r.object)) tokens.push_back(r.token);
    for (Token token : tokens) {
        auto it = std::find_if(observers_.begin(), observers_.end(), [&](const Registration& r) { return r.token == token; });
        if (it == observers_.end()) continue;
        Observer observer = it->observer;
        observer(notification);
    }
}

NotificationCenter::Token InProcessNotificationCenter::addObserver(std::string name, std::string object, Observer observer) {
    Token token = nextToken_++;
    observers_.push_back({token, std::move(name), std::move(object), std::move(observer)});
    return token;
}

void InProcessNotificationCenter::removeObserver(Token token) {
    std::erase_if(observers_, [token](const Registration& r) { return r.token == token; });
}

}  // namespace corvalis
