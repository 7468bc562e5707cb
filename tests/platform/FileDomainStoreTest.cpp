#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "platform/FileDomainStore.h"
#include "plist/PlistIO.h"
#include "support/TestSupport.h"

using namespace corvalis;
using namespace corvalis::plist;
namespace fs = std::filesystem;

TEST(FileDomainStore, WritesBinaryReadsBothAndReplacesWholeDomains) {
    test::TempDir dir;
    FileDomainStore store(dir / "nested/Preferences");  // created on first write
    EXPECT_FALSE(store.persistentDomainForName("com.example.app"));

    store.setPersistentDomain(Dictionary{{"A", Value::int32(1)}, {"B", "two"}}, "com.example.app");
    // Pending changes are visible before they are written.
    EXPECT_EQ(store.persistentDomainForName("com.example.app"), (Dictionary{{"A", Value::int32(1)}, {"B", "two"}}));
    EXPECT_TRUE(store.synchronize("com.example.app"));
    std::string bytes = test::readFile(store.pathForDomain("com.example.app"));
    EXPECT_EQ(bytes.substr(0, 8), "bplist00");

    // Removing and setting again leaves exactly the new domain (no keys merged).
    store.removePersistentDomainForName("com.example.app");
    store.setPersistentDomain(Dictionary{{"C", true}}, "com.example.app");
    EXPECT_TRUE(store.synchronize("com.example.app"));
    FileDomainStore reader(store.folder());
    EXPECT_EQ(reader.persistentDomainForName("com.example.app"), (Dictionary{{"C", true}}));

    // Other applications' domains in XML are read as well.
    test::writeFile(store.pathForDomain("com.apple.dock"), toXml(Dictionary{{"autohide", true}}));
    EXPECT_EQ(reader.persistentDomainForName("com.apple.dock"), (Dictionary{{"autohide", true}}));

    store.removePersistentDomainForName("com.example.app");
    EXPECT_TRUE(store.synchronize("com.example.app"));
    EXPECT_FALSE(fs::exists(store.pathForDomain("com.example.app")));
    // No temporary files are left behind.
    EXPECT_EQ(std::distance(fs::directory_iterator(store.folder()), fs::directory_iterator()), 1);
}

TEST(FileDomainStore, WritingBackWhatWasReadLeavesTheFileAlone) {
    test::TempDir dir;
    FileDomainStore writer(dir.path());
    writer.setPersistentDomain(Dictionary{{"A", Value::int32(1)}, {"Z", "z"}}, "com.example.app");
    ASSERT_TRUE(writer.synchronize("com.example.app"));
    fs::path file = writer.pathForDomain("com.example.app");
    auto inode = [&] {
        struct stat info {};
        return ::stat(file.c_str(), &info) == 0 ? info.st_ino : 0;
    };

    FileDomainStore store(dir.path());
    Dictionary read = *store.persistentDomainForName("com.example.app");
    auto before = inode();
    store.setPersistentDomain(read, "com.example.app");
    ASSERT_TRUE(store.synchronize("com.example.app"));
    EXPECT_EQ(inode(), before);  // not replaced
    store.setPersistentDomain(Dictionary{{"Z", "z"}, {"A", Value::int32(1)}}, "com.example.app");
    ASSERT_TRUE(store.synchronize("com.example.app"));
    EXPECT_EQ(inode(), before);  // keys that only moved are the same settings

    // The same value again after someone else rewrote the file is written, as is a change.
    writer.setPersistentDomain(Dictionary{{"A", Value::int64(1)}}, "com.example.app");  // another width
    ASSERT_TRUE(writer.synchronize("com.example.app"));
    store.setPersistentDomain(read, "com.example.app");
    ASSERT_TRUE(store.synchronize("com.example.app"));
    EXPECT_EQ(FileDomainStore(dir.path()).persistentDomainForName("com.example.app"), read);
    read.set("B", true);  // the working copy the reader was given is its own
    store.setPersistentDomain(read, "com.example.app");
    ASSERT_TRUE(store.synchronize("com.example.app"));
    EXPECT_EQ(FileDomainStore(dir.path()).persistentDomainForName("com.example.app"), read);

    // Numerically equal is not the same contents: 1 becoming 1.0 reaches the file.
    FileDomainStore again(dir.path());
    Dictionary reread = *again.persistentDomainForName("com.example.app");
    reread.set("A", Value::real64(1.0));
    again.setPersistentDomain(reread, "com.example.app");
    ASSERT_TRUE(again.synchronize("com.example.app"));
    EXPECT_EQ((*FileDomainStore(dir.path()).persistentDomainForName("com.example.app"))["A"].type(), plist::Type::Real);
}

TEST(FileDomainStore, UnreadableFilesAreMovedAsideNeverOverwritten) {
    test::TempDir dir;
    FileDomainStore store(dir.path());
    test::writeFile(store.pathForDomain("bad.xml"), "not a property list");
    test::writeFile(store.pathForDomain("array.root"), toXml(Array{"x"}));
    EXPECT_FALSE(store.persistentDomainForName("bad.xml"));
    EXPECT_FALSE(store.persistentDomainForName("array.root"));
    std::vector<SetAsideDomain> aside = store.takeSetAsideDomains();
    ASSERT_EQ(aside.size(), 2u);
    EXPECT_NE(aside[1].reason.find("array"), std::string::npos) << aside[1].reason;
    for (const SetAsideDomain& file : aside) {
        EXPECT_TRUE(fs::exists(file.setAsidePath));
        EXPECT_FALSE(fs::exists(file.originalPath));
    }
    EXPECT_EQ(test::readFile(aside[0].setAsidePath), "not a property list");

    // A second unreadable file in the same second does not replace the first one kept aside.
    test::writeFile(store.pathForDomain("bad.xml"), "still broken");
    store.persistentDomainForName("bad.xml");
    std::vector<SetAsideDomain> again = store.takeSetAsideDomains();
    ASSERT_EQ(again.size(), 1u);
    EXPECT_NE(again[0].setAsidePath, aside[0].setAsidePath);
    EXPECT_EQ(test::readFile(aside[0].setAsidePath), "not a property list");
}

TEST(FileDomainStore, FailuresAreReportedAndNamesStayInsideTheFolder) {
    test::TempDir dir;
    test::writeFile(dir / "file", "x");
    FileDomainStore blocked(dir / "file/Preferences");  // the folder cannot be created
    blocked.setPersistentDomain(Dictionary{{"A", true}}, "d");
    EXPECT_FALSE(blocked.synchronize("d"));
    EXPECT_FALSE(blocked.lastWriteError().empty());

    FileDomainStore store(dir / "prefs");
    store.setPersistentDomain(Dictionary{{"A", true}}, "../escape");
    EXPECT_TRUE(store.synchronize("../escape"));  // nothing pending: the name is refused
    EXPECT_FALSE(fs::exists(dir / "escape.plist"));
    EXPECT_FALSE(store.persistentDomainForName(".."));
}

TEST(FileDomainStore, DefaultFolderFollowsTheEnvironment) {
    setenv("CORVALIS_PREFERENCES_DIR", "/tmp/corvalis-prefs-here", 1);
    EXPECT_EQ(FileDomainStore::defaultFolder(), "/tmp/corvalis-prefs-here");
    unsetenv("CORVALIS_PREFERENCES_DIR");
    setenv("XDG_CONFIG_HOME", "/tmp/xdg", 1);
    EXPECT_EQ(FileDomainStore::defaultFolder(), "/tmp/xdg/corvalis/Preferences");
    unsetenv("XDG_CONFIG_HOME");
    setenv("HOME", "/home/someone", 1);
    EXPECT_EQ(FileDomainStore::defaultFolder(), "/home/someone/.config/corvalis/Preferences");
}
