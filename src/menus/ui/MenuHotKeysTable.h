#pragma once
// The table of the four menus' hot keys on the Menus tab: a check box that
// turns each on, the menu's name, its recorded key combination and where the
// menu appears. Every edit goes through MenusController.

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <functional>

#include "pane/ComKestrovaShortcutsController.h"

namespace corvalis {

class MenusController;

class MenuHotKeysTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { EnabledColumn, MenuColumn, KeyCombinationColumn, PositionColumn, ColumnCount };
    using Colour = std::function<ShortcutTextColour(int row, bool rowEnabled)>;

    MenuHotKeysTableModel(MenusController& controller, Colour colour, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    // Shows the rows the first time (the settings are loaded by then), later redraws them
    // (the stored hot keys or the key names changed).
    void reload();

    static QString positionName(int position);

private:
    MenusController& controller_;
    Colour colour_;
    int rows_ = 0;
};

// Chooses a hot key's position from a pop-up of the six places a menu can appear.
class MenuPositionDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
};

}  // namespace corvalis
