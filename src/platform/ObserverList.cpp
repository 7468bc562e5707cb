#include "platform/ObserverList.h"

#include <algorithm>

namespace corvalis {

namespace {

// An empty filter matches every name or object.
bool matches(const Notification& notification, const std::string& name, const std::string& object) {
    return (name.empty() || name == notification.name) && (object.empty() || object == notification.object);
}

}  // namespace

ObserverList::Token ObserverList::add(std::string name, std::string object, Observer observer) {
    Token token = nextToken_++;
    registrations_.push_back({token, std::move(name), std::move(object), std::move(observer)});
    return token;
}

void ObserverList::remove(Token token) {
    std::erase_if(registrations_, [token](const Registration& r) { return r.token == token; });
}

void ObserverList::dispatch(const Notification& notification) {
    // Walk a snapshot of the matching tokens and skip any registration removed meanwhile;
    // the observer is copied because it may remove itself while it runs.
    std::vector<Token> tokens;
    for (const Registration& r : registrations_)
        if (matches(notification, r.name, r.object)) tokens.push_back(r.token);
    for (Token token : tokens) {
        auto it = std::ranges::find(registrations_, token, &Registration::token);
        if (it == registrations_.end()) continue;
        Observer observer = it->observer;
        observer(notification);
    }
}

}  // namespace corvalis
