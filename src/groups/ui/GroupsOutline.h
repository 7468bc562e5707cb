#pragma once
// The outline of groups and their applications as the Groups tab shows it:
// group rows with their icons in bold, members with their files' icons, red or
// grey when a file is gone or in the Trash. Icons are asked for while a row is
// drawn, so only for the rows on screen.

class QWidget;

namespace corvalis {

class GroupIcons;
class GroupsController;
class KVOutlineView;

KVOutlineView* makeGroupsOutline(GroupsController& groups, GroupIcons& icons, QWidget* parent);

}  // namespace corvalis
