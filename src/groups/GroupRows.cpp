#include "groups/GroupRows.h"

#include <algorithm>
#include <charconv>

#include "fileutils/NameOrder.h"

namespace corvalis {

std::string uniqueName(const std::string& candidate, const std::function<bool(const std::string&)>& taken) {
    if (!taken(candidate)) return candidate;
    for (long number = 1;; ++number) {
        std::string name = candidate + " " + std::to_string(number);
        if (!taken(name)) return name;
    }
}

long newUniqueIconNumber(std::vector<long> used) {
    std::sort(used.begin(), used.end());
    used.erase(std::unique(used.begin(), used.end()), used.end());
    if (used.empty() || used.front() >= 2) return 1;
    long last = used.front();
    for (std::size_t i = 1; i < used.size() && used[i] == last + 1; ++i) last = used[i];
    return last + 1;
}

std::optional<long> customIconNumber(const std::string& iconName) {
    static constexpr std::string_view prefix = "Custom ";
    std::size_t at = iconName.find(prefix);
    if (at == std::string::npos) return std::nullopt;
    const char* begin = iconName.data() + at + prefix.size();
    const char* end = iconName.data() + iconName.size();
    long number = 0;
    auto [stop, error] = std::from_chars(begin, end, number);
    if (error != std::errc() || stop == begin) return std::nullopt;
    return number;
}

int nameOrderPosition(const std::vector<std::string>& names, const std::string& name) {
    for (std::size_t i = 0; i < names.size(); ++i)
        if (finderCompare(names[i], name) > 0) return static_cast<int>(i);
    return static_cast<int>(names.size());
}

int positionAfterRemoving(int position, const std::vector<int>& removedRows) {
    int before = static_cast<int>(std::count_if(removedRows.begin(), removedRows.end(),
                                                [position](int row) { return row < position; }));
    return position - before;
}

bool isSingleKind(const std::vector<EditorRow>& rows) {
    return std::all_of(rows.begin(), rows.end(),
                       [&](const EditorRow& row) { return isGroupRow(row) == isGroupRow(rows.front()); });
}

std::optional<int> selectedGroupOf(const std::vector<EditorRow>& rows) {
    if (rows.empty()) return std::nullopt;
    if (rows.size() == 1) return isGroupRow(rows[0]) ? rows[0].row : rows[0].group;
    if (!isSingleKind(rows) || isGroupRow(rows[0])) return std::nullopt;
    for (const EditorRow& row : rows)
        if (row.group != rows[0].group) return std::nullopt;
    return rows[0].group;
}

std::optional<int> memberAfterRemoving(const std::vector<int>& removed, int countBefore) {
    int remaining = countBefore - static_cast<int>(removed.size());
    if (remaining <= 0) return std::nullopt;
    if (removed.empty()) return 0;
    // The member that followed the last removed one moves up by the number removed.
    int follower = removed.back() + 1;
    if (follower < countBefore) return follower - static_cast<int>(removed.size());
    return remaining - 1;
}

}  // namespace corvalis
