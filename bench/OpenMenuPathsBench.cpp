// The Open menu's path refresh, which runs before every edit of the menu, on a
// menu of 200 folder records, beside a bare stat(2) of the same 200 paths.
// Usage: corvalis-bench-open-menu [benchmark options]

#include <sys/stat.h>

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "menus/ConfigureOpenMenuController.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"

namespace {

using namespace corvalis;

constexpr int kFolders = 200;

struct Menu {
    std::filesystem::path root;
    std::vector<std::string> paths;
    std::unique_ptr<FileDomainStore> store;
    InProcessNotificationCenter local, distributed;
    std::unique_ptr<CorvalisPreferences> prefs;
    std::unique_ptr<ConfigureOpenMenuController> controller;

    Menu() {
        std::string pattern = (std::filesystem::temp_directory_path() / "corvalis-bench-XXXXXX").string();
        root = std::filesystem::canonical(::mkdtemp(pattern.data()));
        plist::Array items;
        for (int i = 0; i < kFolders; ++i) {
            std::filesystem::path folder = root / ("Folder " + std::to_string(i)) / "Inner";
            std::filesystem::create_directories(folder);
            paths.push_back(folder.string());
            items.append(newFolderRecord(folder.string()));
        }
        store = std::make_unique<FileDomainStore>(root / "prefs");
        store->setPersistentDomain(plist::Dictionary{{keys::OpenMenuItems, items}}, "com.kestrova.Corvalis");
        prefs = std::make_unique<CorvalisPreferences>(*store, distributed);
        prefs->loadPreferences();
        controller = std::make_unique<ConfigureOpenMenuController>(*prefs, local, distributed, nullptr);
        controller->initializePane(true);
    }
    ~Menu() { std::filesystem::remove_all(root); }
};

Menu& menu() {
    static Menu shared;
    return shared;
}

void OpenMenuPathRefresh(benchmark::State& state) {
    Menu& open = menu();
    for (auto _ : state) open.controller->_updatePaths(true);
    if (open.controller->rowCount() != kFolders) state.SkipWithError("the menu changed");
}

void StatReference(benchmark::State& state) {
    Menu& open = menu();
    struct stat info;
    for (auto _ : state)
        for (const std::string& path : open.paths) benchmark::DoNotOptimize(::stat(path.c_str(), &info));
}

// What following a moved folder needs at least: each path made canonical.
void RealpathReference(benchmark::State& state) {
    Menu& open = menu();
    char resolved[PATH_MAX];
    for (auto _ : state)
        for (const std::string& path : open.paths) benchmark::DoNotOptimize(::realpath(path.c_str(), resolved));
}

}  // namespace

BENCHMARK(RealpathReference)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(OpenMenuPathRefresh)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(StatReference)->Unit(benchmark::kMicrosecond)->MinTime(1.0);

BENCHMARK_MAIN();
