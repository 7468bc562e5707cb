#pragma once
// UTF-8 as both property-list formats need it: text read from a file must be
// valid as it stands, and escaped code points are appended as UTF-8.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvalis::plist::detail {

// Length of the valid UTF-8 sequence at `p` (at most `left` bytes), or 0.
std::size_t utf8SequenceLength(const unsigned char* p, std::size_t left);

// Whether `text` is valid UTF-8 (no surrogates, nothing above U+10FFFF, shortest forms).
bool isValidUtf8(std::string_view text);

void appendUtf8(std::string& out, std::uint32_t code);

}  // namespace corvalis::plist::detail
