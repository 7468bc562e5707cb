#include <gtest/gtest.h>

#include <QFile>
#include <QImage>

#include "groups/ui/GroupIcons.h"
#include "support/TestSupport.h"

using namespace corvalis;

// Icon data that does not decode gives no icon and no crash; images too big are not decoded.
TEST(GroupIcons, BadDataShowsNoIconAndHugeImagesAreNotDecoded) {
    QImage image(64, 32, QImage::Format_ARGB32);
    image.fill(Qt::blue);
    QByteArray icns = GroupIcons::encodeIcns(image);
    ASSERT_TRUE(icns.startsWith("icns"));
    ASSERT_TRUE(GroupIcons::decodeIcns(icns));

    GroupIcons icons;
    EXPECT_FALSE(icons.iconFor("Custom 1", icns).isNull());
    for (const QByteArray& bad : {QByteArray("not an image"), icns.left(icns.size() / 2), QByteArray()})
        EXPECT_TRUE(icons.iconFor("Custom 1", bad).isNull());
    EXPECT_FALSE(icons.iconFor("RedFolder", QByteArray("ignored")).isNull());

    test::TempDir dir;
    QString wide = QString::fromStdString((dir / "wide.png").string());
    QImage huge(GroupIcons::kMaxSide + 1, 8, QImage::Format_RGB32);
    huge.fill(Qt::red);
    ASSERT_TRUE(huge.save(wide));
    // Too big to read: its file's icon stands in, never the image itself.
    if (std::optional<QByteArray> fallback = GroupIcons::icnsForFile(wide)) {
        std::optional<QImage> shown = GroupIcons::decodeIcns(*fallback);
        ASSERT_TRUE(shown);
        EXPECT_NE(shown->pixelColor(shown->width() / 2, shown->height() / 2), QColor(Qt::red));
    }
    // A chosen .icns keeps its own bytes; one that does not decode is not taken as icon data.
    QString own = QString::fromStdString((dir / "own.icns").string()), broken = QString::fromStdString((dir / "broken.icns").string());
    {
        QFile file(own);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(icns);
    }
    EXPECT_EQ(GroupIcons::icnsForFile(own), icns);
    test::writeFile(dir / "broken.icns", "icns\x00\x00\x00\x08");
    std::optional<QByteArray> fallback = GroupIcons::icnsForFile(broken);
    EXPECT_TRUE(!fallback || *fallback != QByteArray("icns\x00\x00\x00\x08", 8));
}
