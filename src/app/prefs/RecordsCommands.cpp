// Commands over whole records of the settings: normalising them as the pane
// loads them, backing them up and restoring them, and checking stored paths.

#include <stdlib.h>

#include <filesystem>
#include <ostream>
#include <sstream>

#include "app/prefs/CommandLine.h"
#include "app/prefs/ControllerCommands.h"
#include "app/prefs/Session.h"
#include "prefs/Backup.h"
#include "prefs/InvalidPaths.h"
#include "text/Localization.h"
#include "prefs/NotificationNames.h"
#include "prefs/UnreadableDomains.h"

namespace corvalis::cli {

namespace fs = std::filesystem;
using plist::Dictionary;
using plist::Value;

namespace {

// How a value reads in one line: scalars as they are, containers by their size.
std::string describe(const Value& value) {
    std::ostringstream text;
    switch (value.type()) {
    case plist::Type::Boolean: return *value.boolean() ? "true" : "false";
    case plist::Type::Integer:
    case plist::Type::Real: text << *value.toDouble(); return text.str();
    case plist::Type::String: return "\"" + *value.string() + "\"";
    case plist::Type::Data: return std::to_string(value.data()->size()) + " bytes of data";
    case plist::Type::Date: text << "date " << value.date()->seconds; return text.str();
    case plist::Type::Array: return "array of " + std::to_string(value.array()->size());
    case plist::Type::Dictionary: return "dictionary of " + std::to_string(value.dictionary()->size());
    default: return "nothing";
    }
}

void printChanges(const Dictionary& before, const Dictionary& after, std::ostream& out) {
    int changes = 0;
    for (const auto& [key, value] : after) {
        const Value& old = before[key];
        if (old.isAbsent())
            out << "added    " << key << " = " << describe(value) << "\n";
        else if (!(old == value))
            out << "replaced " << key << ": " << describe(old) << " -> " << describe(value) << "\n";
        else
            continue;
        ++changes;
    }
    for (const auto& [key, value] : before) {
        if (after.contains(key)) continue;
        out << "removed  " << key << " (was " << describe(value) << ")\n";
        ++changes;
    }
    if (changes == 0) out << "Nothing to change: the settings are already in normal form.\n";
}

int normalize(Context& context) {
    bool dryRun = !context.args.empty() && context.args[0] == "--dry-run";
    if (wrongArgumentCount(context, dryRun ? 1 : 0, "normalize")) return Usage;
    // A dry run loads a copy in a scratch folder: nothing of the user's changes, not
    // even an unreadable file that loading would set aside.
    fs::path scratch;
    Context target = context;
    if (dryRun) {
        std::string pattern = (fs::temp_directory_path() / "corvalis-normalize-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) {
            context.err << "corvalis-prefs normalize: cannot make a scratch folder\n";
            return Failure;
        }
        scratch = pattern;
        fs::path domainFile = FileDomainStore(context.domainDir).pathForDomain(notifications::Domain);
        std::error_code ec;
        // Only a regular file is copied: opening a FIFO to copy it would wait forever.
        if (fs::exists(fs::symlink_status(domainFile)) &&
            (!fs::is_regular_file(domainFile) || !fs::copy_file(domainFile, scratch / domainFile.filename(), ec))) {
            context.err << "corvalis-prefs normalize: "
                        << LocalizedFormat("UnreadableSettingsNotOpened",
                                           {domainFile.string(), ec ? ec.message() : "not a regular file"})
                        << "\n";
            fs::remove_all(scratch, ec);
            return Failure;
        }
        target.domainDir = scratch;
    }
    int status = Success;
    {
        Session session(target);
        Dictionary before = session.domains.persistentDomainForName(notifications::Domain).value_or(Dictionary());
        if (!session.load(context, dryRun)) status = Failure;
        printChanges(before, session.prefs.prefsData(), context.out);
        if (dryRun) context.out << "(dry run: nothing was saved)\n";
    }
    if (!scratch.empty()) {
        std::error_code ignored;
        fs::remove_all(scratch, ignored);
    }
    return status;
}

int backup(Context& context) {
    if (wrongArgumentCount(context, 1, "backup")) return Usage;
    fs::path file = withBackupExtension(context.args[0]);
    Session session(context);
    if (!session.load(context)) return Failure;  // loading saves: the domain is current
    std::string error;
    if (!writeBackupFile(file, session.prefs.loadFromDefaults(), error)) {
        context.err << "corvalis-prefs backup: " << LocalizedFormat("BackUpSettingsError", {file.string()}) << " ("
                    << error << ")\n";
        return Failure;
    }
    context.out << "Backed up the settings to " << file.string() << "\n";
    return Success;
}

int restore(Context& context) {
    if (wrongArgumentCount(context, 1, "restore")) return Usage;
    fs::path file = context.args[0];
    BackupContents contents = readBackupFile(file);
    if (contents.check != BackupCheck::Valid) {
        context.err << "corvalis-prefs restore: " << LocalizedString("ImportFromBackup") << ": "
                    << backupErrorText(contents, file.filename().string())
                    << (contents.readError.empty() ? "" : " (" + contents.readError + ")") << "\n";
        return UnreadableInput;
    }
    Session session(context);
    bool controllerFollowed = importSettingsWithController(context, session, contents.settings);
    for (const SetAsideDomain& aside : session.prefs.takeSetAsideDomains())
        context.err << "corvalis-prefs restore: " << unreadableDomainText(aside) << "\n";
    if (!session.reportWriteError(context)) return Failure;
    context.out << LocalizedString("SettingsReplaced1") << "\n";
    return controllerFollowed ? Success : Failure;
}

int check(Context& context) {
    if (wrongArgumentCount(context, 0, "check")) return Usage;
    Session session(context);
    if (!session.load(context)) return Failure;
    std::vector<InvalidPathSection> sections = invalidStoredPaths(session.prefs.prefsData());
    if (sections.empty()) {
        context.out << "Every stored path leads to an existing item.\n";
        return Success;
    }
    for (const InvalidPathSection& section : sections) {
        std::size_t count = section.paths.size();
        context.out << section.title << ": " << count << " invalid path" << (count == 1 ? "" : "s") << "\n";
        for (const InvalidPath& path : section.paths)
            context.out << "  " << path.path << (path.owner.empty() ? "" : "  (" + path.owner + ")") << "\n";
    }
    return Failure;
}

}  // namespace

std::vector<Command> recordsCommands() {
    return {
        {"normalize", "[--dry-run]",
         "Loads the settings as the settings window does and prints, key by key, what\n"
         "loading changed (added, replaced, removed). The result is saved unless\n"
         "--dry-run is given.", normalize},
        {"backup", "FILE",
         "Saves the settings, then writes them to the backup file FILE (an XML property\n"
         "list; the extension .cvbu is added when FILE lacks it).", backup},
        {"restore", "FILE",
         "Replaces the settings with those of the backup file FILE and loads them, as the\n"
         "settings window's import does: a running controller is quit first, and started\n"
         "again (with its login item) when the imported settings turn it on. A file that\n"
         "is not a backup of this version changes nothing (exit status 3); exit status 1\n"
         "when the controller would not quit or could not be started.", restore},
        {"check", "",
         "Lists the stored paths that no longer lead to an item (missing, or in the\n"
         "Trash), grouped as the settings window's summary counts them. Exit status 1\n"
         "when there is any.", check},
    };
}

}  // namespace corvalis::cli
