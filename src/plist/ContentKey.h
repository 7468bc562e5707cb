#pragma once
// A flat byte string standing for a value's contents: two values get the same
// key exactly when they hold the same typed values (a dictionary's key order
// aside), as a file would store them. Cheaper to make and to keep than a deep
// copy, and exact, unlike a hash.

#include <string>
#include <string_view>

#include "plist/Value.h"

namespace corvalis::plist {

std::string contentKey(const Value& value);
// contentKey(value) == key, without building the key; stops at the first difference.
bool hasContentKey(const Value& value, std::string_view key);

}  // namespace corvalis::plist
