// The Resume tab's scan of 2,000 domain files and 200 Flatpak containers, beside
// libplist reading the same files and looking up the same key (the floor of any
// scan that must parse every file). Usage: corvalis-bench-restoration [benchmark flags]

#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "groups/KVWindowRestorationManager.h"
#include "platform/Workspace.h"
#include "plist/PlistIO.h"

namespace fs = std::filesystem;
using namespace corvalis;

namespace {

constexpr int kDomains = 2000;
constexpr int kContainers = 200;

fs::path gWork;
std::vector<fs::path> gFiles;  // every file the scan reads

// Every tenth domain belongs to an installed application.
class BenchWorkspace : public Workspace {
public:
    std::vector<std::string> applications;
    std::map<std::string, std::string> identifiers;
    std::string systemApplicationsFolder() const override { return "/Applications"; }
    std::vector<std::string> knownApplications() const override { return applications; }
    std::optional<std::string> bundleIdentifierForApplication(const std::string& path) const override {
        auto found = identifiers.find(path);
        return found == identifiers.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<plist::Dictionary> infoDictionaryForBundle(const std::string&) const override { return std::nullopt; }
};

class NothingRunning : public RunningApplications {
public:
    std::vector<RunningApplication> runningApplications() override { return {}; }
    Token addObserver(Observer, Observer) override { return 1; }
    void removeObserver(Token) override {}
};

BenchWorkspace gWorkspace;

// A domain as applications keep them: some window frames, numbers, data and a nested list.
plist::Dictionary domain(int n, bool withKey) {
    plist::Dictionary values;
    for (int i = 0; i < 30; ++i) values.set("Key" + std::to_string(i), "value " + std::to_string(n * i));
    values.set("NSWindow Frame Main", "12 34 800 600 0 0 1920 1080");
    values.set("Counts", plist::Array{plist::Value::int32(n), plist::Value::real64(n / 3.0), plist::Data{1, 2, 3, 4}});
    if (withKey) values.set(kWindowPersistenceKey, n % 2 == 0);
    return values;
}

void write(const fs::path& file, const plist::Dictionary& values) {
    fs::create_directories(file.parent_path());
    plist::WriteResult written = plist::serialize(values, plist::Format::Binary);
    std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(written.bytes.data()),
                                                static_cast<std::streamsize>(written.bytes.size()));
    gFiles.push_back(file);
}

void makeData() {
    for (int n = 0; n < kDomains; ++n) {
        std::string id = "org.example.app" + std::to_string(n);
        write(gWork / "Preferences" / (id + ".plist"), domain(n, n % 3 == 0));
        if (n % 10 == 0) {
            gWorkspace.applications.push_back("/Applications/" + id + ".app");
            gWorkspace.identifiers[gWorkspace.applications.back()] = id;
        }
    }
    for (int n = 0; n < kContainers; ++n) {
        std::string id = "org.example.boxed" + std::to_string(n);
        write(gWork / "containers" / id / "config" / "corvalis" / "Preferences" / (id + ".plist"), domain(n, true));
    }
}

void WindowRestorationScan(benchmark::State& state) {
    NothingRunning running;
    KVWindowRestorationManager manager(gWorkspace, running, {gWork / "Preferences", gWork / "containers"});
    for (auto _ : state) {
        manager.reloadApplications();
        benchmark::DoNotOptimize(manager.applications().size());
    }
    state.counters["listed"] = static_cast<double>(manager.applications().size());
}

void LibplistReadSameFiles(benchmark::State& state) {
    for (auto _ : state) {
        int found = 0;
        for (const fs::path& file : gFiles) {
            std::ifstream in(file, std::ios::binary);
            std::vector<char> bytes((std::istreambuf_iterator<char>(in)), {});
            plist_t root = nullptr;
            plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
            if (root && plist_get_node_type(root) == PLIST_DICT && plist_dict_get_item(root, kWindowPersistenceKey)) ++found;
            if (root) plist_free(root);
        }
        benchmark::DoNotOptimize(found);
    }
}

}  // namespace

BENCHMARK(WindowRestorationScan)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(LibplistReadSameFiles)->Unit(benchmark::kMillisecond)->MinTime(1.0);

int main(int argc, char** argv) {
    char pattern[] = "/tmp/corvalis-bench-restoration-XXXXXX";
    gWork = mkdtemp(pattern);
    makeData();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fs::remove_all(gWork);
}
