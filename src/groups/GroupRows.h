#pragma once
// The row arithmetic of the groups outline, apart from the model so that
// tables of cases can check it: unique names, custom icon numbers, name-order
// positions, where dragged rows land and which group a selection means.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "pane/EditorView.h"

namespace corvalis {

// `candidate`, or "candidate 1", "candidate 2", ... : the first that `taken` refuses.
std::string uniqueName(const std::string& candidate, const std::function<bool(const std::string&)>& taken);

// The number of a new custom icon: 1 unless 1 is in use, else one past the run
// of consecutive numbers that starts at the smallest (1, 2, 4 give 3).
long newUniqueIconNumber(std::vector<long> used);
// The number after "Custom " in an icon name; none for other names.
std::optional<long> customIconNumber(const std::string& iconName);

// Where a name goes in a list kept in name order: before the first name that
// sorts after it, so equal names keep the order they came in.
int nameOrderPosition(const std::vector<std::string>& names, const std::string& name);

// A drop position once the dragged rows before it are gone.
int positionAfterRemoving(int position, const std::vector<int>& removedRows);

// Group rows are { row, -1 }; members { member, group }.
inline bool isGroupRow(const EditorRow& row) { return row.group < 0; }
// The rows are all of one kind (groups, or applications).
bool isSingleKind(const std::vector<EditorRow>& rows);
// The group whose options a selection shows: one row's own group; none for
// several groups; the one group that holds every selected member, else none.
std::optional<int> selectedGroupOf(const std::vector<EditorRow>& rows);
// The member of `group` to select once `removed` (ascending) are gone: the one that
// followed the last removed, else the new last; none when the group is empty.
std::optional<int> memberAfterRemoving(const std::vector<int>& removed, int countBefore);

}  // namespace corvalis
