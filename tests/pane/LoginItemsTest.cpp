#include "platform/DesktopEntry.h"
#include "platform/linux/XdgAutostartLoginItems.h"

#include <gtest/gtest.h>

#include "support/IntegrationSupport.h"

using namespace corvalis;
using namespace corvalis::test;
namespace fs = std::filesystem;

namespace {

class LoginItemsTest : public ::testing::Test {
protected:
    TempDir tmp;
    fs::path autostart = tmp / "autostart";
    XdgAutostartLoginItems items{autostart};

    fs::path entry(const std::string& name, const std::string& text) {
        fs::create_directories(autostart);
        writeFile(autostart / name, text);
        return autostart / name;
    }
};

TEST_F(LoginItemsTest, EntriesForAwkwardPathsPassValidationAndReadBackAsTheirBundle) {
    for (std::string folder : {"plain", "with space", "quote\"dollar$back\\slash`tick", "100% ünïcode", " leading"}) {
        fs::path bundle = makeBundle(tmp / folder, "Corvalis", "com.kestrova.Corvalis.Controller");
        ASSERT_TRUE(AddURLToLoginItems(items, bundle.string() + "/", false)) << folder;
        EXPECT_EQ(desktopFileProblems(items.lastWrittenEntry()), "") << readFile(items.lastWrittenEntry());
        auto list = items.snapshot();
        ASSERT_TRUE(list);
        auto found = std::find_if(list->begin(), list->end(), [&](const LoginItem& i) { return i.path == bundle.string(); });
        ASSERT_NE(found, list->end()) << readFile(items.lastWrittenEntry());
        EXPECT_EQ(found->name, "Corvalis");
        EXPECT_TRUE(found->resolves);
    }
    EXPECT_EQ(items.snapshot()->size(), 5u);
}

TEST_F(LoginItemsTest, AddingNeverReplacesAnExistingEntry) {
    fs::path bundle = makeBundle(tmp.path(), "Corvalis", "com.kestrova.Corvalis.Controller");
    const std::string foreign = "[Desktop Entry]\nType=Application\nName=Someone else\nExec=/bin/true\n";
    fs::path taken = entry("com.kestrova.Corvalis.Corvalis.desktop", foreign);
    ASSERT_TRUE(items.insertLast(bundle.string(), false));
    EXPECT_EQ(items.lastWrittenEntry().filename(), "com.kestrova.Corvalis.Corvalis-2.desktop");
    EXPECT_EQ(readFile(taken), foreign);
    // No temporary file is left behind for a session to find.
    int files = 0;
    for ([[maybe_unused]] const auto& f : fs::directory_iterator(autostart)) ++files;
    EXPECT_EQ(files, 2);
}

TEST_F(LoginItemsTest, SnapshotReadsOtherProgramsEntriesAsTheSessionDoes) {
    EXPECT_EQ(items.snapshot()->size(), 0u);  // no folder yet: an empty list, not an unreadable one
    fs::path bundle = makeBundle(tmp.path(), "Tool", "com.example.Tool");
    entry("a-by-name.desktop", "[Desktop Entry]\nName=Shell\nType=Application\nExec=sh -c true\n");
    entry("b-in-bundle.desktop", "# comment\n[Desktop Entry]\nName = Tool\nExec=\"" + bundle.string() +
                                     "/Contents/MacOS/Launcher\" %u\n[Desktop Action x]\nName=Other\n");
    entry("c-turned-off.desktop", "[Desktop Entry]\nType=Application\nName=Corvalis\nExec=/nowhere\nHidden=true\n");
    entry("d-link.desktop", "[Desktop Entry]\nType=Link\nName=Corvalis\nURL=https://example.com\n");
    entry("e-missing.desktop", "[Desktop Entry]\nType=Application\nName=Corvalis\nExec=/no/such/program --x\n");
    entry("f-no-exec.desktop", "[Desktop Entry]\nType=Application\nName=Empty\n");
    entry("not-an-entry.txt", "[Desktop Entry]\nName=Ignored\nExec=/bin/true\n");

    auto list = items.snapshot();
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), 4u);
    EXPECT_EQ((*list)[0].id, "a-by-name.desktop");
    EXPECT_TRUE((*list)[0].resolves);
    EXPECT_TRUE((*list)[0].path.ends_with("/sh")) << (*list)[0].path;
    EXPECT_EQ((*list)[1].path, bundle.string());
    EXPECT_EQ((*list)[1].name, "Tool");
    EXPECT_EQ((*list)[2].path, "/no/such/program");
    EXPECT_FALSE((*list)[2].resolves);
    EXPECT_EQ((*list)[3].name, "Empty");
    EXPECT_FALSE((*list)[3].resolves);
}

// Awkward program paths are carried through real entries above; here, what no entry of ours holds.
TEST(DesktopEntryText, ExecLinesOfOtherPrograms) {
    using namespace desktop_entry;
    EXPECT_FALSE(execLine("/new\nline"));
    EXPECT_EQ(programOfExec("firefox %u"), "firefox");
    EXPECT_EQ(programOfExec("  /usr/bin/env FOO=1 x"), "/usr/bin/env");
    EXPECT_FALSE(programOfExec("\"/unterminated"));
    EXPECT_FALSE(programOfExec("   "));
    EXPECT_EQ(DesktopEntry::parse("[Desktop Entry]\nName=" + escapeValue(" a\\b\nc")).value("Name"), " a\\b\nc");
}

}  // namespace
