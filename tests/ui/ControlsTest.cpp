#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QStandardItemModel>
#include <QTest>
#include <QTimer>
#include <filesystem>

#include "controls/KVIconServices.h"
#include "controls/KVServicesBar.h"
#include "controls/KVTableView.h"
#include "support/TestSupport.h"

using namespace corvalis;

// Which paths are missing or trashed is PathResolution's to test; here, what each gets drawn with.
TEST(IconService, RowsOfMissingOrTrashedItemsGetTheirImageAndColour) {
    test::TempDir dir;
    std::filesystem::create_directories(dir / ".Trash-1000" / "files" / "Old.app");
    QString trashed = QString::fromStdString((dir / ".Trash-1000" / "files" / "Old.app").string());
    int error = -1;
    EXPECT_EQ(KVIconServices::sharedIcons().iconForPath(trashed, &error).cacheKey(), KVIconServices::trashIcon().cacheKey());
    EXPECT_EQ(error, 2);
    EXPECT_FALSE(KVIconServices::trashIcon().pixmap(16, 16).isNull());  // the image is really there
    EXPECT_EQ(KVIconServices::textColorForError(1, false, QApplication::palette()), QColor(Qt::red));
}

TEST(TableViews, TypedKeysGoToTheOwnersNameOrderFirst) {
    QStandardItemModel model;
    for (const char* name : {"Beta", "alpha", "Gamma"}) model.appendRow(new QStandardItem(name));
    KVTableView table;
    table.setModel(&model);
    QStringList asked;
    table.setTypeToSelect([&](const QString& typed) {
        asked << typed;
        return typed == "g";
    });
    table.keyboardSearch("g");
    table.keyboardSearch("a");  // within the typing interval: the text grows; the owner declines
    EXPECT_EQ(asked, QStringList({"g", "ga"}));
}

// Only directly inside a bar does the pop-up take the bar's size, whatever else asks.
TEST(ServicePopUpButton, TakesTheBarsSizeOnlyWhileDirectlyInABar) {
    struct Case {
        const char* where;  // "bar", "loose", or "left": put in a bar, then taken out again
        bool leftEdge, embedded;
        QSize fixed;  // invalid: free to resize
    } cases[] = {
        {"bar", false, false, {28, 23}}, {"bar", true, false, {29, 23}}, {"bar", false, true, {28, 22}},
        {"bar", true, true, {29, 22}},   {"loose", true, false, {}},     {"left", false, true, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.where) + (c.leftEdge ? " edge" : "") + (c.embedded ? " embedded" : ""));
        QWidget window;
        auto* bar = new KVServicesBar(&window);
        auto* holder = new QWidget(bar);  // inside the bar, but not directly
        auto* button = new KVServicePopUpButton(holder);
        bar->setEmbeddedAtBottom(c.embedded);
        if (std::string(c.where) != "loose") button->setParent(bar);
        if (std::string(c.where) == "left") button->setParent(&window);
        button->setDrawLeftEdge(c.leftEdge);  // after the move: the bar's size must follow it
        window.show();
        button->setFixedSize(60, 40);
        QApplication::processEvents();
        EXPECT_EQ(button->isInServicesBar(), c.fixed.isValid());
        EXPECT_EQ(button->size(), c.fixed.isValid() ? c.fixed : QSize(60, 40));
        if (c.fixed.isValid()) {
            EXPECT_EQ(button->sizeHint(), c.fixed);
            EXPECT_EQ(button->minimumSizeHint(), c.fixed);
        }
    }
    KVServicesBar bar;
    bar.setEmbeddedAtBottom(true);  // after the bar made its pop-up
    EXPECT_EQ(bar.actionButton()->size(), QSize(28, 22));
}

TEST(ServicePopUpButton, TheBarsActionsPopUpOpensItsMenuFromTheKeyboard) {
    QWidget window;
    auto* bar = new KVServicesBar(&window);
    QMenu menu;
    menu.addAction("Something");
    int opened = 0;
    QObject::connect(&menu, &QMenu::aboutToShow, [&] {
        ++opened;
        QTimer::singleShot(0, &menu, &QMenu::close);
    });
    bar->setActionMenu(&menu);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    KVServicePopUpButton* actions = bar->actionButton();
    EXPECT_EQ(actions->accessibleName(), "Actions");
    actions->setFocus();
    struct Case {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        int opens;
    } cases[] = {{Qt::Key_Space, {}, 1}, {Qt::Key_Return, {}, 1}, {Qt::Key_Enter, Qt::KeypadModifier, 1},
                 {Qt::Key_Down, {}, 1},  {Qt::Key_Up, {}, 0},     {Qt::Key_Down, Qt::ControlModifier, 0}};
    for (const Case& c : cases) {
        opened = 0;
        QTest::keyClick(actions, c.key, c.modifiers);
        QApplication::processEvents();
        EXPECT_EQ(opened, c.opens) << QKeySequence(c.key | c.modifiers).toString().toStdString();
        EXPECT_FALSE(menu.isVisible());
    }
}
