#include <gtest/gtest.h>
#include <sys/stat.h>

#include "fileutils/AliasRecord.h"
#include "fileutils/AliasResolution.h"
#include "fileutils/FileFixtures.h"
#include "support/FakeWorkspace.h"

namespace corvalis {
namespace {

namespace fs = std::filesystem;
using namespace test;

void appendBE(plist::Data& out, std::uint64_t value, int width) {
    for (int i = width - 1; i >= 0; --i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

// A classic record: the fixed header of its version (zeros), then tagged extended data.
plist::Data classicRecord(int version, const std::vector<std::pair<int, std::string>>& tags) {
    plist::Data out(4, 0);  // user type
    appendBE(out, 0, 2);    // size, patched below
    appendBE(out, static_cast<std::uint64_t>(version), 2);
    out.resize(version == 2 ? 150 : 58, 0);
    for (const auto& [tag, value] : tags) {
        appendBE(out, static_cast<std::uint16_t>(tag), 2);
        appendBE(out, value.size(), 2);
        out.insert(out.end(), value.begin(), value.end());
        if (value.size() % 2) out.push_back(0);
    }
    appendBE(out, 0xFFFF0000u, 4);  // the end tag
    out[4] = static_cast<std::uint8_t>(out.size() >> 8), out[5] = static_cast<std::uint8_t>(out.size());
    return out;
}

TEST(AliasRecord, OwnRecordsRoundTripAndForeignBytesAreRefused) {
    FileIdentity identity{"/Applications/Mail.app", 0x0102030405060708u, 77, "org.example.mail", 1795442076000000001u};
    auto bytes = encodeAliasRecord(identity);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(decodeAliasRecord(*bytes), identity);
    for (std::size_t length = 0; length < bytes->size(); ++length)
        EXPECT_FALSE(decodeAliasRecord(std::span(bytes->data(), length))) << length;
    plist::Data longer = *bytes;
    longer.push_back(0);
    EXPECT_FALSE(decodeAliasRecord(longer));
    (*bytes)[5] = 2;  // a version this reader does not know
    EXPECT_FALSE(decodeAliasRecord(*bytes));
    EXPECT_FALSE(encodeAliasRecord({std::string(1000, 'a'), 1, 2, ""}));
}

TEST(AliasRecord, ClassicRecordsGiveTheirPosixPath) {
    auto v2 = classicRecord(2, {{0, "Applications"}, {18, "/Applications/Mail.app"}, {19, "/"}});
    auto v3 = classicRecord(3, {{14, std::string("\0\4M\0a\0i\0l", 9)}, {18, "Photos/x.jpg"}, {19, "/Volumes/Data/"}});
    EXPECT_EQ(classicAliasPosixPath(v2), "/Applications/Mail.app");
    EXPECT_EQ(classicAliasPosixPath(v3), "/Volumes/Data/Photos/x.jpg");
    EXPECT_FALSE(classicAliasPosixPath(classicRecord(2, {{2, "Macintosh HD:Applications:"}})));
    EXPECT_FALSE(classicAliasPosixPath(classicRecord(4, {{18, "/x"}})));
    // Cut short, the record's own size overruns the bytes; with a wrong size, the tags overrun it.
    for (std::size_t length = 0; length < v2.size(); ++length)
        EXPECT_FALSE(classicAliasPosixPath(std::span(v2.data(), length))) << length;
    plist::Data lying = v3;
    lying[5] = static_cast<std::uint8_t>(lying[5] - 6);
    EXPECT_FALSE(classicAliasPosixPath(lying));
    plist::Data noise(300);
    for (std::size_t i = 0; i < noise.size(); ++i) noise[i] = static_cast<std::uint8_t>(i * 7919 + 13);
    EXPECT_FALSE(classicAliasPosixPath(noise));
    EXPECT_FALSE(ResolveAliasData(noise).path);
}

class AliasResolutionTest : public ::testing::Test {
protected:
    TempDir dir;
    FakeWorkspace workspace;
    std::string app = makeBundle(dir / "Apps" / "Mail.app", "<key>CFBundleIdentifier</key><string>org.example.mail</string>");

    void SetUp() override { workspace.addApplication(app, "org.example.mail"); }
};

TEST_F(AliasResolutionTest, FindsTheSameFileMovedNearby) {
    auto data = AliasData(app, workspace);
    ASSERT_TRUE(data);
    AliasResolution same = ResolveAliasData(*data, workspace);
    EXPECT_EQ(same.path, app);
    EXPECT_FALSE(same.wasChanged);

    // The old folder is gone too: the search starts at the nearest folder that still exists.
    std::string moved = (dir / "Other" / "Deeper" / "Post.app").string();
    fs::create_directories(dir / "Other" / "Deeper");
    fs::rename(app, moved);
    fs::remove_all(dir / "Apps");
    AliasResolution found = ResolveAliasData(*data, workspace);
    EXPECT_EQ(found.path, moved);
    EXPECT_TRUE(found.wasChanged);
    ASSERT_TRUE(found.updatedData);
    FileIdentity before = *decodeAliasRecord(*data);
    EXPECT_EQ(*decodeAliasRecord(*found.updatedData),
              (FileIdentity{moved, before.device, before.inode, "org.example.mail", before.birthNs}));
}

TEST_F(AliasResolutionTest, AnotherFileOnAReusedInodeIsNotTheOne) {
    FileIdentity identity = *decodeAliasRecord(*AliasData(app, workspace));
    if (identity.birthNs == 0) GTEST_SKIP() << "this file system keeps no birth times";
    identity.birthNs += 1;  // as if the old file had gone and this one had its inode
    identity.bundleIdentifier.clear();
    EXPECT_FALSE(ResolveAliasData(*encodeAliasRecord(identity), workspace).path);
}

TEST_F(AliasResolutionTest, TheSearchForAMovedFileIsBounded) {
    auto data = AliasData(app, workspace);
    workspace.applications.clear();
    for (int i = 0; i < 5000; ++i) writeFile(dir / "Apps" / std::to_string(i), "");
    fs::create_directories(dir / "Apps" / "Sub");
    fs::rename(app, dir / "Apps" / "Sub" / "Mail.app");  // one level down, behind 5001 entries
    EXPECT_FALSE(ResolveAliasData(*data, workspace).path);
}

TEST_F(AliasResolutionTest, FallsBackOnTheBundleIdentifierThenFails) {
    auto data = AliasData(app, workspace);
    auto plain = AliasData((dir / "Apps").string(), workspace);
    ASSERT_TRUE(data && plain);
    EXPECT_EQ(decodeAliasRecord(*plain)->bundleIdentifier, "");

    // A reinstalled copy elsewhere is another file: only its identifier leads to it. It is made
    // before the old copy goes, so it cannot reuse the old inode.
    std::string reinstalled = makeBundle(dir / "Elsewhere" / "Mail.app", "");
    fs::remove_all(dir / "Apps");
    workspace.applications = {reinstalled};
    workspace.identifiers = {{reinstalled, "org.example.mail"}};
    AliasResolution byIdentifier = ResolveAliasData(*data, workspace);
    EXPECT_EQ(byIdentifier.path, reinstalled);
    EXPECT_TRUE(byIdentifier.wasChanged);

    fs::remove_all(dir / "Elsewhere");
    AliasResolution gone = ResolveAliasData(*data, workspace);
    EXPECT_FALSE(gone.path);
    EXPECT_FALSE(gone.wasChanged);
    EXPECT_FALSE(ResolveAliasData(*plain, workspace).path);
}

TEST_F(AliasResolutionTest, ClassicRecordsAreReplacedByOwnRecords) {
    AliasResolution resolution = ResolveAliasData(classicRecord(3, {{18, app}, {19, "/"}}), workspace);
    EXPECT_EQ(resolution.path, app);
    EXPECT_TRUE(resolution.wasChanged);
    ASSERT_TRUE(resolution.updatedData);
    EXPECT_EQ(decodeAliasRecord(*resolution.updatedData)->path, app);
    EXPECT_FALSE(ResolveAliasData(classicRecord(2, {{18, app + "-gone"}}), workspace).path);
}

}  // namespace
}  // namespace corvalis
