#include <gtest/gtest.h>

#include "keys/KVKeyCombination.h"
#include "keys/KeysFixture.h"
#include "plist/PlistIO.h"
#include "schema/PreferenceKeys.h"
#include "support/TestSupport.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

// Runs `corvalis-prefs summary` on the domain folder with the keyboard layout named; answers its output.
// With `xServer` it runs under a fresh Xvfb, whose layout is "us". How hot keys convert is the validator's test.
std::string summary(const test::TempDir& dir, const std::string& layout, bool xServer = false) {
    test::CommandRun run = test::runCommand(std::string(xServer ? "xvfb-run -a env" : "env -u DISPLAY") +
                                            " XKB_DEFAULT_LAYOUT=" + layout + " CORVALIS_PREFERENCES_DIR=" +
                                            dir.path().string() + " " CORVALIS_PREFS_TOOL " summary");
    EXPECT_EQ(run.status, 0) << run.output;
    return run.output;
}

std::int64_t storedQuitMenuKeyCode(const test::TempDir& dir) {
    ParseResult stored = parse(test::readFile(dir / "com.kestrova.Corvalis.plist"));
    const Value& quit = (*(*stored.value.dictionary())[keys::HotKeys].array())[1];
    return (*quit.dictionary())[keys::VirtualKeyCode].toInt64().value_or(-1);
}

}  // namespace

TEST(SummaryCommand, ShowsMenusGroupsHotKeysAndShortcutsUnderTheCurrentLayout) {
    test::TempDir dir;
    Dictionary shortcut = KVKeyCombination(0, 0x12, modifiers::Command | modifiers::Option).dictionary();
    shortcut.set(keys::Enabled, true);
    test::writeFile(dir / "com.kestrova.Corvalis.plist", toXml(Dictionary{
        {keys::EnableQuitMenuHotKey, true},
        {keys::KeyboardShortcuts, Dictionary{{"1006", shortcut}, {"1007", Dictionary{{keys::Enabled, true}}}}},
        {keys::Groups, Array{Dictionary{{keys::Name, "Work"}, {keys::CanBeDeleted, true},
                                        {keys::Applications, Array{Dictionary{{keys::Name, "Editor"}, {keys::Path, "/bin/true"}}}}}}}}));
    std::string us = summary(dir, "us");
    for (const char* line : {"  Open menu     ⇧⌃O  disabled\n", "  Quit menu     ⇧⌃Q  enabled\n", "  Work: 1 application\n",
                             "  ⌥⌘1  Show All\n"})
        EXPECT_NE(us.find(line), std::string::npos) << line << "\nin\n" << us;
    EXPECT_NE(us.find("Open menu ("), std::string::npos) << us;
    EXPECT_EQ(us.find("Minimize"), std::string::npos) << "a command without a combination is listed:\n" << us;
}

TEST(SummaryCommand, TheXServersLayoutComesBeforeTheEnvironment) {
    test::TempDir dir;
    test::writeFile(dir / "com.kestrova.Corvalis.plist", toXml(Dictionary()));
    std::string output = summary(dir, "fr", true);
    EXPECT_NE(output.find("  Quit menu     ⇧⌃Q  disabled\n"), std::string::npos) << output;
    EXPECT_EQ(storedQuitMenuKeyCode(dir), 12);  // the US key Q, not the French key marked A
}
