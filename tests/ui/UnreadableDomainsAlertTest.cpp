#include "pane/ui/UnreadableDomainsAlert.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QMainWindow>
#include <QMessageBox>

#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"
#include "support/TestSupport.h"

using namespace corvalis;

TEST(UnreadableDomainsAlert, TheWindowNamesTheFileItKeptAsideAndIsQuietOtherwise) {
    for (bool corrupt : {false, true}) {
        test::TempDir tmp;
        FileDomainStore domains{tmp.path()};
        if (corrupt) test::writeFile(domains.pathForDomain("com.kestrova.Corvalis"), "not a property list");
        InProcessNotificationCenter distributed;
        CorvalisPreferences prefs{domains, distributed};
        QMainWindow window;
        window.show();
        prefs.loadPreferences();
        tellOfUnreadableDomains(&window, prefs);
        QCoreApplication::processEvents();
        auto* box = window.findChild<QMessageBox*>();
        ASSERT_EQ(box != nullptr, corrupt);
        if (!corrupt) continue;
        EXPECT_TRUE(box->isVisible());
        EXPECT_TRUE(box->informativeText().contains(".plist.unreadable-")) << box->informativeText().toStdString();
    }
}
