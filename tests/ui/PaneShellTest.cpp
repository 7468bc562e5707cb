#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QTabWidget>
#include <QTest>

#include "controls/KVSwitchControl.h"
#include "pane/ControllerManager.h"
#include "pane/ui/CorvalisPane.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "pane/ControllerManager.h"
#include "pane/ui/BackupSheets.h"
#include "prefs/Backup.h"
#include "support/IntegrationSupport.h"

using namespace corvalis;
using test::waitUntil;

namespace {

class PaneShell : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("CORVALIS_PREFERENCES_DIR", (dir / "prefs").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
        setenv("CORVALIS_CONTROLLER", controller.c_str(), 1);
    }

    void TearDown() override { test::killRecordedControllers(record); }

    std::unique_ptr<ComKestrovaCorvalis_PrefsPane> openPane() {
        auto pane = std::make_unique<ComKestrovaCorvalis_PrefsPane>(&window);
        window.setCentralWidget(pane->loadMainView());
        pane->willSelect();
        window.show();
        pane->didSelect();
        return pane;
    }

    test::TempDir dir;
    std::filesystem::path record = dir / "record.plist";
    std::filesystem::path controller = test::recordingControllerBundle(dir / "controllers", record);
    QMainWindow window;
};

// Writes each call into a log shared by all fakes; its report line names it.
class FakeTab : public PaneController {
public:
    FakeTab(std::string name, QStringList& log) : name_(std::move(name)), log_(log) {}
    void initializePane(bool firstTime) override { note(firstTime ? "init" : "reinit"); }
    void willShowPane() override { note("show"); }
    void willHidePane() override { note("hide"); }
    void windowDidBecomeMain() override { note("main"); }
    void updatePane(std::string& report) override { report += name_ + " adjusted\n"; }

private:
    void note(const char* call) { log_ << QString::fromStdString(name_ + " " + call); }
    std::string name_;
    QStringList& log_;
};

QStringList tabNames(QTabWidget* tabs) {
    QStringList names;
    for (int i = 0; i < tabs->count(); ++i) names << tabs->widget(i)->objectName();
    return names;
}

}  // namespace

TEST_F(PaneShell, FirstUseShowsTheWelcomeSheetOnceAndBlocksClosing) {
    auto pane = openPane();
    EXPECT_EQ(tabNames(pane->tabs()), QStringList({"Menus", "Groups", "Applications", "Shortcuts", "Options", "Resume"}));
    EXPECT_EQ(pane->attachedSheet(), nullptr);  // not before half a second
    ASSERT_TRUE(waitUntil([&] { return pane->attachedSheet() != nullptr; }));
    EXPECT_EQ(pane->shouldUnselect(), PreferencePane::UnselectReply::Cancel);
    pane->attachedSheet()->done(1);
    EXPECT_TRUE(waitUntil([&] { return pane->attachedSheet() == nullptr; }));
    EXPECT_EQ(pane->shouldUnselect(), PreferencePane::UnselectReply::Now);
    pane->willUnselect();
    pane->didUnselect();

    // The same settings met again: no welcome.
    auto again = openPane();
    QTest::qWait(800);
    EXPECT_EQ(again->attachedSheet(), nullptr);
}

TEST_F(PaneShell, ResumeTabIsAbsentBefore10_7) {
    setenv("CORVALIS_SYSTEM_VERSION", "10.6.8", 1);  // read once per process; each test runs in its own
    auto pane = openPane();
    EXPECT_FALSE(tabNames(pane->tabs()).contains("Resume"));
    EXPECT_EQ(pane->tabs()->count(), 5);
}

// What turning on and off does is the controller manager's to test; here, that the switch does it.
TEST_F(PaneShell, TheSwitchStartsAndQuitsTheController) {
    auto pane = openPane();
    EXPECT_FALSE(pane->onOffSwitch()->isChecked());
    pane->onOffSwitch()->setFocus();
    QTest::keyClick(pane->onOffSwitch(), Qt::Key_Space);
    EXPECT_TRUE(pane->onOffSwitch()->isChecked() && pane->prefs().boolForKey(keys::TurnOnCorvalis));
    EXPECT_TRUE(waitUntil([&] { return pane->controllerManager().isControllerRunning(); }));

    // A screen reader toggles the switch through its accessible action, without a click.
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(pane->onOffSwitch());
    ASSERT_TRUE(accessible && accessible->actionInterface());
    accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(pane->onOffSwitch()->isChecked());
    EXPECT_FALSE(pane->prefs().boolForKey(keys::TurnOnCorvalis) || pane->controllerManager().isControllerRunning());
    EXPECT_EQ(pane->switchLabel()->text(), "Corvalis is off");

    // The host quitting while the pane is not shown starts nothing.
    pane->willUnselect();
    pane->didUnselect();
    pane->prefs().setBool(true, keys::TurnOnCorvalis);
    pane->setSwitchState(true);
    pane->applicationWillTerminate();
    QTest::qWait(300);
    EXPECT_FALSE(pane->controllerManager().isControllerRunning());
}

TEST_F(PaneShell, RegisteredTabsAreShownHiddenToldOfActivationAndReloadedAfterAnImport) {
    openPane()->didUnselect();  // past the first-use welcome
    auto pane = openPane();
    QStringList log;
    pane->addTabController(tabs::Menus, std::make_unique<FakeTab>("Menus", log));
    pane->addTabController(tabs::Groups, std::make_unique<FakeTab>("Groups", log));

    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    log.clear();
    pane->tabs()->setCurrentWidget(pane->page(tabs::Groups));
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_EQ(log.join(", ").toStdString(), "Menus hide, Groups show, Groups main");

    // Focus passing between the window and its own sheet is not the window becoming main;
    // focus coming back from elsewhere to the sheet is.
    log.clear();
    QDialog sheet(&window);
    sheet.setWindowModality(Qt::WindowModal);
    sheet.show();
    sheet.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet));
    EXPECT_TRUE(log.isEmpty());
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    sheet.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&sheet));
    sheet.close();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_EQ(log.join(", ").toStdString(), "Groups main");

    // An import that turns the controller on: every tab set up again, the report in
    // the tabs' order, the switch and its label on.
    log.clear();
    test::writeFile(dir / "on.cvbu", backupFileText(plist::Dictionary{{keys::TurnOnCorvalis, true}}));
    pane->backupSheets().setOpenPanel(
        [&](QWidget*, const QString&, auto done) { done(QString::fromStdString((dir / "on.cvbu").string())); });
    pane->onImportFromBackup();
    QMessageBox* confirm = pane->backupSheets().currentAlert();
    ASSERT_TRUE(confirm);
    for (QAbstractButton* button : confirm->buttons())
        if (confirm->buttonRole(button) == QMessageBox::AcceptRole) button->click();  // "Replace Settings"
    EXPECT_EQ(log.join(", ").toStdString(), "Groups reinit, Menus reinit");
    ASSERT_TRUE(waitUntil([&] { return pane->backupSheets().currentAlert() != confirm; }));
    EXPECT_TRUE(pane->backupSheets().currentAlert()->informativeText().endsWith("Groups adjusted\nMenus adjusted"));
    EXPECT_TRUE(pane->onOffSwitch()->isChecked());
    EXPECT_EQ(pane->switchLabel()->text(), "Corvalis is on");
    EXPECT_TRUE(waitUntil([&] { return pane->controllerManager().isControllerRunning(); }));
}
