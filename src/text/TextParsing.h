#pragma once
// Reading numbers out of stored text the way the controller reads them.

#include <cstdint>
#include <string_view>

namespace corvalis {

// The integer at the start of a text, as the controller reads stored command
// ids: leading blanks, an optional sign, digits; saturated to 32 bits; 0 when none.
std::int32_t leadingIntValue(std::string_view text);

}  // namespace corvalis
