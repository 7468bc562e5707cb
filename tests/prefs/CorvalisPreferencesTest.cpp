#include <gtest/gtest.h>

#include <filesystem>

#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "plist/PlistIO.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/DefaultValues.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "support/TestSupport.h"

using namespace corvalis;
using namespace corvalis::plist;
namespace fs = std::filesystem;

namespace {

class StoreTest : public ::testing::Test {
protected:
    test::TempDir dir;
    FileDomainStore domains{dir.path()};
    InProcessNotificationCenter bus;
    CorvalisPreferences prefs{domains, bus};

    fs::path domainFile() const { return dir / "com.kestrova.Corvalis.plist"; }

    Dictionary onDisk() const {
        std::string bytes = test::readFile(domainFile());
        return asDictionary(parse(std::string_view(bytes)).value).value_or(Dictionary());
    }

    void store(const Dictionary& domain) {
        WriteResult written = serialize(domain, Format::Xml);
        test::writeFile(domainFile(), std::string(written.bytes.begin(), written.bytes.end()));
    }
};

}  // namespace

TEST_F(StoreTest, FreshDomainLoadsFactoryDefaultsAndWritesThemBack) {
    EXPECT_TRUE(prefs.loadPreferences());
    Dictionary saved = onDisk();
    EXPECT_EQ(saved, prefs.prefsData());  // what it holds is checked key by key through the command line
    // The working copy never shares containers with the process-wide defaults.
    prefs.arrayForKey(keys::Groups)->clear();
    EXPECT_EQ(defaultValues()[keys::Groups].array()->size(), 1u);

    // A second load is refused and changes nothing.
    prefs.setBool(true, keys::TurnOnCorvalis);
    EXPECT_FALSE(prefs.loadPreferences());
    EXPECT_TRUE(prefs.boolForKey(keys::TurnOnCorvalis));
}

TEST_F(StoreTest, LoadKeepsStoredValuesAndDropsObsoleteKeys) {
    store(Dictionary{{keys::ShowIcons, false},
                     {"IsTrustedChecked", true},
                     {"ShowStartStopRestartClassic", true},
                     {"ClassicApplicationsFolderDepth", Value::int32(3)},
                     {"SomethingNewer", "kept"}});
    prefs.loadPreferences();
    Dictionary saved = onDisk();
    EXPECT_EQ(saved[keys::ShowIcons].boolean(), false);
    EXPECT_EQ(*saved["SomethingNewer"].string(), "kept");
    EXPECT_FALSE(saved.contains("IsTrustedChecked") || saved.contains("ClassicApplicationsFolderDepth"));
    // An existing domain is not filled with defaults until they are read.
    EXPECT_FALSE(saved.contains(keys::ShowHome));
    EXPECT_TRUE(prefs.boolForKey(keys::ShowHome));
    EXPECT_TRUE(prefs.prefsData().contains(keys::ShowHome));
}

TEST_F(StoreTest, ScalarGettersFallBackStoreTheirOwnTypeAndTreatWrongTypesAsMissing) {
    store(Dictionary{{keys::RecentApplicationsMaxNum, "ten"}, {keys::PanelCoordinate, Value::int32(1)}});
    prefs.loadPreferences();
    EXPECT_EQ(prefs.intForKey(keys::RecentApplicationsMaxNum), 10);
    EXPECT_EQ(prefs.prefsData()[keys::RecentApplicationsMaxNum].integer()->width, IntWidth::Int32);
    EXPECT_EQ(prefs.floatForKey(keys::PanelCoordinate), 1.0f);  // a stored number converts, whatever its type

    // Keys without a default read as 0 and keep that value, in the getter's own type.
    EXPECT_EQ(prefs.floatForKey("FrameOpacity"), 0.0f);
    EXPECT_TRUE(prefs.prefsData()["FrameOpacity"].real()->is32Bit);
    // Object getters of such keys answer nothing and store nothing.
    EXPECT_TRUE(prefs.objectForKey("ButtonColors").isAbsent());
    EXPECT_FALSE(prefs.prefsData().contains("ButtonColors"));
    EXPECT_TRUE(prefs.simpleStringForKey(keys::ShowDisks).isAbsent());
    EXPECT_FALSE(prefs.stringForKey(keys::HotKeys));  // wrong kind of getter for an array
}

TEST_F(StoreTest, ChangeNotificationsPostThenSave) {
    prefs.loadPreferences();
    prefs.setBool(false, keys::ShowIcons);
    prefs.synchronizeValue(false, keys::ShowIcons);
    ASSERT_EQ(bus.posted().size(), 1u);
    const Notification& sent = bus.posted()[0];
    EXPECT_EQ(sent.name, "CorvalisPaneChangedPrefs");
    EXPECT_EQ(sent.object, "com.kestrova.Corvalis");
    EXPECT_EQ(sent.userInfo, (Dictionary{{keys::ShowIcons, false}}));
    EXPECT_EQ(onDisk()[keys::ShowIcons].boolean(), false);

    // Two keys in one notification, the index as the 32-bit number the controller reads.
    bus.clearPosted();
    prefs.synchronizeIncludeTerminatedApps(true, 2);
    ASSERT_EQ(bus.posted().size(), 1u);
    Dictionary include = *bus.posted()[0].userInfo;
    EXPECT_EQ(include[keys::IncludeTerminatedApplications].boolean(), true);
    EXPECT_EQ(include[keys::IncludeTerminatedApplicationsWhere].integer()->width, IntWidth::Int32);

    // An index beyond the four menus neither posts nor saves.
    bus.clearPosted();
    fs::remove(domainFile());
    prefs.synchronizeHotKey(Value::int32(1), 4);
    prefs.synchronizeHotKey(Value::int32(1), -1);
    EXPECT_TRUE(bus.posted().empty());
    EXPECT_FALSE(fs::exists(domainFile()));
}

TEST_F(StoreTest, ButtonColorsMustBeAPermutationOfTheFourNames) {
    prefs.loadPreferences();
    auto colorsFor = [&](const Value& stored) {
        prefs.setObject(stored, "ButtonColors");
        return prefs.buttonColors();
    };
    EXPECT_EQ(colorsFor("Red;Green;Blue;Yellow"), (std::vector<std::string>{"Red", "Green", "Blue", "Yellow"}));
    for (Value bad : {Value("Red;Green;Blue"), Value("Red;Green;Blue;Blue"), Value("Red;Green;Blue;Yellow;"),
                      Value("red;Green;Blue;Yellow"), Value(Value::int32(4))})
        EXPECT_FALSE(colorsFor(bad)) << toXml(bad);
}

TEST_F(StoreTest, BackgroundOnlyCommandShowsOnlyForATrueNumber) {
    prefs.loadPreferences();
    EXPECT_TRUE(prefs.hideAddBOAsCommand());
    for (Value stored : {Value("yes"), Value(Value::int32(0)), Value(true)}) {
        prefs.setObject(stored, "ShowAddBackgroundOnlyApplicationsCommand");
        EXPECT_EQ(prefs.hideAddBOAsCommand(), stored != Value(true)) << toXml(stored);
    }
}

TEST_F(StoreTest, OpenPanelPathsRememberTheFolderOfWhatWasChosen) {
    prefs.loadPreferences();
    fs::create_directories(dir / "Apps/Mail.app");
    prefs.setOpenPanelPath((dir / "Apps/Mail.app").string(), keys::AddApplicationPath);
    EXPECT_EQ(prefs.getOpenPanelPathForKey(keys::AddApplicationPath), (dir / "Apps").string());

    prefs.setOpenPanelPath((dir / "missing/thing").string(), keys::AddApplicationPath);
    EXPECT_EQ(*prefs.stringForKey(keys::AddApplicationPath), (dir / "Apps").string());

    // A chosen volume (a mount point) is kept itself.
    prefs.setOpenPanelPath("/proc", keys::AddFileFolderPath);
    EXPECT_EQ(*prefs.stringForKey(keys::AddFileFolderPath), "/proc");

    // A remembered folder that is gone gives the factory default, which is not stored.
    prefs.setString((dir / "gone").string(), keys::AddApplicationPath);
    EXPECT_EQ(prefs.getOpenPanelPathForKey(keys::AddApplicationPath), "/Applications");
    EXPECT_EQ(*prefs.stringForKey(keys::AddApplicationPath), (dir / "gone").string());
}
