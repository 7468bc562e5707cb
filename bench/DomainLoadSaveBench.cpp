// Loading and saving a large domain as the pane does, beside libplist's bare
// parse-and-write of the same file (the floor any wrapper of it can reach).
// Usage: corvalis-bench FILE [google benchmark flags]; FILE is XML or binary.

#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"

namespace fs = std::filesystem;
using namespace corvalis;

namespace {

fs::path gSource;
fs::path gWork;

std::vector<char> readAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<char>(std::istreambuf_iterator<char>(in), {});
}

// Read the file, build our values, normalise, write the whole domain back atomically.
void CorvalisLoadAndSave(benchmark::State& state) {
    fs::path domainFile = gWork / "com.kestrova.Corvalis.plist";
    for (auto _ : state) {
        state.PauseTiming();
        fs::copy_file(gSource, domainFile, fs::copy_options::overwrite_existing);
        state.ResumeTiming();
        FileDomainStore domains(gWork);
        InProcessNotificationCenter bus;
        CorvalisPreferences prefs(domains, bus);
        prefs.loadPreferences();
        if (!domains.lastWriteError().empty()) state.SkipWithError(domains.lastWriteError().c_str());
    }
}

// Read the file, parse it with libplist, write it as binary with libplist.
void LibplistParseAndWrite(benchmark::State& state) {
    fs::path out = gWork / "bare.plist";
    for (auto _ : state) {
        std::vector<char> bytes = readAll(gSource);
        plist_t root = nullptr;
        plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
        char* written = nullptr;
        std::uint32_t length = 0;
        plist_to_bin(root, &written, &length);
        std::FILE* file = std::fopen(out.c_str(), "wb");
        std::fwrite(written, 1, length, file);
        std::fclose(file);
        std::free(written);
        plist_free(root);
    }
}

}  // namespace

BENCHMARK(CorvalisLoadAndSave)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(LibplistParseAndWrite)->Unit(benchmark::kMillisecond)->MinTime(1.0);

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: corvalis-bench FILE [benchmark flags]\n");
        return 2;
    }
    gSource = fs::absolute(argv[1]);
    char pattern[] = "/tmp/corvalis-bench-XXXXXX";
    gWork = mkdtemp(pattern);
    argv[1] = argv[0];
    int rest = argc - 1;
    benchmark::Initialize(&rest, argv + 1);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fs::remove_all(gWork);
}
