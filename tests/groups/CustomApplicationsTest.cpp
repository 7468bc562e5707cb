#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QUrl>
#include <filesystem>

#include "fileutils/AliasResolution.h"
#include "fileutils/DisplayNames.h"
#include "groups/CustomApplicationsController.h"
#include "prefs/NotificationNames.h"
#include "support/IntegrationSupport.h"
#include "support/PrefsFixture.h"
#include "support/RecordingEditorView.h"
#include "text/Localization.h"

using namespace corvalis;
using namespace corvalis::plist;
namespace fs = std::filesystem;

namespace {

struct RecordingApplicationsView : test::RecordingListView<CustomApplicationsView> {
    std::vector<OptionsViewState> shown;
    void showOptions(OptionsViewState state) override { shown.push_back(state); }
};

// Applications named "...32..." can run in 32-bit mode, "...Rosetta..." translated.
ApplicationArchitectures fakeArchitectures() {
    return {[](const std::string& path) { return path.find("32") != std::string::npos; },
            [](const std::string& path) { return path.find("Rosetta") != std::string::npos; }};
}

LaunchOptions hiddenAtLaunch() {
    LaunchOptions options;
    options.hide = true;
    return options;
}

LaunchOptions withArchitectures(std::optional<bool> bit32, std::optional<bool> rosetta) {
    LaunchOptions options;
    options.force32BitMode = bit32;
    options.forceRosetta = rosetta;
    return options;
}

class CustomApplications : public test::PrefsTest {
protected:
    test::TempDir dir;
    RecordingApplicationsView view;
    CustomApplicationsController controller{prefs, bus, view, fakeArchitectures()};
    std::unique_ptr<QAbstractItemModelTester> tester;

    std::string app(const std::string& name) { return test::makeBundle(dir.path(), name, "org.example." + name).string(); }
    Dictionary record(const std::string& path, LaunchOptions options = {}) {
        return Dictionary{{keys::Name, LocalizedApplicationName(path)}, {keys::Path, path},
                          {keys::Options, options.toDictionary()}};
    }
    void start(const Array& applications) {
        load(Dictionary{{keys::CustomApplications, applications}});
        controller.initializePane(true);
        controller.willShowPane();  // repairs the paths once, as showing the tab does
        tester = std::make_unique<QAbstractItemModelTester>(&controller, QAbstractItemModelTester::FailureReportingMode::Fatal);
        bus.clearPosted();
        view.calls.clear();
    }
    std::vector<std::string> names() {
        std::vector<std::string> result;
        for (int row = 0; row < controller.rowCount(); ++row) result.push_back(controller.nameAt(row));
        return result;
    }
    // Each "ChangeCustomApps" posted must carry the store's whole list.
    int changesSent() {
        int sent = 0;
        for (const Notification& posted : bus.posted()) {
            EXPECT_EQ(posted.name, notifications::CorvalisPaneChangedPrefs);
            EXPECT_EQ(Value(*posted.userInfo),
                      Value(Dictionary{{changes::ChangeCustomApps,
                                        Dictionary{{keys::CustomApplications, prefs.prefsData()[keys::CustomApplications]}}}}));
            ++sent;
        }
        return sent;
    }
    static std::unique_ptr<QMimeData> files(std::initializer_list<std::string> paths) {
        auto data = std::make_unique<QMimeData>();
        QList<QUrl> urls;
        for (const std::string& path : paths) urls << QUrl::fromLocalFile(QString::fromStdString(path));
        data->setUrls(urls);
        return data;
    }
};

}  // namespace

TEST(LaunchOptionBoxes, ArchitectureBoxesFollowWhatTheApplicationHolds) {
    struct Case {
        std::optional<bool> bit32, rosetta;
        ArchitectureBoxes boxes;  // label, 32-bit, Rosetta, Rosetta in 32-bit's place, enabled, checked
    } cases[] = {
        {std::nullopt, std::nullopt, {false, false, false, false, false, false}},
        {false, std::nullopt, {true, true, false, false, false, false}},
        {std::nullopt, true, {true, false, true, true, true, true}},
        {false, true, {true, true, true, false, false, false}},
        {true, true, {true, true, true, false, true, true}},
        {true, false, {true, true, true, false, true, false}},
    };
    for (const Case& c : cases) EXPECT_EQ(architectureBoxes(withArchitectures(c.bit32, c.rosetta)), c.boxes);
}

TEST(LaunchOptionBoxes, HidingAtLaunchClearsDoNotActivateAndSwitching32BitClearsRosetta) {
    LaunchOptions options;
    options.dontActivate = true;
    options.hide = true;
    EXPECT_FALSE(afterEditing(options, OptionBox::HideAtLaunch).dontActivate);
    EXPECT_TRUE(afterEditing(options, OptionBox::Other).dontActivate);
    EXPECT_FALSE(dontActivateEnabled(options));
    EXPECT_EQ(afterEditing(withArchitectures(false, true), OptionBox::OpenIn32BitMode).forceRosetta, false);
    EXPECT_EQ(afterEditing(withArchitectures(false, true), OptionBox::Other).forceRosetta, true);
}

TEST_F(CustomApplications, OptionsAreRebuiltForWhatTheApplicationAllowsAndRosettaImplies32Bit) {
    struct Case {
        std::string name;
        Dictionary stored;
        std::optional<bool> bit32, rosetta;
        bool changed;
    } cases[] = {
        {"Plain", withArchitectures(true, true).toDictionary(), std::nullopt, std::nullopt, true},
        {"Rosetta32", withArchitectures(false, true).toDictionary(), true, true, true},
        {"Rosetta32b", Dictionary{{keys::Hide, true}}, false, false, true},
        {"Only32", withArchitectures(true, std::nullopt).toDictionary(), true, std::nullopt, false},
    };
    for (const Case& c : cases) {
        Dictionary entry{{keys::Path, app(c.name)}, {keys::Options, c.stored}};
        EXPECT_EQ(normalizeOptions(entry, fakeArchitectures()), c.changed) << c.name;
        LaunchOptions after = LaunchOptions::fromDictionary(entry[keys::Options]);
        EXPECT_EQ(after.force32BitMode, c.bit32) << c.name;
        EXPECT_EQ(after.forceRosetta, c.rosetta) << c.name;
    }
    Dictionary missing{{keys::Path, (dir / "Gone.app").string()}, {keys::Options, Dictionary{{"Odd", true}}}};
    EXPECT_FALSE(normalizeOptions(missing, fakeArchitectures()));
    EXPECT_EQ(Value(missing[keys::Options]), Value(Dictionary{{"Odd", true}}));
}

TEST_F(CustomApplications, AddingKeepsNameOrderAndAnApplicationListedAlreadyIsSelectedAndStillSent) {
    std::string beta = app("Beta"), delta = app("Delta"), gamma = app("Gamma32");
    start(Array{record(beta), record(delta)});
    EXPECT_EQ(view.shown.back(), OptionsViewState::Options);

    view.pickedFiles.push_back({gamma});
    controller.onAddApplication();
    EXPECT_EQ(names(), (std::vector<std::string>{"Beta", "Delta", "Gamma32"}));
    EXPECT_EQ(view.selection, std::vector<int>{2});
    EXPECT_EQ(LaunchOptions::fromDictionary(prefs.prefsData()[keys::CustomApplications][2][keys::Options]),
              withArchitectures(false, std::nullopt));
    EXPECT_EQ(view.panels.back().prompt, "Add");

    view.pickedFiles.push_back({delta});
    controller.onAddApplication();
    EXPECT_EQ(controller.rowCount(), 3);
    EXPECT_EQ(view.selection, std::vector<int>{1});
    EXPECT_EQ(changesSent(), 2);
    EXPECT_EQ(prefs.prefsData()[keys::AddApplicationPath].stringOr(""), dir.path().string());
}

TEST_F(CustomApplications, RemovingAsksOnlyForAValidApplicationWithACustomOption) {
    LaunchOptions hidden = hiddenAtLaunch();
    std::string alpha = app("Alpha"), beta = app("Beta"), gamma = app("Gamma");
    start(Array{record(alpha), record(beta, hidden), record(gamma), record((dir / "Gone.app").string(), hidden)});

    view.selection = {0, 3};  // plain, and custom but missing: no question
    controller.onRemoveApplication();
    EXPECT_TRUE(view.alerts.empty());
    EXPECT_EQ(names(), (std::vector<std::string>{"Beta", "Gamma"}));
    EXPECT_EQ(view.selection, std::vector<int>{1});  // no entry followed the last one: the last row

    view.selection = {0};
    view.answers.push_back(1);  // Cancel
    controller.onRemoveApplication();
    ASSERT_EQ(view.alerts.size(), 1u);
    EXPECT_EQ(view.alerts[0].message, LocalizedFormat("WantToRemoveApplication", {std::string("Beta")}));
    EXPECT_EQ(view.alerts[0].informativeText, LocalizedString("CantUndo"));
    EXPECT_EQ(controller.rowCount(), 2);
    controller.onRemoveApplication();
    EXPECT_EQ(names(), (std::vector<std::string>{"Gamma"}));
    EXPECT_EQ(view.selection, std::vector<int>{0});  // the entry that followed
    EXPECT_EQ(changesSent(), 2);
}

TEST_F(CustomApplications, AfterAMoveOntoAnotherEntrysPathTheFirstInPathThenUpdatedOrderStays) {
    // Two desktop entries that become one file: the second one's alias finds the first's path.
    fs::path moving = dir / "moving.desktop", kept = dir / "kept.desktop";
    test::writeFile(moving, "[Desktop Entry]\nType=Application\nName=Aardvark\nExec=true\n");
    Dictionary movedRecord = record(moving.string(), hiddenAtLaunch());
    movedRecord.set(keys::AliasData, *AliasData(moving.string()));
    fs::create_hard_link(moving, kept);
    Dictionary keptRecord = record(kept.string());
    keptRecord.set(keys::AliasData, *AliasData(kept.string()));
    start(Array{movedRecord, keptRecord});
    ASSERT_EQ(controller.rowCount(), 2);
    fs::remove(moving);

    controller._updatePaths();
    ASSERT_EQ(controller.rowCount(), 1);
    EXPECT_EQ(controller.pathAt(0), kept.string());
    // The entry that needed no repair wins; no "Updated" mark is left behind.
    EXPECT_FALSE(LaunchOptions::fromDictionary(prefs.prefsData()[keys::CustomApplications][0][keys::Options]).hide);
    EXPECT_FALSE(prefs.prefsData()[keys::CustomApplications][0].dictionary()->contains(keys::Updated));
    EXPECT_EQ(changesSent(), 1);
}

TEST_F(CustomApplications, ChangingOntoAListedApplicationReplacesThatEntry) {
    std::string alpha = app("Alpha"), beta = app("Beta"), zeta = app("Zeta");
    LaunchOptions hidden = hiddenAtLaunch();
    start(Array{record(alpha, hidden), record(beta), record(zeta)});
    view.selection = {0};
    view.pickedFiles.push_back({zeta});
    controller.onChangeApplication();
    EXPECT_EQ(view.panels.back().prompt, "Change");
    EXPECT_EQ(view.panels.back().directory, dir.path().string());
    EXPECT_EQ(names(), (std::vector<std::string>{"Beta", "Zeta"}));
    EXPECT_EQ(view.selection, std::vector<int>{1});
    EXPECT_TRUE(LaunchOptions::fromDictionary(prefs.prefsData()[keys::CustomApplications][1][keys::Options]).hide);
    EXPECT_EQ(changesSent(), 1);

    view.selection = {0};
    fs::remove_all(beta);
    EXPECT_EQ(controller.changeMenuTitle(), "FixPath1");

    // The panel open on the broken entry changes its prompt when the entry is back.
    view.holdPanels = true;
    controller.onChangeApplication();
    EXPECT_EQ(view.panels.back().prompt, "Fix");
    app("Beta");
    controller.windowDidBecomeMain();
    EXPECT_EQ(view.calls.back(), "retitle  | Change");
    view.closePanel();
}

TEST_F(CustomApplications, OptionsViewShowsTheStateOfTheSelection) {
    start(Array{});
    EXPECT_EQ(controller.optionsViewState(), OptionsViewState::NoApplications);
    view.pickedFiles.push_back({app("One")});
    controller.onAddApplication();
    view.pickedFiles.push_back({app("Two")});
    controller.onAddApplication();
    view.selection = {};
    EXPECT_EQ(controller.optionsViewState(), OptionsViewState::NoApplicationsSelected);
    view.selection = {0, 1};
    EXPECT_EQ(controller.optionsViewState(), OptionsViewState::MultipleApplications);
    EXPECT_FALSE(controller.selectedOptions());
    controller.onEditOptions(LaunchOptions{}, OptionBox::Other);  // several selected: nothing to edit
    EXPECT_EQ(changesSent(), 2);
}

TEST_F(CustomApplications, EditingAnOptionReplacesTheRecordAndSendsTheList) {
    start(Array{record(app("One"))});
    Value before = prefs.prefsData()[keys::CustomApplications][0];
    LaunchOptions edited;
    edited.dontActivate = true;
    edited.hide = true;
    controller.onEditOptions(edited, OptionBox::HideAtLaunch);
    LaunchOptions stored = LaunchOptions::fromDictionary(prefs.prefsData()[keys::CustomApplications][0][keys::Options]);
    EXPECT_TRUE(stored.hide);
    EXPECT_FALSE(stored.dontActivate);
    EXPECT_TRUE(before[keys::Options][keys::Hide].boolean() == false);  // a new record, not the old one changed
    EXPECT_EQ(changesSent(), 1);
    EXPECT_NE(customApplicationToolTip(prefs.prefsData()[keys::CustomApplications][0]).find(LocalizedString("HideAtLaunch")),
              std::string::npos);
}

TEST_F(CustomApplications, DropsAddApplicationsOnlyAndSendOnlyWhenOneWasNew) {
    std::string alpha = app("Alpha"), beta = app("Beta");
    start(Array{record(alpha)});
    test::writeFile(dir / "notes.txt", "text");
    EXPECT_FALSE(controller.canDropMimeData(files({(dir / "notes.txt").string()}).get(), Qt::CopyAction, 0, 0, {}));
    controller.setSheetShown(true);
    EXPECT_FALSE(controller.canDropMimeData(files({beta}).get(), Qt::CopyAction, 0, 0, {}));
    controller.setSheetShown(false);

    controller.dropMimeData(files({alpha}).get(), Qt::CopyAction, -1, -1, {});
    EXPECT_EQ(changesSent(), 0);
    controller.dropMimeData(files({beta, alpha, beta, (dir / "notes.txt").string()}).get(), Qt::CopyAction, 0, 0, {});
    EXPECT_EQ(names(), (std::vector<std::string>{"Alpha", "Beta"}));
    EXPECT_EQ(view.selection, (std::vector<int>{0, 1}));
    EXPECT_EQ(changesSent(), 1);
}

TEST_F(CustomApplications, ControllerChangesApplyOnlyAValidListAndKeepTheSelection) {
    std::string alpha = app("Alpha"), beta = app("Beta");
    start(Array{record(alpha), record(beta)});
    view.selection = {1};
    auto tell = [&](Dictionary info) {
        bus.post({notifications::CustomAppsChanged, notifications::ControllerObject, info});
    };
    tell(Dictionary{{changes::ChangeCustomApps, "nonsense"}});
    tell(Dictionary{{changes::ChangeCustomApps, Dictionary{{keys::CustomApplications, Value::int32(3)}}}});
    tell(Dictionary{{"Unknown", true}});
    EXPECT_EQ(controller.rowCount(), 2);
    tell(Dictionary{{changes::ChangeCustomApps,
                     Dictionary{{keys::CustomApplications, Array{Value("junk"), record(beta), record(app("Aardvark"))}}}}});
    EXPECT_EQ(names(), (std::vector<std::string>{"Aardvark", "Beta"}));
    EXPECT_EQ(view.selection, std::vector<int>{1});
    EXPECT_TRUE(prefs.prefsData()[keys::CustomApplications].array()->isSameObject(
        *prefs.arrayForKey(keys::CustomApplications)));
}

TEST_F(CustomApplications, TheSummaryCountsMissingApplications) {
    start(Array{record(app("Here")), record((dir / "Gone.app").string()), record((dir / "Lost.app").string())});
    std::string report;
    controller.updatePane(report);
    EXPECT_EQ(report, LocalizedFormat("CustomApplicationsSummary", {LocalizedFormat("MoreInvalidPaths", {2LL})}) + "\n");
    EXPECT_TRUE(controller.selectString("H"));
    EXPECT_EQ(view.selection, std::vector<int>{1});  // "Here", the first not sorting before "H"
    EXPECT_TRUE(controller.selectString("Zz"));
    EXPECT_EQ(view.selection, std::vector<int>{2});
}
