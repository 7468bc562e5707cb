#pragma once
// The string tables built into the program from resources/strings (generated source).

#include <string_view>
#include <vector>

namespace corvalis {

struct StringTableSource {
    std::string_view language;
    std::string_view text;  // the contents of one .strings file
};

const std::vector<StringTableSource>& stringTableSources();

}  // namespace corvalis
