#include "app/prefs/Session.h"

#include <ostream>

#include "platform/MainScreen.h"
#include "platform/linux/X11Screen.h"
#include "text/Localization.h"

namespace corvalis::cli {

Session::Session(const Context& context) : domains(context.domainDir), prefs(domains, bus) {
    setMainScreenWidthSource(x11PrimaryScreenWidth);
}

bool Session::load(Context& context) {
    prefs.loadPreferences();
    for (const SetAsideDomain& file : prefs.takeSetAsideDomains()) {
        context.err << "corvalis-prefs: "
                    << (file.setAsidePath.empty()
                            ? LocalizedFormat("UnreadableSettingsNotMoved", {file.originalPath, file.reason})
                            : LocalizedFormat("UnreadableSettingsKeptAside",
                                              {file.originalPath, file.reason, file.setAsidePath}))
                    << "\n";
    }
    return reportWriteError(context);
}

bool Session::reportWriteError(Context& context) {
    if (domains.lastWriteError().empty()) return true;
    context.err << "corvalis-prefs: " << LocalizedFormat("SettingsNotSaved", {domains.lastWriteError()}) << "\n";
    return false;
}

}  // namespace corvalis::cli
