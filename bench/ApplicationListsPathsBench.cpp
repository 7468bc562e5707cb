// The path refresh of the lists of applications over 1,000 entries (each a desktop
// entry on disk): the Applications tab's custom applications and the Quit and
// Switch menus' excluded applications, beside a bare stat(2) of the same paths,
// the floor of any check that a file is still there.
// Usage: corvalis-bench-app-lists [benchmark flags]

#include <benchmark/benchmark.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "SilentEditorView.h"
#include "fileutils/AliasResolution.h"
#include "groups/CustomApplicationsController.h"
#include "groups/GroupsController.h"
#include "keys/KVKeyCombinationValidator.h"
#include "menus/ConfigureQuitMenuController.h"
#include "menus/ConfigureSwitchMenuController.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"

namespace fs = std::filesystem;
using namespace corvalis;

namespace {

constexpr int kApplications = 1000;

fs::path gWork;
std::vector<std::string> gPaths;

// The controller's questions answered by nobody: nothing is selected or shown.
class NoView : public bench::SilentView<CustomApplicationsView> {
public:
    std::vector<int> selectedRows() const override { return {}; }
    void showOptions(OptionsViewState) override {}
};

void makeData() {
    plist::Array records;
    for (int n = 0; n < kApplications; ++n) {
        std::string path = (gWork / "apps" / ("app" + std::to_string(n) + ".desktop")).string();
        fs::create_directories(gWork / "apps");
        std::ofstream(path) << "[Desktop Entry]\nType=Application\nName=Application " << n << "\nExec=true\n";
        gPaths.push_back(path);
        records.append(plist::Dictionary{{keys::Name, "Application " + std::to_string(n)},
                                         {keys::Path, path},
                                         {keys::AliasData, AliasData(path).value_or(plist::Data())},
                                         {keys::Options, plist::Dictionary{}}});
    }
    // The same applications in each list: custom, excluded from the Quit commands, left out of the Switch menu.
    plist::Array excluded = records.deepCopy();
    FileDomainStore domains(gWork / "prefs");
    domains.setPersistentDomain(
        plist::Dictionary{{keys::CustomApplications, records},
                          {keys::SwitchMenuExcludedApplications, records.deepCopy()},
                          {keys::Groups, plist::Array{plist::Dictionary{{keys::Name, "Excluded"},
                                                                        {keys::CanBeDeleted, false},
                                                                        {keys::Applications, excluded}}}}},
        "com.kestrova.Corvalis");
    domains.synchronize("com.kestrova.Corvalis");
}

void CustomApplicationsPathRefresh(benchmark::State& state) {
    FileDomainStore domains(gWork / "prefs");
    InProcessNotificationCenter bus;
    CorvalisPreferences prefs(domains, bus);
    prefs.loadPreferences();
    NoView view;
    CustomApplicationsController controller(prefs, bus, view,
                                            {[](const std::string&) { return false; }, [](const std::string&) { return false; }});
    controller.initializePane(true);
    controller._updatePaths();  // the first one also normalises every entry's options
    for (auto _ : state) controller._updatePaths();
    state.counters["entries"] = controller.rowCount();
}

// The Quit and Switch editors share one list; each is timed on its own copy of the applications.
template <class Editor>
void ExcludedPathRefresh(benchmark::State& state) {
    FileDomainStore domains(gWork / "prefs");
    InProcessNotificationCenter bus, local;
    CorvalisPreferences prefs(domains, bus);
    prefs.loadPreferences();
    KVKeyCombinationValidator validator(prefs);
    bench::NoRunningApplications running;
    bench::SilentGroupsView outline;
    GroupsController groups(prefs, validator, bus, local, running, outline);
    groups.initializePane(true);
    std::unique_ptr<Editor> editor;
    if constexpr (std::is_same_v<Editor, ConfigureQuitMenuController>)
        editor = std::make_unique<Editor>(prefs, local, [&groups] { return &groups; }, nullptr);
    else
        editor = std::make_unique<Editor>(prefs, local, bus, nullptr, nullptr);
    editor->initializePane(true);
    ExcludedApplicationsList& list = editor->excludedApplications();
    list._updatePaths();
    for (auto _ : state) list._updatePaths();
    state.counters["entries"] = list.rowCount();
}

void QuitExcludedPathRefresh(benchmark::State& state) { ExcludedPathRefresh<ConfigureQuitMenuController>(state); }
void SwitchExcludedPathRefresh(benchmark::State& state) { ExcludedPathRefresh<ConfigureSwitchMenuController>(state); }

void StatSamePaths(benchmark::State& state) {
    for (auto _ : state) {
        int found = 0;
        struct stat info {};
        for (const std::string& path : gPaths) found += ::stat(path.c_str(), &info) == 0;
        benchmark::DoNotOptimize(found);
    }
}

}  // namespace

BENCHMARK(CustomApplicationsPathRefresh)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(QuitExcludedPathRefresh)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(SwitchExcludedPathRefresh)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(StatSamePaths)->Unit(benchmark::kMillisecond)->MinTime(1.0);

int main(int argc, char** argv) {
    char pattern[] = "/tmp/corvalis-bench-app-lists-XXXXXX";
    gWork = mkdtemp(pattern);
    setenv("CORVALIS_PREFERENCES_DIR", (gWork / "prefs").c_str(), 1);
    makeData();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fs::remove_all(gWork);
}
