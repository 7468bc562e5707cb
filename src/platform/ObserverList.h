#pragma once
// The observers of one notification centre: registration by token and delivery
// to those whose name and object filters match. Both centres keep theirs here.

#include <string>
#include <vector>

#include "platform/NotificationCenter.h"

namespace corvalis {

class ObserverList {
public:
    using Token = NotificationCenter::Token;
    using Observer = NotificationCenter::Observer;

    Token add(std::string name, std::string object, Observer observer);
    void remove(Token token);
    // Calls every matching observer; observers may add or remove observers meanwhile.
    void dispatch(const Notification& notification);

private:
    struct Registration {
        Token token;
        std::string name;
        std::string object;
        Observer observer;
    };
    std::vector<Registration> registrations_;
    Token nextToken_ = 1;
};

}  // namespace corvalis
