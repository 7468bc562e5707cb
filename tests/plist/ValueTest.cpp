#include <gtest/gtest.h>

#include "plist/Value.h"

using namespace corvalis::plist;

TEST(Value, ContainersAreSharedHandlesAndDeepCopyDetaches) {
    Array apps;
    Dictionary group{{"Applications", apps}};
    Dictionary domain{{"Groups", Array{group}}};

    // Editing through a handle taken from the domain changes the domain itself.
    domain["Groups"].array()->operator[](0).dictionary()->operator[]("Applications").array()->append("Mail");
    EXPECT_EQ(apps.size(), 1u);

    Dictionary copy = domain.deepCopy();
    EXPECT_EQ(copy, domain);
    apps.append("Notes");
    EXPECT_NE(copy, domain);
    EXPECT_EQ(copy["Groups"].array()->operator[](0).dictionary()->operator[]("Applications").array()->size(), 1u);
}

TEST(Value, WrongTypeAccessAnswersAbsentAndNeverThrows) {
    Value text("7");
    EXPECT_FALSE(text.boolean() || text.toInt32() || text.dictionary());  // no conversion of text
    Dictionary dict;
    EXPECT_TRUE(dict["missing"].isAbsent());
    EXPECT_TRUE(Array()[5].isAbsent());
    Array list{"a"};
    list.removeAt(9);
    list.set(9, "b");
    EXPECT_EQ(list.size(), 1u);
}

TEST(Value, IntegersKeepWidthAndCompareByValue) {
    EXPECT_EQ(Value::uint8(255).integer()->width, IntWidth::UInt8);
    EXPECT_EQ(Value::int16(-2).integer()->toInt64(), -2);
    EXPECT_EQ(Value::int32(7), Value::int64(7));
    EXPECT_EQ(Value::int32(7), Value::real64(7.0));
    // -1 and the largest unsigned value share their bits but are different numbers.
    EXPECT_NE(Value::int64(-1), Value::uint64(UINT64_MAX));
    EXPECT_NE(Value(true), Value::int32(1));
    EXPECT_EQ(Value::int32(-3).toDouble(), -3.0);
    EXPECT_EQ(Value::uint32(4000000000u).toDouble(), 4e9);
}

TEST(Value, NumberConversionsFollowCRules) {
    EXPECT_EQ(Value::real64(2.9).toInt32(), 2);
    EXPECT_EQ(Value::real64(1e300).toInt64(), INT64_MAX);  // saturates instead of undefined behaviour
    EXPECT_EQ(Value::int64(0x100000001LL).toInt32(), 1);          // truncates like a C cast
    EXPECT_EQ(Value(true).toFloat(), 1.0f);
    EXPECT_EQ(Value::real32(0.0f).toBool(), false);
}

TEST(Value, DictionaryKeepsInsertionOrderAndFindsKeysPastTheIndexThreshold) {
    Dictionary dict;
    for (int i = 0; i < 40; ++i) dict.set("k" + std::to_string(i), Value::int32(i));
    dict.set("k3", "replaced");
    EXPECT_EQ(dict.size(), 40u);
    EXPECT_EQ(dict.keys()[3], "k3");
    EXPECT_EQ(*dict["k3"].string(), "replaced");
    EXPECT_TRUE(dict.remove("k0"));
    EXPECT_FALSE(dict.remove("k0"));
    for (int i = 1; i < 40; ++i) EXPECT_TRUE(dict.contains("k" + std::to_string(i))) << i;
    EXPECT_EQ(dict.keys().front(), "k1");

    Dictionary reordered;
    std::vector<std::string> keys = dict.keys();
    for (auto it = keys.rbegin(); it != keys.rend(); ++it) reordered.set(*it, dict[*it]);
    EXPECT_EQ(reordered, dict);  // order does not matter for equality
}
