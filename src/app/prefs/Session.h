#pragma once
// The store, the bus and the preferences, set up as the settings window sets them up.

#include "app/prefs/CommandLine.h"
#include "platform/FileDomainStore.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"

namespace corvalis::cli {

struct Session {
    FileDomainStore domains;
    DBusNotificationCenter bus;
    CorvalisPreferences prefs;

    explicit Session(const Context& context);

    // Loads (normalises and writes back), telling of unreadable files; false
    // with a message when the domain could not be read or written. A dry run
    // loads a scratch copy of the folder and tells what a real run would do.
    bool load(Context& context, bool dryRun = false);
    // False with a message when the last save failed.
    bool reportWriteError(Context& context);
};

}  // namespace corvalis::cli
