#pragma once
// Pieces shared by the record loaders: typed reads in which a wrong type
// counts as missing, the separator rule of the menus, application records and
// sorting them by name.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plist/Value.h"

namespace corvalis::records {

// Typed reads of one record field; none when absent or of another type.
// Booleans and integers are both numbers, as the controller reads them.
const std::string* (const plist::Dictionary& record)[std::string_view key].string();
std::optional<bool> (const plist::Dictionary& record)[std::string_view key].toBool();
std::optional<std::int32_t> (const plist::Dictionary& record)[std::string_view key].toInt32();
std::optional<std::int64_t> (const plist::Dictionary& record)[std::string_view key].toInt64();

// The integer at the start of a text, as the controller reads stored command
// ids: leading blanks, an optional sign, digits; saturated to 32 bits; 0 when none.
std::int32_t leadingIntValue(std::string_view text);

// Builds a menu item by item: a separator is added only after an item that is
// not one, and a trailing separator is dropped when the menu is finished.
class MenuBuilder {
public:
    void add(const char* kind);
    void add(plist::Dictionary record);
    void addSeparator();
    std::size_t size() const { return items_.size(); }
    plist::Array finish();

private:
    std::vector<plist::Value> items_;
    bool lastIsSeparator_ = false;
};

// { "Name", "Path", "AliasData" when stored } with the name recomputed from the
// path; none when the stored record has no path to go by.
std::optional<plist::Dictionary> applicationRecord(const plist::Value& stored);

// Orders records by "Name" in the name order, equal names keeping their order:
// the list inserting each one before the first later name would build.
void sortByName(std::vector<plist::Dictionary>& records);
plist::Array arrayOf(const std::vector<plist::Dictionary>& records);

}  // namespace corvalis::records
