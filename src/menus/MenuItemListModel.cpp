#include "menus/MenuItemListModel.h"

#include <QMimeData>
#include <QUrl>
#include <algorithm>

#include "fileutils/PathChecking.h"
#include "menus/MenuRows.h"
#include "pane/ItemRoles.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/MenuItemKinds.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

std::vector<std::string> localPaths(const QMimeData* data) {
    std::vector<std::string> paths;
    for (const QUrl& url : data->urls())
        if (url.isLocalFile()) paths.push_back(url.toLocalFile().toStdString());
    return paths;
}

}  // namespace

void appendInvalidPathsLine(std::string& report, const char* summaryKey, int invalid) {
    if (invalid <= 0) return;
    std::string count = invalid == 1 ? LocalizedString("OneInvalidPath")
                                     : LocalizedFormat("MoreInvalidPaths", {static_cast<long long>(invalid)});
    report += LocalizedFormat(summaryKey, {count}) + "\n";
}

MenuItemListModel::MenuItemListModel(CorvalisPreferences& prefs, const char* menuKey, const char* changeKey,
                                     const char* showInfoKey, QObject* parent)
    : QAbstractListModel(parent), _prefs(prefs), menuKey_(menuKey), changeKey_(changeKey), showInfoKey_(showInfoKey) {}

int MenuItemListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(_menuItems.size());
}

std::string MenuItemListModel::kindAt(int row) const { return _menuItems[row][keys::Item].stringOr(""); }

const std::string* MenuItemListModel::pathAt(int row) const { return _menuItems[row][keys::Path].string(); }

std::string MenuItemListModel::displayNameAt(int row) const {
    std::string kind = kindAt(row);
    if (kind == items::Separator) return items::Separator;
    if (pathAt(row)) return _menuItems[row][keys::Name].stringOr("");
    return kindTitle(kind);
}

std::string MenuItemListModel::kindTitle(const std::string& kind) const { return LocalizedString(kind.c_str()); }

std::string MenuItemListModel::kindPath(const std::string&) const { return {}; }

std::string MenuItemListModel::kindIconPath(const std::string&) const { return {}; }

QVariant MenuItemListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    int row = index.row();
    std::string kind = kindAt(row);
    const std::string* path = pathAt(row);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return QString::fromStdString(displayNameAt(row));
    case Qt::AccessibleTextRole:
        return QString::fromStdString(kind == items::Separator ? LocalizedString("SeparatorRow") : displayNameAt(row));
    case SeparatorRole:
        return kind == items::Separator;
    case ErrorCodeRole:
        return path ? iconErrorForPath(*path) : 0;
    case Qt::DecorationRole:
        if (!_showIcons || !_iconProvider || kind == items::Separator) return {};
        return _iconProvider(path ? *path : kindIconPath(kind), kind);
    case Qt::ToolTipRole: {
        std::string tip = path ? *path : kindPath(kind);
        if (!_showInfo || tip.empty()) return {};
        return QString::fromStdString(tip);
    }
    case ExtraImageRole: {
        std::string image = extraImage(row);
        return image.empty() ? QVariant() : QVariant(QString::fromStdString(image));
    }
    case DimmedRole:
        return isDimmed(row);
    case KindRole:
        return QString::fromStdString(kind);
    case PathRole:
        return path ? QString::fromStdString(*path) : QVariant();
    default:
        return {};
    }
}

bool MenuItemListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::EditRole || !pathAt(index.row())) return false;
    return rename(index.row(), value.toString().toStdString());
}

Qt::ItemFlags MenuItemListModel::flags(const QModelIndex& index) const {
    // Drops go between rows only.
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    if (pathAt(index.row())) flags |= Qt::ItemIsEditable;
    return flags;
}

QStringList MenuItemListModel::mimeTypes() const { return {kMenuItemsMimeType, "text/uri-list"}; }

QMimeData* MenuItemListModel::mimeData(const QModelIndexList& indexes) const {
    _draggedIndexes.clear();
    for (const QModelIndex& index : indexes)
        if (index.isValid()) _draggedIndexes.push_back(index.row());
    std::sort(_draggedIndexes.begin(), _draggedIndexes.end());
    _draggedIndexes.erase(std::unique(_draggedIndexes.begin(), _draggedIndexes.end()), _draggedIndexes.end());
    auto* data = new QMimeData;
    data->setData(kMenuItemsMimeType, QByteArray());
    return data;
}

Qt::DropActions MenuItemListModel::supportedDropActions() const {
    return Qt::MoveAction | Qt::CopyAction | Qt::LinkAction;
}

bool MenuItemListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                                        const QModelIndex& parent) const {
    if (!data || refusesDrops() || parent.isValid() || row > rowCount()) return false;
    // Rows of another window's editor carry the same type, but not our rows.
    if (data->hasFormat(kMenuItemsMimeType)) return !_draggedIndexes.empty();
    if (data->hasUrls()) return canDropFiles(localPaths(data));
    return false;
}

bool MenuItemListModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                     const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) {
        _draggedIndexes.clear();
        return false;
    }
    if (row < 0) row = rowCount();
    _updatePaths(true);
    bool accepted = true;
    if (data->hasFormat(kMenuItemsMimeType)) {
        std::vector<int> dragged;
        for (int index : _draggedIndexes)
            if (index < rowCount()) dragged.push_back(index);
        std::vector<int> selected = selection();
        bool firstWasSelected = !dragged.empty() && std::binary_search(selected.begin(), selected.end(), dragged.front());
        int landing = moveRecords(dragged, std::min(row, rowCount()));
        if (firstWasSelected) {
            std::vector<int> moved;
            for (std::size_t i = 0; i < dragged.size(); ++i) moved.push_back(landing + static_cast<int>(i));
            selectRows(moved);
        } else if (!dragged.empty()) {
            selectRows(menurows::selectionAfterMove(selected, dragged.front(), landing));
        }
        save();
        itemsAddedOrRearranged();
    } else {
        accepted = dropFiles(localPaths(data), row);
    }
    _draggedIndexes.clear();
    return accepted;
}

std::vector<std::string> MenuItemListModel::addMenuKinds() const {
    std::vector<std::string> present;
    for (int row = 0; row < rowCount(); ++row) present.push_back(kindAt(row));
    return menurows::missingKinds(fixedKinds(), present, unavailableKinds(), alwaysOfferedKinds());
}

std::vector<std::string> MenuItemListModel::alwaysOfferedKinds() const { return {items::Separator}; }

std::vector<int> MenuItemListModel::selection() const {
    std::vector<int> rows = _view ? _view->selectedRows() : std::vector<int>();
    std::sort(rows.begin(), rows.end());
    rows.erase(std::remove_if(rows.begin(), rows.end(), [this](int row) { return row < 0 || row >= rowCount(); }),
               rows.end());
    return rows;
}

void MenuItemListModel::selectRows(const std::vector<int>& rows) {
    if (!_view) return;
    std::vector<EditorRow> selected;
    for (int row : rows) selected.push_back(EditorRow{row});
    _view->selectRows(selected);
}

void MenuItemListModel::selectAndScroll(int row) {
    if (row < 0) {
        selectRows({});
        return;
    }
    selectRows({row});
    if (_view) _view->scrollRowToVisible(EditorRow{row});
}

void MenuItemListModel::fetchMenu() {
    beginResetModel();
    std::optional<Array> items = _prefs.arrayForKey(menuKey_);
    if (!items) {
        items = Array();
        _prefs.setArray(*items, menuKey_);
    }
    _menuItems = *items;
    endResetModel();
}

void MenuItemListModel::reload() {
    beginResetModel();
    endResetModel();
}

void MenuItemListModel::rowChanged(int row) { emit dataChanged(index(row), index(row)); }

void MenuItemListModel::insertRecord(int row, const Dictionary& record) {
    row = std::clamp(row, 0, rowCount());
    beginInsertRows({}, row, row);
    _menuItems.insert(static_cast<std::size_t>(row), record);
    endInsertRows();
}

Value MenuItemListModel::removeRecord(int row) {
    Value removed = _menuItems[row];
    beginRemoveRows({}, row, row);
    _menuItems.removeAt(static_cast<std::size_t>(row));
    endRemoveRows();
    return removed;
}

void MenuItemListModel::insertKinds(const std::vector<std::string>& kinds, int index) {
    _updatePaths(true);
    index = std::clamp(index, 0, rowCount());
    for (auto kind = kinds.rbegin(); kind != kinds.rend(); ++kind) insertRecord(index, Dictionary{{keys::Item, *kind}});
    std::vector<int> inserted;
    for (std::size_t i = 0; i < kinds.size(); ++i) inserted.push_back(index + static_cast<int>(i));
    selectRows(inserted);
    if (_view) _view->scrollRowToVisible(EditorRow{index});
    save();
    itemsAddedOrRearranged();
}

int MenuItemListModel::moveRecords(const std::vector<int>& rows, int target) {
    if (rows.empty()) return target;
    int landing = menurows::landingRow(rows, target);
    std::vector<int> order = menurows::orderAfterMove(rowCount(), rows, target);
    auto reorder = [&] {
        Array moved;
        for (int old : order) moved.append(_menuItems[old]);
        _menuItems.replaceContents(moved);
    };
    bool block = rows.back() - rows.front() + 1 == static_cast<int>(rows.size());
    if (block) {
        if (target >= rows.front() && target <= rows.back() + 1) return rows.front();
        beginMoveRows({}, rows.front(), rows.back(), {}, target);
        reorder();
        endMoveRows();
        return landing;
    }
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> newRowOf(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) newRowOf[static_cast<std::size_t>(order[i])] = static_cast<int>(i);
    QModelIndexList from = persistentIndexList(), to;
    for (const QModelIndex& old : from) to << index(newRowOf[static_cast<std::size_t>(old.row())], old.column());
    reorder();
    changePersistentIndexList(from, to);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    return landing;
}

bool MenuItemListModel::_removeExtraSeparators() {
    std::vector<bool> separators;
    for (int row = 0; row < rowCount(); ++row) separators.push_back(kindAt(row) == items::Separator);
    std::vector<int> extra = menurows::extraSeparatorRows(separators);
    if (extra.empty()) return false;
    for (auto row = extra.rbegin(); row != extra.rend(); ++row) removeRecord(*row);
    selectAndScroll(rowCount() > 0 ? 0 : -1);
    return true;
}

void MenuItemListModel::save() { _prefs.synchronizeValue(Dictionary{{menuKey_, _menuItems}}, changeKey_); }

void MenuItemListModel::initializePane(bool) {
    fetchMenu();
    _showInfo = hasInfoMode() && _prefs.boolForKey(showInfoKey_);
    if (rowCount() > 0) selectAndScroll(0);
}

void MenuItemListModel::didEndSheet() {
    if (_view) _view->endEditing();
    if (!_removeExtraSeparators()) return;
    itemsRemoved(Array(), -1);
    save();
}

void MenuItemListModel::onAddItem(const std::string& kind) {
    if (kind.empty()) return;
    insertKinds({kind}, menurows::insertionPoint(selection(), rowCount()));
}

void MenuItemListModel::onRemoveItem() {
    _updatePaths(true);
    std::vector<int> selected = selection();
    if (selected.empty()) return;
    int next = menurows::rowAfterRemoval(selected, rowCount());
    Array paths;
    for (auto row = selected.rbegin(); row != selected.rend(); ++row) {
        if (const std::string* path = pathAt(*row)) paths.append(*path);
        removeRecord(*row);
    }
    selectAndScroll(next);
    itemsRemoved(paths, -1);
    save();
}

void MenuItemListModel::onRestoreDefaultMenu() {
    Array factory = defaultMenu();
    auto restore = [this, factory] {
        Array paths;
        for (int row = 0; row < rowCount(); ++row)
            if (const std::string* path = pathAt(row)) paths.append(*path);
        beginResetModel();
        _menuItems.replaceContents(factory);
        endResetModel();
        selectAndScroll(rowCount() > 0 ? 0 : -1);
        itemsRemoved(paths, -1);
        save();
    };
    if (_menuItems.empty()) return restore();
    if (_menuItems == factory) return;
    if (!_view) return;
    _view->ask(EditorAlert{EditorAlert::Style::Warning, LocalizedString("WantToRestoreMenu"), LocalizedString("CantUndo"),
                           {LocalizedString("Restore"), LocalizedString("Cancel")}},
               [restore](int button) {
                   if (button == 0) restore();
               });
}

void MenuItemListModel::onShowInfo() {
    if (!hasInfoMode()) return;
    _showInfo = !_showInfo;
    _prefs.setBool(_showInfo, showInfoKey_);
    if (rowCount() > 0) emit dataChanged(index(0), index(rowCount() - 1), {Qt::ToolTipRole});
}

}  // namespace corvalis
