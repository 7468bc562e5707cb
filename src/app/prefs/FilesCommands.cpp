// Commands over files and applications: the applications a folder walk finds,
// and the processor architectures of an executable or bundle.

#include <sys/stat.h>

#include <charconv>
#include <ostream>

#include "app/prefs/CommandLine.h"
#include "fileutils/ApplicationEnumeration.h"
#include "fileutils/ExecutableArchitectures.h"
#include "fileutils/NameOrder.h"
#include "schema/PreferenceKeys.h"

namespace corvalis::cli {

namespace {

bool isFolder(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::optional<std::int32_t> parseDepth(const std::string& text) {
    std::int32_t depth = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), depth);
    if (error != std::errc() || end != text.data() + text.size() || depth < 0) return std::nullopt;
    return depth;
}

int apps(Context& context) {
    std::optional<std::string> folder;
    std::int32_t depth = 0;
    for (std::size_t i = 0; i < context.args.size(); ++i) {
        const std::string& arg = context.args[i];
        if (arg == "--depth" || arg.starts_with("--depth=")) {
            std::string value = arg == "--depth" ? (i + 1 < context.args.size() ? context.args[++i] : "")
                                                 : arg.substr(8);
            auto parsed = parseDepth(value);
            if (!parsed) {
                context.err << "corvalis-prefs apps: --depth takes a whole number of levels, 0 or more (0: no limit)\n";
                return Usage;
            }
            depth = *parsed;
        } else if (!folder && !arg.starts_with("--")) {
            folder = arg;
        } else {
            context.err << "corvalis-prefs apps: unexpected argument \"" << arg << "\"; see corvalis-prefs apps --help\n";
            return Usage;
        }
    }
    if (!folder) {
        context.err << "corvalis-prefs apps: expected a folder; see corvalis-prefs apps --help\n";
        return Usage;
    }
    if (!isFolder(*folder)) {
        context.err << "corvalis-prefs apps: " << *folder << " is not a folder\n";
        return UnreadableInput;
    }

    plist::Array applications;
    std::int16_t status = InsertApplicationsFromFolder(*folder, depth, applications);
    sortUsingFunction(applications, SortByNameAndPath);
    const std::string* previousPath = nullptr;
    for (const plist::Value& entry : applications) {
        const plist::Dictionary& record = *entry.dictionary();
        const std::string* path = record[keys::Path].string();
        // After sorting, the same application reached twice (through a link) is adjacent.
        if (previousPath && path && *previousPath == *path) continue;
        previousPath = path;
        context.out << *record[keys::Name].string() << '\t' << *path << '\n';
    }
    if (status != kWalkNoErr) {
        context.err << "corvalis-prefs apps: part of " << *folder << " could not be read (status " << status
                    << "); the list is incomplete\n";
        return UnreadableInput;
    }
    return Success;
}

int examine(Context& context) {
    if (wrongArgumentCount(context, 1, "examine")) return Usage;
    const std::string& path = context.args[0];
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        context.err << "corvalis-prefs examine: nothing at " << path << "\n";
        return UnreadableInput;
    }
    bool runsOnHost = false;
    bool hasPowerPC = false;
    bool hasI386 = false;
    int status = ExamineArch(path.c_str(), &runsOnHost, &hasPowerPC, &hasI386);
    context.out << "status=" << status << " host=" << runsOnHost << " ppc=" << hasPowerPC << " i386=" << hasI386
                << '\n';
    for (const macho::FatArch& record : executableArchitectures(path))
        context.out << "cputype=" << record.cputype << " cpusubtype=" << record.cpusubtype << '\n';
    return Success;
}

}  // namespace

std::vector<Command> filesCommands() {
    return {
        {"apps", "DIR [--depth N]",
         "Lists the applications found by walking DIR as the applications browser does:\n"
         "\".app\" bundles and desktop entries, symbolic links followed once, packages not\n"
         "entered. N limits the levels walked (1: only DIR's own items; default 0: no limit).\n"
         "Sorted by name, then path, each application once: name, a tab, path.\n"
         "Exit status 3 when DIR is not a folder or part of it could not be read.",
         apps},
        {"examine", "PATH",
         "Examines an executable file, or a bundle's executable, for its processor\n"
         "architectures. Prints \"status=<0|-1> host=<0|1> ppc=<0|1> i386=<0|1>\" (status -1:\n"
         "no Mach-O or fat header; host: this machine could run it), then one line\n"
         "\"cputype=<n> cpusubtype=<n>\" per architecture record read. Exit status 3 when\n"
         "nothing exists at PATH.",
         examine},
    };
}

}  // namespace corvalis::cli
