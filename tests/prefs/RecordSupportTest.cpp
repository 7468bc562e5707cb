#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "prefs/RecordSupport.h"
#include "support/TestSupport.h"

using namespace corvalis;

TEST(NameOrder, SortingByKeysKeepsTheCollatorsOrderAndTies) {
    std::vector<plist::Dictionary> list;
    for (const char* name : {"é", "App 10", "app 2", "e", "App 2"}) list.push_back(plist::Dictionary{{"Name", name}});
    records::sortByName(list);
    std::vector<std::string> names;
    for (const auto& record : list) names.push_back(record["Name"].stringOr("(absent)"));
    EXPECT_EQ(names, (std::vector<std::string>{"app 2", "App 2", "App 10", "e", "é"}));
}

