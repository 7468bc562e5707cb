#include "app/prefs/Session.h"

#include <ostream>

#include "platform/MainScreen.h"
#include "platform/linux/X11Screen.h"
#include "text/Localization.h"
#include "prefs/NotificationNames.h"
#include "prefs/UnreadableDomains.h"

namespace corvalis::cli {

namespace fs = std::filesystem;

Session::Session(const Context& context) : domains(context.domainDir), prefs(domains, bus) {
    setMainScreenWidthSource(x11PrimaryScreenWidth);
}

bool Session::load(Context& context, bool dryRun) {
    prefs.loadPreferences();
    bool refused = false;
    for (const SetAsideDomain& file : prefs.takeSetAsideDomains()) {
        if (dryRun && !file.setAsidePath.empty()) {
            // The dry run read a scratch copy, kept aside there and removed with it.
            context.err << "corvalis-prefs: the file " << (context.domainDir / fs::path(file.originalPath).filename()).string()
                        << " could not be read (" << file.reason
                        << "); without --dry-run it would be kept aside and the factory settings used instead.\n";
            continue;
        }
        context.err << "corvalis-prefs: " << unreadableDomainText(file) << "\n";
        refused |= file.setAsidePath.empty() && file.domain == notifications::Domain;
    }
    // A file left in place is not written over: the settings were not loaded from it and cannot be saved.
    if (refused) return false;
    return reportWriteError(context);
}

bool Session::reportWriteError(Context& context) {
    if (domains.lastWriteError().empty()) return true;
    context.err << "corvalis-prefs: " << LocalizedFormat("SettingsNotSaved", {domains.lastWriteError()}) << "\n";
    return false;
}

}  // namespace corvalis::cli
