#include "platform/RunningApplications.h"

#include <algorithm>

namespace corvalis {

std::vector<RunningApplication> RunningApplications::launchedApplications() {
    std::vector<RunningApplication> applications = runningApplications();
    std::erase_if(applications, [](const RunningApplication& application) { return application.backgroundOnly; });
    return applications;
}

}  // namespace corvalis
