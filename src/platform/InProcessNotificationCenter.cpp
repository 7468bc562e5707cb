#include "platform/InProcessNotificationCenter.h"

namespace corvalis {

void InProcessNotificationCenter::post(const Notification& notification) {
    if (keepPosted_) posted_.push_back(notification);
    observers_.dispatch(notification);
}

NotificationCenter::Token InProcessNotificationCenter::addObserver(std::string name, std::string object, Observer observer) {
    return observers_.add(std::move(name), std::move(object), std::move(observer));
}

void InProcessNotificationCenter::removeObserver(Token token) { observers_.remove(token); }

}  // namespace corvalis
