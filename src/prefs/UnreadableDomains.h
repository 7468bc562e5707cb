#pragma once
// What the user is told of a domain file that could not be read, in the tool and
// in the window alike.

#include <string>

#include "platform/DomainStore.h"

namespace corvalis {

// "UnreadableSettingsKeptAside", "…NotMoved" or "…NotOpened", filled in for `file`.
std::string unreadableDomainText(const SetAsideDomain& file);

}  // namespace corvalis
