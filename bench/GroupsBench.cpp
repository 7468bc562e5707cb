// The Groups tab over a generated domain of 100 groups of 100 applications, each
// beside a reference measured in the same run: the path refresh beside a bare
// stat of the same 10,000 paths, one added application end to end beside a bare
// save of the same domain, and the first showing of the outline beside a bare
// QTreeView over a QStandardItemModel with the same names.
// Usage: corvalis-bench-groups [benchmark options]

#include <sys/stat.h>

#include <QApplication>
#include <QStandardItemModel>
#include <QTreeView>
#include <filesystem>
#include <fstream>

#include <benchmark/benchmark.h>

#include "SilentEditorView.h"
#include "controls/KVTableView.h"
#include "groups/GroupsController.h"
#include "groups/ui/GroupIcons.h"
#include "groups/ui/GroupsOutline.h"
#include "keys/KVKeyCombinationValidator.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "platform/RunningApplications.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"

namespace {

using namespace corvalis;
namespace fs = std::filesystem;

constexpr int kGroups = 100, kMembers = 100;

struct Domain {
    fs::path root = fs::temp_directory_path() / ("corvalis-bench-groups-" + std::to_string(::getpid()));
    std::vector<std::string> paths;

    Domain() {
        fs::create_directories(root / "prefs");
        plist::Array groups;
        for (int g = 0; g < kGroups; ++g) {
            plist::Array members;
            for (int m = 0; m < kMembers; ++m) {
                fs::path bundle = root / "apps" / ("Group " + std::to_string(g)) / ("App " + std::to_string(m) + ".app");
                fs::create_directories(bundle / "Contents");
                std::ofstream(bundle / "Contents" / "Info.plist") << "<plist><dict/></plist>";
                paths.push_back(bundle.string());
                members.append(plist::Dictionary{{keys::Name, "App " + std::to_string(m)}, {keys::Path, bundle.string()}});
            }
            groups.append(plist::Dictionary{{keys::Name, "Group " + std::to_string(g)},
                                            {keys::CanBeDeleted, true},
                                            {keys::Applications, members}});
        }
        FileDomainStore store(root / "prefs");
        store.setPersistentDomain(plist::Dictionary{{keys::Groups, groups},
                                                    {keys::KeepGroupsAndApplicationsArranged, false}},
                                  "com.kestrova.Corvalis");
        store.synchronize("com.kestrova.Corvalis");
    }
    ~Domain() { fs::remove_all(root); }
};

Domain* gDomain = nullptr;

// The tab's controller over the generated domain, its paths already refreshed once.
struct Tab {
    FileDomainStore store{gDomain->root / "prefs"};
    InProcessNotificationCenter distributed, local;
    bench::NoRunningApplications running;
    bench::SilentGroupsView view;
    CorvalisPreferences prefs{store, distributed};
    KVKeyCombinationValidator validator{prefs};
    GroupsController groups{prefs, validator, distributed, local, running, view};

    explicit Tab(bool open = true) {
        prefs.loadPreferences();
        if (!open) return;
        groups.initializePane(true);
        groups._updatePaths();
    }
};

void PathRefresh(benchmark::State& state) {
    Tab tab;
    for (auto _ : state) benchmark::DoNotOptimize(tab.groups._updatePaths());
}

void BareStat(benchmark::State& state) {
    struct stat info {};
    for (auto _ : state)
        for (const std::string& path : gDomain->paths) benchmark::DoNotOptimize(::stat(path.c_str(), &info));
}

// Refresh, insert, mergedGroups, post and save: what adding an application to a group does.
void AddApplication(benchmark::State& state) {
    Tab tab;
    std::string extra = (gDomain->root / "apps" / "Extra.app").string();
    fs::create_directories(fs::path(extra) / "Contents");
    plist::Dictionary group = *tab.groups.groupAt(0);
    for (auto _ : state) {
        tab.groups._updatePaths();
        tab.groups.addApplication(extra, group, 0, false, nullptr);
        tab.groups.synchronizeGroups(false);
        // Taken out again and saved, untimed, so that the next add really changes the file.
        state.PauseTiming();
        tab.groups.removeApplication(0, group);
        tab.groups.synchronizeGroups(false);
        state.ResumeTiming();
    }
}

void BareSave(benchmark::State& state) {
    Tab tab;
    int tick = 0;
    for (auto _ : state) {
        // A changed key, so that the store writes the whole domain again.
        tab.prefs.setInt(++tick, "BenchTick");
        tab.prefs.saveToDefaults();
    }
}

// The domain is loaded beforehand: the reference has no file to read either.
void FirstShowing(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto tab = std::make_unique<Tab>(false);
        GroupIcons icons;
        state.ResumeTiming();
        {
            tab->groups.initializePane(true);
            QWidget window;
            KVOutlineView* outline = makeGroupsOutline(tab->groups, icons, &window);
            outline->resize(300, 400);
            outline->expandAll();
            window.show();
            benchmark::DoNotOptimize(outline->grab());
        }
        state.PauseTiming();
        tab.reset();
        state.ResumeTiming();
    }
}

void BareTreeView(benchmark::State& state) {
    for (auto _ : state) {
        QStandardItemModel model;
        for (int g = 0; g < kGroups; ++g) {
            auto* group = new QStandardItem("Group " + QString::number(g));
            for (int m = 0; m < kMembers; ++m) group->appendRow(new QStandardItem("App " + QString::number(m)));
            model.appendRow(group);
        }
        QWidget window;
        QTreeView view(&window);
        view.setModel(&model);
        view.setHeaderHidden(true);
        view.resize(300, 400);
        view.expandAll();
        window.show();
        benchmark::DoNotOptimize(view.grab());
    }
}

}  // namespace

BENCHMARK(PathRefresh)->Unit(benchmark::kMillisecond);
BENCHMARK(BareStat)->Unit(benchmark::kMillisecond);
BENCHMARK(AddApplication)->Unit(benchmark::kMillisecond);
BENCHMARK(BareSave)->Unit(benchmark::kMillisecond);
BENCHMARK(FirstShowing)->Unit(benchmark::kMillisecond);
BENCHMARK(BareTreeView)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    Domain domain;
    gDomain = &domain;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
