// Any bytes as the domain file: loading through the real file store must end
// in a domain that satisfies every invariant of a loaded domain, and loading
// what it saved must change nothing.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"
#include "support/DomainInvariants.h"

using namespace corvalis;
namespace fs = std::filesystem;

namespace {

// One scratch folder per process, on tmpfs when there is one (saves flush every write).
const fs::path& folder() {
    static const fs::path path = [] {
        std::string pattern = (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                              "corvalis-fuzz-domain-XXXXXX";
        if (!::mkdtemp(pattern.data())) std::abort();
        std::atexit([] { fs::remove_all(folder()); });
        return fs::path(pattern);
    }();
    return path;
}

// The loaded domain; `saved` tells whether it reached the disk (some values
// the readers accept, such as dates far beyond 2069, no writer can hold).
plist::Dictionary loadOnce(bool& saved) {
    FileDomainStore domains(folder());
    InProcessNotificationCenter bus;
    CorvalisPreferences prefs(domains, bus);
    prefs.loadPreferences();
    saved = domains.lastWriteError().empty();
    return prefs.prefsData();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const auto& entry : fs::directory_iterator(folder())) fs::remove_all(entry.path());
    {
        std::ofstream out(folder() / "com.kestrova.Corvalis.plist", std::ios::binary);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    bool saved = false;
    plist::Dictionary first = loadOnce(saved);
    if (!test::loadedDomainViolation(first).empty()) std::abort();
    if (!saved) return 0;
    plist::Dictionary second = loadOnce(saved);
    if (!test::sameValue(first, second)) std::abort();
    return 0;
}
