#pragma once
// The controller's part of commands from other areas.

#include "app/prefs/CommandLine.h"
#include "app/prefs/Session.h"
#include "plist/Value.h"

namespace corvalis::cli {

// Imports a checked backup's `settings` as the settings window does: a running
// controller is quit first (and told of the import when the settings turn it
// on), the settings are installed and saved, then the login item is replaced
// and the controller started when they turn it on. Says what happened to the
// controller; false when it could not be started or did not quit.
bool importSettingsWithController(Context& context, Session& session, const plist::Dictionary& settings);

}  // namespace corvalis::cli
