#pragma once
// The launch options of a custom application record: which options an
// application can have, how they are normalised, and how the option boxes are
// laid out and enabled for it.

#include <functional>
#include <optional>
#include <string>

#include "pane/EditorView.h"
#include "plist/Value.h"

namespace corvalis {

// What an application's executable allows; the system answers by default, tests choose.
struct ApplicationArchitectures {
    std::function<bool(const std::string& path)> canOpenIn32BitMode;
    std::function<bool(const std::string& path)> isUniversalCode;
    static ApplicationArchitectures system();
};

struct LaunchOptions {
    bool dontActivate = false;
    bool hide = false;
    int hideMeOrOthers = 0;  // 0 hides the application, 1 the others
    bool dontHideOnHideOthers = false;
    bool dontHideInSingleAppMode = false;
    bool dontAddToRecentApps = false;
    bool dontAddToRecentItems = false;
    std::optional<bool> force32BitMode;  // present only when the application can run in 32-bit mode
    std::optional<bool> forceRosetta;    // present only when it can run translated

    static LaunchOptions fromDictionary(const plist::Value& options);
    plist::Dictionary toDictionary() const;
    bool operator==(const LaunchOptions&) const = default;
};

// A new record's options: all off, with the two optional ones as the application allows.
LaunchOptions newLaunchOptions(const std::string& path, const ApplicationArchitectures& architectures);

// Rebuilds the record's "Options" for what the application at its "Path" allows (nothing
// when no file is there); Rosetta implies 32-bit mode. True when "Options" changed.
bool normalizeOptions(plist::Dictionary& record, const ApplicationArchitectures& architectures);

// Any option on (the two optional ones only when present and on).
bool applicationIsCustom(const plist::Value& record);

// The option box the user just changed, for the rules that tie boxes together.
enum class OptionBox { Other, HideAtLaunch, OpenIn32BitMode };
// Hiding at launch clears "do not activate"; switching 32-bit mode clears Rosetta.
LaunchOptions afterEditing(LaunchOptions options, OptionBox changed);

// How the 32-bit and Rosetta boxes and their label show for a record's options.
struct ArchitectureBoxes {
    bool labelShown = false;
    bool bit32Shown = false;
    bool rosettaShown = false;
    bool rosettaAtBit32Place = false;  // alone, it moves up into the 32-bit box's place
    bool rosettaEnabled = false;
    bool rosettaChecked = false;
    bool operator==(const ArchitectureBoxes&) const = default;
};
ArchitectureBoxes architectureBoxes(const LaunchOptions& options);

// "Do not activate" is a choice only while the application is not hidden at launch,
// and which one to hide only while it is.
inline bool dontActivateEnabled(const LaunchOptions& options) { return !options.hide; }
inline bool hideWhatEnabled(const LaunchOptions& options) { return options.hide; }

// The panel that picks one application (a bundle or a desktop entry), titled by `prompt`
// ("Add", "Change", "Fix"), opening at `directory`.
EditorOpenPanel applicationPanel(const char* prompt, const std::string& directory);

// The tool tip of a record: its path, then one line per option that is on.
std::string customApplicationToolTip(const plist::Value& record);

}  // namespace corvalis
