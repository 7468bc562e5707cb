#include <gtest/gtest.h>

#include <QMimeData>
#include <QUrl>

#include "menus/MenuTestSupport.h"
#include "prefs/NotificationNames.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;
using Strings = std::vector<std::string>;
using corvalis::test::filesDragged;

namespace {

class OpenMenuControllerTest : public test::OpenMenuTest {
protected:
    std::string folder(const std::string& name) {
        std::filesystem::create_directories(dir / name);
        return std::filesystem::canonical(dir / name).string();
    }
};

}  // namespace

TEST_F(OpenMenuControllerTest, AddOffersMissingKindsAndInsertsAfterTheSelection) {
    open(Array{item("Groups"), item("Separator"), item("ApplicationsFolder")});
    EXPECT_EQ(menu->addMenuKinds(),
              (Strings{"DockApplications", "RecentApplications", "SystemPreferences", "Folder", "Separator"}));

    view.selected = {0};
    menu->onAddItem("DockApplications");
    view.selected = {};
    menu->onAddItem("Separator");
    EXPECT_EQ(kinds(), (Strings{"Groups", "DockApplications", "Separator", "ApplicationsFolder", "Separator"}));
    EXPECT_EQ(view.selected, std::vector<int>{4});
    EXPECT_EQ(menu->addMenuKinds(), (Strings{"RecentApplications", "SystemPreferences", "Folder", "Separator"}));

    view.selected = {1};
    menu->onRemoveItem();
    EXPECT_EQ(view.selected, std::vector<int>{1});
    EXPECT_EQ(menu->addMenuKinds(),
              (Strings{"DockApplications", "RecentApplications", "SystemPreferences", "Folder", "Separator"}));
    EXPECT_EQ(localPosts(), (Strings{"Open Menu Items Added Or Rearranged", "Open Menu Items Added Or Rearranged",
                                     "Open Menu Items Removed [] -1"}));
    EXPECT_EQ(menusSent(), 3);

    view.selected = {0, 1, 2, 3};
    menu->onRemoveItem();
    EXPECT_EQ(menu->rowCount(), 0);
    EXPECT_EQ(view.calls.back(), "select");
}

TEST_F(OpenMenuControllerTest, FoldersFromThePanelAndFromAFileManager) {
    std::string a = folder("a"), b = folder("b"), c = folder("c"), d = folder("d");
    test::writeFile(dir / "file.txt", "x");
    open(Array{item("Groups")});

    view.selected = {0};
    view.pickedFiles = {{a, b, c}, {d}, {a}};
    menu->onAddItem("Folder");
    ASSERT_EQ(view.panels.size(), 1u);
    EXPECT_TRUE(view.panels[0].canChooseDirectories && !view.panels[0].canChooseFiles &&
                view.panels[0].allowsMultipleSelection);
    EXPECT_EQ(view.panels[0].prompt, LocalizedString("Add"));
    EXPECT_EQ(names(), (Strings{LocalizedString("Groups"), "a", "b", "c"}));
    EXPECT_EQ(view.selected, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(std::count(view.calls.begin(), view.calls.end(), "edit 1"), 0);
    EXPECT_EQ((*prefs.prefsData()[keys::OpenMenuItems].array())[1][keys::Depth].toInt32(), 2);

    view.selected = {};
    menu->onAddItem("Folder");  // one new folder: its name opens for typing
    EXPECT_EQ(view.calls.back(), "edit 4");
    menu->onAddItem("Folder");  // already there: nothing added, the row selected
    EXPECT_EQ(menu->rowCount(), 5);
    EXPECT_EQ(view.selected, std::vector<int>{1});

    // From a file manager an existing folder moves to the drop point; files are refused.
    EXPECT_FALSE(menu->canDropMimeData(filesDragged({(dir / "file.txt").string()}).get(), Qt::CopyAction, 0, 0, {}));
    EXPECT_FALSE(menu->canDropMimeData(filesDragged({a}).get(), Qt::CopyAction, -1, -1, menu->index(2)));
    ASSERT_TRUE(menu->dropMimeData(filesDragged({a}).get(), Qt::CopyAction, 5, 0, {}));
    EXPECT_EQ(names(), (Strings{LocalizedString("Groups"), "b", "c", "d", "a"}));
    EXPECT_EQ(view.selected, std::vector<int>{4});
    EXPECT_EQ(localPosts(), Strings(3, "Open Menu Items Added Or Rearranged"));
}

TEST_F(OpenMenuControllerTest, RenamingKeepsOnlyTextThatShowsSomething) {
    std::string work = folder("Work");
    open(Array{item("Groups"), folderItem(work)});
    struct Case { std::string typed; std::string name; bool custom; };
    const Case cases[] = {{"Projects", "Projects", true}, {" \t ", "Projects", true},
                          {"two\nlines", "two lines", true}, {"Work", "Work", false}};
    for (const Case& c : cases) {
        menu->setData(menu->index(1), QString::fromStdString(c.typed), Qt::EditRole);
        Value record = prefs.prefsData()[keys::OpenMenuItems][1];
        EXPECT_EQ(record[keys::Name].stringOr(""), c.name) << c.typed;
        EXPECT_EQ(record[keys::NameIsCustom].toBool(), c.custom) << c.typed;
    }
    EXPECT_EQ(localPosts(), Strings(3, "Open Menu Item Changed 1"));
    EXPECT_FALSE(menu->setData(menu->index(0), "Mine", Qt::EditRole));
    EXPECT_FALSE(menu->flags(menu->index(0)) & Qt::ItemIsEditable);
}

TEST_F(OpenMenuControllerTest, RestoringAsksOnlyWhenSomethingWouldBeLost) {
    open(Array());
    menu->onRestoreDefaultMenu();  // empty: restored without asking
    EXPECT_TRUE(view.alerts.empty());
    Array factory = prefs.defaultOpenMenu();
    EXPECT_EQ(kinds(), PrefsTest::kinds(factory));
    menu->onRestoreDefaultMenu();  // already the default: nothing at all
    EXPECT_TRUE(view.alerts.empty());
    EXPECT_EQ(localPosts(), Strings{"Open Menu Items Removed [] -1"});

    std::string a = folder("a");
    open(Array{folderItem(a), item("Groups")});
    view.answers = {1, 0};
    menu->onRestoreDefaultMenu();
    EXPECT_EQ(kinds(), (Strings{"Folder", "Groups"}));
    menu->onRestoreDefaultMenu();
    ASSERT_EQ(view.alerts.size(), 2u);
    EXPECT_EQ(view.alerts[0].informativeText, LocalizedString("CantUndo"));
    EXPECT_EQ(view.alerts[0].buttons, (Strings{LocalizedString("Restore"), LocalizedString("Cancel")}));
    EXPECT_EQ(kinds(), PrefsTest::kinds(factory));
    EXPECT_EQ(view.selected, std::vector<int>{0});
    EXPECT_EQ(localPosts(), Strings{"Open Menu Items Removed [a;] -1"});
}

TEST_F(OpenMenuControllerTest, ClosingTheSheetDropsExtraSeparatorsWithOneNotification) {
    std::string a = folder("a"), b = folder("b");
    open(Array());
    // Loading tidies separators, so the untidy menu is made while the sheet is open.
    plist::asArray(prefs.prefsData()[keys::OpenMenuItems])->replaceContents(
        Array{item("Separator"), folderItem(a), item("Separator"), item("Separator"), folderItem(b), item("Separator")});
    menu->initializePane(false);
    view.calls.clear();
    menu->didEndSheet();
    EXPECT_EQ(names(), (Strings{"a", "Separator", "b"}));
    EXPECT_EQ(localPosts(), Strings{"Open Menu Items Removed [] -1"});
    EXPECT_EQ(menusSent(), 1);
    EXPECT_EQ(view.calls.front(), "end editing");
    menu->didEndSheet();
    EXPECT_EQ(menusSent(), 1);
}

TEST_F(OpenMenuControllerTest, RepointingAFolder) {
    std::string a = folder("a"), b = folder("b"), c = folder("c");
    open(Array{folderItem(a), item("Groups"), folderItem(b, "Mine")});
    view.selected = {0};
    EXPECT_EQ(menu->changeItemTitle(), LocalizedString("ChangeFolder1"));
    view.pickedFiles = {{c}};
    menu->onChangeItem();
    EXPECT_EQ(view.panels[0].directory, std::filesystem::path(a).parent_path().string());
    Value record = prefs.prefsData()[keys::OpenMenuItems][0];
    EXPECT_EQ(record[keys::Path].stringOr(""), c);
    EXPECT_EQ(record[keys::Name].stringOr(""), "c");
    EXPECT_EQ(record[keys::NameIsCustom].toBool(), false);
    EXPECT_EQ(view.calls.back(), "edit 0");

    // Onto the folder another row shows: the edited row goes, the other row is selected.
    view.pickedFiles = {{b}};
    menu->onChangeItem();
    EXPECT_EQ(names(), (Strings{LocalizedString("Groups"), "Mine"}));
    EXPECT_EQ(view.selected, std::vector<int>{1});
    EXPECT_EQ(localPosts(), (Strings{"Open Menu Item Changed 0", "Open Menu Items Removed [c;] 1"}));

    std::filesystem::remove(b);
    view.selected = {1};
    EXPECT_EQ(menu->changeItemTitle(), LocalizedString("FixPath1"));
    std::string report;
    menu->updatePane(report);
    EXPECT_EQ(report, LocalizedFormat("OpenMenuSummary", {LocalizedString("OneInvalidPath")}) + "\n");

    // The panel open on the broken folder follows it when it comes back, and stops once closed.
    view.holdPanels = true;
    menu->onChangeItem();
    EXPECT_EQ(view.panels.back().message, LocalizedString("FixPath2"));
    std::filesystem::create_directory(b);
    menu->sheetWindowDidBecomeMain(true);
    EXPECT_EQ(view.calls.back(), "retitle " + LocalizedString("ChangeFolder2") + " | " + LocalizedString("Change"));
    view.closePanel();
    std::size_t calls = view.calls.size();
    menu->sheetWindowDidBecomeMain(true);
    EXPECT_EQ(view.calls.size(), calls);
}

TEST_F(OpenMenuControllerTest, ControllerDepthChangesAreAppliedOnlyWhenWhollyValid) {
    std::string a = folder("a"), b = folder("b");
    open(Array{item("Groups"), folderItem(a), item("Separator"), folderItem(b)});
    auto depthChange = [](Value index, Value depth) {
        Dictionary change;
        if (!index.isAbsent()) change.set("Index", index);
        if (!depth.isAbsent()) change.set(keys::Depth, depth);
        return Dictionary{{changes::ChangeOpenMenuItemDepth, change}};
    };
    Array before = prefs.prefsData()[keys::OpenMenuItems].array()->deepCopy();
    const Dictionary ignored[] = {
        depthChange("1", Value::int32(5)),        depthChange(Value::int32(2), Value::int32(5)),
        depthChange(Value::int32(-1), Value::int32(5)), depthChange(Value::int32(1), Value()),
        depthChange(Value::int32(1), Value::real64(3.0)), depthChange(Value::uint64(~0ull), Value::int32(5)),
        depthChange(Value::int32(1), Value::int64(1ll << 40)), Dictionary{{changes::ChangeOpenMenuItemDepth, "1"}},
        Dictionary{{"SomethingElse", true}},
    };
    for (const Dictionary& info : ignored)
        bus.post(Notification{notifications::OpenMenuItemsChanged, notifications::ControllerObject, info});
    bus.post(Notification{notifications::OpenMenuItemsChanged, notifications::PaneObject,
                          depthChange(Value::int32(1), Value::int32(5))});  // not from the controller
    EXPECT_EQ(*prefs.prefsData()[keys::OpenMenuItems].array(), before);

    bus.post(Notification{notifications::OpenMenuItemsChanged, notifications::ControllerObject,
                          depthChange(Value::int32(1), Value::int32(5))});
    EXPECT_EQ(prefs.prefsData()[keys::OpenMenuItems][3][keys::Depth].toInt32(), 5);
    EXPECT_EQ(prefs.prefsData()[keys::OpenMenuItems][1][keys::Depth].toInt32(), 2);
    EXPECT_EQ(menusSent(), 0);  // the controller has it already
}

TEST_F(OpenMenuControllerTest, FoldersThatMovedOntoOneAnotherAreMergedAndTheBrowserFollows) {
    std::string a = folder("a");
    std::filesystem::create_directory_symlink(a, dir / "link");
    open(Array{folderItem(a), item("Separator"), folderItem((dir / "link").string(), "Link"), item("Separator"),
               item("Groups")});
    view.selected = {4};
    menu->willShowPane();
    EXPECT_EQ(kinds(), (Strings{"Folder", "Separator", "Groups"}));
    EXPECT_EQ(view.selected, std::vector<int>{2});
    EXPECT_EQ(browser.calls, (Strings{"item 0 folder selection", "item 2 folder selection",
                                      "item 2 folder duplicate selection", "item 2 selection"}));
    EXPECT_TRUE(prefs.prefsData()[keys::OpenMenuItems][0][keys::AliasData].data());
    EXPECT_EQ(menusSent(), 1);
    menu->willShowPane();  // nothing moved since: nothing told
    EXPECT_EQ(menusSent(), 1);
}

TEST_F(OpenMenuControllerTest, RowsDraggedWithinTheMenuMoveAndTheSelectionFollows) {
    open(Array{item("Groups"), item("Separator"), item("DockApplications"), item("RecentApplications")});
    view.selected = {2};
    std::unique_ptr<QMimeData> rows(menu->mimeData({menu->index(0)}));
    EXPECT_TRUE(rows->data(MenuItemListModel::kMenuItemsMimeType).isEmpty());
    EXPECT_FALSE(menu->canDropMimeData(rows.get(), Qt::MoveAction, -1, -1, menu->index(1)));  // onto a row
    ASSERT_TRUE(menu->dropMimeData(rows.get(), Qt::MoveAction, 3, 0, {}));
    EXPECT_EQ(kinds(), (Strings{"Separator", "DockApplications", "Groups", "RecentApplications"}));
    EXPECT_EQ(view.selected, std::vector<int>{1});

    // Two rows apart, both selected: they land together, still selected.
    view.selected = {0, 2};
    rows.reset(menu->mimeData({menu->index(0), menu->index(2)}));
    ASSERT_TRUE(menu->dropMimeData(rows.get(), Qt::MoveAction, 4, 0, {}));
    EXPECT_EQ(kinds(), (Strings{"DockApplications", "RecentApplications", "Separator", "Groups"}));
    EXPECT_EQ(view.selected, (std::vector<int>{2, 3}));
    EXPECT_EQ(localPosts(), Strings(2, "Open Menu Items Added Or Rearranged"));
    // A drag that is not ours (no rows recorded) is refused.
    EXPECT_FALSE(menu->canDropMimeData(rows.get(), Qt::MoveAction, 0, 0, {}));
}
