#include "text/TextParsing.h"

#include <algorithm>
#include <climits>

namespace corvalis {

std::int32_t leadingIntValue(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r')) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > static_cast<long long>(INT_MAX) + 1) break;
    }
    if (negative) value = -value;
    return static_cast<std::int32_t>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

}  // namespace corvalis
