#pragma once
// The controller's fixed commands that can have a key combination: their ids
// and the string keys of their names.

#include <map>
#include <string>
#include <vector>

namespace corvalis {

struct FixedCommand {
    unsigned id;
    const char* nameKey;
};

// The eighteen commands, in the order of the Shortcuts table's rows.
const std::vector<FixedCommand>& fixedCommands();

// Command id → its name in the user's language.
std::map<std::string, std::string> localizedFixedCommands();

}  // namespace corvalis
