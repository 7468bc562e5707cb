#pragma once
// Table and outline views whose type-to-select asks the owner first (lists
// sorted by name choose the row by the pane's name order), with a separator
// row style and the image-and-text cells of the pane's lists.

#include <QStyledItemDelegate>
#include <QTableView>
#include <QTreeView>
#include <functional>

#include "pane/ItemRoles.h"

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

class KVOutlineView : public QTreeView {
    Q_OBJECT

public:
    explicit KVOutlineView(QWidget* parent = nullptr);
    void setTypeToSelect(TypeToSelect handler) { typed_.setHandler(std::move(handler)); }
    void keyboardSearch(const QString& search) override {
        if (!typed_.offer(search)) QTreeView::keyboardSearch(search);
    }

private:
    TypedText typed_;
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
