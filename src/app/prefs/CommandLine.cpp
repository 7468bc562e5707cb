#include "app/prefs/CommandLine.h"

#include <ostream>

namespace corvalis::cli {

const std::vector<Command>& commands() {
    // One list per area of the settings, each in its own file.
    static const std::vector<Command> all = [] {
        std::vector<Command> list;
        for (auto area : {storeCommands, recordsCommands, controllerCommands, keysCommands, filesCommands})
            for (Command& command : area()) list.push_back(std::move(command));
        return list;
    }();
    return all;
}

void printCommandHelp(const Command& command, std::ostream& out) {
    out << "Usage: corvalis-prefs [--domain-dir DIR] " << command.name << (*command.synopsis ? " " : "")
        << command.synopsis << "\n\n"
        << command.description << "\n";
}

bool wrongArgumentCount(Context& context, std::size_t expected, const char* command) {
    if (context.args.size() == expected) return false;
    context.err << "corvalis-prefs " << command << ": expected " << expected << " argument"
                << (expected == 1 ? "" : "s") << "; see corvalis-prefs " << command << " --help\n";
    return true;
}

}  // namespace corvalis::cli
