#include "keys/ui/KeyCombinationTableKeys.h"

#include <QAbstractItemView>
#include <QKeyEvent>

namespace corvalis {

bool handleKeyCombinationTableKey(QAbstractItemView* table, QEvent* event, int checkColumn, int combinationColumn) {
    if (!table || event->type() != QEvent::KeyPress || !table->model()) return false;
    auto* key = static_cast<QKeyEvent*>(event);
    bool plain = (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    QModelIndex current = table->currentIndex();
    if (!plain || !current.isValid()) return false;
    if (key->key() == Qt::Key_Space) {
        QModelIndex box = current.siblingAtColumn(checkColumn);
        bool checked = box.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        table->model()->setData(box, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
        return true;
    }
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        QModelIndex cell = current.siblingAtColumn(combinationColumn);
        table->setCurrentIndex(cell);
        table->edit(cell);
        return true;
    }
    return false;
}

}  // namespace corvalis
