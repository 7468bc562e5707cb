// corvalis-prefs: the settings of the Corvalis controller from the command line,
// through the same store, schema and notifications as the settings window.

#include <QCoreApplication>

#include <cstring>
#include <iostream>

#include "app/prefs/CommandLine.h"
#include "platform/FileDomainStore.h"

using namespace corvalis;

namespace {

void printUsage(std::ostream& out) {
    out << "Usage: corvalis-prefs [--domain-dir DIR] COMMAND [ARGS]\n\n"
           "Reads and changes the settings of the Corvalis controller.\n\n"
           "Commands:\n";
    for (const cli::Command& command : cli::commands())
        out << "  " << command.name << (*command.synopsis ? " " : "") << command.synopsis << "\n";
    out << "\nOptions:\n"
           "  --domain-dir DIR  the folder of the preference files (default: $CORVALIS_PREFERENCES_DIR,\n"
           "                    else ${XDG_CONFIG_HOME:-~/.config}/corvalis/Preferences)\n"
           "  -h, --help        this text; COMMAND --help tells about one command\n\n"
           "Exit status: 0 success, 1 failure, 2 bad usage or value, 3 unreadable input.\n";
}

bool isHelp(const char* arg) { return std::strcmp(arg, "--help") == 0 || std::strcmp(arg, "-h") == 0; }

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);  // the bus needs one; it parses no arguments of ours
    std::filesystem::path domainDir = FileDomainStore::defaultFolder();
    int i = 1;
    for (; i < argc && argv[i][0] == '-'; ++i) {
        if (isHelp(argv[i])) {
            printUsage(std::cout);
            return cli::Success;
        }
        if (std::strcmp(argv[i], "--domain-dir") == 0 && i + 1 < argc) {
            domainDir = argv[++i];
        } else if (std::strncmp(argv[i], "--domain-dir=", 13) == 0) {
            domainDir = argv[i] + 13;
        } else {
            std::cerr << "corvalis-prefs: unknown option " << argv[i] << "\n\n";
            printUsage(std::cerr);
            return cli::Usage;
        }
    }
    if (i >= argc) {
        printUsage(std::cerr);
        return cli::Usage;
    }
    std::string name = argv[i++];
    for (const cli::Command& command : cli::commands()) {
        if (name != command.name) continue;
        cli::Context context{domainDir, {}, std::cout, std::cerr};
        for (; i < argc; ++i) {
            if (isHelp(argv[i])) {
                cli::printCommandHelp(command, std::cout);
                return cli::Success;
            }
            context.args.emplace_back(argv[i]);
        }
        return command.run(context);
    }
    std::cerr << "corvalis-prefs: unknown command \"" << name << "\"\n\n";
    printUsage(std::cerr);
    return cli::Usage;
}
