#pragma once
// Our own reader and writer of binary property lists ("bplist00"), straight to
// and from Value: linear in the file's size, exact for every integer up to
// unsigned 64 bits and for dates of any year, strict about text.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "plist/Value.h"

namespace corvalis::plist::detail {

// Reads the file into `out`; "" on success, else why it cannot be held.
std::string readBinary(std::span<const std::uint8_t> bytes, int maxDepth, Value& out);

// The bytes of `value` as a binary property list; empty with `error` set on failure.
std::vector<std::uint8_t> writeBinary(const Value& value, int maxDepth, std::string& error);

}  // namespace corvalis::plist::detail
