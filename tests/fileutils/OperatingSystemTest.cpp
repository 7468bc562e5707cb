#include "fileutils/KVOperatingSystem.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace corvalis {
namespace {

using Version = KVOperatingSystem::SystemVersion;

Version probe(const char* env) {
    return Version::probe(env ? std::optional<std::string_view>(env) : std::nullopt);
}

// Every test's answer as 0 or 1: the orLater tests from 10.4 to 10.13, a space, the isLower
// tests from 10.6 to 10.13, a space, is10_9 and the two capability flags.
std::string answers(const char* env) {
    using V = Version;
    static constexpr bool (V::*kChecks[])() const = {&V::is10_4orLater, &V::is10_5orLater,
        &V::is10_6orLater, &V::is10_6_6orLater, &V::is10_7orLater, &V::is10_8orLater,
        &V::is10_9orLater, &V::is10_10orLater, &V::is10_11orLater, &V::is10_12orLater,
        &V::is10_13orLater, nullptr, &V::isLower10_6, &V::isLower10_7, &V::isLower10_8,
        &V::isLower10_9, &V::isLower10_10, &V::isLower10_11, &V::isLower10_12,
        &V::isLower10_13, nullptr, &V::is10_9, &V::supportsBackingPropertiesNotification,
        &V::supportsSharing};
    Version version = probe(env);
    std::string row;
    for (auto check : kChecks) row += !check ? ' ' : (version.*check)() ? '1' : '0';
    return row;
}

TEST(OperatingSystem, NewestSystemTakesEveryNewBranch) {
    for (const char* env : {static_cast<const char*>(nullptr), "", "10.13", "10.15.7", "14.2",
                            "banana", "10.x", "9.2.2", "10..1", "10.6.8.1", " 10.6.8"}) {
        EXPECT_EQ(answers(env), "11111111111 00000000 011") << (env ? env : "unset");
    }
}

TEST(OperatingSystem, OlderSystemsTakeOlderBranches) {
    EXPECT_EQ(answers("10.6.8"), "11110000000 01111111 000");
    EXPECT_EQ(answers("10.7.5"), "11111000000 00111111 010");
    EXPECT_EQ(answers("10.9.5"), "11111110000 00001111 111");
    EXPECT_EQ(answers("10.11"), "11111111100 00000011 011");
    EXPECT_EQ(answers("10.12.6"), "11111111110 00000001 011");
}

TEST(OperatingSystem, LegacyNumberAndProcessWideAnswers) {
    EXPECT_EQ(Version::probe("10.6.8").legacy, 0x1068u);
    EXPECT_EQ(Version::probe("10.4.11").legacy, 0x1049u);
    EXPECT_EQ(Version::probe("10.10.5"), (Version{10, 10, 5, 0}));
    EXPECT_EQ(KVOperatingSystem::current(), probe(std::getenv("CORVALIS_SYSTEM_VERSION")));
    EXPECT_EQ(KVOperatingSystem::isLower10_7(), KVOperatingSystem::current().isLower10_7());
}

}  // namespace
}  // namespace corvalis
