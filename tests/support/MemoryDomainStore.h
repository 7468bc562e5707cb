#pragma once
// Domains kept in memory, for tests that load thousands of domains and have
// no use for the disk.

#include <map>

#include "platform/DomainStore.h"

namespace corvalis::test {

class MemoryDomainStore : public DomainStore {
public:
    std::optional<plist::Dictionary> persistentDomainForName(const std::string& name) override {
        auto found = domains.find(name);
        if (found == domains.end()) return std::nullopt;
        return found->second.deepCopy();
    }
    void removePersistentDomainForName(const std::string& name) override { domains.erase(name); }
    void setPersistentDomain(const plist::Dictionary& domain, const std::string& name) override {
        domains[name] = domain.deepCopy();
    }
    bool synchronize(const std::string&) override {
        ++synchronizations;
        return true;
    }
    std::vector<SetAsideDomain> takeSetAsideDomains() override { return {}; }

    std::map<std::string, plist::Dictionary> domains;
    int synchronizations = 0;
};

}  // namespace corvalis::test
