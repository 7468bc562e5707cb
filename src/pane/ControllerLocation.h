#pragma once
// Where the controller application is, and how it is recognised.

#include <array>
#include <filesystem>
#include <string>

namespace corvalis {

inline constexpr const char* kControllerBundleIdentifier = "com.kestrova.Corvalis.Controller";
// The name of the controller's login item, and of its bundle without ".app".
inline constexpr const char* kControllerName = "Corvalis";
inline constexpr const char* kControllerResource = "Corvalis.app";

// The pane's installed resources: <install prefix>/share/corvalis.
std::filesystem::path paneResourcesFolder();
// The same folder of an installation for this user only: ${XDG_DATA_HOME:-~/.local/share}/corvalis.
std::filesystem::path userResourcesFolder();

// $CORVALIS_CONTROLLER when set, else Corvalis.app among the pane's resources.
std::string controllerPath();

// Where an installation of the pane puts the controller: for this user, and for everyone.
std::array<std::string, 2> installedControllerLocations();

}  // namespace corvalis
