#include <gtest/gtest.h>

#include <QMimeData>
#include <QUrl>

#include "menus/ConfigureSpecialMenuController.h"
#include "menus/MenuTestSupport.h"
#include "pane/ItemRoles.h"
#include "prefs/NotificationNames.h"
#include "support/FakeWorkspace.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;
using Strings = std::vector<std::string>;
using corvalis::test::filesDragged;

namespace {

class SpecialMenuTest : public test::PrefsTest {
protected:
    test::TempDir dir;
    test::FakeWorkspace workspace;
    test::MenuView view;
    std::unique_ptr<ConfigureSpecialMenuController> menu;
    std::unique_ptr<QAbstractItemModelTester> tester;

    std::string made(const std::string& name, bool folder = false) {
        if (folder) std::filesystem::create_directories(dir / name);
        else test::writeFile(dir / name, "x");
        return std::filesystem::canonical(dir / name).string();
    }
    std::string application(const std::string& name) {
        std::filesystem::create_directories(dir / name / "Contents");
        test::writeFile(dir / name / "Contents" / "Info.plist", "<plist/>");
        return std::filesystem::canonical(dir / name).string();
    }
    static Dictionary item(const char* kind) { return Dictionary{{keys::Item, kind}}; }
    static Dictionary fileItem(const std::string& path, const char* kind = "File", const std::string& name = "") {
        return Dictionary{{keys::Item, kind}, {keys::Name, name.empty() ? "stale" : name}, {keys::Path, path}};
    }
    void open(const Array& items) {
        load(Dictionary{{keys::SpecialMenuItems, items}});
        menu = std::make_unique<ConfigureSpecialMenuController>(prefs, bus, workspace);
        tester = std::make_unique<QAbstractItemModelTester>(menu.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        menu->setView(&view);
        menu->initializePane(true);
        menu->didBeginSheet();
        view.calls.clear();
        bus.clearPosted();
    }
    const Value& stored() { return prefs.prefsData()[keys::SpecialMenuItems]; }
    Strings names() {
        Strings result;
        for (int row = 0; row < menu->rowCount(); ++row) result.push_back(menu->displayNameAt(row));
        return result;
    }
    // Each change the controller was told, as "key=value"; the menu itself must be the store's own array.
    Strings sent() {
        Strings result;
        for (const Notification& posted : bus.posted()) {
            if (posted.name != notifications::CorvalisPaneChangedPrefs || !posted.userInfo) continue;
            for (const auto& [key, value] : *posted.userInfo) {
                if (key == changes::ChangeSpecialMenuItems) {
                    EXPECT_TRUE(value[keys::SpecialMenuItems].array() &&
                                value[keys::SpecialMenuItems].array()->isSameObject(*stored().array()));
                    EXPECT_EQ(value.dictionary()->size(), 1u);
                    result.push_back(key);
                } else {
                    result.push_back(key + "=" + (value.boolean() ? (*value.boolean() ? "on" : "off") : value.stringOr("?")));
                }
            }
        }
        return result;
    }
};

}  // namespace

TEST_F(SpecialMenuTest, LibraryTitlesFollowTheInstalledVersions) {
    struct Case { const char* iPhoto; const char* aperture; const char* iPhotoKey; const char* apertureKey; };
    const Case cases[] = {
        {"9.2", "3.4", "iPhoto9Library", "ApertureLibrary"}, {"9.5", "2.1", "iPhotoLibrary", "Aperture2Library"},
        {"6.0.6", nullptr, "iPhoto6Library", "ApertureLibrary"}, {"8.1.2", nullptr, "iPhoto7Library", "ApertureLibrary"},
        {"9.3.9", nullptr, "iPhoto9Library", "ApertureLibrary"}, {"10.0", nullptr, "iPhotoLibrary", "ApertureLibrary"},
        {nullptr, nullptr, "iPhotoLibrary", "ApertureLibrary"},
    };
    for (const Case& c : cases) {
        workspace = test::FakeWorkspace();
        for (auto [identifier, version] : {std::pair{"com.apple.iPhoto", c.iPhoto}, std::pair{"com.apple.Aperture", c.aperture}}) {
            if (!version) continue;
            std::string path = std::string("/Applications/") + identifier + ".app";
            workspace.addApplication(path, identifier);
            workspace.infoDictionaries[path] = Dictionary{{"CFBundleVersion", version}};
        }
        open(Array{item("iPhotoLibrary"), item("ApertureLibrary")});
        EXPECT_EQ(names(), (Strings{LocalizedString(c.iPhotoKey), LocalizedString(c.apertureKey)})) << c.iPhoto;
    }
}

TEST_F(SpecialMenuTest, AddOffersMissingKindsInOrderAndTheDiskOptionsFollowVolumes) {
    open(Array{item("Home"), item("Separator"), item("LogOut")});
    EXPECT_EQ(menu->addMenuKinds(),
              (Strings{"Volumes", "Library", "RecentFolders", "RecentDocuments", "RecentServers", "AddressBook",
                       "iPhotoLibrary", "ApertureLibrary", "SystemMemory", "Uptime", "RelaunchFinder",
                       "QuitLaunchFinder", "RelaunchDock", "LoginWindow", "Sleep", "Restart", "ShutDown",
                       "FileOrFolder", "Separator"}));
    EXPECT_EQ(menu->kindTitle("AddressBook"), LocalizedString("Contacts"));
    EXPECT_FALSE(menu->showsDiskOptions());
    view.selected = {0};
    menu->onAddItem("Volumes");
    EXPECT_EQ(kinds(stored()), (Strings{"Home", "Volumes", "Separator", "LogOut"}));
    EXPECT_TRUE(menu->showsDiskOptions());
    EXPECT_EQ(menu->addMenuKinds().front(), "Library");
    menu->onRemoveItem();
    EXPECT_FALSE(menu->showsDiskOptions());
    EXPECT_EQ(sent(), (Strings{"ChangeSpecialMenuItems", "ChangeSpecialMenuItems"}));
}

TEST_F(SpecialMenuTest, FilesAndFoldersAreKeptAsChosenAndApplicationsRefused) {
    std::string notes = made("notes.txt"), doc = made("doc.txt"), photos = made("Photos", true);
    std::string tool = application("Tool.app");
    std::filesystem::create_symlink(notes, dir / "link.txt");
    std::string link = (dir / "link.txt").string();
    open(Array{item("Home")});
    view.pickedFiles = {{photos, link, tool}};
    menu->onAddItem("FileOrFolder");
    ASSERT_EQ(view.panels.size(), 1u);
    EXPECT_TRUE(view.panels[0].canChooseFiles && view.panels[0].canChooseDirectories &&
                view.panels[0].allowsMultipleSelection && !view.panels[0].resolvesAliases && view.panels[0].hidesApplications);
    EXPECT_EQ(view.panels[0].message, LocalizedString("AddFileOrFolder"));
    EXPECT_EQ(kinds(stored()), (Strings{"Home", "Folder", "File"}));
    EXPECT_EQ(stored()[2][keys::Path].stringOr(""), link);  // not resolved
    EXPECT_TRUE(stored()[2][keys::AliasData].data());
    EXPECT_TRUE(stored()[1][keys::Depth].isAbsent() && stored()[1][keys::NameIsCustom].isAbsent());
    EXPECT_EQ(view.selected, (std::vector<int>{1, 2}));
    EXPECT_EQ(std::count_if(view.calls.begin(), view.calls.end(), [](auto& c) { return c.rfind("edit", 0) == 0; }), 0);
    EXPECT_FALSE(menu->flags(menu->index(1)) & Qt::ItemIsEditable);

    // From a file manager: applications alone are refused; with a document only the document comes.
    EXPECT_FALSE(menu->canDropMimeData(filesDragged({tool}).get(), Qt::CopyAction, 0, 0, {}));
    ASSERT_TRUE(menu->dropMimeData(filesDragged({tool, doc}).get(), Qt::CopyAction, 0, 0, {}));
    EXPECT_EQ(kinds(stored()), (Strings{"File", "Home", "Folder", "File"}));
    EXPECT_EQ(stored()[0][keys::Path].stringOr(""), doc);

    // Names that are not UTF-8 or paths past the limit never reach the store.
    std::string bad = (dir / "bad\xff").string();
    test::writeFile(bad, "x");
    std::string deep = (dir / std::string(1100, 'a')).string();
    EXPECT_FALSE(menu->canDropMimeData(filesDragged({deep}).get(), Qt::CopyAction, 0, 0, {}));
    view.pickedFiles = {{bad, deep}};
    menu->onAddItem("FileOrFolder");
    EXPECT_EQ(menu->rowCount(), 4);
}

TEST_F(SpecialMenuTest, AFileShowsItsCurrentNameAndMissingFilesAreCounted) {
    std::string notes = made("notes.txt"), gone = made("gone.txt"), folder = made("Work", true);
    open(Array{fileItem(notes), fileItem(folder, "Folder", "Mine"), fileItem(gone)});
    plist::asDictionary(stored()[0])->set(keys::Name, "old");
    EXPECT_EQ(names(), (Strings{"notes.txt", "Work", "gone.txt"}));
    std::filesystem::rename(notes, dir / "renamed.txt");
    std::filesystem::remove(gone);
    std::string report;
    menu->updatePane(report);
    EXPECT_EQ(names()[0], "renamed.txt");
    EXPECT_EQ(kinds(stored()), (Strings{"File", "Folder", "File"}));  // the missing file stays
    EXPECT_EQ(report, LocalizedFormat("SpecialMenuSummary", {LocalizedString("OneInvalidPath")}) + "\n");
    EXPECT_EQ(menu->data(menu->index(2), ErrorCodeRole).toInt(), 1);
}

TEST_F(SpecialMenuTest, ChangePanelRepointsAndMergesDuplicates) {
    std::string a = made("a.txt"), b = made("B", true), c = made("c.txt");
    open(Array{fileItem(a), item("Home"), fileItem(c)});
    view.selected = {0};
    EXPECT_EQ(menu->changeItemTitle(), LocalizedString("ChangeFileOrFolder1"));
    view.pickedFiles = {{b}};
    menu->onChangeItem();
    EXPECT_EQ(view.panels[0].message, LocalizedString("ChangeFileOrFolder2"));
    EXPECT_TRUE(view.panels[0].canChooseFiles && !view.panels[0].allowsMultipleSelection);
    EXPECT_EQ(stored()[0][keys::Item].stringOr(""), "Folder");
    EXPECT_EQ(stored()[0][keys::Name].stringOr(""), "B");

    // A double click re-points only the clicked row, and onto another row's file it merges the two.
    view.selected = {0, 2};
    view.pickedFiles = {{c}};
    menu->_onMenuTableViewDoubleClick(0);
    EXPECT_EQ(kinds(stored()), (Strings{"Home", "File"}));
    EXPECT_EQ(view.selected, std::vector<int>{1});
    menu->_onMenuTableViewDoubleClick(5);  // below the rows
    EXPECT_EQ(view.panels.size(), 2u);
    EXPECT_EQ(sent(), Strings(2, "ChangeSpecialMenuItems"));

    std::filesystem::remove(c);
    EXPECT_EQ(menu->changeItemTitle(), LocalizedString("FixPath1"));
    menu->onChangeItem();
    EXPECT_EQ(view.panels.back().prompt, LocalizedString("Fix"));
}

TEST_F(SpecialMenuTest, OptionsAreStoredAndToldToTheController) {
    open(Array{item("Volumes")});
    const std::pair<int, const char*> formats[] = {{0, "1666215027"}, {1, "1666207832"}, {2, "1666208876"},
                                                   {3, "1666205811"}, {4, "1666209651"}, {5, "1666209132"}};
    Strings expected;
    for (auto [tag, text] : formats) {
        menu->onQuickCopyPathCommand(tag);
        EXPECT_EQ(menu->quickCopyPathCommand(), tag);
        expected.push_back(std::string("QuickCopyPathCommand=") + text);
    }
    menu->onQuickCopyPathCommand(6);  // no such entry
    EXPECT_EQ(prefs.stringForKey(keys::QuickCopyPathCommand), "1666209132");
    menu->onShowDisks(keys::ShowNetworkDisks, false);
    menu->onResolveAliases(true);
    EXPECT_FALSE(menu->showsDisks(keys::ShowNetworkDisks));
    EXPECT_TRUE(menu->resolveAliases());
    expected.insert(expected.end(), {"ShowNetworkDisks=off", "ResolveAliases=on"});
    EXPECT_EQ(sent(), expected);
}

TEST_F(SpecialMenuTest, ControllerMessagesOnlyFollowMovedFiles) {
    std::string a = made("a.txt");
    open(Array{fileItem(a), item("Home")});
    Array before = stored().array()->deepCopy();
    const std::optional<Dictionary> infos[] = {std::nullopt, Dictionary{{"ChangeSpecialMenuItems", "junk"}},
                                               Dictionary{{"SpecialMenuItems", Array{item("LogOut")}}},
                                               Dictionary{{"Index", Value::int64(-5)}}};
    for (const auto& info : infos)
        bus.post(Notification{notifications::SpecialMenuItemsChanged, notifications::ControllerObject, info});
    EXPECT_EQ(*stored().array(), before);
    std::filesystem::rename(a, dir / "moved.txt");
    bus.post(Notification{notifications::SpecialMenuItemsChanged, notifications::PaneObject, std::nullopt});
    EXPECT_EQ(stored()[0][keys::Path].stringOr(""), a);  // not from the controller
    bus.post(Notification{notifications::SpecialMenuItemsChanged, notifications::ControllerObject, std::nullopt});
    EXPECT_EQ(stored()[0][keys::Path].stringOr(""), std::filesystem::canonical(dir / "moved.txt").string());
    EXPECT_EQ(sent(), Strings());  // followed, not saved
}
