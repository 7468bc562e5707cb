// Saves the domain in a loop, each state internally consistent: "Counter" is N
// and "Payload" holds 2,000 strings that all name N. Killed at random moments
// by kill_during_save.sh, which checks that the file on disk is always one
// whole state.

#include <cstdio>
#include <string>

#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"

using namespace corvalis;

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: corvalis-save-loop DOMAIN_DIR START\n");
        return 2;
    }
    FileDomainStore domains(argv[1]);
    InProcessNotificationCenter bus;
    CorvalisPreferences prefs(domains, bus);
    prefs.loadPreferences();
    for (long counter = std::stol(argv[2]);; ++counter) {
        plist::Array payload;
        for (int i = 0; i < 2000; ++i) payload.append("state " + std::to_string(counter) + " item " + std::to_string(i));
        prefs.setArray(payload, "Payload");
        prefs.setObject(plist::Value::int64(counter), "Counter");
        if (!prefs.saveToDefaults()) return 1;
        std::printf("%ld\n", counter);
        std::fflush(stdout);
    }
}
