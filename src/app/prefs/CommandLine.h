#pragma once
// The pieces shared by the corvalis-prefs commands.

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace corvalis::cli {

// Exit statuses of every command.
enum Exit : int { Success = 0, Failure = 1, Usage = 2, UnreadableInput = 3 };

struct Context {
    std::filesystem::path domainDir;  // where the domain files are
    std::vector<std::string> args;    // the command's own arguments
    std::ostream& out;
    std::ostream& err;
};

struct Command {
    const char* name;
    const char* synopsis;     // arguments, as shown in the usage line
    const char* description;  // what it does, a few lines
    std::function<int(Context&)> run;
};

// Every command, in the order the usage lists them.
const std::vector<Command>& commands();

// The commands of each area (one file each).
std::vector<Command> storeCommands();
std::vector<Command> controllerCommands();
std::vector<Command> recordsCommands();
std::vector<Command> keysCommands();
std::vector<Command> filesCommands();

// True, with a message, when the command did not get `expected` arguments.
bool wrongArgumentCount(Context& context, std::size_t expected, const char* command);

// Prints the usage of one command ("corvalis-prefs NAME SYNOPSIS" and its description).
void printCommandHelp(const Command& command, std::ostream& out);

}  // namespace corvalis::cli
