#include "controls/KVTableView.h"

#include <QApplication>
#include <QDateTime>
#include <QDragMoveEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QStyleOption>
#include <QToolTip>

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

QRect KVOutlineView::dropIndicatorRect(const QMimeData* data, int row, const QModelIndex& parent) const {
    DropPlace place = retarget_ ? retarget_(data, row, parent) : DropPlace{parent, row};
    int count = model() ? model()->rowCount(place.parent) : 0;
    bool item = place.parent.isValid() && place.parent != rootIndex();
    // A place among rows that are not on show (a collapsed or empty item) is shown as the item.
    if (item && (place.row < 0 || !isExpanded(place.parent) || count == 0)) return visualRect(place.parent);
    if (place.row < 0 || count == 0) return QRect();
    if (place.row < count) {
        QRect below = visualRect(model()->index(place.row, 0, place.parent));
        return QRect(below.left(), below.top(), below.width(), 0);
    }
    // After the last row, below everything shown beneath it, at that row's indentation.
    QModelIndex last = model()->index(count - 1, 0, place.parent);
    QRect level = visualRect(last);
    while (isExpanded(last) && model()->rowCount(last) > 0) last = model()->index(model()->rowCount(last) - 1, 0, last);
    return QRect(level.left(), visualRect(last).bottom() + 1, level.width(), 0);
}

void KVOutlineView::dragMoveEvent(QDragMoveEvent* event) {
    QTreeView::dragMoveEvent(event);
    if (!retarget_) return;
    QRect rect;
    if (event->isAccepted()) {
        // The place Qt offers the model for a drop here, worked out as its drop does.
        QPoint at = event->position().toPoint();
        QModelIndex index = indexAt(at);
        int row = -1;
        if (!index.isValid() || !visualRect(index).contains(at)) {
            index = rootIndex();
        } else if (dropIndicatorPosition() == AboveItem || dropIndicatorPosition() == BelowItem) {
            row = index.row() + (dropIndicatorPosition() == BelowItem ? 1 : 0);
            index = index.parent();
        }
        rect = dropIndicatorRect(event->mimeData(), row, index);
    }
    if (rect != dropRect_) {
        dropRect_ = rect;
        viewport()->update();
    }
}

void KVOutlineView::paintEvent(QPaintEvent* event) {
    if (!retarget_ || !showDropIndicator()) {
        QTreeView::paintEvent(event);
        return;
    }
    // Qt's indicator stays off while the tree is drawn; the retargeted one is drawn instead.
    setDropIndicatorShown(false);
    QTreeView::paintEvent(event);
    setDropIndicatorShown(true);
    if (state() != DraggingState) dropRect_ = QRect();  // the drag left or dropped
    if (dropRect_.isNull()) return;
    QPainter painter(viewport());
    QStyleOption option;
    option.initFrom(this);
    option.rect = dropRect_;
    style()->drawPrimitive(QStyle::PE_IndicatorItemViewItemDrop, &option, &painter, this);
}

bool showToolTipOverName(QAbstractItemView* view, QHelpEvent* help) {
    // The room a row's icon takes before its name, and the margin after the name.
    constexpr int kIconAndGap = 19;
    constexpr int kTextMargin = 3;
    QModelIndex index = view->indexAt(help->pos());
    QString tip = index.data(Qt::ToolTipRole).toString();
    QRect cell = view->visualRect(index);
    int iconWidth = index.data(Qt::DecorationRole).isValid() ? kIconAndGap : 0;
    int textWidth = view->fontMetrics().horizontalAdvance(index.data().toString());
    cell.setWidth(std::min(cell.width(), textWidth + iconWidth + kTextMargin));
    if (!tip.isEmpty() && cell.contains(help->pos()))
        QToolTip::showText(help->globalPos(), tip, view->viewport(), cell);
    else
        QToolTip::hideText();
    return true;
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
    // A dimmed row reads normally only while it is selected in the view that has the keyboard.
    if (index.data(DimmedRole).toBool() &&
        !(selected && styled.widget && styled.widget->hasFocus() && styled.widget->isActiveWindow())) {
        styled.palette.setColor(QPalette::Text, QColor(Qt::lightGray));
        styled.palette.setColor(QPalette::HighlightedText, QColor(Qt::lightGray));
    }
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &styled, painter, styled.widget);
    QString extra = index.data(ExtraImageRole).toString();
    if (extra.isEmpty()) return;
    // The extra image follows the title, inside the cell.
    constexpr int kImageSize = 16, kGap = 4;
    QRect text = QApplication::style()->subElementRect(QStyle::SE_ItemViewItemText, &styled, styled.widget);
    int left = text.left() + styled.fontMetrics.horizontalAdvance(styled.text) + kGap;
    left = std::min(left, option.rect.right() - kImageSize);
    QRect image(left, option.rect.center().y() - kImageSize / 2, kImageSize, kImageSize);
    KVIconServices::loadResource(extra).paint(painter, image);
}

QSize KVImageAndTextCell::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (index.data(SeparatorRole).toBool()) size.setHeight(qMax(9, size.height() / 2));
    return size;
}

}  // namespace corvalis
