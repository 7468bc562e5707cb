#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "keys/KVKeyCombination.h"
#include "keys/KeysFixture.h"
#include "plist/PlistIO.h"
#include "prefs/PreferenceKeys.h"
#include "support/TestSupport.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

// Runs `corvalis-prefs summary` on the domain folder with the keyboard layout named; answers its output.
// With `xServer` it runs under a fresh Xvfb, whose layout is "us".
std::string summary(const test::TempDir& dir, const std::string& layout, bool xServer = false) {
    std::string command = std::string(xServer ? "xvfb-run -a env" : "env -u DISPLAY") + " XKB_DEFAULT_LAYOUT=" + layout + " CORVALIS_PREFERENCES_DIR=" +
                          dir.path().string() + " " CORVALIS_PREFS_TOOL " summary 2>&1";
    std::string output;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        std::array<char, 4096> buffer;
        while (std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe)) output.append(buffer.data(), n);
        EXPECT_EQ(::pclose(pipe), 0) << output;
    }
    return output;
}

void writeDomain(const test::TempDir& dir, const Dictionary& domain) {
    test::writeFile(dir / "com.kestrova.Corvalis.plist", toXml(domain));
}

}  // namespace

TEST(SummaryCommand, ShowsMenusGroupsHotKeysAndShortcutsUnderTheCurrentLayout) {
    test::TempDir dir;
    Dictionary shortcut = KVKeyCombination(0, 0x12, modifiers::Command | modifiers::Option).dictionary();
    shortcut.set(keys::Enabled, true);
    writeDomain(dir, Dictionary{
        {keys::EnableQuitMenuHotKey, true},
        {keys::KeyboardShortcuts, Dictionary{{"1006", shortcut}, {"1007", Dictionary{{keys::Enabled, true}}}}},
        {keys::Groups, Array{Dictionary{{keys::Name, "Work"}, {keys::CanBeDeleted, true},
                                        {keys::Applications, Array{Dictionary{{keys::Name, "Editor"}, {keys::Path, "/bin/true"}}}}}}}});
    std::string us = summary(dir, "us");
    for (const char* line : {"  Open menu     ⇧⌃O  disabled\n", "  Quit menu     ⇧⌃Q  enabled\n",
                             "  Special menu  ⇧⌃E  disabled\n", "  Work: 1 application\n", "  ⌥⌘1  Show All\n"})
        EXPECT_NE(us.find(line), std::string::npos) << line << "\nin\n" << us;
    EXPECT_NE(us.find("Open menu ("), std::string::npos) << us;
    EXPECT_EQ(us.find("Minimize"), std::string::npos) << "a command without a combination is listed:\n" << us;

    // The older hot keys were rewritten under "us": the stored codes stay those of the US keys.
    std::string again = summary(dir, "fr");
    EXPECT_NE(again.find("  Quit menu     ⇧⌃A  enabled\n"), std::string::npos) << again;
}

TEST(SummaryCommand, OlderHotKeysTakeTheKeysOfTheFrenchLayout) {
    test::TempDir dir;
    writeDomain(dir, Dictionary());
    std::string fr = summary(dir, "fr");
    EXPECT_NE(fr.find("  Quit menu     ⇧⌃Q  disabled\n"), std::string::npos) << fr;
    ParseResult stored = parse(test::readFile(dir / "com.kestrova.Corvalis.plist"));
    ASSERT_TRUE(stored.value.dictionary());
    const Value& quit = (*(*stored.value.dictionary())[keys::HotKeys].array())[1];
    EXPECT_EQ((*quit.dictionary())[keys::VirtualKeyCode].longLongValue(), 0);  // the key marked A
}

TEST(SummaryCommand, TheXServersLayoutComesBeforeTheEnvironment) {
    test::TempDir dir;
    writeDomain(dir, Dictionary());
    std::string output = summary(dir, "fr", true);
    EXPECT_NE(output.find("  Quit menu     ⇧⌃Q  disabled\n"), std::string::npos) << output;
    ParseResult stored = parse(test::readFile(dir / "com.kestrova.Corvalis.plist"));
    ASSERT_TRUE(stored.value.dictionary());
    const Value& quit = (*(*stored.value.dictionary())[keys::HotKeys].array())[1];
    EXPECT_EQ((*quit.dictionary())[keys::VirtualKeyCode].longLongValue(), 12);  // the US key Q
}
