#include "fileutils/ApplicationEnumeration.h"

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "support/FakeWorkspace.h"
#include "support/TestSupport.h"

namespace corvalis {
namespace {

namespace fs = std::filesystem;
using Paths = std::vector<std::string>;

// Walks over real folders; paths are reported relative to the (canonical) root.
class Walk : public ::testing::Test {
protected:
    test::TempDir temp, elsewhereTemp;
    fs::path root = fs::canonical(temp.path()), elsewhere = fs::canonical(elsewhereTemp.path());

    void app(const fs::path& bundle) {
        fs::create_directories(bundle / "Contents");
        test::writeFile(bundle / "Contents" / "Info.plist", "<plist><dict/></plist>");
    }
    void link(const fs::path& at, const fs::path& target) { fs::create_directory_symlink(target, root / at); }

    std::string walk(std::int32_t depth, const fs::path& from, int* status = nullptr) {
        plist::Array found;
        int result = InsertApplicationsFromFolder(from.string(), depth, found);
        if (status) *status = result;
        std::string listed;
        for (const plist::Value& entry : found) {
            std::string path = entry["Path"].stringOr("(absent)");
            listed += (listed.empty() ? "" : ", ") + (path.starts_with(root.string()) ? path.substr(root.string().size() + 1) : path);
        }
        return listed;
    }
    std::string walk(std::int32_t depth) { return walk(depth, root); }
};

TEST_F(Walk, ItemsInNameOrderToTheDepthAsked) {
    for (const char* bundle : {"B.app", "a/Nested.app", "a/deeper/Deep.app", "A.app", "Kit.framework/Inner.app",
                               "Widget.bundle"})
        app(root / bundle);
    fs::create_directories(root / "Hollow.app");  // a package without Info.plist is no application
    test::writeFile(root / "tool.desktop", "[Desktop Entry]\nType=Application\nName=Tool\nExec=true\n");
    test::writeFile(root / "site.desktop", "[Desktop Entry]\nType=Link\nName=Site\nURL=http://example.org\n");

    EXPECT_EQ(walk(1), "A.app, B.app, tool.desktop");
    EXPECT_EQ(walk(2), "A.app, B.app, a/Nested.app, tool.desktop");
    for (int unlimited : {0, -1, 3}) EXPECT_EQ(walk(unlimited), "A.app, B.app, a/Nested.app, a/deeper/Deep.app, tool.desktop");

    plist::Array entries;
    InsertApplicationsFromFolder(root.string(), 1, entries);
    EXPECT_EQ(entries[2]["Name"].stringOr("(absent)"), "Tool");  // the entry's own name
}

TEST_F(Walk, SymbolicLinksAreFollowedOnceAndNeverInLoops) {
    app(elsewhere / "Remote.app");
    app(elsewhere / "More" / "Far.app");
    app(root / "Local.app");
    link("Alias to Local.app", "Local.app");        // same folder: the target is met here anyway
    link("Alias to Remote.app", elsewhere / "Remote.app");
    link("more", elsewhere / "More");                // listed under the target's own path
    fs::create_directories(root / "sub");
    link("sub/up", "..");                            // folders already visited
    link("sub/chain", "../chain2");
    link("chain2", ".");
    link("dangling", "does-not-exist");
    const std::string expected = (elsewhere / "Remote.app").string() + ", Local.app, " + (elsewhere / "More/Far.app").string();
    EXPECT_EQ(walk(0), expected);
    link("sub/root-link", root);
    EXPECT_EQ(walk(0, root / "sub" / "root-link"), expected);  // the walk starts at the real folder
}

TEST_F(Walk, ALinkToAVisitedFolderIsNotWalkedAgain) {
    app(root / "shared/Tool.app");
    fs::create_directories(root / "a-links");
    fs::create_directories(root / "z-links");
    link("a-links/first", "../shared");  // met first: walked, and "shared" is visited from then on
    link("z-links/again", "../shared");
    // The plain folder is walked where it is met: only links are checked against visited folders.
    EXPECT_EQ(walk(0), "shared/Tool.app, shared/Tool.app");
}

TEST_F(Walk, LongPathsAreLeftOutAndBadStartsFail) {
    fs::path deep = root;
    while (deep.string().size() < 1000) deep /= std::string(200, 'd');
    app(deep / "TooDeep.app");
    app(root / "Near.app");
    EXPECT_EQ(walk(0), "Near.app");
    int status = 0;
    EXPECT_EQ(walk(0, root / "missing", &status), "");
    EXPECT_EQ(status, kFnfErr);
    EXPECT_EQ(walk(0, root / "Near.app/Contents/Info.plist", &status), "");
    EXPECT_EQ(status, kDirNFErr);
}

// A folder that cannot be read ends its parent's listing (the status is shared by
// all levels); the parent clears the access error, so the level above goes on.
TEST_F(Walk, AnUnreadableFolderEndsOnlyItsParentsListing) {
    for (const char* bundle : {"outer/A.app", "outer/M-locked/Hidden.app", "outer/Z.app", "p.app"}) app(root / bundle);
    fs::permissions(root, fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(root / "outer" / "M-locked", fs::perms::none);
    int channel[2];
    ASSERT_EQ(::pipe(channel), 0);
    pid_t child = ::fork();
    if (child == 0) {  // as an unprivileged user, since root reads every folder
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(2);
        int status = 0;
        std::string listed = walk(0, root, &status);
        std::string report = std::to_string(status) + " " + listed;
        ::_exit(::write(channel[1], report.data(), report.size()) == static_cast<ssize_t>(report.size()) ? 0 : 3);
    }
    ::close(channel[1]);
    char buffer[512];
    ssize_t got = ::read(channel[0], buffer, sizeof buffer);
    ::close(channel[0]);
    int exit = 0;
    ::waitpid(child, &exit, 0);
    fs::permissions(root / "outer" / "M-locked", fs::perms::owner_all);
    ASSERT_TRUE(WIFEXITED(exit) && WEXITSTATUS(exit) == 0 && got > 0);
    EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(got)), "0 outer/A.app, p.app");
}

TEST(SameFolder, ComparesFileIdentityNotText) {
    test::TempDir temp;
    fs::create_directories(temp / "real");
    fs::create_directories(temp / "other");
    fs::create_directory_symlink(temp / "real", temp / "link");
    EXPECT_TRUE(SameFolder((temp / "real").string(), (temp / "link").string()));
    EXPECT_TRUE(SameFolder((temp / "real").string(), (temp / "other/../real/").string()));
    EXPECT_FALSE(SameFolder((temp / "real").string(), (temp / "other").string()));
    EXPECT_FALSE(SameFolder((temp / "gone").string(), (temp / "gone").string()));
}

// "found major.minor.bugFix" for an application whose CFBundleVersion is `version`.
std::string versionOf(const plist::Value& version, const std::string& identifier = "org.example.App") {
    test::FakeWorkspace workspace;
    workspace.addApplication("/Applications/App.app", "org.example.App");
    workspace.infoDictionaries["/Applications/App.app"] =
        version.isAbsent() ? plist::Dictionary{} : plist::Dictionary{{"CFBundleVersion", version}};
    std::uint32_t major = 9, minor = 9, bugFix = 9;
    bool found = ApplicationVersion(identifier, major, minor, bugFix, workspace);
    return std::to_string(found) + " " + std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(bugFix);
}

TEST(ApplicationVersion, ReadsUpToThreeNumbers) {
    EXPECT_EQ(versionOf("2.5.7.9"), "1 2.5.7");
    EXPECT_EQ(versionOf("3b2.1rc"), "1 3.1.0");
    EXPECT_EQ(versionOf("1.-2.3"), "1 1.0.0");  // a negative minor ends the reading
    EXPECT_EQ(versionOf("-1.2"), "0 0.0.0");
    EXPECT_EQ(versionOf(plist::Value::int32(10)), "0 0.0.0");
    EXPECT_EQ(versionOf("1.0", "org.example.Missing"), "0 0.0.0");
}

}  // namespace
}  // namespace corvalis
