#include "menus/ui/ChangeItemAction.h"

#include <QMenu>

#include "menus/PathMenuItemListModel.h"

namespace corvalis {

void addChangeItemAction(QMenu* menu, PathMenuItemListModel& model) {
    QAction* change = menu->addAction(QString::fromStdString(model.changeItemTitle()), menu, [&model] { model.onChangeItem(); });
    change->setEnabled(model.canChangeItem());
}

}  // namespace corvalis
