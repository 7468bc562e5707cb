#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QMainWindow>
#include <QTabWidget>
#include <QTest>

#include "controls/KVSwitchControl.h"
#include "pane/ui/CorvalisPane.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "pane/ControllerManager.h"
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

    QTest::keyClick(pane->onOffSwitch(), Qt::Key_Space);
    EXPECT_FALSE(pane->prefs().boolForKey(keys::TurnOnCorvalis) || pane->controllerManager().isControllerRunning());

    // The host quitting while the pane is not shown starts nothing.
    pane->willUnselect();
    pane->didUnselect();
    pane->prefs().setBool(true, keys::TurnOnCorvalis);
    pane->onOffSwitch()->setChecked(true);
    pane->applicationWillTerminate();
    QTest::qWait(300);
    EXPECT_FALSE(pane->controllerManager().isControllerRunning());
}
