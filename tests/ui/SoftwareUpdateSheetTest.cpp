#include "pane/ui/SoftwareUpdateSheet.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>

#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "schema/PreferenceKeys.h"
#include "support/TestSupport.h"

using namespace corvalis;
using plist::Dictionary, plist::Value;

namespace {

class SoftwareUpdateSheetTest : public ::testing::Test {
protected:
    void SetUp() override {
        prefs.loadPreferences();
        window.show();
        updates.controller().initializeSoftwareUpdate(true);
    }
    void show(bool on, bool automatically, int days) {
        prefs.setBool(on, keys::TurnOnCorvalis);
        prefs.setBool(automatically, keys::CheckForUpdates);
        prefs.setInt(days, keys::CheckForUpdatesFrequency);
        updates.controller().initializeSoftwareUpdate(false);
        updates.controller().showSoftwareUpdateSheet();
    }

    test::TempDir tmp;
    FileDomainStore domains{tmp / "prefs"};
    InProcessNotificationCenter distributed;
    CorvalisPreferences prefs{domains, distributed};
    QMainWindow window;
    SoftwareUpdateSheet updates{prefs, distributed, &window};
};

TEST_F(SoftwareUpdateSheetTest, TurnedOffTheSettingsShowButCannotBeChangedAndACautionSaysWhy) {
    show(false, true, 30);
    QDialog* sheet = updates.sheet();
    ASSERT_TRUE(sheet->isVisible());
    EXPECT_TRUE(sheet->parentWidget() == &window && sheet->windowModality() == Qt::WindowModal);
    EXPECT_TRUE(updates.automaticallyCheckForUpdates()->isChecked() && !updates.automaticallyCheckForUpdates()->isEnabled());
    EXPECT_EQ(updates.checkFrequency()->currentData(), 30);
    EXPECT_TRUE(updates.caution()->isVisible() && !updates.caution()->pixmap().isNull());
    updates.done()->click();
    EXPECT_FALSE(sheet->isVisible());
}

TEST_F(SoftwareUpdateSheetTest, UserChoicesAreStoredCheckNowAsksTheControllerAndItsAnswerIsShown) {
    show(true, false, 1);
    EXPECT_FALSE(updates.checkFrequency()->isEnabled() || updates.caution()->isVisible());  // nothing to schedule
    updates.automaticallyCheckForUpdates()->click();
    EXPECT_TRUE(prefs.boolForKey(keys::CheckForUpdates));
    EXPECT_TRUE(updates.checkFrequency()->isEnabled());
    QTest::keyClick(updates.checkFrequency(), Qt::Key_Down);
    EXPECT_EQ(prefs.intForKey(keys::CheckForUpdatesFrequency), 7);
    EXPECT_EQ(distributed.posted().size(), 2u);  // what they carry is UpdatesController's to test

    distributed.clearPosted();
    updates.checkNow()->click();
    ASSERT_EQ(distributed.posted().size(), 1u);
    const Notification& asked = distributed.posted()[0];
    EXPECT_TRUE(asked.name == "CheckForUpdates" && asked.object == "com.kestrova.Corvalis" && !asked.userInfo);

    // Which texts an answer gives is UpdatesController's to test; here, that the sheet shows them.
    distributed.post({"CheckForUpdatesChanged", "com.kestrova.Corvalis.Controller",
                      Dictionary{{keys::CheckForUpdatesResult, Value::int32(1)}, {keys::CheckForUpdatesNewVersion, "9.9"},
                                 {keys::CheckForUpdatesLast, plist::Date{800000000.0}}}});
    EXPECT_EQ(updates.checkResult()->text(), "Version 9.9 is available.");
}

}  // namespace
