// Thousands of random domains, with any type at any key and in any record
// field: loading never fails, its result satisfies what every loaded domain
// must, and loading that result again changes nothing.

#include <random>

#include "prefs/DefaultValues.h"
#include "support/PrefsFixture.h"
#include "plist/PlistIO.h"
#include "support/DomainInvariants.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

// Keys and record fields the loaders look at, so that random values land where they matter.
const std::vector<std::string>& interestingKeys() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> list;
        for (const auto& [key, value] : defaultValues()) list.push_back(key);
        for (const char* key :
             {keys::OpenMenuItems, keys::QuitMenuItems, keys::SwitchMenuItems, keys::SpecialMenuItems,
              keys::KeyboardShortcuts, keys::SwitchMenuMarkApplicationMode, keys::SwitchMenuMarkApplicationsUsingRosetta,
              keys::CheckForUpdatesLast, keys::CheckForUpdatesNewVersion, keys::CheckForUpdatesSkipVersion,
              keys::CheckForUpdatesMaxVersion, keys::Mark64BitApplications, keys::ToggleSingleApplicationModeHotKey,
              keys::Item, keys::Path, keys::AliasData, keys::Name, keys::NameIsCustom, keys::Depth, keys::CanBeDeleted,
              keys::Applications, keys::KeyboardShortcut, keys::CommandID, keys::Action, keys::Enabled,
              keys::Character, keys::Modifiers, keys::VirtualKeyCode, keys::Position, keys::Options,
              keys::DontHideOnHideOthers, keys::DontHideInSingleAppMode, keys::Icon, "1000", "1009", "1017"})
            list.push_back(key);
        return list;
    }();
    return all;
}

class RandomDomains {
public:
    explicit RandomDomains(std::uint32_t seed) : random_(seed) {}

    Dictionary domain() {
        Dictionary result;
        int count = pick(0, 40);
        for (int i = 0; i < count; ++i) result.set(key(), value(3));
        return result;
    }

private:
    std::mt19937 random_;

    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

    std::string key() {
        const auto& keys = interestingKeys();
        return pick(0, 9) == 0 ? "Random" + std::to_string(pick(0, 5)) : keys[pick(0, int(keys.size()) - 1)];
    }

    std::string text() {
        static const char* samples[] = {"", "Separator", "Folder", "Groups", "QuitAll", "Library", "/opt/A.app",
                                        "/tmp", "/nonexistent/.Trash/B.app", "2000", "1666208876", "0.1.0",
                                        "9.9", "ÉTÉ", "a b", "Volumes", "LoginWindow", "ExcludedApplications"};
        return samples[pick(0, int(std::size(samples)) - 1)];
    }

    Value number() {
        switch (pick(0, 4)) {
        case 0: return Value(pick(0, 1) == 1);
        case 1: return Value::int32(pick(-6, 7));
        case 2: return Value::int64(std::int64_t(pick(0, 70000)) << pick(0, 20));
        case 3: return Value::uint16(static_cast<std::uint16_t>(pick(0, 65535)));
        default: return Value::real64(pick(-100, 100) / 7.0);
        }
    }

    // Records are dictionaries of interesting fields; lists are mostly records.
    Value value(int depth) {
        int kind = depth > 0 ? pick(0, 9) : pick(0, 4);
        switch (kind) {
        case 0: case 1: return number();
        case 2: return Value(text());
        case 3: return Value(Data(static_cast<std::size_t>(pick(0, 3)), 7));
        case 4: return Value(Date{static_cast<double>(pick(0, 900000000))});
        case 5: case 6: {
            Dictionary record;
            for (int i = pick(0, 8); i > 0; --i) record.set(key(), value(depth - 1));
            return record;
        }
        default: {
            Array list;
            for (int i = pick(0, 6); i > 0; --i) list.append(value(depth - 1));
            return list;
        }
        }
    }
};

class LoadProperties : public test::PrefsTest {};

}  // namespace

TEST_F(LoadProperties, RandomDomainsLoadIntoCanonicalFormOnce) {
    RandomDomains random(20261122);
    for (int loaded = 0; loaded < 1000; ++loaded) {
        Dictionary stored = random.domain();
        machine.developerApplicationsFolderExists = [loaded] { return loaded % 2 == 0; };
        machine.iPhotoLibraryAvailable = [loaded] { return loaded % 3 == 0; };
        Dictionary first;
        ASSERT_NO_THROW(first = load(stored)) << toXml(stored);
        std::string violation = test::loadedDomainViolation(first);
        ASSERT_TRUE(violation.empty()) << violation << "\n" << toXml(stored);
        Dictionary saved = domains.domains["com.kestrova.Corvalis"].deepCopy();
        ASSERT_EQ(saved, first);
        Dictionary second = load(saved);
        ASSERT_EQ(second, first) << "loading again changed the domain loaded from\n" << toXml(stored);
    }
}
