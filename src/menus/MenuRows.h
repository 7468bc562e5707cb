#pragma once
// Row arithmetic shared by the menu editors: where added rows go, which row is
// selected after a removal or a move, which separators are extra, which kinds
// the Add pull-down still offers. Plain functions over row numbers.

#include <string>
#include <vector>

namespace corvalis::menurows {

// After the last selected row; at the end when nothing is selected.
int insertionPoint(const std::vector<int>& selectedRows, int count);

// The row to select once `selectedRows` are removed from `count` rows: the row
// that took the place after the block, else the one before it; -1 for none.
int rowAfterRemoval(const std::vector<int>& selectedRows, int count);

// The separators a menu must lose, ascending: one that comes first, follows
// another separator, or is left last once those are gone.
std::vector<int> extraSeparatorRows(const std::vector<bool>& isSeparator);

// Rows dropped above row `target` (numbered before the move) start here once
// the dragged rows are out of the way.
int landingRow(const std::vector<int>& draggedRows, int target);

// The rows in their new order (entry i holds the old number of new row i)
// after `draggedRows` move, keeping their order, above old row `target`.
std::vector<int> orderAfterMove(int count, const std::vector<int>& draggedRows, int target);

// The selection after a drag of rows that were not selected: each selected row
// the first dragged row passed moves by one towards where it came from.
std::vector<int> selectionAfterMove(const std::vector<int>& selectedRows, int firstDragged, int landing);

// The selection once row `removed` is gone: rows below it move up by one.
std::vector<int> selectionAfterRemovingRow(const std::vector<int>& selectedRows, int removed);

// The kinds of `fixedOrder` that are neither in `present` nor `unavailable`,
// in that order, followed by `always`.
std::vector<std::string> missingKinds(const std::vector<std::string>& fixedOrder,
                                      const std::vector<std::string>& present,
                                      const std::vector<std::string>& unavailable,
                                      const std::vector<std::string>& always);

}  // namespace corvalis::menurows
