#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardItemModel>
#include <filesystem>

#include "controls/KVIconServices.h"
#include "controls/KVTableView.h"
#include "support/TestSupport.h"

using namespace corvalis;

TEST(IconService, RowsOfMissingOrTrashedItemsGetTheirImageAndColour) {
    test::TempDir dir;
    std::filesystem::create_directories(dir / ".Trash-1000" / "files" / "Old.app");
    QPalette palette = QApplication::palette();
    int error = -1;
    EXPECT_FALSE(KVIconServices::sharedIcons().iconForPath(QString::fromStdString(dir.path().string()), &error).isNull());
    EXPECT_EQ(error, 0);
    QIcon missing = KVIconServices::sharedIcons().iconForPath(QString::fromStdString((dir / "gone").string()), &error);
    EXPECT_EQ(error, 1);
    EXPECT_EQ(missing.cacheKey(), KVIconServices::badLinkIcon().cacheKey());
    QString trashed = QString::fromStdString((dir / ".Trash-1000" / "files" / "Old.app").string());
    EXPECT_EQ(KVIconServices::sharedIcons().iconForPath(trashed, &error).cacheKey(), KVIconServices::trashIcon().cacheKey());
    EXPECT_EQ(error, 2);
    EXPECT_FALSE(KVIconServices::trashIcon().pixmap(16, 16).isNull());  // the image is really there

    EXPECT_EQ(KVIconServices::textColorForError(1, false, palette), QColor(Qt::red));
    EXPECT_EQ(KVIconServices::textColorForError(2, false, palette), QColor(Qt::lightGray));
    EXPECT_EQ(KVIconServices::textColorForError(1, true, palette), palette.color(QPalette::Text));
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
