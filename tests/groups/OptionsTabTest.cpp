#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QListView>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>

#include "controls/KVServicesBar.h"
#include "controls/KVTableView.h"
#include "groups/ui/CustomApplicationsTab.h"
#include "groups/ui/OptionsTab.h"
#include "prefs/NotificationNames.h"
#include "support/IntegrationSupport.h"
#include "support/PrefsFixture.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

class TabWidgets : public test::PrefsTest {
protected:
    QWidget window;
    QWidget* page = new QWidget(&window);
    InProcessNotificationCenter local;

    template <class Control>
    Control* named(const char* key) {
        for (Control* control : window.findChildren<Control*>())
            if (control->accessibleName() == QString::fromStdString(LocalizedString(key))) return control;
        ADD_FAILURE() << "no control named " << key;
        return nullptr;
    }
};

}  // namespace

TEST_F(TabWidgets, TheOptionsFormFollowsThePanelSwitchAndTheSheetReordersFromTheKeyboard) {
    load(Dictionary{});
    OptionsTab tab(prefs, bus, local, domains, page, &window);
    tab.initializePane(true);
    window.show();
    auto* position = named<QComboBox>("PanelPositionLabel");
    EXPECT_TRUE(position->isEnabled());
    named<QCheckBox>("ShowMenuPanel")->click();
    EXPECT_FALSE(position->isEnabled());
    EXPECT_FALSE(prefs.boolForKey(keys::ShowMenuPanel));

    QDialog* sheet = tab.openButtonsSheet(false);
    ASSERT_TRUE(sheet && sheet->isVisible());
    QListView* list = tab.buttonsList();
    list->setCurrentIndex(list->model()->index(0, 0));
    QTest::keyClick(list, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(list->currentIndex().row(), 1);  // the Open button moved down, and the selection with it
    EXPECT_EQ(tab.controller().buttons().rows().at(1).color, 0);
    EXPECT_EQ(Value(prefs.prefsData()[keys::StatusItemButtons][0][keys::Color]), Value(Value::int16(1)));
    sheet->reject();
    EXPECT_FALSE(tab.controller().buttons().isOpen());
}

TEST_F(TabWidgets, TheApplicationsTabShowsTheOptionsOfTheSelectionAndTiesTheHidingBoxes) {
    test::TempDir dir;
    std::string path = test::makeBundle(dir.path(), "Editor", "org.example.editor").string();
    load(Dictionary{{keys::CustomApplications, Array{Dictionary{{keys::Name, "Editor"}, {keys::Path, path},
                                                                {keys::Options, Dictionary{{keys::DontActivate, true}}}}}}});
    ApplicationArchitectures architectures{[](const std::string&) { return true; },
                                           [](const std::string&) { return false; }};
    CustomApplicationsTab tab(prefs, bus, page, &window, architectures);
    tab.initializePane(true);
    tab.willShowPane();
    window.show();
    EXPECT_EQ(tab.optionsViewer()->currentIndex(), static_cast<int>(OptionsViewState::Options));
    QCheckBox* dontActivate = tab.box(keys::DontActivate);
    EXPECT_TRUE(dontActivate->isChecked());
    EXPECT_TRUE(tab.box(keys::Force32BitMode)->isVisibleTo(tab.optionsViewer()));
    EXPECT_FALSE(tab.box(keys::ForceRosetta)->isVisibleTo(tab.optionsViewer()));

    tab.box(keys::Hide)->click();
    EXPECT_FALSE(dontActivate->isChecked());
    EXPECT_FALSE(dontActivate->isEnabled());
    tab.box(keys::Hide)->click();
    EXPECT_TRUE(dontActivate->isEnabled());
    EXPECT_FALSE(dontActivate->isChecked());

    tab.table()->clearSelection();
    EXPECT_EQ(tab.optionsViewer()->currentIndex(), static_cast<int>(OptionsViewState::NoApplicationsSelected));
    EXPECT_FALSE(tab.servicesBar()->removeButton()->isEnabled());
}
