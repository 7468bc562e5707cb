#include "menus/ui/MenuHotKeysTable.h"

#include <QApplication>
#include <QComboBox>

#include "controls/LocalizedText.h"
#include "keys/ui/KVKeyCombinationTextField.h"
#include "menus/MenusController.h"

namespace corvalis {

MenuHotKeysTableModel::MenuHotKeysTableModel(MenusController& controller, Colour colour, QObject* parent)
    : QAbstractTableModel(parent), controller_(controller), colour_(std::move(colour)) {}

int MenuHotKeysTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int MenuHotKeysTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QString MenuHotKeysTableModel::positionName(int position) {
    return localized(("HotKeyPosition" + std::to_string(position)).c_str());
}

QVariant MenuHotKeysTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows_) return {};
    int row = index.row();
    QString menu = localized(MenusController::menuNameKey(row));
    bool enabled = controller_.hotKeyEnabled(row);
    std::optional<KVKeyCombination> combination = controller_.hotKeyCombination(row);
    switch (index.column()) {
    case EnabledColumn:
        if (role == Qt::CheckStateRole) return enabled ? Qt::Checked : Qt::Unchecked;
        // Qt's table cells do not report that they can be checked: the state is in the name.
        if (role == Qt::AccessibleTextRole)
            return localizedFormat(enabled ? "MenuHotKeyOn" : "MenuHotKeyOff", {menu.toStdString()});
        break;
    case MenuColumn:
        if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return menu;
        break;
    case KeyCombinationColumn:
        if (role == Qt::DisplayRole) return combination ? QString::fromStdString(combination->text()) : QString();
        if (role == KeyCombinationRole) return combination ? QVariant::fromValue(*combination) : QVariant();
        if (role == Qt::AccessibleTextRole)
            return localizedFormat("MenuHotKeyCell", {menu.toStdString(), combination ? combination->text()
                                                                                       : LocalizedString("NoKeyCombination")});
        if (role == Qt::ForegroundRole && colour_(row, enabled) == ShortcutTextColour::LightGrey)
            return QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
        break;
    case PositionColumn:
        if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return positionName(controller_.hotKeyPosition(row));
        if (role == Qt::EditRole) return controller_.hotKeyPosition(row);
        break;
    default:
        break;
    }
    return {};
}

bool MenuHotKeysTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid()) return false;
    int row = index.row();
    if (index.column() == EnabledColumn && role == Qt::CheckStateRole) {
        controller_.setHotKeyEnabled(row, static_cast<Qt::CheckState>(value.toInt()) == Qt::Checked);
        emit dataChanged(index, index.siblingAtColumn(KeyCombinationColumn));
        return true;
    }
    if (index.column() == KeyCombinationColumn && role == KeyCombinationRole && value.isValid()) {
        controller_.setHotKeyCombination(row, value.value<KVKeyCombination>());
        emit dataChanged(index, index);
        return true;
    }
    if (index.column() == PositionColumn && role == Qt::EditRole) {
        controller_.setHotKeyPosition(row, value.toInt());
        emit dataChanged(index, index);
        return true;
    }
    return false;
}

Qt::ItemFlags MenuHotKeysTableModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == EnabledColumn) flags |= Qt::ItemIsUserCheckable;
    if (index.column() == KeyCombinationColumn || index.column() == PositionColumn) flags |= Qt::ItemIsEditable;
    return flags;
}

QVariant MenuHotKeysTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* const titles[ColumnCount] = {"HotKeyEnabledColumn", "HotKeyMenuColumn", "HotKeyCombinationColumn",
                                                    "HotKeyPositionColumn"};
    return section >= 0 && section < ColumnCount ? localized(titles[section]) : QVariant();
}

void MenuHotKeysTableModel::reload() {
    if (rows_ == 0) {
        beginResetModel();
        rows_ = MenusController::kHotKeyRows;
        endResetModel();
        return;
    }
    emit dataChanged(index(0, 0), index(rows_ - 1, ColumnCount - 1));
}

QWidget* MenuPositionDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const {
    auto* box = new QComboBox(parent);
    for (int position = 0; position < MenusController::kPositions; ++position)
        box->addItem(MenuHotKeysTableModel::positionName(position), position);
    box->setAccessibleName(localized("HotKeyPositionColumn"));
    return box;
}

void MenuPositionDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    auto* box = static_cast<QComboBox*>(editor);
    box->setCurrentIndex(box->findData(index.data(Qt::EditRole)));
}

void MenuPositionDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
    auto* box = static_cast<QComboBox*>(editor);
    if (box->currentData().toInt() != index.data(Qt::EditRole).toInt())
        model->setData(index, box->currentData(), Qt::EditRole);
}

}  // namespace corvalis
