#include <gtest/gtest.h>

#include <QDialog>
#include <QTest>

#include <csignal>

#include "app/settings/HostWindow.h"
#include "app/settings/TerminationSignals.h"
#include "controls/KVSwitchControl.h"
#include "pane/ControllerManager.h"
#include "pane/ui/CorvalisPane.h"
#include "platform/FileDomainStore.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "support/IntegrationSupport.h"

using namespace corvalis;
using test::waitUntil;

namespace {

// The window hosting a real pane, shown and selected; the first-use welcome is the open sheet.
class HostWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("CORVALIS_PREFERENCES_DIR", (dir / "prefs").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
        setenv("CORVALIS_CONTROLLER", controller.c_str(), 1);
        host = std::make_unique<HostWindow>();
        pane = new ComKestrovaCorvalis_PrefsPane(host.get(), host.get());
        host->setPane(pane);
        host->showAndSelect();
        ASSERT_TRUE(waitUntil([&] { return pane->attachedSheet() != nullptr; }));
        // Turned on while shown: only leaving the pane starts the controller.
        pane->prefs().setBool(true, keys::TurnOnCorvalis);
        pane->setSwitchState(true);
    }
    void TearDown() override { test::killRecordedControllers(record); }

    bool savedOn() {
        auto stored = FileDomainStore(dir / "prefs").persistentDomainForName("com.kestrova.Corvalis");
        return stored && (*stored)[keys::TurnOnCorvalis].toBool().value_or(false);
    }

    test::TempDir dir;
    std::filesystem::path record = dir / "record.plist";
    std::filesystem::path controller = test::recordingControllerBundle(dir / "controllers", record);
    std::unique_ptr<HostWindow> host;
    ComKestrovaCorvalis_PrefsPane* pane = nullptr;
};

}  // namespace

TEST_F(HostWindowTest, CtrlWAndCtrlQCloseLikeTheCloseButtonButNotOverASheet) {
    for (Qt::Key key : {Qt::Key_W, Qt::Key_Q}) QTest::keyClick(pane->attachedSheet(), key, Qt::ControlModifier);
    EXPECT_TRUE(host->isVisible());
    EXPECT_FALSE(savedOn());

    pane->attachedSheet()->done(1);
    ASSERT_TRUE(waitUntil([&] { return pane->attachedSheet() == nullptr; }));
    host->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(host.get()));
    QTest::keyClick(host.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(host->isVisible());
    EXPECT_TRUE(savedOn());
    EXPECT_TRUE(waitUntil([&] { return pane->controllerManager().isControllerRunning(); }));
}

TEST_F(HostWindowTest, TheSessionEndingClosesOverAnOpenSheetSavesAndStartsTheController) {
    TerminationSignals sessionEnd;
    QObject::connect(&sessionEnd, &TerminationSignals::received, host.get(), &HostWindow::closeForSessionEnd);
    ::raise(SIGTERM);
    EXPECT_TRUE(waitUntil([&] { return !host->isVisible(); }));
    EXPECT_EQ(pane->attachedSheet(), nullptr);
    EXPECT_TRUE(savedOn());
    EXPECT_TRUE(waitUntil([&] { return pane->controllerManager().isControllerRunning(); }));
}
