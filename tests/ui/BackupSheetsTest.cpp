#include "pane/ui/BackupSheets.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QFileDialog>
#include <QMainWindow>
#include <QMessageBox>

#include "pane/ControllerManager.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "plist/PlistIO.h"
#include "prefs/Backup.h"
#include "schema/PreferenceKeys.h"
#include "support/TestSupport.h"

using namespace corvalis;
using plist::Dictionary, plist::Value;
namespace fs = std::filesystem;

namespace {

// A controller that is only a flag; a stubborn one ignores the request to quit.
struct FakeController : Processes, LoginItems, ControllerView {
    bool running = false, stubborn = false, on = false;
    int quits = 0, kills = 0, launches = 0;
    std::vector<LoginItem> items;
    bool IsControllerRunning(ProcessHandle* p) override {
        if (p) *p = running ? ProcessHandle{42, 1} : ProcessHandle{};
        return p && running;
    }
    int QuitController(const ProcessHandle&) override { return ++quits, running = stubborn, 0; }
    int KillController(const ProcessHandle&) override { return ++kills, running = false, 0; }
    bool IsControllerStillRunning(const ProcessHandle&) override { return running; }
    bool launchApplication(const std::string&) override { return ++launches, running = true; }
    std::optional<std::vector<LoginItem>> snapshot() override { return items; }
    bool insertLast(const std::string& path, bool) override {
        items.push_back({path, "Corvalis", path, true});
        return true;
    }
    bool remove(const LoginItem& i) override { return std::erase_if(items, [&](auto& x) { return x.id == i.id; }); }
    bool isSwitchOn() const override { return on; }
    void setSwitchOn(bool value) override { on = value; }
    void beep() override {}
};

class BackupSheetsTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(desktop);
        prefs.loadPreferences();
        window.show();
        sheets.setSavePanel([this](QWidget*, const QString& folder, const QString& name, auto done) {
            panelFolder = folder;
            panelName = name;
            done(answer);
        });
        sheets.setOpenPanel([this](QWidget*, const QString&, auto done) { done(answer); });
    }

    QMessageBox* alert() {
        QMessageBox* box = sheets.currentAlert();
        return box && box->isVisible() && box->windowModality() == Qt::WindowModal ? box : nullptr;
    }
    void press(const QString& label) {
        ASSERT_NE(alert(), nullptr) << label.toStdString();
        for (QAbstractButton* button : alert()->buttons())
            if (button->text() == label) return button->click();
        FAIL() << "no button " << label.toStdString();
    }
    std::string stored() { return plist::toXml(prefs.loadFromDefaults()); }
    QString importFile(const std::string& name, const std::string& text) {
        test::writeFile(tmp / name, text);
        answer = QString::fromStdString((tmp / name).string());
        sheets.onImportFromBackup();
        return alert() ? alert()->informativeText() : QString();
    }

    test::TempDir tmp;
    test::ScopedEnv home{"HOME", (tmp / "home").string()};  // the panels start on its Desktop
    fs::path desktop = tmp / "home" / "Desktop";
    FileDomainStore domains{tmp / "prefs"};
    InProcessNotificationCenter distributed;
    CorvalisPreferences prefs{domains, distributed};
    FakeController fake;
    ControllerManager manager{prefs, fake, fake, fake, {"/opt/Corvalis.app", {"/u/Corvalis.app", "/a/Corvalis.app"},
                                                        std::chrono::milliseconds(20)}};
    QMainWindow window;
    QStringList calls;
    QString reportLines;
    BackupSheets sheets{prefs, manager, &window, [this] { calls << "reload"; }, [this](QString& report) {
                            calls << "report";
                            report += reportLines;
                            prefs.setString("dropped", "TestAdjustment");  // a tab's repair, to be saved
                        }};
    QString answer, panelFolder, panelName;
};

TEST_F(BackupSheetsTest, BackUpSavesFirstWritesAReadableFileAndReportsAFailedWrite) {
    prefs.setInt(30, keys::CheckForUpdatesFrequency);  // not yet saved
    answer = QString::fromStdString((desktop / "mine").string());
    sheets.onBackUpSettings();
    EXPECT_EQ(panelFolder.toStdString(), desktop.string());
    EXPECT_TRUE(panelName.startsWith("Corvalis - ") && panelName.endsWith(".cvbu") && !panelName.contains('/'));
    BackupContents written = readBackupFile(desktop / "mine.cvbu");
    ASSERT_EQ(written.check, BackupCheck::Valid);
    EXPECT_EQ(written.settings[keys::CheckForUpdatesFrequency].toInt64(), 30);
    EXPECT_EQ(alert(), nullptr);

    answer = QString::fromStdString((tmp / "gone" / "b.cvbu").string());
    sheets.onBackUpSettings();
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->text(), "Back Up Settings");
    EXPECT_EQ(alert()->informativeText(), "The settings could not be saved to “" + answer + "”.");
}

TEST_F(BackupSheetsTest, TheOwnSavePanelIsAWindowModalQtDialogThatAddsTheExtension) {
    BackupSheets plain(prefs, manager, &window, {}, {});
    plain.onBackUpSettings();
    auto* panel = window.findChild<QFileDialog*>();
    ASSERT_TRUE(panel && panel->isVisible());
    EXPECT_EQ(panel->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(panel->testOption(QFileDialog::DontUseNativeDialog));
    EXPECT_EQ(panel->directory().absolutePath().toStdString(), desktop.string());
    panel->selectFile(QString::fromStdString((desktop / "typed").string()));
    static_cast<QDialog*>(panel)->accept();
    EXPECT_EQ(readBackupFile(desktop / "typed.cvbu").check, BackupCheck::Valid);
}

// Which files are refused is Backup's own; here, that each refusal is told and changes nothing.
TEST_F(BackupSheetsTest, ImportRefusesWhatIsNoBackupOfThisVersionAndChangesNothing) {
    fake.running = true;
    const std::string before = stored();
    EXPECT_EQ(importFile("junk.cvbu", "not a property list"),
              "“junk.cvbu” is not a Corvalis settings backup, or it is damaged.");
    EXPECT_EQ(alert()->text(), "Import Settings from Backup");
    press("OK");
    EXPECT_EQ(stored(), before);
    EXPECT_TRUE(calls.isEmpty());
    EXPECT_EQ(fake.quits, 0);
}

TEST_F(BackupSheetsTest, ConfirmedImportReplacesSettingsRestartsTheControllerAndReports) {
    fake.running = true;
    const std::string before = stored();
    std::string file =
        backupFileText(Dictionary{{keys::TurnOnCorvalis, true}, {keys::CheckForUpdatesFrequency, Value::int32(30)}});
    EXPECT_TRUE(importFile("good.cvbu", file).startsWith("All your current Corvalis settings will be replaced."));
    EXPECT_EQ(alert()->text(), "Do you want to replace your settings with those of “good.cvbu”?");
    press("Cancel");
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(fake.quits, 0);

    reportLines = "Mail no longer exists.\n";
    importFile("good.cvbu", file);
    press("Replace Settings");
    EXPECT_EQ(calls, QStringList({"reload", "report"}));
    const Dictionary now = prefs.loadFromDefaults();
    EXPECT_EQ(now[keys::CheckForUpdatesFrequency].toInt64(), 30);
    EXPECT_EQ(now["TestAdjustment"], Value("dropped"));
    EXPECT_TRUE(now.contains(keys::ImportFromBackupDate));  // it ran, and is to run again
    EXPECT_TRUE(fake.quits == 1 && fake.launches == 1);  // the rest of the restart is the manager's own test
    EXPECT_EQ(alert()->text(), "Your settings have been replaced.");
    EXPECT_EQ(alert()->informativeText(),
              "The imported settings were adjusted to this computer:\nMail no longer exists.");
}

TEST_F(BackupSheetsTest, AControllerThatDoesNotQuitIsAskedAgainOrForcedBeforeTheRestart) {
    fake.running = fake.stubborn = true;
    importFile("on.cvbu", backupFileText(Dictionary{{keys::TurnOnCorvalis, true}}));
    press("Replace Settings");
    EXPECT_EQ(alert()->text(), "The Corvalis controller does not quit.");
    press("Wait");
    EXPECT_EQ(fake.quits, 2);
    EXPECT_EQ(alert()->text(), "The Corvalis controller does not quit.");
    EXPECT_EQ(fake.launches, 0);
    press("Force Quit");
    EXPECT_EQ(fake.kills, 1);
    EXPECT_EQ(fake.launches, 1);  // the imported settings now run
    EXPECT_EQ(alert()->informativeText(), "All the imported settings could be used as they are.");
}

}  // namespace
