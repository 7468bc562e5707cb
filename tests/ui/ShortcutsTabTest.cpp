#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>

#include "controls/KVTableView.h"
#include "keys/KeyStrings.h"
#include "keys/KeysFixture.h"
#include "keys/ui/KVKeyCombinationTextField.h"
#include "keys/ui/ShortcutsTab.h"
#include "text/Localization.h"
#include "prefs/NotificationNames.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

// evdev codes of the physical keys used below.
constexpr std::uint32_t kKeyO = 24, kKeyK = 37, kKeyCapsLock = 58;
constexpr std::uint32_t kShiftControl = modifiers::Shift | modifiers::Control;

// A key as X11 delivers it: the native scan code is the evdev code plus 8.
QKeyEvent keyEvent(int key, std::uint32_t evdev, Qt::KeyboardModifiers held = Qt::NoModifier) {
    return QKeyEvent(QEvent::KeyPress, key, held, evdev + 8, 0, 0);
}
void press(QWidget* target, int key, std::uint32_t evdev, Qt::KeyboardModifiers held = Qt::NoModifier) {
    QKeyEvent event = keyEvent(key, evdev, held);
    QApplication::sendEvent(target, &event);
}

class ShortcutsTabTest : public test::PrefsTest {
protected:
    test::ScopedLayout us{"us"};
    QWidget window;
    QWidget* page = new QWidget(&window);
    std::unique_ptr<ShortcutsTab> tab;

    KVTableView* table() { return tab->table(); }
    QModelIndex cell(int row, int column) { return table()->model()->index(row, column); }

    void open(const Dictionary& stored) {
        load(stored);
        tab = std::make_unique<ShortcutsTab>(prefs, bus, page, &window);
        tab->initializePane(true);
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        table()->setFocus();
    }
    // Selects the row and presses Return, as a keyboard user starts recording.
    KVKeyCombinationTextField* startRecording(int row) {
        table()->setCurrentIndex(cell(row, ShortcutsTab::CommandColumn));
        QTest::keyClick(table(), Qt::Key_Return);
        return qobject_cast<KVKeyCombinationTextField*>(QApplication::focusWidget());
    }
    std::vector<std::string> postedNames() {
        std::vector<std::string> names;
        for (const Notification& posted : bus.posted()) names.push_back(posted.name);
        return names;
    }
};

}  // namespace

TEST_F(ShortcutsTabTest, CheckBoxStoresAndTellsTheControllerAndRecoloursTheCombination) {
    open(Dictionary{{keys::KeyboardShortcuts, Dictionary{{"1002", test::shortcutRecord({0, 40, modifiers::Command}, false)}}}});
    ASSERT_EQ(table()->model()->rowCount(), 18);
    EXPECT_EQ(cell(2, ShortcutsTab::CommandColumn).data().toString().toStdString(), LocalizedString(keystrings::QuitAllCommand));
    EXPECT_EQ(cell(2, ShortcutsTab::KeyCombinationColumn).data().toString(), QString("⌘K"));
    // Disabled and not being worked on: grey. Selected in the focused table: normal.
    EXPECT_TRUE(cell(2, ShortcutsTab::KeyCombinationColumn).data(Qt::ForegroundRole).isValid());
    table()->setCurrentIndex(cell(2, ShortcutsTab::CommandColumn));
    EXPECT_FALSE(cell(2, ShortcutsTab::KeyCombinationColumn).data(Qt::ForegroundRole).isValid());

    QTest::keyClick(table(), Qt::Key_Space);
    EXPECT_EQ(cell(2, ShortcutsTab::EnabledColumn).data(Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_EQ(postedNames(), std::vector<std::string>{notifications::CorvalisPaneChangedShortcuts});
    table()->clearSelection();
    EXPECT_FALSE(cell(2, ShortcutsTab::KeyCombinationColumn).data(Qt::ForegroundRole).isValid());
}

TEST_F(ShortcutsTabTest, RecordingInTheCellStoresTheCombinationWhileHotKeysAreSuspended) {
    open(Dictionary());
    KVKeyCombinationTextField* field = startRecording(4);
    ASSERT_TRUE(field);
    EXPECT_EQ(postedNames(), std::vector<std::string>{notifications::SuspendHotKeys});

    press(field, Qt::Key_K, kKeyK, Qt::MetaModifier);
    EXPECT_EQ(tab->controller().keyCombinationAt(4), KVKeyCombination(0, 40, modifiers::Command));
    EXPECT_EQ(cell(4, ShortcutsTab::KeyCombinationColumn).data().toString(), QString("⌘K"));
    EXPECT_EQ(postedNames(), (std::vector<std::string>{notifications::SuspendHotKeys, notifications::CorvalisPaneChangedShortcuts,
                                                       notifications::ResumeHotKeys}));
    for (const Notification& posted : bus.posted())  // suspending and resuming carry no user info
        EXPECT_TRUE(posted.object == notifications::PaneObject && (posted.userInfo.has_value() ==
                                                                   (posted.name == notifications::CorvalisPaneChangedShortcuts)))
            << posted.name;
    EXPECT_TRUE(table()->hasFocus());

    // Closing the tab in the middle of a recording gives the hot keys back, once.
    bus.clearPosted();
    ASSERT_TRUE(startRecording(4));
    tab.reset();
    EXPECT_EQ(postedNames(), (std::vector<std::string>{notifications::SuspendHotKeys, notifications::ResumeHotKeys}));
}

TEST_F(ShortcutsTabTest, CombinationOfAHotKeyIsRefusedWithOneAlertAndTheOldValueKept) {
    KVKeyCombination old(0, 38, modifiers::Command);  // ⌘J
    open(Dictionary{{keys::HotKeys, test::factoryHotKeys()},
                    {keys::KeyboardShortcuts, Dictionary{{"1003", test::shortcutRecord(old, true)}}}});
    press(startRecording(4), Qt::Key_O, kKeyO, Qt::ShiftModifier | Qt::ControlModifier);

    EXPECT_EQ(tab->controller().keyCombinationAt(4), old);
    EXPECT_EQ(cell(4, ShortcutsTab::KeyCombinationColumn).data().toString(), QString("⌘J"));
    EXPECT_EQ(postedNames(), (std::vector<std::string>{notifications::SuspendHotKeys, notifications::ResumeHotKeys}));
    ASSERT_TRUE(tab->alert());
    EXPECT_EQ(window.findChildren<QMessageBox*>().size(), 1);
    EXPECT_TRUE(tab->alert()->isVisible() && tab->alert()->windowModality() == Qt::WindowModal);
    EXPECT_EQ(tab->alert()->text().toStdString(),
              LocalizedFormat(keystrings::KeyCombinationExistsAlready1, {KVKeyCombination(0, 31, kShiftControl).text()}));
    EXPECT_EQ(tab->alert()->informativeText().toStdString(), LocalizedString(keystrings::ChooseAnotherCombination));
    tab->alert()->done(0);
}

TEST(KeyCombinationTextField, KeepsShortcutsOfTheWindowButLetsTabMoveFocus) {
    QWidget window;
    auto* field = new KVKeyCombinationTextField(&window);
    auto* next = new QLineEdit(&window);
    QAction quit(&window);
    quit.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    window.addAction(&quit);
    int triggered = 0;
    QObject::connect(&quit, &QAction::triggered, [&] { ++triggered; });
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    field->setFocus();

    QTest::keyClick(field, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(triggered, 0);
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_TRUE(next->hasFocus());
    EXPECT_FALSE(field->objectValue());
}

TEST(KeyCombinationTextField, ReadsQtKeyEventsAsTheRecorderExpects) {
    // Super is Command and Alt is Option; a key that types Escape records the Escape key.
    std::optional<KeyEvent> escape = keyEventFromQt(keyEvent(Qt::Key_Escape, kKeyCapsLock, Qt::MetaModifier | Qt::AltModifier));
    ASSERT_TRUE(escape);
    EXPECT_EQ(_keyCombinationForEvent(*escape), KVKeyCombination(0, 53, modifiers::Command | modifiers::Option));
    EXPECT_TRUE(isNavigationEvent(*keyEventFromQt(keyEvent(Qt::Key_Backtab, 15, Qt::ShiftModifier))));
    EXPECT_FALSE(isNavigationEvent(*keyEventFromQt(keyEvent(Qt::Key_Tab, 15, Qt::ControlModifier))));
    EXPECT_FALSE(keyEventFromQt(keyEvent(Qt::Key_Shift, 42, Qt::ShiftModifier)));
}
