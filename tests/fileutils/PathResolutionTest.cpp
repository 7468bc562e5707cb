#include "fileutils/AliasResolution.h"
#include "fileutils/DisplayNames.h"
#include "fileutils/PathPredicates.h"

#include <gtest/gtest.h>

#include "fileutils/FileFixtures.h"
#include "fileutils/PathChecking.h"

namespace corvalis {
namespace {

namespace fs = std::filesystem;
using namespace test;

TEST(PathResolution, TellsApplicationsPackagesFoldersAndScripts) {
    TempDir dir;
    std::string app = makeBundle(dir / "Mail.app", "<key>CFBundleIdentifier</key><string>org.example.mail</string>");
    std::string bare = makeBundle(dir / "Broken.app", std::nullopt);
    std::string entry = makeDesktopEntry(dir / "editor.desktop", "Type=Application\nName=Editor\nExec=editor\n");
    std::string link = makeDesktopEntry(dir / "site.desktop", "Type=Link\nName=Site\nURL=https://example.org\n");
    fs::create_directories(dir / "Documents");

    EXPECT_TRUE(IsApplication(app) && IsApplication(entry));
    EXPECT_FALSE(IsApplication(bare) || IsApplication(link));  // without Info.plist a package, not an application
    EXPECT_TRUE(IsPackage(bare) && IsFolder((dir / "Documents").string()));
    EXPECT_FALSE(IsFolder(app));
    EXPECT_TRUE(IsScript("/nowhere/Backup.SCPT"));
    EXPECT_FALSE(IsScript("/nowhere/.scpt"));
}

TEST(PathResolution, RefusesPathsOfAThousandBytesOrMore) {
    TempDir dir;
    fs::path deep = dir.path();
    while (deep.string().size() < 1000) deep /= std::string(100, 'd');
    fs::create_directories(deep);
    std::string app = makeBundle(deep / "Long.app", "<key>CFBundleIdentifier</key><string>org.example.long</string>");

    EXPECT_FALSE(IsApplication(app));
    EXPECT_FALSE(AliasData(app).has_value());
    EXPECT_EQ(iconErrorForPath(app), 1);
}

TEST(PathResolution, ResolversFollowOneLevelOfLinkText) {
    TempDir dir;
    std::string app = makeBundle(dir / "Mail.app", "<key>CFBundleIdentifier</key><string>org.example.mail</string>");
    fs::create_directories(dir / "Folder");
    fs::create_symlink(app, dir / "absolute");
    fs::create_symlink("Mail.app", dir / "relative");
    fs::create_symlink(dir / "absolute", dir / "chain");
    fs::create_symlink(dir / "Folder", dir / "folder-link");
    fs::create_symlink(dir / "gone", dir / "dangling");
    fs::create_symlink(dir / "loop-b", dir / "loop-a");
    fs::create_symlink(dir / "loop-a", dir / "loop-b");

    for (auto resolve : {&ResolvePath, &ResolvePathLegacy}) {
        EXPECT_EQ(resolve(app), app);
        EXPECT_EQ(resolve((dir / "absolute").string()), app);
        EXPECT_EQ(resolve((dir / "relative").string()), "Mail.app");  // stored text, not completed
        EXPECT_EQ(resolve((dir / "chain").string()), (dir / "absolute").string());
        EXPECT_FALSE(resolve((dir / "dangling").string()).has_value());
        EXPECT_FALSE(resolve((dir / "loop-a").string()).has_value());
        EXPECT_FALSE(resolve((dir / "missing").string()).has_value());
    }
    // With a trailing slash it is still an alias file, though lstat no longer sees a link.
    EXPECT_TRUE(MyIsAliasFile((dir / "absolute").string() + "/"));
    EXPECT_FALSE(IsSymbolicLink((dir / "absolute").string() + "/"));
    EXPECT_EQ(ResolvedApplicationPath((dir / "absolute").string()), app);
    // One level only: the result is the next link, an application once followed.
    EXPECT_EQ(ResolvedApplicationPath((dir / "chain").string()), (dir / "absolute").string());
    EXPECT_FALSE(ResolvedApplicationPath((dir / "folder-link").string()).has_value());
    EXPECT_EQ(ResolvedFolderPath((dir / "folder-link").string()), (dir / "Folder").string());
    EXPECT_FALSE(ResolvedFolderPath(app).has_value());
    EXPECT_FALSE(ResolvedFolderPath((dir / "absolute").string()).has_value());  // a link to a bundle is a bundle
    writeFile(dir / "Tidy.scpt", "script");
    EXPECT_EQ(ResolvedApplicationOrScriptPath((dir / "Tidy.scpt").string()), (dir / "Tidy.scpt").string());
}

TEST(PathResolution, DisplayNamesHideApplicationExtensionsOnly) {
    TempDir dir;
    ScopedEnv all("LC_ALL", std::nullopt), messages("LC_MESSAGES", std::nullopt), lang("LANG", "de_CH.UTF-8");
    std::string entry = makeDesktopEntry(dir / "e.desktop", "Type=Application\nName=Editor\nName[de]=Bearbeiter\n");
    makeBundle(dir / "Old.app.app", "");  // only a bundle's own ".app" is hidden before the name loses one
    writeFile(dir / "Copy.app.app", "");
    EXPECT_EQ(LocalizedApplicationName(entry), "Bearbeiter");
    EXPECT_EQ(LocalizedApplicationName((dir / "Old.app.app").string()), "Old");
    EXPECT_EQ(LocalizedApplicationName((dir / "Copy.app.app").string()), "Copy.app");
    EXPECT_EQ(LocalizedApplicationName("/nowhere/Tidy.scpt"), "Tidy");
    EXPECT_EQ(LocalizedApplicationName("/nowhere/Backup.SCPT"), "Backup.SCPT");  // extensions are matched exactly
    EXPECT_EQ(LocalizedFolderName("/nowhere/Tidy.scpt"), "Tidy.scpt");
}

TEST(PathResolution, TextsOfOnlySpacesAreNotValidNames) {
    EXPECT_FALSE(isValid("") || isValid(" \t ") || isValid("\u00A0\u3000 "));
    EXPECT_TRUE(isValid("\n") && isValid("\xC3") && isValid("\xA0"));  // broken sequences are content
    EXPECT_EQ(noNewlineString("one\r\ntwo\nthree\r"), "one  two three ");
    EXPECT_EQ(StandardizedPath("/a//b/./c/../d/"), "/a/b/d");
    EXPECT_EQ(StandardizedPath("x/../y"), "x/../y");
}

TEST(PathResolution, TrashFoldersOfVolumesAndOfTheUser) {
    TempDir dir;
    ScopedEnv data("XDG_DATA_HOME", (dir / "data").string());
    for (const char* folder : {".Trash-1000/files", "data/Trash/files"}) fs::create_directories(dir / folder);
    writeFile(dir / ".Trash-1000/files/a.txt", "");
    writeFile(dir / "data/Trash/files/b.txt", "");
    writeFile(dir / "data/Trashcan.txt", "");

    EXPECT_EQ(iconErrorForPath((dir / ".Trash-1000/files/a.txt").string()), 2);
    EXPECT_EQ(iconErrorForPath((dir / "data//Trash/files/b.txt").string()), 2);
    EXPECT_EQ(iconErrorForPath((dir / "data/Trashcan.txt").string()), 0);
    EXPECT_EQ(iconErrorForPath((dir / "data/Trash/files/missing").string()), 1);
}

TEST(PathResolution, PresentationOptionsOfBundlesAndDesktopEntries) {
    TempDir dir;
    std::string legacy = makeBundle(dir / "L.app", "<key>NSUIElement</key><string>1</string><key>LSBackgroundOnly</key><string>YES</string>");
    std::string daemon = makeDesktopEntry(dir / "d.desktop", "Type=Application\nNoDisplay=true\nX-Corvalis-BackgroundOnly=true\n");
    bool ui = false, background = true;  // each preset to the opposite of what is expected
    EXPECT_TRUE(CopyApplicationInfoDictionaryPresentationOptions(legacy, &ui, &background));
    EXPECT_TRUE(ui && !background);  // only the string "1" counts
    EXPECT_TRUE(CopyApplicationInfoDictionaryPresentationOptions(daemon, &ui, &background) && background);
    EXPECT_FALSE(CopyApplicationInfoDictionaryPresentationOptions(makeBundle(dir / "Empty.app", std::nullopt), &ui, nullptr) || ui);
}

}  // namespace
}  // namespace corvalis
