#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include "text/Localization.h"
#include "text/StringTables.h"

using namespace corvalis;

TEST(Localization, FormatsTakeArgumentsInOrderOrByPosition) {
    EXPECT_EQ(FormatText("Corvalis - %@", {std::string("22/11/2026")}), "Corvalis - 22/11/2026");
    EXPECT_EQ(FormatText("%@ %ld", {std::string("Group"), 3LL}), "Group 3");
    EXPECT_EQ(FormatText("%2$@ before %1$@", {std::string("a"), std::string("b")}), "b before a");
    EXPECT_EQ(FormatText("100%% of %d", {7LL}), "100% of 7");
    EXPECT_EQ(FormatText("[%@] and %@", {std::string("3")}), "[3] and ");  // a missing argument leaves nothing
    EXPECT_EQ(FormatText("odd %q end %", {}), "odd %q end %");
    EXPECT_EQ(LocalizedString("NoSuchKeyAnywhere"), "NoSuchKeyAnywhere");  // an unknown key shows itself
}

// Every key the code looks up must be in the English table.
TEST(Localization, EnglishTableHasEveryKeyTheCodeUses) {
    std::regex lookup(R"re((?:Localized(?:String|Format)|localized(?:Format)?)\(\s*"([^"]+)")re");
    int checked = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(CORVALIS_SOURCE_DIR "/src")) {
        if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h") continue;
        std::ifstream in(entry.path());
        std::stringstream text;
        text << in.rdbuf();
        std::string source = text.str();
        for (std::sregex_iterator it(source.begin(), source.end(), lookup), end; it != end; ++it) {
            EXPECT_TRUE(EnglishTableHasKey((*it)[1].str())) << (*it)[1].str() << " used in " << entry.path();
            ++checked;
        }
    }
    EXPECT_GT(checked, 0);
}

// The tables of a language form one table: a key defined in two files would mean
// whichever file loads last, so each key is defined once per language.
TEST(Localization, NoKeyIsDefinedTwiceInOneLanguage) {
    std::regex definition(R"re(^\s*"([^"]+)"\s*=)re", std::regex::multiline);
    std::map<std::pair<std::string, std::string>, int> definitions;
    for (const StringTableSource& table : stringTableSources()) {
        std::string text(table.text);
        for (std::sregex_iterator it(text.begin(), text.end(), definition), end; it != end; ++it)
            ++definitions[{std::string(table.language), (*it)[1].str()}];
    }
    ASSERT_FALSE(definitions.empty());
    for (const auto& [key, count] : definitions) EXPECT_EQ(count, 1) << key.first << ": " << key.second;
}
