#pragma once
// The buttons sheet of the Options tab: the four menu buttons of the panel or of
// the status item, in display order, each shown or hidden. A small list model;
// rows are reordered by dragging between rows or by moving one row up or down.

#include <QAbstractListModel>
#include <string>
#include <vector>

#include "plist/Value.h"

namespace corvalis {

class CorvalisPreferences;

struct ButtonRow {
    int color = 0;  // 0 Open, 1 Quit, 2 Switch, 3 Special: the colour image and the menu it opens
    bool visible = true;
    bool operator==(const ButtonRow&) const = default;
};

// The rows a stored "PanelButtons"/"StatusItemButtons" array stands for: elements
// with a known, not yet seen colour in their order, then any missing colour shown.
std::vector<ButtonRow> buttonRowsFromArray(const plist::Value& stored);
plist::Array arrayFromButtonRows(const std::vector<ButtonRow>& rows);

// The order of `count` rows (old row numbers) after moving `dragged` to stand,
// in their own order, before the row that was at `target` (count: at the end).
std::vector<int> orderAfterMove(int count, std::vector<int> dragged, int target);

// The box of a visible button cannot be cleared when it is the only visible one.
bool visibleBoxEnabled(const std::vector<ButtonRow>& rows, int row);

class ButtonsSheetController : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { ColorRole = Qt::UserRole + 1, ColorImageRole };

    // Drags inside the sheet; they carry no data, the model keeps the dragged rows.
    static constexpr const char* kWidgetsMimeType = "application/x-com.kestrova.corvalis.widgets";

    explicit ButtonsSheetController(CorvalisPreferences& prefs, QObject* parent = nullptr);

    // Shows the rows of "PanelButtons" or "StatusItemButtons"; after close() nothing is stored.
    void open(const std::string& buttonsKey);
    void close();
    bool isOpen() const { return !_buttonsKey.empty(); }
    const std::string& buttonsKey() const { return _buttonsKey; }
    const std::vector<ButtonRow>& rows() const { return _buttons; }
    // The stored array changed underneath (the controller): rows again, selection kept by menu.
    void reloadFromStore();

    void setVisible(int row, bool visible);
    // Moves the rows as a drop before `target` would; false when nothing moved.
    bool moveRows(const std::vector<int>& rows, int target);
    bool moveUp(int row) { return row > 0 && moveRows({row}, row - 1); }
    bool moveDown(int row) { return row + 1 < rowCount() && moveRows({row}, row + 2); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    Qt::DropActions supportedDragActions() const override { return Qt::MoveAction; }

private:
    void applyOrder(const std::vector<ButtonRow>& rows);
    void store();
    std::string colorImage(int color) const;

    CorvalisPreferences& _prefs;
    std::string _buttonsKey;
    std::vector<ButtonRow> _buttons;
    mutable std::vector<int> _draggedRows;
};

}  // namespace corvalis
