#include "fileutils/NameOrder.h"

#include <gtest/gtest.h>

namespace corvalis {
namespace {

using plist::Array;
using plist::Dictionary;
using plist::Value;

TEST(FinderCollator, OrdersNamesAsAFileBrowserDoes) {
    FinderCollator root("");
    EXPECT_EQ(root.compare("File 9", "File 10"), -1);  // digits as numbers
    EXPECT_EQ(root.compare("textedit", "TextEdit"), 0);
    EXPECT_EQ(root.compare("\xEF\xBC\xA1\xEF\xBC\xA2\xEF\xBC\xA3", "abc"), 0);  // fullwidth ABC
    EXPECT_EQ(root.compare("Caf\xC3\xA9", "Cafe\xCC\x81"), 0);                  // composed and decomposed é
    EXPECT_EQ(root.compare("resume", "r\xC3\xA9sum\xC3\xA9"), -1);              // diacritics count
    EXPECT_NE(root.compare("a-b", "ab"), 0);                                    // punctuation counts
    EXPECT_EQ(FinderCollator("sv").compare("\xC3\xB6", "z"), 1);                // Swedish: ö after z
    EXPECT_EQ(root.compare("\xC3\xB6", "z"), -1);
    EXPECT_EQ(FinderCollator("xx_YY").compare("File 9", "File 10"), -1);       // unknown locale: root rules
    EXPECT_EQ(collationLocaleFromPosix("de_CH.UTF-8@euro"), "de_CH");
    EXPECT_EQ(collationLocaleFromPosix("C.UTF-8"), "");
}

Value entry(const char* name, const char* path, bool updated = false) {
    Dictionary record{{"Name", name}, {"Path", path}};
    if (updated) record.set("Updated", true);
    return record;
}

std::string order(const Array& entries, const char* key) {
    std::string listed;
    for (const Value& value : entries) listed += value[key].stringOr("(absent)") + " ";
    return listed;
}

TEST(EntryComparators, NamePathAndUpdatedOrders) {
    Array list{entry("Mail", "/b"), entry("Mail", "/a"), entry("maps", "/m"), entry("App 10", "/10"), entry("App 9", "/9")};
    Array byName = list.deepCopy();
    sortUsingFunction(byName, SortByName);
    EXPECT_EQ(order(byName, "Path"), "/9 /10 /b /a /m ");  // equal names keep their order
    sortUsingFunction(list, SortByNameAndPath);
    EXPECT_EQ(order(list, "Path"), "/9 /10 /a /b /m ");
    EXPECT_EQ(SortByName(Value(Dictionary{{"Path", "/x"}}), entry("A", "/y")), -1);  // no name sorts as ""

    // Paths compare as plain text; an entry with "Updated" goes after an equal one without.
    EXPECT_EQ(SortByPathAndUpdated(entry("x", "/10"), entry("x", "/9")), -1);
    Array apps{entry("updated", "/a", true), entry("plain", "/a"), entry("first", "/0"), entry("both", "/a", true)};
    sortUsingFunction(apps, SortByPathAndUpdated);
    EXPECT_EQ(order(apps, "Name"), "first plain updated both ");
}

Array groupsWith(std::initializer_list<const char*> ids) {
    Array groups;
    for (const char* id : ids) groups.append(Dictionary{{"KeyboardShortcut", Dictionary{{"CommandID", id}}}});
    return groups;
}

TEST(NewUniqueCommandId, FollowsTheRunFromTheSmallestId) {
    EXPECT_EQ(NewUniqueCommandId(Array{}), "2000");
    EXPECT_EQ(NewUniqueCommandId(groupsWith({"2005", "2001", "2000"})), "2002");
    EXPECT_EQ(NewUniqueCommandId(groupsWith({"2001", "2002"})), "2000");
    EXPECT_EQ(NewUniqueCommandId(groupsWith({"100", "5", "6"})), "7");
    EXPECT_EQ(NewUniqueCommandId(groupsWith({"100", "11", "9", "10"})), "12");  // sorted as numbers, not text
    EXPECT_EQ(NewUniqueCommandId(groupsWith({"2000", "2000", "2001"})), "2001");  // a repeat ends the run
    Array mixed = groupsWith({"2000"});
    mixed.append(Dictionary{{"Name", "No shortcut"}});
    mixed.append(Dictionary{{"KeyboardShortcut", Dictionary{{"CommandID", Value::int32(1990)}}}});
    EXPECT_EQ(NewUniqueCommandId(mixed), "2001");
}

}  // namespace
}  // namespace corvalis
