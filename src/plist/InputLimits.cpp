#include "plist/InputLimits.h"

#include <cstring>

namespace corvalis::plist::detail {

namespace {

bool startsWith(std::span<const std::uint8_t> bytes, std::size_t at, const char* text) {
    std::size_t n = std::strlen(text);
    return at + n <= bytes.size() && std::memcmp(bytes.data() + at, text, n) == 0;
}

}  // namespace

std::string checkXmlNesting(std::span<const std::uint8_t> bytes, int maxDepth) {
    int depth = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '<') continue;
        if (startsWith(bytes, i, "<!--")) {
            // Container tags inside comments do not nest anything.
            std::size_t end = i + 4;
            while (end + 2 < bytes.size() && !(bytes[end] == '-' && bytes[end + 1] == '-' && bytes[end + 2] == '>')) ++end;
            i = end;
            continue;
        }
        bool opens = startsWith(bytes, i, "<array") || startsWith(bytes, i, "<dict");
        bool closes = startsWith(bytes, i, "</array") || startsWith(bytes, i, "</dict");
        if (opens) {
            std::size_t close = i;
            while (close < bytes.size() && bytes[close] != '>') ++close;
            bool selfClosing = close < bytes.size() && close > i && bytes[close - 1] == '/';
            if (!selfClosing && ++depth > maxDepth) return "nesting deeper than " + std::to_string(maxDepth) + " levels";
        } else if (closes && depth > 0) {
            --depth;
        }
    }
    return {};
}

}  // namespace corvalis::plist::detail
