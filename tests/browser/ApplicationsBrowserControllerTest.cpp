#include <QMimeData>
#include <QThreadPool>
#include <QUrl>

#include "browser/BrowserFixture.h"
#include "fileutils/browser/OpenMenuPaths.h"
#include "prefs/NotificationNames.h"

using namespace corvalis;
using namespace corvalis::plist;
using namespace corvalis::browser;
namespace fs = std::filesystem;

namespace {

using Browser = test::BrowserTest;

std::vector<int> tagsOf(const std::vector<BrowserSource>& sources) {
    std::vector<int> tags;
    for (const BrowserSource& source : sources) tags.push_back(source.tag);
    return tags;
}

}  // namespace

TEST_F(Browser, SourcesFollowTheMachineAndTheOpenMenu) {
    struct Case {
        const char* what;
        std::optional<std::string> developer;
        std::vector<const char*> menu;  // "A" and "B" are folders
        std::vector<int> tags;
    } cases[] = {
        {"no Developer folder: no tag 2", std::nullopt, {items::Groups}, {0, 3, 4, 5}},
        {"with the Developer folder", "/Developer/Applications", {items::Groups}, {0, 2, 3, 4, 5}},
        {"folders by their rows", std::nullopt, {items::Groups, items::Separator, "A", items::Separator, "B"},
         {0, 3, 4, 5, -1, 1002, 1004}},
    };
    fs::create_directories(disk / "A");
    fs::create_directories(disk / "B");
    for (const Case& c : cases) {
        developerFolder = c.developer;
        Array menu;
        for (const char* item : c.menu)
            menu.append(std::string(item).size() == 1 ? Value(folder(disk / item)) : Value(kind(item)));
        make(Dictionary{{keys::OpenMenuItems, menu}});
        EXPECT_EQ(tagsOf(view.sources), c.tags) << c.what;
        EXPECT_EQ(view.selectedTag, RunningApplicationsTag) << c.what;  // the factory choice
    }
}

TEST_F(Browser, FolderWalkListsEachApplicationOnceInNameOrder) {
    fs::path apps = disk / "Applications";
    fs::path alpha = test::makeApp(apps, "Alpha");
    test::makeApp(apps, "Beta");
    fs::create_symlink(alpha, apps / "Alpha link");  // found through the link and directly
    test::makeApp(apps / "Tools", "Gamma");
    test::makeApp(apps / "Tools" / "More", "Delta");                 // three levels down
    fs::create_symlink(apps, apps / "Tools" / "Loop");               // a link back up
    test::makeApp(apps, std::string("Bad\xff" "Name"));              // not valid UTF-8: never listed
    make();
    show(ApplicationsFolderTag);
    EXPECT_EQ(names(), (std::vector<std::string>{"Alpha", "Beta", "Gamma"}));
    EXPECT_EQ(view.depth, 2);
    EXPECT_FALSE(view.progress);

    browser->onDepth(3);  // a fixed source's depth is stored, not announced
    settle();
    EXPECT_EQ(names(), (std::vector<std::string>{"Alpha", "Beta", "Delta", "Gamma"}));
    EXPECT_EQ(prefs.intForKey(keys::BrowserApplicationsFolderDepth), 3);
    EXPECT_TRUE(bus.posted().empty());
}

TEST_F(Browser, DockTilesThatDoNotResolveOrLookLikeSeparatorsAreLeftOut) {
    fs::path found = test::makeApp(disk.path(), "Found");
    fs::path hyphens = test::makeApp(disk.path(), "---");
    fs::path upper = test::makeApp(disk.path(), "Upper");
    fs::path booked = test::makeApp(disk.path(), "Booked");
    auto tile = [](const std::string& type, const Value& data) { return Dictionary{{"tile-type", type}, {"tile-data", data}}; };
    auto fileData = [](const std::string& url, const Value& alias) {
        Dictionary file{{"_CFURLString", url}};
        if (!alias.isAbsent()) file.set("_CFURLAliasData", alias);
        return Dictionary{{"file-data", file}};
    };
    Data junk{1, 2, 3};
    Array tiles{
        tile("file-tile", fileData("file://" + found.string(), junk)),
        tile("file-tile", fileData(hyphens.string(), junk)),             // named only hyphens
        tile("FILE-TILE", fileData(upper.string(), junk)),               // the type in any case
        tile("file-tile", fileData((disk / "Gone.app").string(), junk)),  // missing, alias junk
        tile("file-tile", fileData(found.string(), Value())),            // no alias data
        tile("file-tile", Dictionary{{"book", junk}}),                    // bookmark that does not resolve
        tile("file-tile", Dictionary{{"book", *AliasData(booked.string(), workspace)}}),
        tile("spacer-tile", Dictionary()),
        Value("not a tile"),
    };
    domains.domains["com.apple.dock"] = Dictionary{{"persistent-apps", tiles}};
    make();
    show(DockApplicationsTag);
    EXPECT_EQ(names(), (std::vector<std::string>{"Booked", "Found", "Upper"}));

    // Without a Dock the desktop's favourites stand in; unknown ids are left out.
    domains.domains.erase("com.apple.dock");
    workspace.addApplication(upper.string(), "org.example.Upper.desktop");
    favorites = {"org.example.Upper.desktop", "org.example.Unknown.desktop"};
    show(DockApplicationsTag, true);
    EXPECT_EQ(names(), (std::vector<std::string>{"Upper"}));
}

TEST_F(Browser, BadOpenMenuFoldersShowTheirImageAndListNothing) {
    fs::path good = disk / "Good";
    fs::path trashed = disk / ".Trash" / "Apps";
    test::makeApp(good, "Kept");
    test::makeApp(trashed, "Thrown");
    std::string tooLong = (disk / std::string(1001, 'x')).string();
    struct Case {
        const char* what;
        Dictionary record;
        SourceIcon icon;
        std::vector<std::string> names;
    } cases[] = {
        {"an existing folder", folder(good), SourceIcon::None, {"Kept"}},
        {"a folder in the Trash", folder(trashed), SourceIcon::Trash, {}},
        {"a missing folder", Dictionary{{keys::Item, items::Folder}, {keys::Name, "Gone"}, {keys::Path, (disk / "Gone").string()}},
         SourceIcon::BadLink, {}},
        {"a path over 1,000 bytes", Dictionary{{keys::Item, items::Folder}, {keys::Name, "Long"}, {keys::Path, tooLong}},
         SourceIcon::BadLink, {}},
    };
    for (const Case& c : cases) {
        make(Dictionary{{keys::OpenMenuItems, Array{c.record}}});
        show(OpenMenuFolderTag);
        EXPECT_EQ(view.icon, c.icon) << c.what;
        EXPECT_EQ(names(), c.names) << c.what;
    }

    // The shown folder goes to the Trash: the next activation lists nothing.
    make(Dictionary{{keys::OpenMenuItems, Array{folder(good)}}});
    show(OpenMenuFolderTag);
    ASSERT_EQ(names(), (std::vector<std::string>{"Kept"}));
    fs::create_directories(disk / ".Trash");
    fs::rename(good, disk / ".Trash" / "Good");
    browser->windowDidBecomeMain();
    settle();
    EXPECT_EQ(view.icon, SourceIcon::Trash);
    EXPECT_TRUE(names().empty());
}

TEST(OpenMenuPaths, DuplicatesAreRemovedWithTheSeparatorLeftBesideThem) {
    using Change = OpenMenuPathChange;
    auto menu = [](const std::string& text) {
        Array items;
        for (char c : text)
            items.append(c == '-' ? Dictionary{{keys::Item, items::Separator}}
                                  : Dictionary{{keys::Item, items::Folder}, {keys::Path, std::string("/") + c}});
        return items;
    };
    auto text = [](const Array& items) {
        std::string result;
        for (const Value& item : items) result += item[keys::Path].string() ? (*item[keys::Path].string())[1] : '-';
        return result;
    };
    struct Case {
        std::string before, after;
        std::vector<Change> changes;
    } cases[] = {
        {"ab-c", "ab-c", {}},
        {"a-a", "a", {{2, true, true}, {1, false, false}}},
        {"a-a-b", "a-b", {{2, true, true}, {2, false, false}}},
        {"ab-b-a", "ab", {{3, true, true}, {3, false, false}, {3, true, true}, {2, false, false}}},
        {"aba", "ab", {{2, true, true}}},
    };
    for (const Case& c : cases) {
        Array items = menu(c.before);
        std::vector<Change> changes;
        RemoveDuplicateOpenMenuPaths(items, changes);
        EXPECT_EQ(text(items), c.after) << c.before;
        EXPECT_EQ(changes, c.changes) << c.before;
    }
}

TEST_F(Browser, RepairedPathsTellTheControllerAndTheMenuEditor) {
    fs::path kept = disk / "Kept";
    fs::create_directories(kept);
    // The second folder's path is gone; its alias data finds the first folder.
    Dictionary moved = folder(kept);
    moved.set(keys::Path, (disk / "Moved away").string());
    make(Dictionary{{keys::OpenMenuItems, Array{folder(kept), kind(items::Separator), moved}}});
    show(RunningApplicationsTag);

    Array expected{folder(kept)};
    EXPECT_EQ(Value(openMenu()), Value(expected));
    ASSERT_EQ(bus.posted().size(), 1u);
    EXPECT_EQ(bus.posted()[0].name, notifications::CorvalisPaneChangedPrefs);
    EXPECT_EQ(Value(*bus.posted()[0].userInfo),
              Value(Dictionary{{changes::ChangeOpenMenuItems, Dictionary{{keys::OpenMenuItems, expected}}}}));
    ASSERT_EQ(local.posted().size(), 1u);
    EXPECT_EQ(local.posted()[0].name, notifications::OpenMenuItemsUpdated);
    EXPECT_FALSE(local.posted()[0].userInfo);
    EXPECT_EQ(tagsOf(view.sources), (std::vector<int>{0, 3, 4, 5, -1, 1000}));
}

TEST_F(Browser, AnOpenMenuFolderDepthIsAnnouncedByItsFolderIndex) {
    fs::create_directories(disk / "A");
    test::makeApp(disk / "B" / "Sub", "Deep");
    make(Dictionary{{keys::OpenMenuItems, Array{kind(items::Groups), folder(disk / "A"), kind(items::Separator),
                                                folder(disk / "B", 1)}}});
    show(OpenMenuFolderTag + 3);
    EXPECT_EQ(view.depth, 1);
    EXPECT_TRUE(names().empty());

    browser->onDepth(2);
    settle();
    EXPECT_EQ(names(), (std::vector<std::string>{"Deep"}));
    EXPECT_EQ(openMenu()[3][keys::BrowserDepth], Value::int32(2));
    ASSERT_EQ(bus.posted().size(), 1u);
    EXPECT_EQ(Value(*bus.posted()[0].userInfo),
              Value(Dictionary{{changes::ChangeOpenMenuItemBrowserDepth,
                                Dictionary{{changes::Index, Value::int32(1)}, {keys::BrowserDepth, Value::int32(2)}}}}));

    bus.clearPosted();
    browser->onDepth(2);  // unchanged: nothing
    EXPECT_TRUE(bus.posted().empty());
}

TEST_F(Browser, RunningApplicationsAreFollowedWhileShown) {
    fs::path mail = test::makeApp(disk.path(), "Mail");
    fs::path zed = test::makeApp(disk.path(), "Zed");
    fs::path notes = test::makeApp(disk.path(), "Notes");
    running.running = {{1, zed.string(), "", false}, {2, mail.string(), "", false}};
    make();
    show(RunningApplicationsTag);
    EXPECT_EQ(names(), (std::vector<std::string>{"Mail", "Zed"}));

    running.launch({3, notes.string(), "", false});
    running.launch({4, (disk / "Daemon.app").string(), "", true});  // background-only
    EXPECT_EQ(names(), (std::vector<std::string>{"Mail", "Notes", "Zed"}));
    running.terminate(mail.string());
    EXPECT_EQ(names(), (std::vector<std::string>{"Notes", "Zed"}));

    browser->browserDidHide();
    EXPECT_EQ(running.observerCount(), 0u);
}

TEST_F(Browser, AWalkResultThatArrivesAfterTheSourceChangedIsDropped) {
    test::makeApp(disk / "Applications", "Walked");
    fs::path mail = test::makeApp(disk.path(), "Mail");
    running.running = {{1, mail.string(), "", false}};
    make();
    browser->browserWillShow();
    browser->onShowWhat(ApplicationsFolderTag, false);
    EXPECT_TRUE(view.progress);
    browser->onShowWhat(RunningApplicationsTag, false);  // before the walk's result is delivered
    settle();
    EXPECT_EQ(names(), (std::vector<std::string>{"Mail"}));
    EXPECT_FALSE(browser->isCached(ApplicationsFolderTag));
    EXPECT_FALSE(view.progress);

    // Cached after one walk; read again only with Ctrl held.
    show(ApplicationsFolderTag);
    test::makeApp(disk / "Applications", "Added");
    show(RunningApplicationsTag);
    show(ApplicationsFolderTag);
    EXPECT_EQ(names(), (std::vector<std::string>{"Walked"}));
    show(ApplicationsFolderTag, true);
    EXPECT_EQ(names(), (std::vector<std::string>{"Added", "Walked"}));

    // The browser goes while a walk runs: the walk's result goes nowhere.
    browser->onShowWhat(ApplicationsFolderTag, true);
    tester.reset();
    browser.reset();
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(30000));
    QCoreApplication::processEvents();
}

TEST_F(Browser, RowsAreDraggedAsFilesInRowOrderAndShowPathsInInfoMode) {
    fs::path a = test::makeApp(disk.path(), "A"), b = test::makeApp(disk.path(), "B"), c = test::makeApp(disk.path(), "C");
    running.running = {{1, a.string(), "", false}, {2, b.string(), "", false}, {3, c.string(), "", false}};
    make();
    show(RunningApplicationsTag);
    std::unique_ptr<QMimeData> mime(browser->mimeData({browser->index(2), browser->index(0)}));
    EXPECT_EQ(mime->urls(), (QList<QUrl>{QUrl::fromLocalFile(QString::fromStdString(a.string())),
                                         QUrl::fromLocalFile(QString::fromStdString(c.string()))}));
    EXPECT_TRUE(mime->hasFormat("text/uri-list"));

    EXPECT_FALSE(browser->data(browser->index(1), Qt::ToolTipRole).isValid());
    browser->onShowInfo();
    EXPECT_EQ(browser->data(browser->index(1), Qt::ToolTipRole).toString().toStdString(), b.string());
    EXPECT_TRUE(prefs.boolForKey(keys::BrowserInfo));
    EXPECT_TRUE(view.info);

    EXPECT_TRUE(browser->selectString("c"));
    EXPECT_EQ(view.calls.back(), "scroll 2");
    browser->onDoubleClick(1, false);
    EXPECT_EQ(view.calls.back(), "reveal " + b.string());
}

TEST_F(Browser, RecentApplicationsAreTheFirstThatStillExist) {
    fs::path first = test::makeApp(disk.path(), "First"), second = test::makeApp(disk.path(), "Second");
    auto recent = [](const fs::path& path) { return Dictionary{{keys::Name, "stale"}, {keys::Path, path.string()}}; };
    make(Dictionary{{keys::RecentApplications, Array{recent(disk / "Gone.app"), recent(second), Value("junk"), recent(first)}},
                    {keys::RecentApplicationsMaxNum, Value::int32(1)}});
    show(RecentApplicationsTag);
    EXPECT_EQ(names(), (std::vector<std::string>{"Second"}));

    prefs.setInt(2, keys::RecentApplicationsMaxNum);
    local.post({notifications::RecentItemsChanged, "", std::nullopt});
    EXPECT_EQ(names(), (std::vector<std::string>{"First", "Second"}));
}

TEST_F(Browser, TheShownFolderIsFollowedThroughTheMenuEditorsChanges) {
    test::makeApp(disk / "A", "InA");
    test::makeApp(disk / "B", "InB");
    make(Dictionary{{keys::OpenMenuItems, Array{folder(disk / "A"), folder(disk / "B")}}});
    show(OpenMenuFolderTag + 1);
    ASSERT_EQ(names(), (std::vector<std::string>{"InB"}));

    // A row inserted above: the folder keeps its list under its new tag.
    openMenu().insert(0, kind(items::Groups));
    local.post({notifications::OpenMenuItemsAddedOrRearranged, "", std::nullopt});
    EXPECT_EQ(browser->shownTag(), OpenMenuFolderTag + 2);
    EXPECT_EQ(view.selectedTag, OpenMenuFolderTag + 2);
    EXPECT_EQ(names(), (std::vector<std::string>{"InB"}));

    // A user info of the wrong types changes nothing by itself.
    local.post({notifications::OpenMenuItemChanged, "", Dictionary{{changes::Index, "2"}}});
    EXPECT_EQ(browser->shownTag(), OpenMenuFolderTag + 2);

    // The shown folder re-pointed: its row lists the new folder.
    test::makeApp(disk / "C", "InC");
    openMenu().set(2, folder(disk / "C"));
    local.post({notifications::OpenMenuItemChanged, "", Dictionary{{changes::Index, Value::int32(2)}}});
    settle();
    EXPECT_EQ(names(), (std::vector<std::string>{"InC"}));

    // Removed: back to the Applications folder.
    openMenu().removeAt(2);
    local.post({notifications::OpenMenuItemsRemoved, "", Dictionary{{changes::Paths, Array{}}, {changes::Index, Value::int32(-1)}}});
    settle();
    EXPECT_EQ(browser->shownTag(), ApplicationsFolderTag);
    EXPECT_EQ(tagsOf(view.sources), (std::vector<int>{0, 3, 4, 5, -1, 1001}));
}
