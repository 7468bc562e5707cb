// The applications browser's Applications-folder source (walk, sort, duplicates
// removed) beside the walk alone, over the same generated tree.
// Usage: corvalis-bench-browser TREE [benchmark options]

#include <string>

#include "TreeBenchMain.h"

#include "fileutils/ApplicationEnumeration.h"
#include "fileutils/browser/BrowserSources.h"

namespace {

using namespace corvalis;

std::string gTree;

void WalkAlone(benchmark::State& state) {
    for (auto _ : state) {
        plist::Array applications;
        InsertApplicationsFromFolder(gTree, 0, applications);
        benchmark::DoNotOptimize(applications.size());
    }
}

void BrowserFolderSource(benchmark::State& state) {
    std::size_t listed = 0;
    for (auto _ : state) {
        plist::Array applications = WalkFolderSource(gTree, 0);
        listed = applications.size();
    }
    state.counters["applications"] = static_cast<double>(listed);
}

}  // namespace

BENCHMARK(WalkAlone)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BrowserFolderSource)->Unit(benchmark::kMillisecond)->MinTime(2.0);

int main(int argc, char** argv) { return runTreeBenchmarks(argc, argv, "corvalis-bench-browser", gTree); }
