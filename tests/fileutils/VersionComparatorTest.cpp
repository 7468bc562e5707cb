#include "fileutils/KVVersionComparator.h"

#include <gtest/gtest.h>

namespace corvalis {
namespace {

int compare(std::string_view a, std::string_view b) {
    return KVVersionComparator::defaultComparator().compareVersion(a, b);
}

TEST(VersionComparator, NumbersCompareByValue) {
    EXPECT_EQ(compare("10.9", "10.10"), -1);
    EXPECT_EQ(compare("1.02", "1.2"), 0);
    EXPECT_EQ(compare("1.0", "1.0.0"), 0);
    EXPECT_EQ(compare("123456789012345678901234567890", "99999999999999999999999999999.9"), 1);
    EXPECT_EQ(compare("000000000000000000000000000000007.1", "7.1.0"), 0);
    // What is no number compares as text.
    EXPECT_EQ(compare("1.x", "1.0"), 1);
    EXPECT_EQ(compare("1..10", "1..9"), -1);
}

TEST(VersionComparator, PreReleasesSortBeforeTheRelease) {
    EXPECT_EQ(compare("1.0b2", "1.0b10"), -1);
    EXPECT_EQ(compare("1.0dev9", "1.0a1"), -1);
    EXPECT_EQ(compare("1.0B2", "1.0beta2"), 0);
    EXPECT_EQ(compare("1.0rc1", "1.0"), 1);
    EXPECT_EQ(compare("1.0", "1.0.1b1"), -1);
    EXPECT_EQ(compare("1.0.1b1", "1.0.1"), -1);
}

TEST(VersionComparator, DecomposesAndPads) {
    const KVVersionComparator& comparator = KVVersionComparator::defaultComparator();
    EXPECT_EQ(comparator.decomposeVersion("2.1.3B4"), (KVVersionParts{{"2", "1", "3"}, "b", "4"}));
    EXPECT_EQ(comparator.decomposeVersion("2.1"), (KVVersionParts{{"2", "1"}, "f", "0"}));
    for (const char* bad : {"2.a", "2b.1", "", "1..2", "1.", ".1", "1.0b2c", "1.0b2c3"})
        EXPECT_EQ(comparator.decomposeVersion(bad), std::nullopt) << bad;
    KVVersionParts parts = *comparator.decomposeVersion("1b2");
    comparator.conformVersion(parts, 3);
    EXPECT_EQ(parts, (KVVersionParts{{"1", "0", "0"}, "b", "2"}));
}

}  // namespace
}  // namespace corvalis
