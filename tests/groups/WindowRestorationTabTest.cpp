#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "controls/KVServicesBar.h"
#include "controls/KVTableView.h"
#include "groups/ui/WindowRestorationTab.h"
#include "pane/ItemRoles.h"
#include "plist/PlistIO.h"
#include "support/FakeRunningApplications.h"
#include "support/FakeWorkspace.h"
#include "support/IntegrationSupport.h"
#include "support/PrefsFixture.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;
namespace fs = std::filesystem;

namespace {

// One installed application, "Editor", whose own preferences file the test writes first.
class WindowRestorationTabTest : public ::testing::Test {
protected:
    test::TempDir dir;
    test::MemoryDomainStore domains;
    InProcessNotificationCenter bus;
    CorvalisPreferences prefs{domains, bus};
    test::FakeWorkspace workspace;
    test::FakeRunningApplications running;
    std::string editor = test::makeBundle(dir / "Applications", "Editor", "org.editor").string();
    fs::path file = dir / "Preferences" / "org.editor.plist";

    void SetUp() override {
        workspace.addApplication(editor, "org.editor");
        fs::create_directories(file.parent_path());
    }
};

}  // namespace

// The tab as a user drives it: the policy chosen in the table and a removal
// confirmed in its sheet, each landing in the application's own file.
TEST_F(WindowRestorationTabTest, ChangingAndRemovingFromTheTableWriteTheApplicationsFile) {
    test::writeFile(file, toXml(Dictionary{{kWindowPersistenceKey, false}, {"Other", "kept"}}));
    auto keeps = [&] { return asDictionary(parse(test::readFile(file)).value).value_or(Dictionary()); };

    QWidget window;
    QWidget* page = new QWidget(&window);
    WindowRestorationTab tab(prefs, workspace, running, {dir / "Preferences", dir / "containers"}, page, &window);
    tab.initializePane(true);
    tab.willShowPane();
    window.show();
    ASSERT_EQ(tab.table()->model()->rowCount(), 1);
    EXPECT_TRUE(tab.servicesBar()->removeButton()->isEnabled());

    QModelIndex policy = tab.table()->model()->index(0, WindowRestorationController::PolicyColumn);
    ASSERT_TRUE(tab.table()->model()->setData(policy, 1, Qt::EditRole));
    EXPECT_EQ(keeps()[kWindowPersistenceKey].boolean(), true);
    EXPECT_EQ(keeps()["Other"].stringOr(""), "kept");

    tab.servicesBar()->removeButton()->click();
    QMessageBox* sheet = window.findChild<QMessageBox*>();
    ASSERT_TRUE(sheet);
    ASSERT_TRUE(sheet->defaultButton());
    sheet->defaultButton()->click();  // "Remove"
    ASSERT_TRUE(test::waitUntil([&] { return tab.table()->model()->rowCount() == 0; }, 5000));
    EXPECT_EQ(Value(keeps()), Value(Dictionary{{"Other", "kept"}}));
    EXPECT_FALSE(tab.servicesBar()->removeButton()->isEnabled());
    tab.willHidePane();
    EXPECT_EQ(running.observerCount(), 0u);
}

// A listed application deleted while the tab is shown keeps its row, drawn as missing.
TEST_F(WindowRestorationTabTest, AnApplicationDeletedWhileShownStaysAsMissing) {
    test::writeFile(file, toXml(Dictionary{{kWindowPersistenceKey, true}}));

    QWidget window;
    WindowRestorationTab tab(prefs, workspace, running, {dir / "Preferences", dir / "containers"}, new QWidget(&window),
                             &window);
    tab.initializePane(true);
    tab.willShowPane();
    QModelIndex name = tab.table()->model()->index(0, WindowRestorationController::ApplicationColumn);
    EXPECT_EQ(name.data(ErrorCodeRole).toInt(), 0);

    fs::remove_all(editor);
    workspace.applications.clear();
    tab.windowDidBecomeMain();
    ASSERT_EQ(tab.table()->model()->rowCount(), 1);
    name = tab.table()->model()->index(0, WindowRestorationController::ApplicationColumn);
    EXPECT_EQ(name.data(ErrorCodeRole).toInt(), 1);
    EXPECT_TRUE(tab.servicesBar()->removeButton()->isEnabled());
    std::string report;
    tab.updatePane(report);
    EXPECT_EQ(report, LocalizedFormat("WindowRestorationSummary", {LocalizedString("OneInvalidPath")}) + "\n");
}
