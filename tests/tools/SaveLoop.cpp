// Kills savers of the domain with SIGKILL at random moments, KILLS times, and
// checks after each kill that the file holds one whole state: "Counter" is N and
// "Payload" holds 2,000 strings that all name N, never older than the last one
// seen. Savers are forked, not started afresh, so that the time goes in saving
// and killing. Ends with one save left to finish, after which no temporary or
// lock file may be left. Driven by kill_during_save.sh.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>

#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "plist/PlistIO.h"
#include "prefs/CorvalisPreferences.h"

using namespace corvalis;
namespace fs = std::filesystem;

namespace {

constexpr int kPayload = 2000;
const int kMaxDelayUs = std::getenv("KILL_DELAY_US") ? std::atoi(std::getenv("KILL_DELAY_US")) : 8000;

// Saves states first..last (or without end), telling `ready` once loaded.
[[noreturn]] void save(const char* dir, long first, long last, int ready) {
    FileDomainStore domains(dir);
    InProcessNotificationCenter bus;
    CorvalisPreferences prefs(domains, bus);
    prefs.loadPreferences();
    if (ready >= 0 && ::write(ready, "r", 1) != 1) ::_exit(1);
    for (long counter = first; last < 0 || counter <= last; ++counter) {
        plist::Array payload;
        for (int i = 0; i < kPayload; ++i) payload.append("state " + std::to_string(counter) + " item " + std::to_string(i));
        prefs.setArray(payload, "Payload");
        prefs.setObject(plist::Value::int64(counter), "Counter");
        if (!prefs.saveToDefaults()) ::_exit(1);
    }
    ::_exit(0);
}

// The counter of the whole state the file holds (0 before the first), or -1 when it is torn or mixed.
long stateOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return 0;
    std::string bytes((std::istreambuf_iterator<char>(in)), {});
    plist::ParseResult parsed = plist::parse(std::string_view(bytes));
    const plist::Dictionary* domain = parsed.value.dictionary();
    if (!domain) return -1;
    std::optional<std::int64_t> counter = (*domain)["Counter"].toInt64();
    if (!counter) return 0;  // the first load's save, before any counter
    const plist::Array* payload = (*domain)["Payload"].array();
    if (!payload || payload->size() != kPayload) return -1;
    std::string prefix = "state " + std::to_string(*counter) + " item ";
    for (const plist::Value& item : *payload)
        if (!item.string() || item.string()->compare(0, prefix.size(), prefix) != 0) return -1;
    return static_cast<long>(*counter);
}

std::size_t hiddenFiles(const fs::path& dir) {
    std::size_t n = 0;
    for (const auto& entry : fs::directory_iterator(dir)) n += entry.path().filename().string()[0] == '.';
    return n;
}

// Temporary files not seen after an earlier kill: this kill stopped a save mid-write.
bool newTemporaryFile(const fs::path& dir, std::set<std::string>& seen) {
    bool found = false;
    for (const auto& entry : fs::directory_iterator(dir)) {
        std::string name = entry.path().filename().string();
        if (name[0] == '.' && !name.ends_with(".lock")) found |= seen.insert(name).second;
    }
    return found;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: corvalis-save-loop DOMAIN_DIR KILLS\n");
        return 2;
    }
    const char* dir = argv[1];
    long kills = std::stol(argv[2]);
    fs::path file = fs::path(dir) / "com.kestrova.Corvalis.plist";
    std::mt19937 random(std::random_device{}());
    // Counted from the end of loading, up to a few saves' time: most kills land mid-save.
    std::uniform_int_distribution<int> delayUs(0, kMaxDelayUs);
    int ready[2];
    if (::pipe(ready) != 0) return 1;
    long last = 0, midSave = 0;
    std::set<std::string> seen;
    for (long i = 1; i <= kills; ++i) {
        pid_t pid = ::fork();
        if (pid == 0) save(dir, last + 1, -1, ready[1]);
        char byte;
        if (::read(ready[0], &byte, 1) != 1) return 1;
        ::usleep(static_cast<useconds_t>(delayUs(random)));
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        midSave += newTemporaryFile(dir, seen);
        long state = stateOf(file);
        if (state < 0 || state < last) {
            std::fprintf(stderr, "kill %ld: the domain file is torn, mixed or older (%ld after %ld)\n", i, state, last);
            return 1;
        }
        last = state;
    }
    pid_t pid = ::fork();
    if (pid == 0) save(dir, last + 1, last + 1, -1);
    int status = 0;
    ::waitpid(pid, &status, 0);
    long final = stateOf(file);
    std::size_t left = hiddenFiles(dir);
    std::printf("%ld kills (%ld mid-save), 0 torn files, last counter %ld, %zu temporary or lock files left\n", kills,
                midSave, final, left);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 && final == last + 1 && left == 0 ? 0 : 1;
}
