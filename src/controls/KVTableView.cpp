#include "controls/KVTableView.h"

#include <QApplication>
#include <QDateTime>
#include <QPainter>

#include "controls/KVIconServices.h"

namespace corvalis {

bool TypedText::offer(const QString& search) {
    qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (search.isEmpty()) {
        typed_.clear();
        return false;
    }
    if (now - lastKeyAt_ > QApplication::keyboardInputInterval()) typed_.clear();
    lastKeyAt_ = now;
    typed_ += search;
    return handler_ && handler_(typed_);
}

KVTableView::KVTableView(QWidget* parent) : QTableView(parent) {
    setItemDelegate(new KVImageAndTextCell(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setShowGrid(false);
}

KVOutlineView::KVOutlineView(QWidget* parent) : QTreeView(parent) {
    setItemDelegate(new KVImageAndTextCell(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
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
