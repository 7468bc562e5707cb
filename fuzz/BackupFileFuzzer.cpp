// Any bytes as a backup file: the checks answer one outcome without failing,
// and a backup they accept imports into settings that satisfy every invariant.

#include <cstdlib>

#include "platform/InProcessNotificationCenter.h"
#include "prefs/Backup.h"
#include "prefs/CorvalisPreferences.h"
#include "support/DomainInvariants.h"
#include "support/MemoryDomainStore.h"

using namespace corvalis;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    BackupContents contents = checkBackup(std::span<const std::uint8_t>(data, size));
    if (contents.check == BackupCheck::WrongVersion && contents.fileVersion.empty()) std::abort();
    if (contents.check != BackupCheck::Valid) return 0;
    test::MemoryDomainStore domains;
    InProcessNotificationCenter bus;
    CorvalisPreferences prefs(domains, bus);
    importSettings(prefs, contents.settings, {}, plist::Date{0});
    if (!test::loadedDomainViolation(prefs.prefsData()).empty()) std::abort();
    return 0;
}
