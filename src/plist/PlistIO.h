#pragma once
// Reading and writing XML and binary property lists (our own readers and writers).
// Bad input never crashes: every failure comes back as an error text.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "plist/Value.h"

namespace corvalis::plist {

enum class Format { Xml, Binary };

// Inputs beyond these bounds are refused.
inline constexpr std::size_t kMaxInputBytes = 256u * 1024 * 1024;
inline constexpr int kMaxNestingDepth = 128;

struct ParseResult {
    Value value;        // absent on failure
    std::string error;  // empty on success
    Format format = Format::Xml;

    bool ok() const { return error.empty(); }
};

struct WriteResult {
    std::vector<std::uint8_t> bytes;
    std::string error;  // empty on success

    bool ok() const { return error.empty(); }
};

// Parses XML or binary (told apart by the "bplist00" header).
ParseResult parse(std::span<const std::uint8_t> bytes);
ParseResult parse(std::string_view text);

// Fails only for values no property list can hold (nesting beyond the bound, a
// date that is not a number; in XML also a date outside the years 1 to 9999).
WriteResult serialize(const Value& value, Format format);

// The XML form as text; "" when the value cannot be written.
std::string toXml(const Value& value);

}  // namespace corvalis::plist
