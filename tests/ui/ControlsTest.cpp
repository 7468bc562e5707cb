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
    enum Where { InBar, InsideAChildOfTheBar, TakenOutOfTheBar };
    struct Case {
        Where where;
        bool leftEdge, embedded;
        QSize size;  // after asking for 60 x 40
    } cases[] = {{InBar, false, false, {28, 23}},      {InBar, true, false, {29, 23}},
                 {InBar, false, true, {28, 22}},       {InBar, true, true, {29, 22}},
                 {InsideAChildOfTheBar, true, false, {60, 40}}, {TakenOutOfTheBar, false, true, {60, 40}}};
    for (const Case& c : cases) {
        QWidget window;
        auto* bar = new KVServicesBar(&window);
        auto* button = new KVServicePopUpButton(new QWidget(bar));
        bar->setEmbeddedAtBottom(c.embedded);
        if (c.where != InsideAChildOfTheBar) button->setParent(bar);
        if (c.where == TakenOutOfTheBar) button->setParent(&window);
        button->setDrawLeftEdge(c.leftEdge);  // after the move: the size must follow
        window.show();
        button->setFixedSize(60, 40);
        QApplication::processEvents();
        EXPECT_EQ(button->size(), c.size) << c.where << c.leftEdge << c.embedded;
        EXPECT_EQ(button->isInServicesBar(), c.where == InBar);
        EXPECT_EQ(button->minimumSizeHint() == c.size, c.where == InBar);
    }
    KVServicesBar bar;
    bar.setEmbeddedAtBottom(true);  // after the bar made its own pop-up
    EXPECT_EQ(bar.actionButton()->size(), QSize(28, 22));
}

TEST(ServicePopUpButton, TheBarsActionsPopUpOpensItsMenuFromTheKeyboard) {
    KVServicesBar bar;
    QMenu menu;
    menu.addAction("Something");
    int opened = 0;
    QObject::connect(&menu, &QMenu::aboutToShow, [&] { ++opened; QTimer::singleShot(0, &menu, &QMenu::close); });
    bar.setActionMenu(&menu);
    bar.show();
    EXPECT_EQ(bar.actionButton()->accessibleName(), "Actions");
    for (auto [key, modifiers, opens] : std::initializer_list<std::tuple<Qt::Key, Qt::KeyboardModifiers, int>>{
             {Qt::Key_Space, {}, 1}, {Qt::Key_Return, {}, 1}, {Qt::Key_Enter, Qt::KeypadModifier, 1},
             {Qt::Key_Down, {}, 1}, {Qt::Key_Up, {}, 0}, {Qt::Key_Down, Qt::ControlModifier, 0}}) {
        opened = 0;
        QTest::keyClick(bar.actionButton(), key, modifiers);
        QApplication::processEvents();
        EXPECT_EQ(opened, opens) << QKeySequence(key | modifiers).toString().toStdString();
    }
}
