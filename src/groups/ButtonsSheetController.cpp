#include "groups/ButtonsSheetController.h"

#include <QMimeData>
#include <algorithm>
#include <set>

#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

namespace {

constexpr int kButtonCount = 4;
constexpr const char* kMenuNames[kButtonCount] = {"OpenMenuName", "QuitMenuName", "SwitchMenuName", "SpecialMenuName"};
constexpr const char* kDefaultColors[kButtonCount] = {"Blue", "Red", "Green", "Yellow"};

}  // namespace

std::vector<ButtonRow> buttonRowsFromArray(const plist::Value& stored) {
    std::vector<ButtonRow> rows;
    std::set<int> seen;
    if (const plist::Array* array = stored.array())
        for (const plist::Value& element : *array) {
            std::optional<std::int32_t> color = element[keys::Color].integer() ? element[keys::Color].toInt32() : std::nullopt;
            if (!color || *color < 0 || *color >= kButtonCount || !seen.insert(*color).second) continue;
            rows.push_back({*color, element[keys::Visible].toBool().value_or(true)});
        }
    for (int color = 0; color < kButtonCount; ++color)
        if (!seen.contains(color)) rows.push_back({color, true});
    if (std::none_of(rows.begin(), rows.end(), [](const ButtonRow& row) { return row.visible; })) rows.front().visible = true;
    return rows;
}

plist::Array arrayFromButtonRows(const std::vector<ButtonRow>& rows) {
    plist::Array array;
    for (const ButtonRow& row : rows)
        array.append(plist::Dictionary{{keys::Color, plist::Value::int16(static_cast<std::int16_t>(row.color))},
                                       {keys::Visible, row.visible}});
    return array;
}

std::vector<int> orderAfterMove(int count, std::vector<int> dragged, int target) {
    std::sort(dragged.begin(), dragged.end());
    dragged.erase(std::unique(dragged.begin(), dragged.end()), dragged.end());
    std::erase_if(dragged, [count](int row) { return row < 0 || row >= count; });
    target = std::clamp(target, 0, count);
    std::vector<int> order;
    for (int row = 0; row < count; ++row)
        if (!std::binary_search(dragged.begin(), dragged.end(), row)) order.push_back(row);
    // Each dragged row above the target no longer stands before it.
    int removedBefore = static_cast<int>(std::count_if(dragged.begin(), dragged.end(), [target](int row) { return row < target; }));
    order.insert(order.begin() + (target - removedBefore), dragged.begin(), dragged.end());
    return order;
}

bool visibleBoxEnabled(const std::vector<ButtonRow>& rows, int row) {
    auto visible = std::count_if(rows.begin(), rows.end(), [](const ButtonRow& button) { return button.visible; });
    return visible >= 2 || !rows.at(static_cast<std::size_t>(row)).visible;
}

ButtonsSheetController::ButtonsSheetController(CorvalisPreferences& prefs, QObject* parent)
    : QAbstractListModel(parent), _prefs(prefs) {}

void ButtonsSheetController::open(const std::string& buttonsKey) {
    _buttonsKey = buttonsKey;
    std::vector<ButtonRow> rows = buttonRowsFromArray(_prefs.objectForKey(buttonsKey));
    // The four rows stay between openings and change as a layout change: a reset while the
    // sheet is hidden would leave a screen reader holding cells of rows that are gone.
    if (_buttons.size() == rows.size()) {
        applyOrder(rows);
        return;
    }
    beginResetModel();
    _buttons = std::move(rows);
    endResetModel();
}

void ButtonsSheetController::close() {
    _buttonsKey.clear();
    _draggedRows.clear();
}

void ButtonsSheetController::reloadFromStore() {
    if (isOpen()) applyOrder(buttonRowsFromArray(_prefs.objectForKey(_buttonsKey)));
}

// Rows change places as a layout change, so views keep their selection on the same menus.
void ButtonsSheetController::applyOrder(const std::vector<ButtonRow>& rows) {
    emit layoutAboutToBeChanged();
    QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    for (const QModelIndex& index : from) {
        int color = _buttons.at(static_cast<std::size_t>(index.row())).color;
        auto found = std::find_if(rows.begin(), rows.end(), [color](const ButtonRow& row) { return row.color == color; });
        to << index.sibling(static_cast<int>(found - rows.begin()), 0);
    }
    _buttons = rows;
    changePersistentIndexList(from, to);
    emit layoutChanged();
    if (!_buttons.empty()) emit dataChanged(index(0), index(rowCount() - 1));
}

void ButtonsSheetController::store() {
    plist::Value stored = _prefs.objectForKey(_buttonsKey);
    bool storedIsComplete = stored.array() && stored.array()->size() == _buttons.size();
    if (storedIsComplete && buttonRowsFromArray(stored) == _buttons) return;
    plist::Array array = arrayFromButtonRows(_buttons);
    _prefs.setArray(array, _buttonsKey);
    _prefs.synchronizeValue(array, _buttonsKey);
}

void ButtonsSheetController::setVisible(int row, bool visible) {
    if (!isOpen() || row < 0 || row >= rowCount() || _buttons[static_cast<std::size_t>(row)].visible == visible) return;
    if (!visibleBoxEnabled(_buttons, row)) return;
    _buttons[static_cast<std::size_t>(row)].visible = visible;
    // The other boxes' enabled state may follow.
    emit dataChanged(index(0), index(rowCount() - 1));
    store();
}

bool ButtonsSheetController::moveRows(const std::vector<int>& rows, int target) {
    if (!isOpen()) return false;
    std::vector<int> order = orderAfterMove(rowCount(), rows, target);
    std::vector<ButtonRow> moved;
    for (int row : order) moved.push_back(_buttons[static_cast<std::size_t>(row)]);
    if (moved == _buttons) return false;
    applyOrder(moved);
    store();
    return true;
}

int ButtonsSheetController::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(_buttons.size());
}

std::string ButtonsSheetController::colorImage(int color) const {
    std::optional<std::vector<std::string>> colors = _prefs.buttonColors();
    return colors ? colors->at(static_cast<std::size_t>(color)) : kDefaultColors[color];
}

QVariant ButtonsSheetController::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const ButtonRow& button = _buttons[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: return QString::fromStdString(LocalizedString(kMenuNames[button.color]));
    case Qt::CheckStateRole: return button.visible ? Qt::Checked : Qt::Unchecked;
    case ColorRole: return button.color;
    case ColorImageRole: return QString::fromStdString(colorImage(button.color));
    case Qt::AccessibleDescriptionRole:
        return QString::fromStdString(LocalizedString(button.visible ? "ButtonShownHint" : "ButtonHiddenHint"));
    default: return {};
    }
}

bool ButtonsSheetController::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::CheckStateRole) return false;
    bool before = _buttons[static_cast<std::size_t>(index.row())].visible;
    setVisible(index.row(), static_cast<Qt::CheckState>(value.toInt()) == Qt::Checked);
    return before != _buttons[static_cast<std::size_t>(index.row())].visible;
}

Qt::ItemFlags ButtonsSheetController::flags(const QModelIndex& index) const {
    // Drops land between rows only: the list itself takes them, never a row.
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    if (visibleBoxEnabled(_buttons, index.row())) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QStringList ButtonsSheetController::mimeTypes() const { return {kWidgetsMimeType}; }

QMimeData* ButtonsSheetController::mimeData(const QModelIndexList& indexes) const {
    _draggedRows.clear();
    for (const QModelIndex& index : indexes)
        if (index.isValid()) _draggedRows.push_back(index.row());
    auto* data = new QMimeData;
    data->setData(kWidgetsMimeType, {});
    return data;
}

bool ButtonsSheetController::canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                             const QModelIndex& parent) const {
    return data && data->hasFormat(kWidgetsMimeType) && action == Qt::MoveAction && !parent.isValid() && row >= 0 &&
           row <= rowCount() && !_draggedRows.empty();
}

bool ButtonsSheetController::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                          const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) return false;
    std::vector<int> dragged = std::exchange(_draggedRows, {});
    moveRows(dragged, row);
    // The rows are moved here: the view must not remove the dragged ones again.
    return false;
}

}  // namespace corvalis
