#pragma once
// Paths reach file-system calls as UTF-8 of fewer than 1000 bytes; a longer
// path makes the call fail, as it would with the fixed buffers of the original
// file APIs the controller shares these rules with.

#include <cstddef>
#include <string_view>

namespace corvalis {

inline constexpr std::size_t kMaxPathBytes = 1000;

bool isPathWithinLimit(std::string_view path);
// Whether anything (file, folder, link target) exists at the path.
bool fileExistsAtPath(std::string_view path);
// The path without its last component ("/a/b.app" gives "/a"; "/" stays "/").
std::string_view parentPath(std::string_view path);

}  // namespace corvalis
