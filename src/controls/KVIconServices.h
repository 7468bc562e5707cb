#pragma once
// The small image shown beside a path in every list of the pane, and the
// error code that colours the row: 0 the path exists, 1 nothing is there
// (bad-link image, red text), 2 it lies in the Trash (Trash image, light grey).

#include <QColor>
#include <QIcon>
#include <QString>

class QPalette;

namespace corvalis {

class KVIconServices {
public:
    static KVIconServices& sharedIcons();
    KVIconServices(const KVIconServices&) = delete;
    KVIconServices& operator=(const KVIconServices&) = delete;

    // The icon of the file at `path` (16 by 16 points), or the bad-link or Trash image.
    QIcon iconForPath(const QString& path, int* error) const;

    static QIcon trashIcon();
    static QIcon badLinkIcon();
    static QIcon trashIcon_big();
    static QIcon badLinkIcon_big();
    // One of the pane's own images by name ("Caution", "CorvalisIcon", ...), 16 by 16; null when missing.
    static QIcon loadResource(const QString& name);
    static QIcon applicationIcon();

    // The text colour of a row by its error code: red for 1, light grey for other
    // errors, the normal text colour without error or while the row is selected.
    static QColor textColorForError(int error, bool selected, const QPalette& palette);

private:
    KVIconServices() = default;
};

}  // namespace corvalis
