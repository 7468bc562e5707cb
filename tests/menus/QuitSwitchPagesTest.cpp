#include <gtest/gtest.h>

#include <QCheckBox>
#include <QFileDialog>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "groups/GroupsFixture.h"
#include "controls/KVServicesBar.h"
#include "keys/KVKeyCombinationValidator.h"
#include "menus/ui/ExcludedApplicationsBox.h"
#include "menus/ui/MenusTab.h"
#include "menus/ui/QuitMenuPage.h"
#include "menus/ui/SwitchMenuPage.h"
#include "pane/ItemRoles.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

// The Menus tab in a window, with the groups editor the Quit page shares its list with.
class QuitSwitchPagesTest : public test::GroupsTest {
protected:
    QWidget window;
    QWidget* page = new QWidget(&window);
    std::unique_ptr<MenusTab> tab;

    void openTab(Dictionary stored) {
        open(stored);
        tab = std::make_unique<MenusTab>(
            MenusTabContext{prefs, validator, local, bus, {}, [this] { return groups.get(); }, [] { return false; }}, page,
            &window);
        tab->initializePane(true);
        window.resize(760, 560);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        tab->onConfigureMenus();
        ASSERT_TRUE(tab->configureMenusSheet() && tab->configureMenusSheet()->isVisible());
    }
    template <class Page>
    Page* showPage(const char* identifier) {
        tab->showSheetTab(identifier);
        auto* shown = qobject_cast<Page*>(tab->configureMenusSheet()->tabs()->currentWidget());
        if (shown) tab->configureMenusSheet()->activateWindow();
        return shown;
    }
    Array storedList(const char* key) { return prefs.arrayForKey(key).value_or(Array()); }
};

}  // namespace

TEST_F(QuitSwitchPagesTest, QuitTabEditsTheExcludedGroupFromTheKeyboardAndItsPanel) {
    std::string mail = app("Mail"), music = app("Music");
    // A desktop entry: a panel picks files, and these are this system's plain-file applications.
    std::string term = (dir / "Term.desktop").string();
    test::writeFile(term, "[Desktop Entry]\nType=Application\nName=Term\nExec=term\n");
    openTab(Dictionary{{keys::Groups, Array{Dictionary{{keys::Name, "Excluded"}, {keys::CanBeDeleted, false},
                                                       {keys::Applications, Array{member(mail), member(music)}}}}}});
    auto* quit = showPage<QuitMenuPage>("Quit");
    ASSERT_TRUE(quit);
    KVTableView* list = quit->excludedBox()->table();
    ASSERT_EQ(list->model()->rowCount(), 2);
    EXPECT_FALSE(quit->hideBox()->isEnabled());

    // Open automatically, then hide: each stored in the group, Hide usable only once Open is on.
    quit->autoOpenBox()->click();
    EXPECT_TRUE(quit->hideBox()->isEnabled());
    quit->hideBox()->click();
    Value excluded = storedList(keys::Groups)[0];
    EXPECT_EQ(excluded[keys::AutoOpen].toBool(), true);
    EXPECT_EQ(excluded[keys::Hide].toBool(), true);

    // Delete removes the selected application; the one after it is selected.
    list->setFocus();
    list->selectRow(0);
    QTest::keyClick(list, Qt::Key_Delete);
    ASSERT_EQ(list->model()->rowCount(), 1);
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), "Music");
    EXPECT_EQ(storedList(keys::Groups)[0][keys::Applications].array()->size(), 1u);

    // Add opens a panel on the sheet; the chosen application joins in name order.
    quit->excludedBox()->servicesBar()->addButton()->click();
    QFileDialog* panel = nullptr;
    ASSERT_TRUE(test::waitUntil([&] {
        for (QFileDialog* dialog : tab->configureMenusSheet()->findChildren<QFileDialog*>())
            if (dialog->isVisible()) panel = dialog;
        return panel != nullptr;
    }, 5000));
    panel->setDirectory(QString::fromStdString(dir.path().string()));
    panel->selectFile(QString::fromStdString(term));
    static_cast<QDialog*>(panel)->accept();
    ASSERT_TRUE(test::waitUntil([&] { return list->model()->rowCount() == 2; }, 5000));
    EXPECT_EQ(list->model()->index(1, 0).data().toString(), "Term");
    EXPECT_EQ(list->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(posts().back()[changes::ChangeGroups][changes::ChangeExcludedApplications].toBool(), true);
}

TEST_F(QuitSwitchPagesTest, SwitchTabShowsItsNotesAndStoresItsOptions) {
    openTab(Dictionary{{keys::TurnOnSingleApplicationMode, true},
                       {keys::SwitchMenuExcludedApplications, Array{member(app("Term"))}}});
    auto* switcher = showPage<SwitchMenuPage>("Switch");
    ASSERT_TRUE(switcher);
    // The factory menu holds Groups: greyed, with the note beside the list.
    EXPECT_TRUE(switcher->singleApplicationModeInfo()->isVisible());
    EXPECT_FALSE(switcher->universalAccessWarning()->isVisible());  // the newest system never needs it
    QAbstractItemModel* menu = switcher->table()->model();
    int groupsRow = -1;
    for (int row = 0; row < menu->rowCount(); ++row)
        if (menu->index(row, 0).data().toString() == QString::fromStdString(LocalizedString("Groups"))) groupsRow = row;
    ASSERT_GE(groupsRow, 0);
    EXPECT_TRUE(menu->index(groupsRow, 0).data(DimmedRole).toBool());
    EXPECT_EQ(menu->index(groupsRow, 0).data(ExtraImageRole).toString(), "Note");

    QCheckBox* windows = switcher->optionBox(keys::AddApplicationWindows);
    ASSERT_TRUE(windows);
    windows->click();
    EXPECT_EQ(prefs.boolForKey(keys::AddApplicationWindows), windows->isChecked());
    EXPECT_EQ(bus.posted().back().userInfo->keys().front(), keys::AddApplicationWindows);
    // The box reads "in the order they started": on means the stored alphabetical order is off.
    QCheckBox* order = switcher->optionBox(keys::SwitchMenuRunningApplicationsSortAlphabetically);
    order->setChecked(!order->isChecked());
    EXPECT_EQ(prefs.boolForKey(keys::SwitchMenuRunningApplicationsSortAlphabetically), !order->isChecked());

    KVTableView* list = switcher->excludedBox()->table();
    list->setFocus();
    list->selectRow(0);
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(storedList(keys::SwitchMenuExcludedApplications).size(), 0u);
}

TEST_F(QuitSwitchPagesTest, AccessWarningButtonAsksForTheAccessibilitySettings) {
    load(Dictionary{{keys::AddApplicationWindows, true}});
    ConfigureSwitchMenuController controller(prefs, local, bus, [] { return false; }, nullptr,
                                             KVOperatingSystem::SystemVersion::probe("10.8"));
    controller.initializePane(true);
    SwitchMenuPage switcher(controller, &window);
    controller.willBeginSheet();
    switcher.show();
    ASSERT_TRUE(switcher.universalAccessWarning()->isVisible());
    EXPECT_TRUE(switcher.windowsCaution()->isVisible());
    QPushButton* button = switcher.openUniversalAccessButton();
    EXPECT_EQ(button->text().toStdString(), LocalizedString("OpenAccessibility"));
    button->click();
    ASSERT_FALSE(local.posted().empty());
    EXPECT_EQ(local.posted().back().name, notifications::OpenUniversalAccess);
    // Turning the windows off leaves the warning while the menu still lists the active application's windows.
    switcher.optionBox(keys::AddApplicationWindows)->click();
    EXPECT_FALSE(switcher.windowsCaution()->isVisible());
    EXPECT_EQ(switcher.universalAccessWarning()->isVisible(), controller.showsUniversalAccessWarning());
}

TEST_F(QuitSwitchPagesTest, OpeningTheSheetRefreshesOnlyTheShownEditorsPaths) {
    std::string mail = app("Mail");
    std::filesystem::create_directories(dir / "sub");
    // A spelling of the path that a refresh would put right.
    std::string roundabout = (dir / "sub" / ".." / "Mail.app").string();
    Dictionary stale{{keys::Name, "Mail"}, {keys::Path, roundabout}};
    openTab(Dictionary{{keys::Groups, Array{Dictionary{{keys::Name, "Excluded"}, {keys::CanBeDeleted, false},
                                                       {keys::Applications, Array{stale}}}}},
                       {keys::SwitchMenuExcludedApplications, Array{stale.deepCopy()}}});
    auto excludedPath = [&](const char* tabName) {
        auto* box = tab->configureMenusSheet()->page(tabName)->findChild<ExcludedApplicationsBox*>();
        return box->table()->model()->index(0, 0).data(ApplicationRecordsModel::PathRole).toString().toStdString();
    };
    // Shown on the Open tab: the other editors' files are not looked at.
    EXPECT_EQ(excludedPath("Quit"), roundabout);
    EXPECT_EQ(excludedPath("Switch"), roundabout);
    showPage<QuitMenuPage>("Quit");
    EXPECT_EQ(excludedPath("Quit"), mail);
    EXPECT_EQ(excludedPath("Switch"), roundabout);
    showPage<SwitchMenuPage>("Switch");
    EXPECT_EQ(excludedPath("Switch"), mail);
}

TEST_F(QuitSwitchPagesTest, TheMenusTabsSummaryCountsEachMenusMissingApplications) {
    Dictionary gone{{keys::Name, "Gone"}, {keys::Path, (dir / "Gone.app").string()}};
    openTab(Dictionary{{keys::Groups, Array{Dictionary{{keys::Name, "Excluded"}, {keys::CanBeDeleted, false},
                                                       {keys::Applications, Array{gone}}}}},
                       {keys::SwitchMenuExcludedApplications, Array{gone.deepCopy(), Dictionary{{keys::Name, "Lost"},
                                                                    {keys::Path, (dir / "Lost.app").string()}}}}});
    std::string report;
    tab->updatePane(report);
    std::string one = LocalizedString("OneInvalidPath");
    EXPECT_NE(report.find(LocalizedFormat("QuitMenuSummary", {one})), std::string::npos) << report;
    EXPECT_NE(report.find(LocalizedFormat("SwitchMenuSummary", {LocalizedFormat("MoreInvalidPaths", {2LL})})),
              std::string::npos) << report;
}
