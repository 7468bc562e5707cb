#pragma once
// The pane's user-visible texts, looked up by string key in the string table of
// the user's language (English is complete and the fallback). The tables live in
// resources/strings/<language>/*.strings and are built into the program.

#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

namespace corvalis {

// The text of `key`; the key itself when no table has it.
std::string LocalizedString(std::string_view key);

using FormatArgument = std::variant<std::string, long long, double>;

// The text of `key` used as a format: %@ and %s take text, %d %ld %u %lu %i take
// whole numbers, %f and %g decimals, %1$@ ... pick arguments by position, %% is %.
std::string LocalizedFormat(std::string_view key, std::initializer_list<FormatArgument> arguments);
std::string FormatText(std::string_view format, std::initializer_list<FormatArgument> arguments);

// Whether the English table has the key (tests check every key the code uses).
bool EnglishTableHasKey(std::string_view key);

}  // namespace corvalis
