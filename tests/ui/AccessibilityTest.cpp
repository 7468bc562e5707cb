#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QMainWindow>
#include <QSet>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include "pane/ApplicationsBrowserLink.h"
#include "pane/ui/CorvalisPane.h"
#include "support/IntegrationSupport.h"

using namespace corvalis;

namespace {

QString describe(QWidget* widget) {
    return QString("%1 \"%2\" in %3")
        .arg(widget->metaObject()->className(), widget->objectName(), widget->window()->windowTitle());
}

bool focusable(QWidget* widget) { return widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus); }

// Focusable controls of the window (and the cells of its item views) a screen reader cannot name.
QStringList unnamed(QWidget* window) {
    QStringList missing;
    QList<QWidget*> widgets = window->findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        if (!focusable(widget) || widget->window() != window) continue;
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        bool named = accessible && !accessible->text(QAccessible::Name).trimmed().isEmpty();
        // A combo box's name is its chosen item: what it is for comes from the label it is the buddy of.
        if (accessible && qobject_cast<QComboBox*>(widget)) named = !accessible->relations(QAccessible::Label).isEmpty();
        if (!named) missing << describe(widget);
        QAccessibleTableInterface* table = accessible ? accessible->tableInterface() : nullptr;
        if (!qobject_cast<QAbstractItemView*>(widget) || !table) continue;
        for (int row = 0; row < table->rowCount(); ++row)
            for (int column = 0; column < table->columnCount(); ++column) {
                QAccessibleInterface* cell = table->cellAt(row, column);
                if (!cell || cell->text(QAccessible::Name).trimmed().isEmpty())
                    missing << QString("cell %1,%2 of %3").arg(row).arg(column).arg(describe(widget));
            }
    }
    return missing;
}

// Focusable controls that Tab and Shift+Tab never reach.
QStringList unreachable(QWidget* window) {
    // Offscreen, a tool window that just closed may stay the active one.
    QApplication::setActiveWindow(window);
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window)) return {"window " + window->windowTitle() + " not active"};
    QSet<QWidget*> reached;
    QList<QWidget*> widgets = window->findChildren<QWidget*>();
    for (Qt::KeyboardModifier direction : {Qt::NoModifier, Qt::ShiftModifier})
        for (int i = 0; i < 2 * widgets.size() && QApplication::focusWidget(); ++i) {
            reached << QApplication::focusWidget();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, direction);
        }
    QStringList missed;
    for (QWidget* widget : widgets)
        // Disabled controls are skipped by Tab, rightly; an inner part takes the focus through its owner.
        if (focusable(widget) && widget->isEnabled() && widget->window() == window && !reached.contains(widget) &&
            !reached.contains(widget->focusProxy()))
            missed << describe(widget);
    return missed;
}

}  // namespace

// Every tab and sheet in turn, as a screen reader user meets them.
TEST(Accessibility, EveryControlOfEveryTabAndSheetIsNamedAndReachedFromTheKeyboard) {
    test::TempDir dir;
    setenv("CORVALIS_PREFERENCES_DIR", (dir / "prefs").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
    setenv("CORVALIS_CONTAINERS_DIR", (dir / "containers").c_str(), 1);
    QMainWindow window;
    ComKestrovaCorvalis_PrefsPane pane(&window);
    window.setCentralWidget(pane.loadMainView());
    window.resize(800, 600);
    window.show();
    ASSERT_TRUE(test::waitUntil([&] { return pane.attachedSheet() != nullptr; }));  // the first-use welcome
    pane.attachedSheet()->done(1);
    for (const char* view : {"tab-Applications", "tab-Options", "tab-Resume", "sheet-panel-buttons",
                             "sheet-status-item-buttons"})
        EXPECT_TRUE(pane.screenshotViews().contains(view)) << view;
    for (const QString& view : pane.screenshotViews()) {
        SCOPED_TRACE(view.toStdString());
        ASSERT_TRUE(pane.showScreenshotView(view));
        QTest::qWait(50);
        QWidget* shown = pane.attachedSheet() ? static_cast<QWidget*>(pane.attachedSheet()) : &window;
        if (view.startsWith("window-browser")) shown = dynamic_cast<QWidget*>(pane.applicationsBrowser());
        // Qt's own file dialog is Qt's to name.
        if (qobject_cast<QFileDialog*>(shown)) continue;
        EXPECT_EQ(unnamed(shown).join('\n').toStdString(), "");
        EXPECT_EQ(unreachable(shown).join('\n').toStdString(), "");
    }
    // The groups outline is a tree to a screen reader, and the icon menu names each colour.
    ASSERT_TRUE(pane.showScreenshotView("tab-Groups"));
    QWidget* groups = pane.page("Groups");
    auto* outline = groups->findChild<QTreeView*>("groups");
    ASSERT_TRUE(outline);
    QAccessibleInterface* tree = QAccessible::queryAccessibleInterface(outline);
    ASSERT_TRUE(tree);
    EXPECT_EQ(tree->role(), QAccessible::Tree);
    QStringList colours;
    for (QComboBox* menu : groups->findChildren<QComboBox*>())
        for (int i = 0; i < menu->count(); ++i) colours << menu->itemText(i);
    for (const char* colour : {"Red", "Orange", "Yellow", "Green", "Blue", "Purple", "Gray"})
        EXPECT_TRUE(colours.contains(colour)) << colour;
}

// The Menus tab's sheets are walked above with the other views; here what their lists offer a screen reader.
TEST(Accessibility, MenuSheetsNameTheirListButtonsAndShowTheirRows) {
    test::TempDir dir;
    setenv("CORVALIS_PREFERENCES_DIR", (dir / "prefs").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
    QMainWindow window;
    ComKestrovaCorvalis_PrefsPane pane(&window);
    window.setCentralWidget(pane.loadMainView());
    window.show();
    ASSERT_TRUE(pane.screenshotViews().contains("sheet-configure-menus"));
    ASSERT_TRUE(pane.screenshotViews().contains("sheet-configure-previews"));
    ASSERT_TRUE(pane.showScreenshotView("sheet-configure-menus"));
    QDialog* sheet = pane.attachedSheet();
    ASSERT_TRUE(sheet);
    QStringList buttons;
    for (QToolButton* button : sheet->findChildren<QToolButton*>())
        if (button->isVisible()) buttons << button->accessibleName();
    EXPECT_EQ(buttons, (QStringList{"Add", "Remove", "Actions"}));
    auto* list = sheet->findChild<QAbstractItemView*>();
    ASSERT_TRUE(list);
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(list);
    ASSERT_TRUE(table && table->tableInterface());
    EXPECT_EQ(table->tableInterface()->rowCount(), list->model()->rowCount());
    EXPECT_GT(table->tableInterface()->rowCount(), 0);
    sheet->done(0);
    // A tab with two lists names each list's buttons apart.
    ASSERT_TRUE(pane.showScreenshotView("sheet-configure-menus-quit"));
    buttons.clear();
    for (QToolButton* button : pane.attachedSheet()->findChildren<QToolButton*>())
        if (button->isVisible()) buttons << button->accessibleName();
    EXPECT_EQ(buttons, (QStringList{"Add", "Remove", "Actions", "Add Application", "Remove Application", "Application Actions"}));
    pane.attachedSheet()->done(0);
}
