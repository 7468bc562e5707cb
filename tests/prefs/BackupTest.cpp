#include <unistd.h>

#include <chrono>

#include "plist/PlistIO.h"
#include "prefs/Backup.h"
#include "prefs/DefaultValues.h"
#include "support/PrefsFixture.h"
#include "text/Localization.h"
#include "prefs/PaneVersion.h"
#include "support/TestSupport.h"

using namespace corvalis;
using namespace corvalis::plist;
namespace fs = std::filesystem;

namespace {

std::string bytesOf(const Value& root) {
    WriteResult written = serialize(root, Format::Xml);
    return std::string(written.bytes.begin(), written.bytes.end());
}

BackupContents check(const Value& root) {
    std::string text = bytesOf(root);
    return checkBackup(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

class Backups : public test::PrefsTest {
protected:
    test::TempDir dir;
};

}  // namespace

TEST(BackupValidity, OnlyKeysOfThisVersionMakeABackup) {
    EXPECT_FALSE(CorvalisPreferences::isValidBackup(Dictionary()));
    EXPECT_FALSE(CorvalisPreferences::isValidBackup(
        Dictionary{{keys::ShowDisks, true}, {keys::Folders, Array()}, {keys::AddApplicationPath, "/"}, {"Foo", true}}));
    for (const char* key : {keys::ShowIcons, keys::OpenMenuItems, keys::AskConfirmation, keys::Groups})
        EXPECT_TRUE(CorvalisPreferences::isValidBackup(Dictionary{{keys::ShowDisks, true}, {key, true}})) << key;
    EXPECT_FALSE(CorvalisPreferences::isValidBackup(Dictionary{{keys::CheckForUpdatesLast, Date{1}}}));
}

TEST(BackupValidity, BothChecksDecideTheOutcome) {
    Dictionary settings{{keys::ShowIcons, false}};
    BackupContents valid = check(Dictionary{{keys::Settings, settings}, {keys::Version, Value::int32(1)}});
    EXPECT_EQ(valid.check, BackupCheck::Valid);
    EXPECT_EQ(valid.settings, settings);
    EXPECT_EQ(check(Dictionary{{keys::Settings, settings}, {keys::Version, Value::real64(1.0)}}).check,
              BackupCheck::Valid);

    for (Value invalid : {Value(Dictionary{{keys::Settings, Array{settings}}, {keys::Version, Value::int32(1)}}),
                          Value(Dictionary{{keys::Settings, Dictionary{{keys::ShowDisks, true}}},
                                           {keys::Version, Value::int32(1)}}),
                          Value(Dictionary{{keys::Settings, settings}, {keys::Version, "1"}}),
                          Value(Dictionary{{keys::Settings, settings}, {keys::Version, true}}),
                          Value(Dictionary{{keys::Settings, settings}}), Value(Array{settings})})
        EXPECT_EQ(check(invalid).check, BackupCheck::Invalid) << toXml(invalid);

    BackupContents newer = check(Dictionary{{keys::Settings, settings}, {keys::Version, Value::int32(2)}});
    EXPECT_EQ(newer.check, BackupCheck::WrongVersion);
    EXPECT_EQ(newer.fileVersion, "2");
    EXPECT_EQ(backupErrorText(newer, "x.cvbu"), LocalizedFormat("ImportBackupError1", {kPaneVersion, "2"}));
    EXPECT_NE(backupErrorText(BackupContents{}, "Mine.cvbu").find("Mine.cvbu"), std::string::npos);
}

// Written files are checked through the command line and the backup sheet; here, what no writer makes.
TEST_F(Backups, OversizedMissingAndFolderFilesAreRefusedUnread) {
    EXPECT_EQ(readBackupFile(dir / "absent.cvbu").check, BackupCheck::Invalid);
    EXPECT_EQ(readBackupFile(dir.path()).check, BackupCheck::Invalid);
    fs::path file = dir / "huge.cvbu";
    std::string head = bytesOf(Dictionary{{keys::Settings, Dictionary{{keys::ShowIcons, true}}},
                                          {keys::Version, Value::int32(1)}});
    test::writeFile(file, head);
    ASSERT_EQ(readBackupFile(file).check, BackupCheck::Valid);
    // A sparse file: refusing it must not cost reading 65 MB.
    ASSERT_EQ(::truncate(file.c_str(), static_cast<off_t>(kMaxBackupFileBytes + 1)), 0);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(readBackupFile(file).check, BackupCheck::Invalid);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
}

TEST_F(Backups, RestoringReplacesTheDomainAndNormalisesIt) {
    load(Dictionary{{keys::ShowIcons, false}, {keys::RecentFoldersMaxNum, Value::int32(5)}});
    prefs.restoreDefaultsFromBackup(Dictionary{{keys::ShowHome, false}, {keys::RecentApplicationsMaxNum,
                                                                         Value::int32(3)}});
    Dictionary now = prefs.prefsData();
    EXPECT_FALSE(now.contains(keys::ShowIcons)) << "the old settings are gone, not merged";
    EXPECT_FALSE(now.contains(keys::ShowHome)) << "migrated into the Special menu, as the loader's tests check";
    EXPECT_EQ(now[keys::RecentApplicationsMaxNum], Value::int32(3));
    EXPECT_EQ(domains.domains["com.kestrova.Corvalis"], now);
}
