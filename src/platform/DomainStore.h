#pragma once
// Named persistent property-list domains, each replaced as a whole.

#include <optional>
#include <string>
#include <vector>

#include "plist/Value.h"

namespace corvalis {

// A domain file that could not be read: moved out of the way, or left where it
// is (no setAsidePath) and then never written over.
struct SetAsideDomain {
    std::string domain;
    std::string originalPath;
    std::string setAsidePath;
    std::string reason;
    // It could not be opened (permissions, not a regular file): nothing says its contents are damaged.
    bool notOpened = false;
};

class DomainStore {
public:
    virtual ~DomainStore() = default;

    // The stored domain, or none when it does not exist (or could not be read).
    virtual std::optional<plist::Dictionary> persistentDomainForName(const std::string& name) = 0;
    virtual void removePersistentDomainForName(const std::string& name) = 0;
    virtual void setPersistentDomain(const plist::Dictionary& domain, const std::string& name) = 0;
    // Makes the pending changes of the domain durable; false when writing failed.
    virtual bool synchronize(const std::string& name) = 0;

    // Domains found unreadable since the last call, oldest first.
    virtual std::vector<SetAsideDomain> takeSetAsideDomains() = 0;
};

}  // namespace corvalis
