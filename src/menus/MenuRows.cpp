#include "menus/MenuRows.h"

#include <algorithm>
#include <set>

namespace corvalis::menurows {

namespace {
bool contains(const std::vector<std::string>& list, const std::string& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}
}  // namespace

int insertionPoint(const std::vector<int>& selectedRows, int count) {
    if (selectedRows.empty()) return count;
    return *std::max_element(selectedRows.begin(), selectedRows.end()) + 1;
}

int rowAfterRemoval(const std::vector<int>& selectedRows, int count) {
    if (selectedRows.empty()) return -1;
    int last = *std::max_element(selectedRows.begin(), selectedRows.end());
    int removed = static_cast<int>(selectedRows.size());
    return last >= count - 1 ? last - removed : last + 1 - removed;
}

std::vector<int> extraSeparatorRows(const std::vector<bool>& isSeparator) {
    std::vector<int> extra;
    bool previousKeptIsSeparator = true;  // nothing kept yet: a separator here would come first
    int lastKept = -1;
    for (int row = 0; row < static_cast<int>(isSeparator.size()); ++row) {
        if (isSeparator[row] && previousKeptIsSeparator) {
            extra.push_back(row);
            continue;
        }
        previousKeptIsSeparator = isSeparator[row];
        lastKept = row;
    }
    if (lastKept >= 0 && isSeparator[lastKept]) extra.insert(std::lower_bound(extra.begin(), extra.end(), lastKept), lastKept);
    return extra;
}

int landingRow(const std::vector<int>& draggedRows, int target) {
    return target - static_cast<int>(std::count_if(draggedRows.begin(), draggedRows.end(),
                                                   [target](int row) { return row < target; }));
}

std::vector<int> orderAfterMove(int count, const std::vector<int>& draggedRows, int target) {
    std::set<int> dragged(draggedRows.begin(), draggedRows.end());
    std::vector<int> order;
    for (int row = 0; row < count; ++row)
        if (!dragged.count(row)) order.push_back(row);
    int landing = std::clamp(landingRow(draggedRows, target), 0, static_cast<int>(order.size()));
    order.insert(order.begin() + landing, dragged.begin(), dragged.end());
    return order;
}

std::vector<int> selectionAfterMove(const std::vector<int>& selectedRows, int firstDragged, int landing) {
    std::set<int> selected(selectedRows.begin(), selectedRows.end());
    auto shift = [&selected](int from, int to) {
        if (selected.erase(from)) selected.insert(to);
    };
    if (firstDragged < landing)
        for (int row = firstDragged; row < landing; ++row) shift(row + 1, row);
    else
        for (int row = firstDragged; row > landing; --row) shift(row - 1, row);
    return {selected.begin(), selected.end()};
}

std::vector<int> selectionAfterRemovingRow(const std::vector<int>& selectedRows, int removed) {
    std::vector<int> result;
    for (int row : selectedRows)
        if (row != removed) result.push_back(row > removed ? row - 1 : row);
    return result;
}

std::vector<std::string> missingKinds(const std::vector<std::string>& fixedOrder,
                                      const std::vector<std::string>& present,
                                      const std::vector<std::string>& unavailable,
                                      const std::vector<std::string>& always) {
    std::vector<std::string> kinds;
    for (const std::string& kind : fixedOrder)
        if (!contains(present, kind) && !contains(unavailable, kind)) kinds.push_back(kind);
    kinds.insert(kinds.end(), always.begin(), always.end());
    return kinds;
}

}  // namespace corvalis::menurows
