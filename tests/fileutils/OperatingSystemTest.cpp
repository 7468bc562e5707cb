#include "fileutils/KVOperatingSystem.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace corvalis {
namespace {

using Version = KVOperatingSystem::SystemVersion;

// What cannot be read as an older system is the newest one, so that no old branch is taken by mistake.
TEST(OperatingSystem, UnreadableValuesAreTheNewestSystem) {
    for (const char* env : {"", "10.13", "10.15.7", "14.2", "banana", "10.x", "9.2.2", "10..1", "10.6.8.1", " 10.6.8"}) {
        Version version = Version::probe(env);
        EXPECT_TRUE(version.is10_13orLater() && version.supportsSharing()) << env;
        EXPECT_FALSE(version.isLower10_6() || version.isLower10_13() || version.is10_9()) << env;
    }
    EXPECT_EQ(Version::probe(std::nullopt), Version::probe(""));
}

// Up to 10.9 the legacy number decides, from 10.10 on the minor version; the boundaries of both.
TEST(OperatingSystem, OlderSystemsTakeOlderBranches) {
    Version snowLeopard = Version::probe("10.6.8");
    EXPECT_EQ(snowLeopard.legacy, 0x1068u);
    EXPECT_TRUE(snowLeopard.is10_6_6orLater() && snowLeopard.isLower10_7() && !snowLeopard.isLower10_6());
    EXPECT_FALSE(snowLeopard.is10_7orLater() || snowLeopard.supportsBackingPropertiesNotification());
    EXPECT_EQ(Version::probe("10.4.11").legacy, 0x1049u);
    Version mavericks = Version::probe("10.9.5");
    EXPECT_TRUE(mavericks.is10_9() && mavericks.supportsSharing() && mavericks.isLower10_10());
    EXPECT_FALSE(mavericks.is10_10orLater());

    EXPECT_EQ(Version::probe("10.10.5"), (Version{10, 10, 5, 0}));
    Version elCapitan = Version::probe("10.11");
    EXPECT_TRUE(elCapitan.is10_11orLater() && elCapitan.isLower10_12() && !elCapitan.isLower10_11());
    EXPECT_FALSE(elCapitan.is10_12orLater() || elCapitan.is10_9() || elCapitan.isLower10_10());
    EXPECT_TRUE(Version::probe("10.12.6").is10_12orLater() && Version::probe("10.12.6").isLower10_13());

    const char* env = std::getenv("CORVALIS_SYSTEM_VERSION");
    EXPECT_EQ(KVOperatingSystem::current(), Version::probe(env ? std::optional<std::string_view>(env) : std::nullopt));
}

}  // namespace
}  // namespace corvalis
