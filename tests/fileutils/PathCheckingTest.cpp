#include "fileutils/PathChecking.h"

#include <gtest/gtest.h>

#include "fileutils/AliasRecord.h"
#include "fileutils/AliasResolution.h"
#include "fileutils/FileFixtures.h"
#include "platform/LinuxWorkspace.h"
#include "support/FakeWorkspace.h"
#include "support/MemoryDomainStore.h"

namespace corvalis {
namespace {

namespace fs = std::filesystem;
using plist::Dictionary;
using namespace test;

class PathCheckingTest : public ::testing::Test {
protected:
    TempDir dir;
    FakeWorkspace workspace;
    std::string app = makeBundle(dir / "Apps" / "Mail.app", "<key>CFBundleIdentifier</key><string>org.example.mail</string>");

    Dictionary record(const std::string& path) { return Dictionary{{"Name", "Old"}, {"Path", path}}; }
};

TEST_F(PathCheckingTest, ExistingPathsBecomeCanonicalAndGetAliasData) {
    Dictionary fresh = record(app);
    EXPECT_TRUE(CheckPath(fresh, workspace));
    EXPECT_EQ(fresh["Name"].stringOr("(absent)"), "Mail");
    ASSERT_TRUE(fresh["AliasData"].data());
    EXPECT_EQ(decodeAliasRecord(*fresh["AliasData"].data())->path, app);
    Dictionary before = fresh.deepCopy();
    EXPECT_FALSE(CheckPath(fresh, workspace));
    EXPECT_EQ(fresh, before);

    fs::create_directory_symlink(dir / "Apps", dir / "Shortcut");
    Dictionary throughLink = record((dir / "Shortcut" / "Mail.app").string());
    throughLink.set("AliasData", *fresh["AliasData"].data());
    EXPECT_TRUE(CheckPath(throughLink, workspace));
    EXPECT_EQ(throughLink["Path"].stringOr("(absent)"), app);
    EXPECT_EQ(throughLink["Name"].stringOr("(absent)"), "Mail");

    Dictionary tooLong = record(std::string(1000, 'x'));
    EXPECT_FALSE(CheckPath(tooLong, workspace));
}

TEST_F(PathCheckingTest, MovedApplicationsAreFollowedAndDeletedOnesLoseTheirAliasData) {
    Dictionary entry = record(app);
    CheckPath(entry, workspace);
    plist::Data original = *entry["AliasData"].data();
    std::string moved = (dir / "Apps" / "Post.app").string();
    fs::rename(app, moved);

    EXPECT_TRUE(CheckPath(entry, workspace));
    EXPECT_EQ(entry["Path"].stringOr("(absent)"), moved);
    EXPECT_EQ(entry["Name"].stringOr("(absent)"), "Post");
    EXPECT_NE(*entry["AliasData"].data(), original);

    fs::remove_all(moved);
    workspace.applications.clear();
    EXPECT_TRUE(CheckPath(entry, workspace));
    EXPECT_FALSE(entry.contains("AliasData"));
    EXPECT_EQ(entry["Path"].stringOr("(absent)"), moved);  // the stale path stays for the user to see
    EXPECT_FALSE(CheckPath(entry, workspace));
}

TEST_F(PathCheckingTest, OpenMenuItemsKeepCustomNamesAndExtensions) {
    writeFile(dir / "Tidy.scpt", "");
    Dictionary script = record((dir / "Tidy.scpt").string());
    EXPECT_TRUE(CheckOpenMenuItemPath(script, workspace));
    EXPECT_EQ(script["Name"].stringOr("(absent)"), "Tidy.scpt");

    Dictionary custom = record(app);
    custom.set("NameIsCustom", true);
    CheckOpenMenuItemPath(custom, workspace);
    fs::rename(app, dir / "Apps" / "Post.app");
    EXPECT_TRUE(CheckOpenMenuItemPath(custom, workspace));
    EXPECT_EQ(custom["Path"].stringOr("(absent)"), (dir / "Apps" / "Post.app").string());
    EXPECT_EQ(custom["Name"].stringOr("(absent)"), "Old");
}

TEST_F(PathCheckingTest, LooseValuesFollowTheSameRules) {
    std::string path = app, name = "Old";
    std::optional<plist::Data> alias;
    EXPECT_TRUE(CheckNewPath(path, name, alias, workspace) && alias && name == "Mail");
    fs::rename(app, dir / "Apps" / "Post.app");
    EXPECT_TRUE(CheckNewPath(path, name, alias, workspace));
    EXPECT_EQ(path + " " + name, (dir / "Apps" / "Post.app").string() + " Post");
    fs::remove_all(dir / "Apps");
    EXPECT_TRUE(CheckNewPath(path, name, alias, workspace) && !alias);
}

TEST_F(PathCheckingTest, UrlsAndProbes) {
    EXPECT_EQ(Filenames({"file:///a%20b/c.app/", "file://localhost/x", "/plain", "file:///bad path"}),
              (std::vector<std::string>{"/a b/c.app", "/x", "/plain", ""}));

    // A library counts when one of the listed URLs leads to a file; the two probes share that rule.
    MemoryDomainStore store;
    EXPECT_FALSE(IsIPhotoLibraryAvailable(store));
    writeFile(dir / "Album Data.xml", "");
    store.domains["com.apple.iApps"] = Dictionary{
        {"iPhotoRecentDatabases", plist::Array{"file://" + (dir / "Album%20Data.xml").string(), "file:///x"}},
        {"ApertureLibraries", plist::Array{plist::Value::int32(3)}}};
    EXPECT_TRUE(IsIPhotoLibraryAvailable(store));
    EXPECT_FALSE(IsApertureLibraryAvailable(store));

    workspace.applicationsFolder = (dir / "None").string();
    EXPECT_EQ(GetApplicationsFolderRef(nullptr, workspace), kFileNotFoundErr);
    EXPECT_FALSE(IsAddressBookInstalled(workspace));
    workspace.addApplication(app, "com.apple.AddressBook");
    EXPECT_TRUE(IsAddressBookInstalled(workspace));
}

TEST(LinuxWorkspace, KnowsBundlesAndDesktopEntriesByIdentifier) {
    TempDir dir;
    ScopedEnv apps("CORVALIS_APPLICATIONS_DIR", (dir / "Applications").string());
    ScopedEnv home("XDG_DATA_HOME", (dir / "home").string());
    ScopedEnv dirs("XDG_DATA_DIRS", (dir / "system").string() + ":relative/ignored");
    std::string util = makeBundle(dir / "Applications/Utilities/Term.app", "<key>CFBundleIdentifier</key><string>org.x.term</string>");
    makeBundle(dir / "Applications/Term.app/Contents/Nested.app", "<key>CFBundleIdentifier</key><string>org.x.nested</string>");
    std::string vendor = makeDesktopEntry(dir / "home/applications/vendor/foo.desktop", "Type=Application\nName=Foo\n");
    makeDesktopEntry(dir / "home/applications/bar.desktop", "Type=Application\nHidden=true\n");
    makeDesktopEntry(dir / "system/applications/bar.desktop", "Type=Application\nName=Bar\n");
    std::string baz = makeDesktopEntry(dir / "system/applications/baz.desktop", "Type=Application\nName=Baz\n");

    LinuxWorkspace workspace;
    EXPECT_EQ(workspace.systemApplicationsFolder(), (dir / "Applications").string());
    EXPECT_EQ(workspace.bundleIdentifierForApplication(vendor), "vendor-foo.desktop");
    EXPECT_EQ(workspace.absolutePathForAppBundleWithIdentifier("org.x.term"), util);
    EXPECT_EQ(workspace.absolutePathForAppBundleWithIdentifier("vendor-foo.desktop"), vendor);
    EXPECT_EQ(workspace.absolutePathForAppBundleWithIdentifier("baz.desktop"), baz);
    EXPECT_FALSE(workspace.absolutePathForAppBundleWithIdentifier("bar.desktop"));  // hidden by the user's entry
    EXPECT_FALSE(workspace.absolutePathForAppBundleWithIdentifier("org.x.nested"));  // never inside a bundle
    EXPECT_EQ(*(*workspace.infoDictionaryForBundle(vendor))["CFBundleName"].string(), "Foo");
}

}  // namespace
}  // namespace corvalis
