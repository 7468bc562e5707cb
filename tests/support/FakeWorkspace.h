#pragma once
// An in-memory workspace for tests: the applications, identifiers and info
// dictionaries a test declares, nothing read from the disk.

#include <map>
#include <string>
#include <vector>

#include "platform/Workspace.h"

namespace corvalis::test {

class FakeWorkspace : public Workspace {
public:
    std::string applicationsFolder = "/Applications";
    std::vector<std::string> applications;                       // in search order
    std::map<std::string, std::string> identifiers;              // path -> bundle identifier
    std::map<std::string, plist::Dictionary> infoDictionaries;   // path -> info dictionary

    // Declares an application (appended to the search order) with its identifier.
    void addApplication(const std::string& path, const std::string& identifier) {
        applications.push_back(path);
        identifiers[path] = identifier;
    }

    std::string systemApplicationsFolder() const override { return applicationsFolder; }
    std::vector<std::string> knownApplications() const override { return applications; }
    std::optional<std::string> bundleIdentifierForApplication(const std::string& path) const override {
        auto found = identifiers.find(path);
        if (found == identifiers.end()) return std::nullopt;
        return found->second;
    }
    std::optional<plist::Dictionary> infoDictionaryForBundle(const std::string& path) const override {
        auto found = infoDictionaries.find(path);
        if (found == infoDictionaries.end()) return std::nullopt;
        return found->second;
    }
};

}  // namespace corvalis::test
