#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QSortFilterProxyModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QTest>

#include "keys/KVKeyCombinationValidator.h"
#include "keys/KeysFixture.h"
#include "keys/ui/KVKeyCombinationTextField.h"
#include "menus/ConfigureOpenMenuController.h"
#include "menus/ui/ConfigurePreviewsSheet.h"
#include "menus/ui/MenuHotKeysTable.h"
#include "menus/ui/MenusTab.h"
#include "menus/ui/OpenMenuPage.h"
#include "menus/ConfigureSpecialMenuController.h"
#include "menus/ui/SpecialMenuPage.h"
#include "prefs/MenuItemKinds.h"
#include "prefs/NotificationNames.h"
#include "support/IntegrationSupport.h"
#include "prefs/DefaultPreviewSizes.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;
using Strings = std::vector<std::string>;

namespace {

class MenusTabTest : public test::PrefsTest {
protected:
    test::ScopedLayout us{"us"};
    test::TempDir dir;
    InProcessNotificationCenter local;
    KVKeyCombinationValidator validator{prefs};
    QWidget window;
    QWidget* page = new QWidget(&window);
    std::unique_ptr<MenusTab> tab;
    std::vector<std::pair<QString, QStringList>> launched;

    void open(const Dictionary& stored) {
        load(stored);
        validator.initializeHotKeys();
        tab = std::make_unique<MenusTab>(MenusTabContext{prefs, validator, local, bus, {}}, page, &window);
        tab->setLauncher([this](const QString& program, const QStringList& arguments) {
            launched.emplace_back(program, arguments);
            return true;
        });
        tab->initializePane(true);
        window.resize(700, 560);
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        bus.clearPosted();
    }
    OpenMenuPage* openMenuPage() {
        return qobject_cast<OpenMenuPage*>(tab->configureMenusSheet()->page("Open"));
    }
    QAction* entry(QMenu* menu, const QString& title) {
        emit menu->aboutToShow();
        for (QAction* action : menu->actions())
            if (action->text() == title) return action;
        return nullptr;
    }
    std::vector<std::string> openMenuKinds() { return kinds(prefs.prefsData()[keys::OpenMenuItems]); }
    std::vector<std::string> postedNames() {
        std::vector<std::string> names;
        for (const Notification& posted : bus.posted()) names.push_back(posted.name);
        return names;
    }
    template <class Dialog>
    Dialog* waitForSheet() {
        Dialog* found = nullptr;
        test::waitUntil([&] {
            for (Dialog* dialog : tab->configureMenusSheet()->findChildren<Dialog*>())
                if (dialog->isVisible()) found = dialog;
            return found != nullptr;
        }, 5000);
        return found;
    }
};

}  // namespace

TEST_F(MenusTabTest, ConfigureMenusSheetEditsTheOpenMenu) {
    std::filesystem::create_directories(dir / "Projects");
    std::string projects = std::filesystem::canonical(dir / "Projects").string();
    open(Dictionary());
    EXPECT_EQ(tab->configureMenusSheet(), nullptr);  // built when first opened
    tab->configureMenusButton()->click();
    ASSERT_TRUE(tab->configureMenusSheet() && tab->configureMenusSheet()->isVisible());
    EXPECT_TRUE(tab->configureMenusSheet()->windowModality() == Qt::WindowModal);
    tab->configureMenusSheet()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(tab->configureMenusSheet()));
    Strings sheetTabs;
    for (int i = 0; i < tab->configureMenusSheet()->tabs()->count(); ++i)
        sheetTabs.push_back(tab->configureMenusSheet()->tabs()->widget(i)->objectName().toStdString());
    ASSERT_EQ(sheetTabs, (Strings{"Open", "Quit", "Switch", "Special"}));
    OpenMenuPage* page = openMenuPage();
    ASSERT_TRUE(page);
    Strings factory = openMenuKinds();
    EXPECT_EQ(page->table()->model()->rowCount(), static_cast<int>(factory.size()));

    // Delete removes the selected row; Add offers its kind again and puts it back after the selection.
    page->table()->setFocus();
    page->table()->selectRow(0);
    QTest::keyClick(page->table(), Qt::Key_Delete);
    EXPECT_EQ(openMenuKinds().front(), "Separator");
    QAction* groups = entry(page->addMenu(), QString::fromStdString(LocalizedString("Groups")));
    ASSERT_TRUE(groups);
    page->table()->selectRow(1);
    groups->trigger();
    EXPECT_EQ(openMenuKinds()[2], "Groups");

    // A folder from the panel: its name opens for typing, and Return keeps what was typed.
    entry(page->addMenu(), QString::fromStdString(LocalizedString("Folder")))->trigger();
    QFileDialog* panel = waitForSheet<QFileDialog>();
    ASSERT_TRUE(panel);
    panel->setDirectory(QString::fromStdString(dir.path().string()));
    panel->selectFile(QString::fromStdString(projects));
    static_cast<QDialog*>(panel)->accept();
    ASSERT_TRUE(test::waitUntil([&] { return qobject_cast<QLineEdit*>(QApplication::focusWidget()); }, 5000));
    QTest::keyClicks(QApplication::focusWidget(), "Work");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    test::waitUntil([&] { return prefs.prefsData()[keys::OpenMenuItems][3][keys::NameIsCustom].toBool() == true; }, 2000);
    Value folder = prefs.prefsData()[keys::OpenMenuItems][3];
    EXPECT_EQ(folder[keys::Path].stringOr(""), projects);
    EXPECT_EQ(folder[keys::Name].stringOr(""), "Work");
    EXPECT_EQ(folder[keys::NameIsCustom].toBool(), true);

    // Restoring asks first.
    entry(page->actionsMenu(), QString::fromStdString(LocalizedString("RestoreDefaultMenu")))->trigger();
    QMessageBox* question = waitForSheet<QMessageBox>();
    ASSERT_TRUE(question);
    EXPECT_EQ(question->informativeText().toStdString(), LocalizedString("CantUndo"));
    question->defaultButton()->click();
    EXPECT_EQ(openMenuKinds(), factory);

    // Extra separators go when the sheet closes.
    page->table()->selectRow(0);
    QAction* separator = entry(page->addMenu(), QString::fromStdString(LocalizedString("Separator")));
    separator->trigger();
    page->table()->clearSelection();
    entry(page->addMenu(), QString::fromStdString(LocalizedString("Separator")))->trigger();
    EXPECT_EQ(openMenuKinds().size(), factory.size() + 2);
    local.clearPosted();
    QTest::keyClick(tab->configureMenusSheet(), Qt::Key_Escape);
    EXPECT_FALSE(tab->configureMenusSheet()->isVisible());
    EXPECT_EQ(openMenuKinds(), factory);
    ASSERT_EQ(local.posted().size(), 1u);
    EXPECT_EQ(local.posted()[0].name, notifications::OpenMenuItemsRemoved);
    EXPECT_TRUE(launched.empty());  // closed by hand: no accessibility settings
}

TEST_F(MenusTabTest, UniversalAccessRequestClosesTheSheetFirst) {
    open(Dictionary());
    tab->onConfigureMenus();
    local.post(Notification{notifications::OpenUniversalAccess, "", std::nullopt});
    EXPECT_FALSE(tab->configureMenusSheet()->isVisible());
    EXPECT_FALSE(tab->controller().configureMenusSheetShown());
    // Whichever accessibility settings this desktop has, or a beep when it has none.
    for (const auto& [program, arguments] : launched)
        EXPECT_TRUE((program == "gnome-control-center" && arguments == QStringList{"universal-access"}) ||
                    (program == "systemsettings" && arguments == QStringList{"kcm_access"}));
    // Once closed, the sheet no longer listens.
    local.post(Notification{notifications::OpenUniversalAccess, "", std::nullopt});
    EXPECT_LE(launched.size(), 1u);
}

TEST_F(MenusTabTest, RecordingAMenuHotKeySuspendsTheControllersHotKeys) {
    open(Dictionary{{keys::HotKeys, test::factoryHotKeys()}});
    KVTableView* table = tab->hotKeysTable();
    table->setFocus();
    table->setCurrentIndex(table->model()->index(1, MenuHotKeysTableModel::MenuColumn));
    QTest::keyClick(table, Qt::Key_Return);
    auto* field = qobject_cast<KVKeyCombinationTextField*>(QApplication::focusWidget());
    ASSERT_TRUE(field);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_K, Qt::MetaModifier, 37 + 8, 0, 0);  // ⌘K
    QApplication::sendEvent(field, &key);
    EXPECT_EQ(tab->controller().hotKeyCombination(1), KVKeyCombination(0, 40, modifiers::Command));
    EXPECT_EQ(tab->controller().hotKeyPosition(1), 1);
    EXPECT_EQ(postedNames(), (Strings{notifications::SuspendHotKeys, notifications::CorvalisPaneChangedPrefs,
                                      notifications::ResumeHotKeys}));
    EXPECT_TRUE(bus.posted()[1].userInfo->contains(changes::ChangeQuitMenuHotKey));

    // Another menu's combination is refused with an alert; the old one stays.
    bus.clearPosted();
    QTest::keyClick(table, Qt::Key_Return);
    field = qobject_cast<KVKeyCombinationTextField*>(QApplication::focusWidget());
    ASSERT_TRUE(field);
    QKeyEvent taken(QEvent::KeyPress, Qt::Key_O, Qt::ShiftModifier | Qt::ControlModifier, 24 + 8, 0, 0);
    QApplication::sendEvent(field, &taken);
    EXPECT_EQ(tab->controller().hotKeyCombination(1), KVKeyCombination(0, 40, modifiers::Command));
    QMessageBox* alert = window.findChild<QMessageBox*>();
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->informativeText().toStdString(), LocalizedString("ChooseAnotherCombination"));
    alert->done(0);

    QTest::keyClick(table, Qt::Key_Space);  // the check box of the current row
    EXPECT_TRUE(prefs.boolForKey(keys::EnableQuitMenuHotKey));

    // A click in the header brings the keyboard back to the table.
    tab->configureMenusButton()->setFocus();
    QHeaderView* header = table->horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(MenuHotKeysTableModel::MenuColumn) + 5, header->height() / 2));
    EXPECT_TRUE(table->hasFocus());
}

TEST_F(MenusTabTest, PreviewsSheetRepairsSizesOnceAndKeepsTheFilterStoredWhileOff) {
    open(Dictionary{{keys::ImageMaxSize, Value::real32(80.5f)}, {keys::MovieMaxSize, Value::real32(250.7f)},
                    {keys::EnableFilterExtensions, true}, {keys::FilteredExtensions, Array{"zip"}}});
    tab->configurePreviewsButton()->click();
    ConfigurePreviewsSheet* sheet = tab->configurePreviewsSheet();
    ASSERT_TRUE(sheet && sheet->isVisible());
    EXPECT_EQ(prefs.floatForKey(keys::ImageMaxSize), 100.0f);
    EXPECT_EQ(prefs.floatForKey(keys::MovieMaxSize), 250.0f);
    EXPECT_EQ(sheet->slider(1)->value(), 100);
    EXPECT_EQ(bus.posted().size(), 2u);

    sheet->slider(2)->setValue(299);
    EXPECT_EQ(prefs.floatForKey(keys::MovieMaxSize), 300.0f);
    EXPECT_EQ(sheet->sizeLabel(2)->text().toStdString(), LocalizedFormat("PreviewSize", {"300", "300"}));

    QLineEdit* field = sheet->extensionsField();
    EXPECT_EQ(field->text(), "zip");
    field->selectAll();
    QTest::keyClicks(field, "PNG, jpg. png gif");
    EXPECT_EQ(field->text(), "png, jpg. png gif");  // lower case as typed
    QTest::keyClicks(field, "/");                    // not part of any extension: refused
    EXPECT_EQ(field->text(), "png, jpg. png gif");
    Array stored{"gif", "jpg", "png"};
    EXPECT_EQ(*prefs.prefsData()[keys::FilteredExtensions].array(), stored);

    bus.clearPosted();
    sheet->box(keys::EnableFilterExtensions)->click();
    EXPECT_FALSE(field->isEnabled());
    ASSERT_EQ(bus.posted().size(), 1u);
    EXPECT_EQ((*bus.posted()[0].userInfo)[keys::FilteredExtensions], Value(Array()));
    EXPECT_EQ(*prefs.prefsData()[keys::FilteredExtensions].array(), stored);
    sheet->box(keys::EnableFilterExtensions)->click();
    EXPECT_EQ((*bus.posted()[1].userInfo)[keys::FilteredExtensions], Value(stored));

    sheet->restoreSizesButton()->click();
    EXPECT_EQ(prefs.floatForKey(keys::MovieMaxSize), MovieDefaultSize());
    sheet->done(1);
    bus.clearPosted();
    tab->onConfigurePreviews();  // prepared already: nothing repaired again
    EXPECT_TRUE(bus.posted().empty());
    sheet->done(1);
}

TEST_F(MenusTabTest, SpecialTabKeepsItsOptionsWithItsMenu) {
    open(Dictionary{{keys::SpecialMenuItems, Array{Dictionary{{keys::Item, "Home"}}}}});
    tab->configureMenusButton()->click();
    auto* page = qobject_cast<SpecialMenuPage*>(tab->configureMenusSheet()->page("Special"));
    ASSERT_TRUE(page);
    tab->configureMenusSheet()->tabs()->setCurrentWidget(page);
    EXPECT_FALSE(page->volumesOptions()->isVisible());
    EXPECT_FALSE(page->table()->model()->flags(page->table()->model()->index(0, 0)) & Qt::ItemIsEditable);

    // Adding the disks brings their options; the keyboard reaches and changes them.
    QAction* volumes = entry(page->addMenu(), QString::fromStdString(LocalizedString("Volumes")));
    ASSERT_TRUE(volumes);
    volumes->trigger();
    EXPECT_TRUE(page->volumesOptions()->isVisible());
    QCheckBox* network = page->diskBox(keys::ShowNetworkDisks);
    network->setFocus();
    QTest::keyClick(network, Qt::Key_Space);
    EXPECT_FALSE(prefs.boolForKey(keys::ShowNetworkDisks));
    page->quickCopyPathCommand()->setFocus();
    QTest::keyClick(page->quickCopyPathCommand(), Qt::Key_Down);
    EXPECT_EQ(prefs.stringForKey(keys::QuickCopyPathCommand), ConfigureSpecialMenuController::quickCopyPathCommandText(1));
    EXPECT_EQ(postedNames(), Strings(3, notifications::CorvalisPaneChangedPrefs));

    // Only a row with a path can be changed; removing the disks takes their options away.
    QAction* change = entry(page->actionsMenu(), QString::fromStdString(LocalizedString("ChangeFileOrFolder1")));
    ASSERT_TRUE(change);
    EXPECT_FALSE(change->isEnabled());
    page->table()->setFocus();
    page->table()->selectRow(1);
    QTest::keyClick(page->table(), Qt::Key_Delete);
    EXPECT_EQ(kinds(prefs.prefsData()[keys::SpecialMenuItems]), Strings{"Home"});
    EXPECT_FALSE(page->volumesOptions()->isVisible());

    // The panel lists no applications, and takes a folder as readily as a file.
    std::filesystem::create_directories(dir / "Projects");
    std::filesystem::create_directories(dir / "Tool.app" / "Contents");
    test::writeFile(dir / "Tool.app" / "Contents" / "Info.plist", "<plist/>");
    entry(page->addMenu(), QString::fromStdString(LocalizedString("FileOrFolder")))->trigger();
    QFileDialog* panel = waitForSheet<QFileDialog>();
    ASSERT_TRUE(panel);
    QString folder = QString::fromStdString(std::filesystem::canonical(dir.path()).string());
    panel->setDirectory(folder);
    auto* listed = qobject_cast<QSortFilterProxyModel*>(panel->proxyModel());
    ASSERT_TRUE(listed);
    auto* files = qobject_cast<QFileSystemModel*>(listed->sourceModel());
    ASSERT_TRUE(files && test::waitUntil([&] { return files->rowCount(files->index(folder)) == 2; }, 5000));
    QModelIndex shown = listed->mapFromSource(files->index(folder));
    ASSERT_EQ(listed->rowCount(shown), 1);
    EXPECT_EQ(listed->index(0, 0, shown).data().toString(), "Projects");
    auto* name = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(name);
    QTest::keyClicks(name, "Projects");
    static_cast<QDialog*>(panel)->accept();
    EXPECT_EQ(kinds(prefs.prefsData()[keys::SpecialMenuItems]), (Strings{"Home", "Folder"}));

    // Return on the folder's row asks where it is now.
    page->table()->setFocus();
    page->table()->selectRow(1);
    QTest::keyClick(page->table(), Qt::Key_Return);
    panel = waitForSheet<QFileDialog>();
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->windowTitle().toStdString(), LocalizedString("ChangeFileOrFolder2"));
    panel->reject();
    tab->configureMenusSheet()->done(1);
}

// Kinds without a file of their own still show an image, whatever icon theme the desktop has.
TEST(MenuItemIcons, EveryKindWithoutAPathHasItsOwnImage) {
    for (const char* kind : {items::Groups, items::DockApplications, items::RecentApplications, items::SystemPreferences,
                             items::ApplicationsFolder, items::DeveloperApplicationsFolder})
        EXPECT_FALSE(menuItemIcon("", kind).value<QIcon>().isNull()) << kind;
    EXPECT_FALSE(menuItemIcon("", items::Separator).isValid());
}

// Commands the themes have no image for still show ours.
TEST(MenuItemIcons, SpecialCommandsWithoutAThemeImageShowOurOwn) {
    for (const char* kind : {items::RelaunchDock, items::Sleep})
        EXPECT_FALSE(specialMenuItemIcon("", kind).value<QIcon>().isNull()) << kind;
    EXPECT_FALSE(specialMenuItemIcon("", items::Separator).isValid());
}
