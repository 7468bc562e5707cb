#pragma once
// Table and outline views whose type-to-select asks the owner first (lists
// sorted by name choose the row by the pane's name order), with a separator
// row style and the image-and-text cells of the pane's lists; the outline can
// draw a drop where its model will put it.

#include <QStyledItemDelegate>
#include <QTableView>
#include <QTreeView>
#include <functional>

#include "pane/DropPlace.h"
#include "pane/ItemRoles.h"

class QHelpEvent;
class QMimeData;

namespace corvalis {

// Answers true when it selected a row for the typed text; false leaves Qt's own search.
using TypeToSelect = std::function<bool(const QString& typed)>;

// The text typed within the keyboard-input interval, offered to the owner's handler.
class TypedText {
public:
    void setHandler(TypeToSelect handler) { handler_ = std::move(handler); }
    // True when the owner selected a row for the text typed so far.
    bool offer(const QString& search);

private:
    TypeToSelect handler_;
    QString typed_;
    qint64 lastKeyAt_ = 0;
};

class KVTableView : public QTableView {
    Q_OBJECT

public:
    explicit KVTableView(QWidget* parent = nullptr);
    void setTypeToSelect(TypeToSelect handler) { typed_.setHandler(std::move(handler)); }
    void keyboardSearch(const QString& search) override {
        if (!typed_.offer(search)) QTableView::keyboardSearch(search);
    }

private:
    TypedText typed_;
};

// A row's tool tip (its path) shows only while the pointer is over its icon and name, not the
// empty rest of the row. For a view's viewport ToolTip events; true: the event is handled.
bool showToolTipOverName(QAbstractItemView* view, QHelpEvent* help);

// Where the model will really put a drop offered at (row, parent).
using DropRetarget = std::function<DropPlace(const QMimeData* data, int row, const QModelIndex& parent)>;

class KVOutlineView : public QTreeView {
    Q_OBJECT

public:
    explicit KVOutlineView(QWidget* parent = nullptr);
    void setTypeToSelect(TypeToSelect handler) { typed_.setHandler(std::move(handler)); }
    void keyboardSearch(const QString& search) override {
        if (!typed_.offer(search)) QTreeView::keyboardSearch(search);
    }
    // With a retarget, the drop indicator shows where the model puts a drop, not the gap under
    // the mouse, so a drop the model moves elsewhere is not drawn where it will not land.
    void setDropRetarget(DropRetarget retarget) { retarget_ = std::move(retarget); }
    // The indicator for a drop offered at (row, parent), in viewport coordinates: a line of zero
    // height between rows, a row's rectangle for a drop onto it, or a null rectangle for none.
    QRect dropIndicatorRect(const QMimeData* data, int row, const QModelIndex& parent) const;

protected:
    void dragMoveEvent(QDragMoveEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    TypedText typed_;
    DropRetarget retarget_;
    QRect dropRect_;
};

// Icon and text, red or light grey by the row's error code, or a separator line.
class KVImageAndTextCell : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace corvalis
