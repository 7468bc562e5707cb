#pragma once
// The Actions entry that re-points the selected row of a menu of files or
// folders: titled Change or Fix by the row's state, there only for one such row.

class QMenu;

namespace corvalis {

class PathMenuItemListModel;

void addChangeItemAction(QMenu* menu, PathMenuItemListModel& model);

}  // namespace corvalis
