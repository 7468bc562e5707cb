#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
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

// Tab walks the tab in drawing order, whatever order its widgets joined the focus chain
// in, and passes over the boxes the selected application lacks or cannot use.
TEST_F(TabWidgets, TabWalksTheApplicationsTabInDrawingOrderForEachSelection) {
    test::TempDir dir;
    auto record = [&](const char* name, Dictionary options) {
        return Dictionary{{keys::Name, name}, {keys::Options, options},
                          {keys::Path, test::makeBundle(dir.path(), name, name).string()}};
    };
    Dictionary hiddenIn32Bit{{keys::Hide, true}, {keys::Force32BitMode, true}};
    load(Dictionary{{keys::CustomApplications, Array{record("Both", hiddenIn32Bit), record("Translated", Dictionary{})}}});
    // "Both" runs in 32-bit mode and translated, "Translated" only translated.
    CustomApplicationsTab tab(prefs, bus, page, &window,
                              {[](const std::string& path) { return path.find("Both") != std::string::npos; },
                               [](const std::string&) { return true; }});
    tab.initializePane(true);
    tab.willShowPane();  // its path check rebuilds the options for what each application can run as
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QWidget* hideIt = window.findChildren<QRadioButton*>().value(0);
    std::vector<QWidget*> lastBoxes{tab.box(keys::DontHideOnHideOthers), tab.box(keys::DontHideInSingleAppMode),
                                    tab.box(keys::DontAddToRecentItems), tab.box(keys::DontAddToRecentApps)};
    struct Case {
        int row;
        std::vector<QWidget*> first, last;
    } cases[] = {
        // Hidden at launch: "do not activate" is off limits; the pair of which one to hide
        // is one stop, at the checked one. Rosetta is a choice under 32-bit mode.
        {0, {tab.box(keys::Hide), hideIt}, {tab.box(keys::Force32BitMode), tab.box(keys::ForceRosetta)}},
        // The Rosetta box alone, in the 32-bit box's place.
        {1, {tab.box(keys::DontActivate), tab.box(keys::Hide)}, {tab.box(keys::ForceRosetta)}},
    };
    for (Case& c : cases) {
        KVServicesBar* bar = tab.servicesBar();
        std::vector<QWidget*> expected{tab.table(), bar->addButton(), bar->removeButton(), bar->actionButton()};
        for (auto* part : {&c.first, &lastBoxes, &c.last}) expected.insert(expected.end(), part->begin(), part->end());
        // Reversed first: what is walked is the order the tab sets, not the order of creation.
        for (size_t i = expected.size() - 1; i > 0; --i) QWidget::setTabOrder(expected[i], expected[i - 1]);
        tab.table()->clearSelection();
        tab.table()->selectRow(c.row);
        tab.table()->setFocus();
        std::vector<QWidget*> walked{QApplication::focusWidget()};
        while (walked.size() < expected.size()) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            walked.push_back(QApplication::focusWidget());
        }
        EXPECT_EQ(walked, expected) << "row " << c.row;
    }
}
