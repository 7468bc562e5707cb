#include "plist/Utf8.h"

namespace corvalis::plist::detail {

// Length of the valid UTF-8 sequence at `p`, or 0.
std::size_t utf8SequenceLength(const unsigned char* p, std::size_t left) {
    unsigned char c = p[0];
    std::size_t n = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
    if (n == 0 || n > left) return 0;
    for (std::size_t i = 1; i < n; ++i)
        if ((p[i] & 0xC0) != 0x80) return 0;
    std::uint32_t code = n == 1 ? c : c & (0x7F >> n);
    for (std::size_t i = 1; i < n; ++i) code = (code << 6) | (p[i] & 0x3F);
    static constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kSmallest[n] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
    return n;
}

void appendUtf8(std::string& out, std::uint32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

bool isValidUtf8(std::string_view text) {
    auto* p = reinterpret_cast<const unsigned char*>(text.data());
    for (std::size_t i = 0; i < text.size();) {
        if (p[i] < 0x80) {
            ++i;
            continue;
        }
        std::size_t n = utf8SequenceLength(p + i, text.size() - i);
        if (n == 0) return false;
        i += n;
    }
    return true;
}

}  // namespace corvalis::plist::detail
