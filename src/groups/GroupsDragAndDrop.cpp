// Drag and drop in the groups outline: groups among groups, members between
// groups (moved, or copied into another group with the copy modifier), and
// files dropped from a file manager or the applications browser.

#include <QMimeData>
#include <QUrl>
#include <algorithm>

#include "fileutils/AliasResolution.h"
#include "groups/GroupRows.h"
#include "groups/GroupsController.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

using plist::Array;
using plist::Dictionary;

namespace {

std::vector<std::string> localFiles(const QMimeData* data) {
    std::vector<std::string> paths;
    for (const QUrl& url : data->urls())
        if (url.isLocalFile()) paths.push_back(url.toLocalFile().toStdString());
    return paths;
}

}  // namespace

QStringList GroupsController::mimeTypes() const { return {kGroupsMimeType, kApplicationsMimeType, kUriListMimeType}; }

QMimeData* GroupsController::mimeData(const QModelIndexList& indexes) const {
    std::vector<EditorRow> rows;
    for (const QModelIndex& index : indexes)
        if (index.isValid() && std::find(rows.begin(), rows.end(), rowOf(index)) == rows.end()) rows.push_back(rowOf(index));
    _draggedItems.clear();
    if (rows.empty() || !isSingleKind(rows)) return nullptr;
    bool groups = isGroupRow(rows.front());
    if (groups && _keepGroupsArranged) return nullptr;
    std::sort(rows.begin(), rows.end(), [](const EditorRow& a, const EditorRow& b) {
        return std::pair(a.group, a.row) < std::pair(b.group, b.row);
    });
    _draggedItems = rows;
    auto* data = new QMimeData;
    data->setData(groups ? kGroupsMimeType : kApplicationsMimeType, QByteArray());
    return data;
}

bool GroupsController::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex& parent) const {
    // A sheet over the window holds every drop until it closes.
    if (!data || _sheetShown) return false;
    if (data->hasFormat(kGroupsMimeType))
        return !parent.isValid() && !_draggedItems.empty() && isGroupRow(_draggedItems.front());
    // Members and files go on a group or between its members, never on a member row.
    if (!parent.isValid() || !isGroupRow(rowOf(parent))) return false;
    if (data->hasFormat(kApplicationsMimeType)) return !_draggedItems.empty() && !isGroupRow(_draggedItems.front());
    if (data->hasUrls()) {
        std::vector<std::string> files = localFiles(data);
        return std::any_of(files.begin(), files.end(),
                           [](const std::string& path) { return ResolvedApplicationOrScriptPath(path).has_value(); });
    }
    return false;
}

DropPlace GroupsController::dropTarget(const QMimeData* data, int row, const QModelIndex& parent) const {
    if (data && data->hasFormat(kGroupsMimeType)) return {parent, !parent.isValid() && row < 0 ? groupCount() : row};
    if (!parent.isValid() || !isGroupRow(rowOf(parent))) return {parent, row};
    // Arranged members take their name place wherever they were dropped, so a drop between
    // them is one on the group; otherwise a drop on the group itself lands at the top.
    if (_keepAppsArranged) return {parent, -1};
    return {parent, row < 0 ? 0 : row};
}

bool GroupsController::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                    const QModelIndex& parent) {
    bool accepted = false;
    if (canDropMimeData(data, action, row, column, parent)) {
        DropPlace target = dropTarget(data, row, parent);
        if (data->hasFormat(kGroupsMimeType)) {
            accepted = dropGroups(target.row);
        } else {
            int group = rowOf(target.parent).row;
            // Onto the group (arranged members) the position is only a start: they take their name place.
            int position = std::max(target.row, 0);
            _updatePaths();
            accepted = data->hasFormat(kApplicationsMimeType) ? dropApplications(action == Qt::CopyAction, position, group)
                                                              : dropFiles(data, position, group);
        }
    }
    _draggedItems.clear();
    if (accepted) synchronizeGroups(false);
    return accepted;
}

bool GroupsController::dropFiles(const QMimeData* data, int position, int group) {
    std::optional<Dictionary> target = groupAt(group);
    if (!target) return false;
    position = std::clamp(position, 0, static_cast<int>(applicationsOf(group)->size()));
    std::vector<std::string> files = localFiles(data), added;
    for (auto it = files.rbegin(); it != files.rend(); ++it) {
        std::optional<std::string> resolved = ResolvedApplicationOrScriptPath(*it);
        if (!resolved) continue;
        int at = addApplication(*resolved, *target, position, true, nullptr);
        if (at < 0) continue;
        position = at;
        if (std::find(added.begin(), added.end(), *resolved) == added.end()) added.push_back(*resolved);
    }
    if (added.empty()) return false;
    expandAndSelectMembers(group, added);
    return true;
}

bool GroupsController::dropApplications(bool copy, int position, int group) {
    std::optional<Dictionary> target = groupAt(group);
    if (!target) return false;
    std::vector<EditorRow> dragged = _draggedItems;
    position = std::clamp(position, 0, static_cast<int>(applicationsOf(group)->size()));
    std::vector<std::string> paths;
    for (auto it = dragged.rbegin(); it != dragged.rend(); ++it) {
        std::optional<Array> members = applicationsOf(it->group);
        if (!members || it->row >= static_cast<int>(members->size())) continue;
        paths.push_back((*members)[static_cast<std::size_t>(it->row)][keys::Path].stringOr(""));
        // With the copy modifier, members of other groups stay where they are.
        if (copy && it->group != group) continue;
        if (it->group == group && it->row < position) --position;
        removeMember(it->group, *members, it->row);
    }
    if (paths.empty()) return false;
    std::vector<std::string> added;
    for (const std::string& path : paths) {
        int at = addApplication(path, *target, position, true, nullptr);
        if (at < 0) continue;
        position = at;
        added.push_back(path);
    }
    expandAndSelectMembers(group, added);
    return true;
}

bool GroupsController::dropGroups(int position) {
    std::vector<int> dragged;
    for (const EditorRow& row : _draggedItems)
        if (isGroupRow(row) && row.row < groupCount()) dragged.push_back(row.row);
    if (dragged.empty()) return false;
    position = positionAfterRemoving(std::clamp(position, 0, groupCount()), dragged);
    std::vector<int> order;
    for (int group = 0; group < groupCount(); ++group)
        if (std::find(dragged.begin(), dragged.end(), group) == dragged.end()) order.push_back(group);
    order.insert(order.begin() + position, dragged.begin(), dragged.end());
    permuteGroups(order);
    return true;
}

}  // namespace corvalis
