#include "pane/ControllerLocation.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace corvalis {

namespace {

std::filesystem::path homeFolder() {
    const char* home = std::getenv("HOME");
    if (home && *home) return home;
    const passwd* user = ::getpwuid(::getuid());
    return user ? user->pw_dir : "/";
}

}  // namespace

std::filesystem::path paneResourcesFolder() { return std::filesystem::path(CORVALIS_INSTALL_DATADIR) / "corvalis"; }

std::filesystem::path userResourcesFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    std::filesystem::path base = data && data[0] == '/' ? std::filesystem::path(data) : homeFolder() / ".local" / "share";
    return base / "corvalis";
}

std::string controllerPath() {
    const char* configured = std::getenv("CORVALIS_CONTROLLER");
    if (configured && *configured) return configured;
    return (paneResourcesFolder() / kControllerResource).string();
}

std::array<std::string, 2> installedControllerLocations() {
    return {(userResourcesFolder() / kControllerResource).string(), (paneResourcesFolder() / kControllerResource).string()};
}

}  // namespace corvalis
