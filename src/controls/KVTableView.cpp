#include "controls/KVTableView.h"

#include <QApplication>
#include <QDateTime>
#include <QPainter>

#include "controls/KVIconServices.h"

namespace corvalis {

namespace {

// Keys typed within the keyboard-input interval extend the text being searched.
bool collectTyped(QString& typed, qint64& lastKeyAt, const QString& search) {
    qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (search.isEmpty()) {
        typed.clear();
        return false;
    }
    if (now - lastKeyAt > QApplication::keyboardInputInterval()) typed.clear();
    lastKeyAt = now;
    typed += search;
    return true;
}

}  // namespace

KVTableView::KVTableView(QWidget* parent) : QTableView(parent) {
    setItemDelegate(new KVImageAndTextCell(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setShowGrid(false);
}

void KVTableView::keyboardSearch(const QString& search) {
    if (!collectTyped(typed_, lastKeyAt_, search)) return QTableView::keyboardSearch(search);
    if (!typeToSelect_ || !typeToSelect_(typed_)) QTableView::keyboardSearch(search);
}

KVOutlineView::KVOutlineView(QWidget* parent) : QTreeView(parent) {
    setItemDelegate(new KVImageAndTextCell(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
}

void KVOutlineView::keyboardSearch(const QString& search) {
    if (!collectTyped(typed_, lastKeyAt_, search)) return QTreeView::keyboardSearch(search);
    if (!typeToSelect_ || !typeToSelect_(typed_)) QTreeView::keyboardSearch(search);
}

void KVImageAndTextCell::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    if (index.data(SeparatorRole).toBool()) {
        QStyleOptionViewItem background = option;
        initStyleOption(&background, index);
        background.text.clear();
        background.icon = QIcon();
        QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &background, painter, background.widget);
        painter->save();
        painter->setPen(QPen(option.palette.color(QPalette::Mid), 1));
        int y = option.rect.center().y();
        painter->drawLine(option.rect.left() + 4, y, option.rect.right() - 4, y);
        painter->restore();
        return;
    }
    QStyleOptionViewItem styled = option;
    initStyleOption(&styled, index);
    int error = index.data(ErrorCodeRole).toInt();
    bool selected = option.state & QStyle::State_Selected;
    if (error != 0 && !selected)
        styled.palette.setColor(QPalette::Text, KVIconServices::textColorForError(error, selected, option.palette));
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &styled, painter, styled.widget);
}

QSize KVImageAndTextCell::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (index.data(SeparatorRole).toBool()) size.setHeight(qMax(9, size.height() / 2));
    return size;
}

}  // namespace corvalis
