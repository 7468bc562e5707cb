#pragma once
// Preferences over domains in memory, on a machine whose answers the test chooses.

#include <gtest/gtest.h>

#include "platform/InProcessNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "support/MemoryDomainStore.h"

namespace corvalis::test {

class PrefsTest : public ::testing::Test {
protected:
    MemoryDomainStore domains;
    InProcessNotificationCenter bus;
    CorvalisPreferences prefs{domains, bus};
    // No Developer folder, no address book or photo libraries, a 64-bit processor.
    LoadEnvironment machine{[] { return false; }, [] { return false; }, [] { return false; }, [] { return false; },
                            [] { return true; }};

    // Loads `stored` as the pane does when it opens and answers the working copy; the bus starts empty.
    plist::Dictionary load(const plist::Dictionary& stored, bool* firstUse = nullptr) {
        domains.domains["com.kestrova.Corvalis"] = stored;
        prefs.unload();
        prefs.setLoadEnvironment(machine);
        bool result = prefs.loadPreferences();
        if (firstUse) *firstUse = result;
        bus.clearPosted();
        return prefs.prefsData();
    }
    plist::Dictionary storedDomain() { return domains.domains["com.kestrova.Corvalis"]; }

    static std::vector<std::string> kinds(const plist::Value& menu) {
        std::vector<std::string> result;
        if (const plist::Array* items = menu.array())
            for (const plist::Value& item : *items) result.push_back(*(*item.dictionary())[keys::Item].string());
        return result;
    }
    static plist::Dictionary record(const plist::Value& list, std::size_t index) {
        return plist::asDictionary((*list.array())[index]).value_or(plist::Dictionary());
    }
};

}  // namespace corvalis::test
