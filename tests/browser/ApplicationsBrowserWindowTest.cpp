#include <QComboBox>
#include <QTest>

#include "browser/BrowserFixture.h"
#include "controls/KVTableView.h"
#include "fileutils/browser/ui/ApplicationsBrowserWindow.h"
#include "fileutils/browser/ui/BrowserIconModel.h"

using namespace corvalis;
using namespace corvalis::browser;

namespace {

class BrowserWindow : public test::BrowserTest {
protected:
    QWidget pane;
    std::unique_ptr<ApplicationsBrowserWindow> window;

    void open(const plist::Dictionary& stored = {}) {
        load(stored);
        window = std::make_unique<ApplicationsBrowserWindow>(
            prefs, local, running, domains, &pane,
            BrowserEnvironment{[] { return std::nullopt; }, [] { return std::vector<std::string>(); }});
        pane.setGeometry(0, 0, 300, 200);
        pane.show();
        window->showApplicationsBrowser();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }
};

}  // namespace

TEST_F(BrowserWindow, ALongListLooksUpIconsOnlyForTheRowsItDraws) {
    for (int i = 0; i < 5000; ++i)
        running.running.push_back({i + 1, (disk / ("App " + std::to_string(i) + ".app")).string(), "", false});
    open();
    window->controller().onShowWhat(RunningApplicationsTag, false);
    ASSERT_EQ(window->controller().rowCount(), 5000);
    window->grab();  // paints the visible rows
    EXPECT_GT(window->icons()->lookups(), 0);
    EXPECT_LT(window->icons()->lookups(), 200);
}

TEST_F(BrowserWindow, OpensBesideThePaneAndChoosesSourcesFromItsPopUp) {
    open();
    EXPECT_GE(window->x(), pane.frameGeometry().right());
    auto* sources = window->findChild<QComboBox*>();
    ASSERT_TRUE(sources);
    EXPECT_EQ(sources->currentData().toInt(), RunningApplicationsTag);
    int dock = sources->findData(DockApplicationsTag);
    sources->setCurrentIndex(dock);
    emit sources->activated(dock);
    EXPECT_EQ(window->controller().shownTag(), DockApplicationsTag);
    EXPECT_EQ(prefs.intForKey(keys::BrowserShowWhat), DockApplicationsTag);

    window->closeBrowser();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(running.observerCount(), 0u);
}
