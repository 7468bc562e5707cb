#include "support/PrefsFixture.h"
#include "plist/PlistIO.h"
#include "prefs/PaneVersion.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

class OptionLoaders : public test::PrefsTest {
protected:
    // The value of `key` after loading a domain that holds only `value` there.
    Value loadedValue(const char* key, const Value& value) { return load(Dictionary{{key, value}})[key]; }
};

}  // namespace

TEST_F(OptionLoaders, OutOfRangeChoicesFallBackToTheirDefaults) {
    struct Case {
        const char* key;
        std::vector<Value> good, bad;
        Value fallback;
    } cases[] = {
        {keys::IncludeTerminatedApplicationsWhere, {Value::int32(2)}, {Value::int32(3), Value::int32(0), "2"}, Value::int32(1)},
        {keys::QuickCopyPathCommand, {"1666208876", "1666205811"}, {"1666208877", "cPTl", Value::int64(1666208876), ""},
         "1666215027"},
        {keys::CheckForUpdatesFrequency, {Value::int32(30)}, {Value::int32(14), "7"}, Value::int32(7)},
    };
    for (const Case& c : cases) {
        for (const Value& good : c.good) EXPECT_EQ(loadedValue(c.key, good), good) << c.key;
        for (const Value& bad : c.bad) {
            load(Dictionary{{c.key, bad}});
            EXPECT_EQ(prefs.objectForKey(c.key), c.fallback) << c.key << " " << toXml(bad);
        }
    }
}

TEST_F(OptionLoaders, MarkApplicationModeCarriesTheOlderSettingOver) {
    Dictionary loaded = load(Dictionary{{keys::Mark64BitApplications, false}});
    EXPECT_EQ(loaded[keys::MarkApplicationMode], Value(false));
    EXPECT_EQ(loaded[keys::SwitchMenuMarkApplicationMode], Value(false));
    EXPECT_FALSE(loaded.contains(keys::Mark64BitApplications));

    // A stored setting wins over the older one, and the Switch menu keeps its own.
    loaded = load(Dictionary{{keys::MarkApplicationMode, true},
                             {keys::Mark64BitApplications, false},
                             {keys::SwitchMenuMarkApplicationMode, false},
                             {keys::MarkApplicationsUsingRosetta, true}});
    EXPECT_EQ(loaded[keys::MarkApplicationMode], Value(true));
    EXPECT_EQ(loaded[keys::SwitchMenuMarkApplicationMode], Value(false));
    EXPECT_FALSE(loaded.contains(keys::Mark64BitApplications));
    // There is no Rosetta from 10.7 on.
    EXPECT_EQ(loaded[keys::MarkApplicationsUsingRosetta], Value(false));
    EXPECT_EQ(loaded[keys::SwitchMenuMarkApplicationsUsingRosetta], Value(false));

    loaded = load(Dictionary{{keys::MarkApplicationMode, "yes"}, {keys::SwitchMenuMarkApplicationMode, Data{1}}});
    EXPECT_EQ(loaded[keys::MarkApplicationMode], Value(true));
    EXPECT_EQ(loaded[keys::SwitchMenuMarkApplicationMode], Value(true));
}

TEST_F(OptionLoaders, UpdateCheckStateIsClearedWhenItNoLongerApplies) {
    const Date lastCheck{800000000};
    bool firstUse = false;
    Dictionary loaded = load(Dictionary{{keys::CheckForUpdatesLast, lastCheck},
                                        {keys::CheckForUpdatesResult, Value::int32(1)},
                                        {keys::CheckForUpdatesNewVersion, "9.0"},
                                        {keys::CheckForUpdatesSkipVersion, "0.0.9"},
                                        {keys::CheckForUpdatesMaxVersion, "0.0.5"}},
                             &firstUse);
    EXPECT_FALSE(firstUse) << "a maximum version was stored";
    EXPECT_EQ(loaded[keys::CheckForUpdatesNewVersion], Value("9.0"));
    EXPECT_FALSE(loaded.contains(keys::CheckForUpdatesSkipVersion)) << "older than this version";
    EXPECT_EQ(loaded[keys::CheckForUpdatesMaxVersion], Value(kPaneVersion));
    EXPECT_EQ(loaded[keys::CheckForUpdatesLast], Value(lastCheck));

    // This version is the announced one: the announcement, and with it the check's state, goes.
    loaded = load(Dictionary{{keys::CheckForUpdatesLast, lastCheck},
                             {keys::CheckForUpdatesResult, Value::int32(1)},
                             {keys::CheckForUpdatesNewVersion, kPaneVersion},
                             {keys::CheckForUpdatesMaxVersion, "99.0"}});
    EXPECT_FALSE(loaded.contains(keys::CheckForUpdatesNewVersion));
    EXPECT_FALSE(loaded.contains(keys::CheckForUpdatesLast));
    EXPECT_EQ(loaded[keys::CheckForUpdatesResult], Value::int32(-5));
    EXPECT_EQ(loaded[keys::CheckForUpdatesMaxVersion], Value("99.0"));

    // Result 0 (up to date) keeps a new version only when it is this one.
    loaded = load(Dictionary{{keys::CheckForUpdatesLast, lastCheck},
                             {keys::CheckForUpdatesResult, Value::int32(0)},
                             {keys::CheckForUpdatesNewVersion, kPaneVersion}});
    EXPECT_EQ(loaded[keys::CheckForUpdatesNewVersion], Value(kPaneVersion));
    EXPECT_EQ(loaded[keys::CheckForUpdatesResult], Value::int32(0));

    // An error result keeps the date but not the announcement; an unknown result keeps nothing.
    loaded = load(Dictionary{{keys::CheckForUpdatesLast, lastCheck},
                             {keys::CheckForUpdatesResult, Value::int32(-3)},
                             {keys::CheckForUpdatesNewVersion, "9.0"}});
    EXPECT_EQ(loaded[keys::CheckForUpdatesLast], Value(lastCheck));
    EXPECT_FALSE(loaded.contains(keys::CheckForUpdatesNewVersion));
    loaded = load(Dictionary{{keys::CheckForUpdatesLast, lastCheck},
                             {keys::CheckForUpdatesResult, Value::int32(7)},
                             {keys::CheckForUpdatesSkipVersion, "9.0"}});
    EXPECT_FALSE(loaded.contains(keys::CheckForUpdatesLast));
    EXPECT_FALSE(loaded.contains(keys::CheckForUpdatesSkipVersion));
    EXPECT_EQ(loaded[keys::CheckForUpdatesResult], Value::int32(-5));

    // Without a date of the last check the result means nothing; values of the wrong type count as missing.
    loaded = load(Dictionary{{keys::CheckForUpdatesLast, "yesterday"},
                             {keys::CheckForUpdatesResult, Value::int32(1)},
                             {keys::CheckForUpdatesMaxVersion, Value::int32(3)}},
                  &firstUse);
    EXPECT_TRUE(firstUse);
    EXPECT_EQ(loaded[keys::CheckForUpdatesResult], Value::int32(-5));
    EXPECT_FALSE(loaded.contains(keys::CheckForUpdatesLast));
    EXPECT_EQ(loaded[keys::CheckForUpdates], Value(false));
}
