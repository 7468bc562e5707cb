#include "prefs/UnreadableDomains.h"

#include "text/Localization.h"

namespace corvalis {

std::string unreadableDomainText(const SetAsideDomain& file) {
    if (file.notOpened) return LocalizedFormat("UnreadableSettingsNotOpened", {file.originalPath, file.reason});
    if (file.setAsidePath.empty()) return LocalizedFormat("UnreadableSettingsNotMoved", {file.originalPath, file.reason});
    return LocalizedFormat("UnreadableSettingsKeptAside", {file.originalPath, file.reason, file.setAsidePath});
}

}  // namespace corvalis
