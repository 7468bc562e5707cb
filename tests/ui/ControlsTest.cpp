#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardItemModel>
#include <filesystem>

#include "controls/KVIconServices.h"
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
