// The applications walk over a large tree beside find(1) over the same tree, and
// sorting many names in the name order beside a bare ICU sort of the same names.
// Usage: corvalis-bench-files TREE [benchmark options]

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "TreeBenchMain.h"

#include "fileutils/ApplicationEnumeration.h"
#include "fileutils/NameOrder.h"

extern char** environ;

namespace {

using namespace corvalis;

std::string gTree;

void WalkApplications(benchmark::State& state) {
    std::size_t found = 0;
    for (auto _ : state) {
        plist::Array applications;
        if (InsertApplicationsFromFolder(gTree, 0, applications) != kWalkNoErr) state.SkipWithError("walk failed");
        found = applications.size();
    }
    state.counters["applications"] = static_cast<double>(found);
}

// find with the walk's rules: every depth, packages listed and not entered,
// desktop entries listed.
void FindReference(benchmark::State& state) {
    std::vector<std::string> args{"find", gTree, "(", "-type", "d", "(", "-name", "*.app", "-o", "-name",
                                  "*.bundle", "-o", "-name", "*.framework", "-o", "-name", "*.plugin", "-o",
                                  "-name", "*.prefPane", "-o", "-name", "*.xpc", ")", "-print", "-prune", ")",
                                  "-o", "(", "-type", "f", "-name", "*.desktop", "-print", ")"};
    std::vector<char*> argv;
    for (std::string& arg : args) argv.push_back(arg.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    for (auto _ : state) {
        pid_t child = 0;
        int status = 0;
        if (posix_spawnp(&child, "find", &actions, nullptr, argv.data(), environ) != 0 ||
            waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
            state.SkipWithError("find failed");
    }
    posix_spawn_file_actions_destroy(&actions);
}

// 100,000 application-like names: words in mixed case, some with diacritics, and numbers.
const std::vector<std::string>& names() {
    static const std::vector<std::string> list = [] {
        static constexpr std::array<const char*, 24> kWords = {
            "Mail", "maps", "Photo", "Booth", "Caf\xC3\xA9", "R\xC3\xA9sum\xC3\xA9", "Z\xC3\xBCrich", "na\xC3\xAFve",
            "Text", "edit", "Preview", "Calculator", "Chess", "Terminal", "Console", "Disk", "Utility", "Font",
            "Book", "Image", "Capture", "Script", "Editor", "Studio"};
        std::mt19937 random(20240611);
        std::uniform_int_distribution<std::size_t> word(0, kWords.size() - 1);
        std::uniform_int_distribution<int> number(1, 1000);
        std::vector<std::string> generated;
        generated.reserve(100000);
        for (int i = 0; i < 100000; ++i)
            generated.push_back(std::string(kWords[word(random)]) + " " + kWords[word(random)] + " " +
                                std::to_string(number(random)));
        return generated;
    }();
    return list;
}

void SortNamesFinderCompare(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<std::string> list = names();
        state.ResumeTiming();
        std::sort(list.begin(), list.end(),
                  [](const std::string& a, const std::string& b) { return finderCompare(a, b) < 0; });
        benchmark::DoNotOptimize(list.data());
    }
}

// The same collator, driven directly on UTF-16 text converted beforehand.
void SortNamesIcuStrcoll(benchmark::State& state) {
    const UCollator* collator = FinderCollator::user().collator();
    std::vector<std::u16string> utf16;
    for (const std::string& name : names()) {
        std::u16string text(name.size(), u'\0');
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8(reinterpret_cast<UChar*>(text.data()), static_cast<int32_t>(text.size()), &length, name.data(),
                      static_cast<int32_t>(name.size()), &status);
        text.resize(static_cast<std::size_t>(length));
        utf16.push_back(std::move(text));
    }
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<std::u16string> list = utf16;
        state.ResumeTiming();
        std::sort(list.begin(), list.end(), [collator](const std::u16string& a, const std::u16string& b) {
            return ucol_strcoll(collator, reinterpret_cast<const UChar*>(a.data()), static_cast<int32_t>(a.size()),
                                reinterpret_cast<const UChar*>(b.data()), static_cast<int32_t>(b.size())) == UCOL_LESS;
        });
        benchmark::DoNotOptimize(list.data());
    }
}

}  // namespace

BENCHMARK(WalkApplications)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(FindReference)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(SortNamesFinderCompare)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(SortNamesIcuStrcoll)->Unit(benchmark::kMillisecond)->MinTime(2.0);

int main(int argc, char** argv) { return runTreeBenchmarks(argc, argv, "corvalis-bench-files", gTree); }
