#pragma once
// Group icons: the seven coloured folders, and custom icons kept in the
// records as ICNS bytes. Decoding is bounded (a huge or bomb image gives no
// icon) and made once per distinct data.

#include <QByteArray>
#include <QHash>
#include <QIcon>
#include <QString>
#include <optional>

namespace corvalis {

class GroupIcons {
public:
    // The icon of a group by its "Icon" and "IconData"; null for none, or for data that does not decode.
    QIcon iconFor(const QString& iconName, const QByteArray& iconData);
    static QIcon builtIn(const QString& iconName);
    // ICNS bytes of the icon standing for a chosen file: a valid .icns keeps its own bytes,
    // another image is scaled and written as ICNS, anything else gives its file-type icon.
    // An image too big to read gives its file-type icon too; none when nothing usable came out.
    static std::optional<QByteArray> icnsForFile(const QString& path);
    // The image in ICNS bytes, or none when they do not decode within the limits.
    static std::optional<QImage> decodeIcns(const QByteArray& data);
    static QByteArray encodeIcns(const QImage& image);

    // Above these an image is refused rather than decoded.
    static constexpr int kMaxSide = 4096;
    static constexpr qint64 kMaxFileBytes = 32 * 1024 * 1024;

private:
    QHash<QByteArray, QIcon> decoded_;
};

}  // namespace corvalis
