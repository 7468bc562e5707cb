#include "groups/ui/GroupIcons.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include "controls/KVIconServices.h"

namespace corvalis {

namespace {

constexpr int kIcnsSide = 256;
constexpr int kAllocationLimitMb = 64;

// Reads one image, refusing what would be too big before decoding it.
std::optional<QImage> readBounded(QImageReader& reader) {
    reader.setAllocationLimit(kAllocationLimitMb);
    QSize size = reader.size();
    if (size.isValid() && (size.width() > GroupIcons::kMaxSide || size.height() > GroupIcons::kMaxSide)) return std::nullopt;
    QImage image = reader.read();
    if (image.isNull()) return std::nullopt;
    return image;
}

// A square of the ICNS size with the image centred in it, aspect kept.
QImage squared(const QImage& image) {
    QImage square(kIcnsSide, kIcnsSide, QImage::Format_ARGB32);
    square.fill(Qt::transparent);
    QImage scaled = image.scaled(kIcnsSide, kIcnsSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&square);
    painter.drawImage((kIcnsSide - scaled.width()) / 2, (kIcnsSide - scaled.height()) / 2, scaled);
    return square;
}

}  // namespace

QIcon GroupIcons::builtIn(const QString& iconName) { return KVIconServices::loadResource(iconName); }

QIcon GroupIcons::iconFor(const QString& iconName, const QByteArray& iconData) {
    if (!iconName.contains("Custom")) return builtIn(iconName);
    if (iconData.isEmpty()) return {};
    QByteArray key = QCryptographicHash::hash(iconData, QCryptographicHash::Sha1);
    auto found = decoded_.constFind(key);
    if (found != decoded_.constEnd()) return *found;
    std::optional<QImage> image = decodeIcns(iconData);
    QIcon icon = image ? QIcon(QPixmap::fromImage(image->scaled(32, 32, Qt::KeepAspectRatio, Qt::SmoothTransformation)))
                       : QIcon();
    decoded_.insert(key, icon);
    return icon;
}

std::optional<QImage> GroupIcons::decodeIcns(const QByteArray& data) {
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "icns");
    return readBounded(reader);
}

QByteArray GroupIcons::encodeIcns(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "icns");
    if (!writer.write(squared(image))) return {};
    return bytes;
}

std::optional<QByteArray> GroupIcons::icnsForFile(const QString& path) {
    QFileInfo info(path);
    if (!info.exists()) return std::nullopt;
    if (info.isFile() && info.suffix().compare("icns", Qt::CaseInsensitive) == 0 && info.size() <= kMaxFileBytes) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly)) {
            QByteArray bytes = file.readAll();
            if (decodeIcns(bytes)) return bytes;
        }
    }
    if (info.isFile()) {
        QImageReader reader(path);
        if (reader.canRead()) {
            // An image too big to read, like any file we cannot take, falls back to its file's icon.
            if (std::optional<QImage> image = readBounded(reader)) {
                QByteArray bytes = encodeIcns(*image);
                if (!bytes.isEmpty()) return bytes;
            }
        }
    }
    int error = 0;
    QIcon icon = KVIconServices::sharedIcons().iconForPath(path, &error);
    QPixmap pixmap = icon.pixmap(128, 128);
    if (error != 0 || pixmap.isNull()) return std::nullopt;
    QByteArray bytes = encodeIcns(pixmap.toImage());
    return bytes.isEmpty() ? std::nullopt : std::optional(bytes);
}

}  // namespace corvalis
