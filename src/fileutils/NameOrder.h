#pragma once
// The order of names in every sorted list of the pane, the comparators of
// application entries built on it, and the maker of group command ids.

#include <memory>
#include <string>
#include <string_view>

#include "plist/Value.h"

struct UCollator;

namespace corvalis {

// A Unicode collator set up as a file browser orders names: case-, width- and
// composition-insensitive; diacritics and punctuation significant; runs of
// digits compared as numbers ("File 9" before "File 10").
class FinderCollator {
public:
    // For a locale ID such as "de_CH" or "sv"; "" is the root order. If ICU
    // cannot open the locale's rules, the root order is used.
    explicit FinderCollator(const std::string& locale);
    ~FinderCollator();
    FinderCollator(const FinderCollator&) = delete;
    FinderCollator& operator=(const FinderCollator&) = delete;

    // -1, 0 or 1. Text that is not valid UTF-8 compares as its repaired form.
    int compare(std::string_view a, std::string_view b) const;
    // Bytes whose plain order is this collator's order: sorting many names
    // compares keys made once instead of collating texts again and again.
    std::string sortKey(std::string_view text) const;
    // The underlying collator, for measuring against ICU itself.
    const UCollator* collator() const { return collator_; }

    // The collator of the user's locale (LC_ALL, else LC_COLLATE, else LANG), made once.
    static const FinderCollator& user();

private:
    UCollator* collator_ = nullptr;
};

// The ICU locale ID of a POSIX locale name: "de_CH.UTF-8@euro" gives "de_CH",
// "C" and "POSIX" give "" (root).
std::string collationLocaleFromPosix(std::string_view posixLocale);

// The user's order of two names: -1, 0 or 1.
int finderCompare(std::string_view a, std::string_view b);

// Comparators of application entries ({"Name", "Path", optional "Updated"});
// a missing or non-text "Name" or "Path" counts as empty text.
int SortByName(const plist::Value& a, const plist::Value& b);
// By name, then by path (code point order).
int SortByNameAndPath(const plist::Value& a, const plist::Value& b);
// By path (code point order), then an entry with "Updated" after one without.
int SortByPathAndUpdated(const plist::Value& a, const plist::Value& b);

using EntryComparator = int (*)(const plist::Value&, const plist::Value&);
// Sorts the array in place (stable; equal entries keep their order).
void sortUsingFunction(plist::Array& array, EntryComparator comparator);

// The command id for a new group hot key, from the "CommandID"s of the groups'
// "KeyboardShortcut"s: "2000" when there are none or the smallest is 2001 or more;
// otherwise one past the run of consecutive ids that starts at the smallest
// (2000, 2001, 2005 give "2002"; 5, 6, 100 give "7").
std::string NewUniqueCommandId(const plist::Array& groups);

}  // namespace corvalis
