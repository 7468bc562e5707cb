#pragma once
// Where a drop on a list or outline really goes once its model has had its
// say: at `row` among the children of `parent`, or onto `parent` itself when
// `row` is -1 (Qt's own convention for dropMimeData).

#include <QModelIndex>

namespace corvalis {

struct DropPlace {
    QModelIndex parent;
    int row = -1;

    bool operator==(const DropPlace& other) const { return parent == other.parent && row == other.row; }
};

}  // namespace corvalis
