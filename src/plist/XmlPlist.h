#pragma once
// Our own reader and writer of XML property lists, straight to and from Value:
// exact for integers up to unsigned 64 bits and for dates of any year from 1 to
// 9999, strict about malformed numbers and text that is not UTF-8.

#include <cstdint>
#include <span>
#include <string>

#include "plist/Value.h"

namespace corvalis::plist::detail {

// Reads the document into `out`; "" on success, else why it cannot be held.
std::string readXml(std::span<const std::uint8_t> bytes, int maxDepth, Value& out);

// The XML document of `value`; "" with `error` set on failure.
std::string writeXml(const Value& value, int maxDepth, std::string& error);

}  // namespace corvalis::plist::detail
