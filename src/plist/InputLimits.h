#pragma once
// A cheap structural check run before XML reaches libplist, whose parser and
// tree functions recurse once per nesting level and would exhaust the stack on
// a hostile file.

#include <cstdint>
#include <span>
#include <string>

namespace corvalis::plist::detail {

// "" when the XML text nests containers at most `maxDepth` deep.
std::string checkXmlNesting(std::span<const std::uint8_t> bytes, int maxDepth);

}  // namespace corvalis::plist::detail
