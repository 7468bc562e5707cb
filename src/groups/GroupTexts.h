#pragma once
// The string keys of the Groups tab, each spelled once, and the texts made
// from a group record: the one-line description of the options box and the
// outline's tool tip.

#include <string>

#include "plist/Value.h"

namespace corvalis {

class KVKeyCombinationValidator;

namespace groupstrings {
inline constexpr const char* NewGroup = "NewGroup";
inline constexpr const char* NewDuplicatedGroup = "NewDuplicatedGroup";
inline constexpr const char* WantToDeleteGroup = "WantToDeleteGroup";
inline constexpr const char* WantToDeleteGroups = "WantToDeleteGroups";
inline constexpr const char* CantUndo = "CantUndo";
inline constexpr const char* Delete = "Delete";
inline constexpr const char* Cancel = "Cancel";
inline constexpr const char* Add = "Add";
inline constexpr const char* Change = "Change";
inline constexpr const char* Fix = "Fix";
inline constexpr const char* Choose = "Choose";
inline constexpr const char* ChangeApplicationOrScript1 = "ChangeApplicationOrScript1";
inline constexpr const char* FixPath1 = "FixPath1";
inline constexpr const char* GroupsSummary = "GroupsSummary";
inline constexpr const char* OneInvalidPath = "OneInvalidPath";
inline constexpr const char* MoreInvalidPaths = "MoreInvalidPaths";
inline constexpr const char* OpenAutomaticallyAndHide = "OpenAutomaticallyAndHide";
inline constexpr const char* ActiveShortcut = "ActiveShortcut";
inline constexpr const char* InactiveShortcut = "InactiveShortcut";
// The check boxes of the options box, by record key.
inline constexpr const char* ShowInOpenMenuBox = "GroupShowInOpenMenu";
inline constexpr const char* ShowInQuitMenuBox = "GroupShowInQuitMenu";
inline constexpr const char* ShowInSwitchMenuBox = "GroupShowInSwitchMenu";
inline constexpr const char* AutoOpenBox = "GroupAutoOpen";
inline constexpr const char* HideBox = "GroupHide";
// The hot key's actions, by "Action".
inline constexpr const char* Actions[] = {"GroupActionOpen", "GroupActionSwitch", "GroupActionOpenAndHideOthers"};
}  // namespace groupstrings

// The number of members and, among them, of scripts.
struct MemberCounts {
    long applications = 0;
    long scripts = 0;
};
MemberCounts memberCounts(const plist::Dictionary& group);

// "No applications", "2 applications and 1 script", ...
std::string groupInfo(const plist::Dictionary& group);
// The name, what it holds, the menus it shows in, how it opens and its hot key, one per line.
std::string groupToolTip(const plist::Dictionary& group, const KVKeyCombinationValidator& validator);

}  // namespace corvalis
