#include "groups/ui/GroupsOutline.h"

#include <QHelpEvent>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <algorithm>

#include "controls/KVIconServices.h"
#include "controls/KVTableView.h"
#include "controls/LocalizedText.h"
#include "groups/GroupsController.h"
#include "groups/ui/GroupIcons.h"

namespace corvalis {

namespace {

// Group rows: their icon, bold. Members: the file's icon, red or grey when the file is gone or
// in the Trash. Icons are looked up here, so only for rows that are drawn.
class GroupsOutlineDelegate : public QStyledItemDelegate {
public:
    GroupsOutlineDelegate(GroupIcons& icons, QObject* parent) : QStyledItemDelegate(parent), icons_(icons) {}

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationSize = QSize(16, 16);
        if (index.data(GroupsController::IsGroupRole).toBool()) {
            option->font.setBold(true);
            option->icon = icons_.iconFor(index.data(GroupsController::IconNameRole).toString(),
                                          index.data(GroupsController::IconDataRole).toByteArray());
            return;
        }
        int error = 0;
        option->icon = KVIconServices::sharedIcons().iconForPath(index.data(GroupsController::PathRole).toString(), &error);
        bool selected = option->state & QStyle::State_Selected;
        option->palette.setColor(QPalette::Text, KVIconServices::textColorForError(error, selected, option->palette));
    }

    // A row's tip shows only while the mouse is over its icon and text, not the empty rest of the row.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        QStyleOptionViewItem item = option;
        initStyleOption(&item, index);
        int width = QFontMetrics(item.font).horizontalAdvance(item.text) + 3 + 3 + (item.icon.isNull() ? 0 : 16);
        QRect area = option.rect;
        area.setWidth(std::min(width, option.rect.width()));
        if (!area.contains(event->pos())) {
            QToolTip::hideText();
            return true;
        }
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }

private:
    GroupIcons& icons_;
};

}  // namespace

KVOutlineView* makeGroupsOutline(GroupsController& groups, GroupIcons& icons, QWidget* parent) {
    auto* outline = new KVOutlineView(parent);
    outline->setModel(&groups);
    outline->setItemDelegate(new GroupsOutlineDelegate(icons, outline));
    outline->setHeaderHidden(true);
    outline->setUniformRowHeights(true);
    outline->setSelectionMode(QAbstractItemView::ExtendedSelection);
    outline->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    outline->setDragDropMode(QAbstractItemView::DragDrop);
    outline->setDefaultDropAction(Qt::MoveAction);
    outline->setDragEnabled(true);
    outline->setAcceptDrops(true);
    outline->setDropIndicatorShown(true);
    outline->setDropRetarget([&groups](const QMimeData* data, int row, const QModelIndex& parent) {
        return groups.dropTarget(data, row, parent);
    });
    outline->setAccessibleName(localized("GroupsOutline"));
    outline->setObjectName("groups");
    return outline;
}

}  // namespace corvalis
