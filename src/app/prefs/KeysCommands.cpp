// A readable overview of the settings: what the menus hold, the groups, and
// every key combination as the Shortcuts tab shows it.

#include <iomanip>
#include <ostream>

#include "app/prefs/CommandLine.h"
#include "app/prefs/Session.h"
#include "keys/ComKestrovaShortcutsController.h"
#include "keys/KVKeyCombination.h"
#include "keys/KVKeyCombinationValidator.h"
#include "platform/linux/XkbKeyboardLayout.h"
#include "text/Localization.h"
#include "schema/PreferenceKeys.h"

namespace corvalis::cli {

using plist::Array;
using plist::Dictionary;
using plist::Value;

namespace {

struct Menu {
    const char* title;
    const char* items;
    const char* enableHotKey;
};

// In the order of "HotKeys".
constexpr Menu kMenus[] = {
    {"Open menu", keys::OpenMenuItems, keys::EnableOpenMenuHotKey},
    {"Quit menu", keys::QuitMenuItems, keys::EnableQuitMenuHotKey},
    {"Switch menu", keys::SwitchMenuItems, keys::EnableSwitchMenuHotKey},
    {"Special menu", keys::SpecialMenuItems, keys::EnableSpecialMenuHotKey},
};

std::string textOr(const Value& value, const std::string& fallback) {
    const std::string* text = value.string();
    return text && !text->empty() ? *text : fallback;
}

void printMenus(CorvalisPreferences& prefs, std::ostream& out) {
    Dictionary settings = prefs.prefsData();
    for (const Menu& menu : kMenus) {
        std::optional<Array> items = plist::asArray(settings[menu.items]);
        if (!items) {
            out << menu.title << ": not stored\n";
            continue;
        }
        out << menu.title << " (" << items->size() << (items->size() == 1 ? " item" : " items") << ")\n";
        for (const Value& item : *items) {
            const Dictionary* record = item.dictionary();
            if (!record) continue;
            std::string kind = textOr((*record)[keys::Item], "?");
            std::string name = textOr((*record)[keys::Name], "");
            out << "  " << (name.empty() ? kind : name + " (" + kind + ")") << "\n";
        }
    }
}

void printGroups(CorvalisPreferences& prefs, std::ostream& out) {
    std::optional<Array> groups = prefs.arrayForKey(keys::Groups);
    out << "Groups (" << (groups ? groups->size() : 0) << ")\n";
    if (!groups) return;
    for (const Value& value : *groups) {
        const Dictionary* group = value.dictionary();
        if (!group) continue;
        std::size_t members = (*group)[keys::Applications].array() ? (*group)[keys::Applications].array()->size() : 0;
        out << "  " << textOr((*group)[keys::Name], "(no name)") << ": " << members
            << (members == 1 ? " application" : " applications");
        if ((*group)[keys::CanBeDeleted].boolean() == false) out << " (excluded from the menus)";
        if (std::optional<KVKeyCombination> combination = KVKeyCombination::fromValue((*group)[keys::KeyboardShortcut]))
            out << ", shortcut " << combination->text();
        out << "\n";
    }
}

void printHotKeys(CorvalisPreferences& prefs, std::ostream& out) {
    out << "Hot keys\n";
    std::optional<Array> hotKeys = prefs.arrayForKey(keys::HotKeys);
    for (std::size_t i = 0; i < std::size(kMenus); ++i) {
        std::optional<KVKeyCombination> combination =
            hotKeys ? KVKeyCombination::fromValue((*hotKeys)[i]) : std::nullopt;
        out << "  " << std::left << std::setw(14) << kMenus[i].title
            << (combination ? combination->text() : std::string("none")) << "  "
            << (prefs.boolForKey(kMenus[i].enableHotKey) ? "enabled" : "disabled") << "\n";
    }
}

void printCommandShortcuts(CorvalisPreferences& prefs, std::ostream& out) {
    out << "Command shortcuts\n";
    std::optional<Dictionary> shortcuts = prefs.dictForKey(keys::KeyboardShortcuts);
    int shown = 0;
    for (const FixedCommand& command : fixedCommands()) {
        const Value& record = shortcuts ? (*shortcuts)[std::to_string(command.id)] : Value();
        std::optional<KVKeyCombination> combination = KVKeyCombination::fromValue(record);
        if (!combination) continue;
        bool enabled = record.dictionary() && (*record.dictionary())[keys::Enabled].toBool().value_or(false);
        out << "  " << combination->text() << "  " << LocalizedString(command.nameKey)
            << (enabled ? "" : " (disabled)") << "\n";
        ++shown;
    }
    if (shown == 0) out << "  none\n";
}

int summary(Context& context) {
    if (wrongArgumentCount(context, 0, "summary")) return Usage;
    Session session(context);
    if (!session.load(context)) return Failure;
    useSystemKeyboardLayout();
    // As the settings window does when it opens: older hot keys get the keys of the current layout.
    KVKeyCombinationValidator validator(session.prefs);
    validator.initializeHotKeys();
    if (!session.reportWriteError(context)) return Failure;

    printMenus(session.prefs, context.out);
    printGroups(session.prefs, context.out);
    printHotKeys(session.prefs, context.out);
    printCommandShortcuts(session.prefs, context.out);
    return Success;
}

}  // namespace

std::vector<Command> keysCommands() {
    return {
        {"summary", "",
         "Loads the settings as the settings window does and prints an overview: the\n"
         "items of the four menus, the groups with their number of applications, each\n"
         "menu's hot key (as the Shortcuts tab writes it, under the current keyboard\n"
         "layout) and whether it is on, and every command that has a shortcut.",
         summary},
    };
}

}  // namespace corvalis::cli
