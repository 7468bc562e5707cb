#include "groups/CustomApplicationsOptions.h"

#include <filesystem>

#include "fileutils/ExecutableArchitectures.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

ApplicationArchitectures ApplicationArchitectures::system() {
    return {[](const std::string& path) { return CanOpenIn32BitMode(path); },
            [](const std::string& path) { return IsUniversalCode(path); }};
}

LaunchOptions LaunchOptions::fromDictionary(const plist::Value& options) {
    auto flag = [&options](const char* key) { return options[key].toBool().value_or(false); };
    LaunchOptions result;
    result.dontActivate = flag(keys::DontActivate);
    result.hide = flag(keys::Hide);
    result.hideMeOrOthers = options[keys::HideMeOrOthers].toInt32().value_or(0) != 0 ? 1 : 0;
    result.dontHideOnHideOthers = flag(keys::DontHideOnHideOthers);
    result.dontHideInSingleAppMode = flag(keys::DontHideInSingleAppMode);
    result.dontAddToRecentApps = flag(keys::DontAddToRecentApps);
    result.dontAddToRecentItems = flag(keys::DontAddToRecentItems);
    if (!options[keys::Force32BitMode].isAbsent()) result.force32BitMode = flag(keys::Force32BitMode);
    if (!options[keys::ForceRosetta].isAbsent()) result.forceRosetta = flag(keys::ForceRosetta);
    return result;
}

plist::Dictionary LaunchOptions::toDictionary() const {
    plist::Dictionary options{
        {keys::DontActivate, dontActivate},
        {keys::Hide, hide},
        {keys::HideMeOrOthers, plist::Value::int32(hideMeOrOthers)},
        {keys::DontHideOnHideOthers, dontHideOnHideOthers},
        {keys::DontHideInSingleAppMode, dontHideInSingleAppMode},
        {keys::DontAddToRecentApps, dontAddToRecentApps},
        {keys::DontAddToRecentItems, dontAddToRecentItems},
    };
    if (force32BitMode) options.set(keys::Force32BitMode, *force32BitMode);
    if (forceRosetta) options.set(keys::ForceRosetta, *forceRosetta);
    return options;
}

LaunchOptions newLaunchOptions(const std::string& path, const ApplicationArchitectures& architectures) {
    LaunchOptions options;
    if (architectures.canOpenIn32BitMode(path)) options.force32BitMode = false;
    if (architectures.isUniversalCode(path)) options.forceRosetta = false;
    return options;
}

bool normalizeOptions(plist::Dictionary& record, const ApplicationArchitectures& architectures) {
    std::string path = record[keys::Path].stringOr("");
    std::error_code error;
    if (path.empty() || !std::filesystem::exists(std::filesystem::symlink_status(path, error))) return false;
    LaunchOptions options = LaunchOptions::fromDictionary(record[keys::Options]);
    options.force32BitMode = architectures.canOpenIn32BitMode(path)
                                 ? std::optional<bool>(options.force32BitMode.value_or(false))
                                 : std::nullopt;
    options.forceRosetta =
        architectures.isUniversalCode(path) ? std::optional<bool>(options.forceRosetta.value_or(false)) : std::nullopt;
    if (options.force32BitMode && options.forceRosetta.value_or(false)) options.force32BitMode = true;
    plist::Dictionary rebuilt = options.toDictionary();
    const plist::Dictionary* old = record[keys::Options].dictionary();
    if (old && *old == rebuilt) return false;
    record.set(keys::Options, rebuilt);
    return true;
}

bool applicationIsCustom(const plist::Value& record) {
    LaunchOptions options = LaunchOptions::fromDictionary(record[keys::Options]);
    return options.dontActivate || options.hide || options.dontHideOnHideOthers || options.dontHideInSingleAppMode ||
           options.dontAddToRecentApps || options.dontAddToRecentItems || options.force32BitMode.value_or(false) ||
           options.forceRosetta.value_or(false);
}

LaunchOptions afterEditing(LaunchOptions options, OptionBox changed) {
    if (changed == OptionBox::HideAtLaunch && options.hide) options.dontActivate = false;
    // Rosetta starts over, off, whenever 32-bit mode is switched either way.
    if (changed == OptionBox::OpenIn32BitMode && options.forceRosetta && options.force32BitMode) options.forceRosetta = false;
    return options;
}

ArchitectureBoxes architectureBoxes(const LaunchOptions& options) {
    ArchitectureBoxes boxes;
    bool bit32 = options.force32BitMode.has_value();
    bool rosetta = options.forceRosetta.has_value();
    boxes.labelShown = bit32 || rosetta;
    boxes.bit32Shown = bit32;
    boxes.rosettaShown = rosetta;
    boxes.rosettaAtBit32Place = rosetta && !bit32;
    if (bit32 && rosetta) {
        boxes.rosettaEnabled = *options.force32BitMode;
        boxes.rosettaChecked = *options.force32BitMode && *options.forceRosetta;
    } else if (rosetta) {
        boxes.rosettaEnabled = true;
        boxes.rosettaChecked = *options.forceRosetta;
    }
    return boxes;
}

EditorOpenPanel applicationPanel(const char* prompt, const std::string& directory) {
    EditorOpenPanel panel;
    panel.prompt = LocalizedString(prompt);
    panel.allowedFileTypes = {"app", "desktop"};
    panel.directory = directory;
    return panel;
}

std::string customApplicationToolTip(const plist::Value& record) {
    LaunchOptions options = LaunchOptions::fromDictionary(record[keys::Options]);
    std::string tip = record[keys::Path].stringOr("");
    auto line = [&tip](bool on, const char* key) {
        if (on) tip += "\n" + LocalizedFormat("ToolTip4", {LocalizedString(key)});
    };
    line(options.dontActivate, "DontActivateAtLaunch");
    line(options.hide, options.hideMeOrOthers != 0 ? "HideOthersAtLaunch" : "HideAtLaunch");
    line(options.dontHideOnHideOthers, "DontHideOnHideOthers");
    line(options.dontHideInSingleAppMode, "DontHideInSingleApplicationMode");
    line(options.dontAddToRecentItems, "DontAddToRecentItems");
    line(options.dontAddToRecentApps, "DontAddToRecentApplications");
    line(options.force32BitMode.value_or(false), "OpenIn32BitMode");
    line(options.forceRosetta.value_or(false), "OpenUsingRosetta");
    return tip;
}

}  // namespace corvalis
