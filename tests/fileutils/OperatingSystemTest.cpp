#include "fileutils/KVOperatingSystem.h"

#include <gtest/gtest.h>

namespace corvalis {
namespace {

using Version = KVOperatingSystem::SystemVersion;

// What cannot be read as an older system is the newest one, so that no old branch is taken by mistake.
// Up to 10.9 the packed number decides (a field past 9 counts as 9), from 10.10 on the minor version.
TEST(OperatingSystem, OlderSystemsTakeOlderBranchesAndAnythingElseIsTheNewest) {
    const Version newest = Version::probe(std::nullopt);
    EXPECT_TRUE(newest.is10_13orLater() && !newest.is10_9());
    for (const char* env : {"", "10.15.7", "14.2", "banana", "9.2.2", "10..1", "10.6.8.1", " 10.6.8"})
        EXPECT_EQ(Version::probe(env), newest) << env;
    EXPECT_EQ(Version::probe("10.4.11").legacy, 0x1049u);
    EXPECT_TRUE(Version::probe("10.6.8").isLower10_7() && !Version::probe("10.6.8").is10_7orLater());
    Version elCapitan = Version::probe("10.11");
    EXPECT_TRUE(elCapitan.is10_11orLater() && elCapitan.isLower10_12() && !elCapitan.is10_9());
}

}  // namespace
}  // namespace corvalis
