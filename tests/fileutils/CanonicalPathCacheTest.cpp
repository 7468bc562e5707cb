#include <gtest/gtest.h>

#include <filesystem>

#include "fileutils/CanonicalPathCache.h"
#include "support/TestSupport.h"

using namespace corvalis;

TEST(CanonicalPathCache, OnlyExistingCanonicalPathsPass) {
    test::TempDir dir;
    std::filesystem::path real = std::filesystem::canonical(dir.path());
    std::filesystem::create_directories(real / "apps" / "Mail.app");
    std::filesystem::create_symlink(real / "apps", real / "linked");
    std::filesystem::create_symlink(real / "apps" / "Mail.app", real / "apps" / "Alias.app");
    struct Case {
        std::string path;
        bool passes;
    } cases[] = {
        {(real / "apps" / "Mail.app").string(), true},
        {(real / "apps" / "Gone.app").string(), false},
        {(real / "linked" / "Mail.app").string(), false},    // a linked folder
        {(real / "apps" / "Alias.app").string(), false},     // a link itself
        {(real / "apps" / "." / "Mail.app").string(), false},
        {(real / "apps" / "Mail.app").string() + "/", false},
        {"apps/Mail.app", false},
        {(real / "apps" / "Mail.app").string(), true},       // again, from the folder kept open
    };
    CanonicalPathCache cache;
    for (const Case& c : cases) EXPECT_EQ(cache.isCanonicalAndExists(c.path), c.passes) << c.path;

    // The next pass notices a file replaced by a link in a folder it trusted.
    std::filesystem::rename(real / "apps" / "Mail.app", real / "Mail.app");
    std::filesystem::create_symlink(real / "Mail.app", real / "apps" / "Mail.app");
    cache.beginPass();
    EXPECT_FALSE(cache.isCanonicalAndExists((real / "apps" / "Mail.app").string()));
    EXPECT_TRUE(cache.isCanonicalAndExists((real / "Mail.app").string()));

    // And a folder two levels up replaced by a link to where it went.
    std::filesystem::create_directories(real / "top" / "mid" / "Notes.app");
    std::string notes = (real / "top" / "mid" / "Notes.app").string();
    cache.beginPass();
    EXPECT_TRUE(cache.isCanonicalAndExists(notes));
    std::filesystem::rename(real / "top", real / "moved");
    std::filesystem::create_symlink(real / "moved", real / "top");
    cache.beginPass();
    EXPECT_FALSE(cache.isCanonicalAndExists(notes));
}
