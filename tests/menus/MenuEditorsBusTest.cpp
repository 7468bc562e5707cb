#include <gtest/gtest.h>

#include "menus/ConfigureOpenMenuController.h"
#include "menus/ConfigureSwitchMenuController.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/NotificationNames.h"
#include "plist/PlistIO.h"
#include "schema/PreferenceKeys.h"
#include "support/IntegrationSupport.h"
#include "support/RecordingEditorView.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

// The settings in a domain file, loaded as the pane does, with the pane's bus connection and the
// controller's beside it.
struct BusDomain {
    FileDomainStore store;
    DBusNotificationCenter bus, controller;
    InProcessNotificationCenter local;
    CorvalisPreferences prefs;

    BusDomain(const test::TempDir& dir, const Dictionary& stored) : store(dir / "prefs"), prefs(store, bus) {
        store.setPersistentDomain(stored, notifications::Domain);
        prefs.loadPreferences();
    }
};

}  // namespace

// On the session bus: a rename tells the controller the whole menu, and the controller's
// depth change reaches the second folder record and, once saved, the domain file.
TEST(OpenMenuBus, RenameAndDepthChangeTravelOverTheBus) {
    test::TempDir dir;
    for (const char* name : {"a", "b"}) std::filesystem::create_directories(dir / name);
    std::string a = std::filesystem::canonical(dir / "a").string(), b = std::filesystem::canonical(dir / "b").string();
    BusDomain domain(dir, Dictionary{{keys::OpenMenuItems, Array{newFolderRecord(a), Dictionary{{keys::Item, "Groups"}},
                                                                 newFolderRecord(b)}}});
    ASSERT_TRUE(domain.bus.isConnected());
    auto& [store, bus, controller, local, prefs] = domain;
    ConfigureOpenMenuController menu(prefs, local, bus, {});
    menu.initializePane(true);

    std::vector<Notification> heard;
    controller.addObserver(notifications::CorvalisPaneChangedPrefs, notifications::PaneObject,
                           [&](const Notification& n) { heard.push_back(n); });
    ASSERT_TRUE(menu.setData(menu.index(0), "Renamed", Qt::EditRole));
    ASSERT_TRUE(test::waitUntil([&] { return !heard.empty(); }, 10000));
    const Value& sent = (*heard.back().userInfo)[changes::ChangeOpenMenuItems][keys::OpenMenuItems];
    ASSERT_TRUE(sent.array());
    EXPECT_EQ(sent.array()->size(), 3u);
    EXPECT_EQ(sent[0][keys::Name].stringOr(""), "Renamed");

    controller.post(Notification{notifications::OpenMenuItemsChanged, notifications::ControllerObject,
                                 Dictionary{{changes::ChangeOpenMenuItemDepth,
                                             Dictionary{{"Index", Value::int32(1)}, {keys::Depth, Value::int32(5)}}}}});
    ASSERT_TRUE(test::waitUntil([&] { return prefs.prefsData()[keys::OpenMenuItems][2][keys::Depth].toInt32() == 5; }, 10000));
    prefs.saveToDefaults();
    ParseResult saved = parse(std::string_view(test::readFile(store.pathForDomain(notifications::Domain))));
    EXPECT_EQ(saved.value[keys::OpenMenuItems][2][keys::Depth].toInt32(), 5);
    EXPECT_EQ(saved.value[keys::OpenMenuItems][0][keys::Depth].toInt32(), 2);
}

// The Switch menu's excluded list both ways: an application removed here reaches the
// controller as the whole list, and the controller's list replaces the one shown.
TEST(SwitchMenuBus, ExcludedApplicationsTravelOverTheBusBothWays) {
    test::TempDir dir;
    std::string term = test::makeBundle(dir.path(), "Term", "com.test.Term").string();
    std::string edit = test::makeBundle(dir.path(), "Edit", "com.test.Edit").string();
    BusDomain domain(dir, Dictionary{{keys::SwitchMenuExcludedApplications,
                                      Array{Dictionary{{keys::Name, "Edit"}, {keys::Path, edit}},
                                            Dictionary{{keys::Name, "Term"}, {keys::Path, term}}}}});
    ASSERT_TRUE(domain.bus.isConnected());
    auto& [store, bus, controller, local, prefs] = domain;
    ConfigureSwitchMenuController switcher(prefs, local, bus, {}, {});
    switcher.initializePane(true);
    struct Selection : test::RecordingView<MenuEditorView> {
        std::vector<int> selectedRows() const override { return {0}; }
    } view;
    switcher.excludedApplications().setView(&view);

    std::vector<Notification> heard;
    controller.addObserver(notifications::CorvalisPaneChangedPrefs, notifications::PaneObject,
                           [&](const Notification& n) { heard.push_back(n); });
    switcher.excludedApplications().onRemoveApplication();
    ASSERT_TRUE(test::waitUntil([&] { return !heard.empty(); }, 10000));
    const Value& sent = (*heard.back().userInfo)[changes::ChangeSwitchMenuExcludedApps][keys::SwitchMenuExcludedApplications];
    ASSERT_TRUE(sent.array());
    ASSERT_EQ(sent.array()->size(), 1u);
    EXPECT_EQ(sent[0][keys::Path].stringOr(""), term);

    controller.post(Notification{notifications::SwitchMenuExcludedAppsChanged, notifications::ControllerObject,
                                 Dictionary{{changes::ChangeSwitchMenuExcludedApps,
                                             Dictionary{{keys::SwitchMenuExcludedApplications,
                                                         Array{Dictionary{{keys::Name, "Edit"}, {keys::Path, edit}}}}}}}});
    ASSERT_TRUE(test::waitUntil([&] { return switcher.excludedApplications().rowCount() == 1 &&
                                             switcher.excludedApplications().pathAt(0) == edit; }, 10000));
}
