#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <memory>

#include "groups/OptionsController.h"
#include "prefs/NotificationNames.h"
#include "support/PrefsFixture.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

class Options : public test::PrefsTest {
protected:
    InProcessNotificationCenter local;
    OptionsController controller{prefs, bus, local, domains};

    void SetUp() override {
        load(Dictionary{});
        controller.initializePane(true);
    }
    void setDock(const char* orientation, bool autohide) {
        domains.domains["com.apple.dock"] = Dictionary{{"orientation", orientation}, {"autohide", autohide}};
    }
    std::vector<Value> payloads() {
        std::vector<Value> result;
        for (const Notification& posted : bus.posted())
            if (posted.name == notifications::CorvalisPaneChangedPrefs && posted.userInfo)
                result.emplace_back(posted.userInfo->deepCopy());
        return result;
    }
    void controllerChanged(const Dictionary& info) {
        bus.post({notifications::CorvalisPanelChanged, notifications::ControllerObject, info});
    }
    static Dictionary buttons(std::initializer_list<std::pair<int, bool>> rows) {
        Array array;
        for (auto [color, visible] : rows)
            array.append(Dictionary{{keys::Color, Value::int16(static_cast<std::int16_t>(color))}, {keys::Visible, visible}});
        return Dictionary{{keys::PanelButtons, array}};
    }
};

}  // namespace

TEST(DockEdge, APanelOnTheDocksEdgeStartsAtItsEndOtherwiseCentred) {
    struct Case {
        const char* orientation;
        bool dockHides, panelHides;
        int index;
        bool same;
    } cases[] = {
        {"left", false, false, 1, true},   {"left", false, false, 0, false}, {"left", false, false, 2, false},
        {"LEFT", false, false, 1, true},   {"left", true, false, 1, false},  {"left", true, true, 1, true},
        {"bottom", false, false, 2, true}, {"right", false, false, 4, true}, {"right", true, false, 4, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(sameDockPosition(c.index, c.panelHides, DockPlacement{c.orientation, c.dockHides}), c.same)
            << c.orientation << " dock hides " << c.dockHides << " panel hides " << c.panelHides << " index " << c.index;
}

TEST_F(Options, DockPlacementDefaultsToTheBottomWhenTheDockDomainSaysNothingUsable) {
    DockPlacement none = readDockPlacement(domains);
    EXPECT_EQ(none.orientation, "bottom");
    EXPECT_FALSE(none.autohide);
    domains.domains["com.apple.dock"] = Dictionary{{"orientation", Value::int32(3)}, {"autohide", "yes"}};
    EXPECT_EQ(readDockPlacement(domains).orientation, "bottom");
}

TEST_F(Options, PositionSendsPositionAndCoordinateTogetherAndNothingWhenUnchanged) {
    setDock("left", false);
    controller.onPanelPosition(0);  // already stored
    EXPECT_TRUE(bus.posted().empty());
    controller.onPanelPosition(1);
    controller.onPanelPosition(3);
    EXPECT_EQ(payloads(), (std::vector<Value>{
                              Dictionary{{keys::PanelPosition, Dictionary{{keys::PanelPosition, Value::int32(1)},
                                                                          {keys::PanelCoordinate, Value::real32(0.0f)}}}},
                              Dictionary{{keys::PanelPosition, Dictionary{{keys::PanelPosition, Value::int32(3)},
                                                                          {keys::PanelCoordinate, Value::real32(0.5f)}}}},
                          }));
    EXPECT_EQ(storedDomain()[keys::PanelCoordinate].toFloat(), 0.5f);
}

TEST_F(Options, EachControlStoresAndSendsItsKey) {
    controller.onShowPanel(false);
    controller.onPanelSize(2);
    controller.onPanelSize(2);
    controller.onAutoHidePanel(true);
    controller.onShowStatusItem(true);
    controller.onTurnOnSingleAppMode(true);
    controller.onTurnOffSingleAppModeAction(1);
    EXPECT_EQ(payloads(), (std::vector<Value>{
                              Dictionary{{keys::ShowMenuPanel, false}},
                              Dictionary{{keys::PanelSize, Value::int32(2)}},
                              Dictionary{{keys::AutoHidePanel, true}},
                              Dictionary{{keys::ShowStatusItem, true}},
                              Dictionary{{keys::TurnOnSingleApplicationMode, true}},
                              Dictionary{{keys::ShowAllWhenTurningSingleApplicationModeOff, false}},
                          }));
    EXPECT_EQ(controller.turnOffSingleAppModeAction(), 1);
}

TEST_F(Options, ControllerChangesAreStoredAsFarAsTheyAreValidAndNothingIsSentBack) {
    prefs.setString("2026-11-20", keys::ImportFromBackupDate);
    int shown = 0;
    controller.setControlsChangedHandler([&] { ++shown; });
    controllerChanged(Dictionary{{keys::PanelPosition, Value::int32(2)},
                                 {keys::PanelSize, "large"},            // wrong type: not applied
                                 {keys::PanelCoordinate, Value::int32(1)},
                                 {keys::AutoHidePanel, Value::int32(1)},  // a number is not a boolean here
                                 {keys::TurnOnSingleApplicationMode, true},
                                 {keys::RecentApplications, Array{}},
                                 {keys::LastCopyPathCommand, Value::int32(4)},
                                 {keys::ImportFromBackupDate, true},
                                 {"SomethingNew", true}});
    bus.post({notifications::CorvalisPanelChanged, "someone.else", Dictionary{{keys::PanelSize, Value::int32(1)}}});
    bus.post({notifications::CorvalisPanelChanged, notifications::ControllerObject, std::nullopt});

    Dictionary working = prefs.prefsData();
    EXPECT_EQ(working[keys::PanelPosition].toInt32(), 2);
    EXPECT_EQ(prefs.intForKey(keys::PanelSize), 0);
    EXPECT_EQ(working[keys::PanelCoordinate].toFloat(), 1.0f);
    EXPECT_FALSE(prefs.boolForKey(keys::AutoHidePanel));
    EXPECT_EQ(working[keys::TurnOnSingleApplicationMode].boolean(), true);
    EXPECT_FALSE(working.contains(keys::ImportFromBackupDate));
    EXPECT_FALSE(working.contains("SomethingNew"));
    EXPECT_EQ(shown, 1);
    std::vector<std::string> notices;
    for (const Notification& posted : local.posted()) notices.push_back(posted.name);
    EXPECT_EQ(notices, (std::vector<std::string>{notifications::SingleApplicationModeToggled,
                                                 notifications::RecentItemsChanged}));
    EXPECT_TRUE(payloads().empty());
    EXPECT_EQ(bus.posted().size(), 3u);  // only the three posted by the test
}

TEST(ButtonRows, DragsLandBeforeTheTargetInTheirOwnOrder) {
    struct Case {
        std::vector<int> dragged;
        int target;
        std::vector<int> order;
    } cases[] = {
        {{0}, 2, {1, 0, 2, 3}}, {{3}, 0, {3, 0, 1, 2}}, {{0, 2}, 4, {1, 3, 0, 2}},
        {{2, 0}, 1, {0, 2, 1, 3}}, {{1}, 1, {0, 1, 2, 3}}, {{1}, 2, {0, 1, 2, 3}}, {{7, -1}, 0, {0, 1, 2, 3}},
    };
    for (const Case& c : cases) EXPECT_EQ(orderAfterMove(4, c.dragged, c.target), c.order) << "target " << c.target;
}

TEST(ButtonRows, StoredArraysAreReadAsFarAsTheyMakeSense) {
    struct Case {
        Value stored;
        std::vector<ButtonRow> rows;
    } cases[] = {
        {Value("nonsense"), {{0, true}, {1, true}, {2, true}, {3, true}}},
        {Array{Dictionary{{keys::Color, Value::int32(2)}, {keys::Visible, false}}, Value(true),
               Dictionary{{keys::Color, Value::int32(2)}}, Dictionary{{keys::Color, Value::int32(9)}},
               Dictionary{{keys::Color, Value::int32(1)}, {keys::Visible, true}}},
         {{2, false}, {1, true}, {0, true}, {3, true}}},
        // Nothing shown is not possible: the first comes back.
        {Array{Dictionary{{keys::Color, Value::int32(3)}, {keys::Visible, false}},
               Dictionary{{keys::Color, Value::int32(2)}, {keys::Visible, false}},
               Dictionary{{keys::Color, Value::int32(1)}, {keys::Visible, false}},
               Dictionary{{keys::Color, Value::int32(0)}, {keys::Visible, false}}},
         {{3, true}, {2, false}, {1, false}, {0, false}}},
    };
    for (const Case& c : cases) EXPECT_EQ(buttonRowsFromArray(c.stored), c.rows);
}

TEST_F(Options, TheLastVisibleButtonCannotBeHiddenAndASecondOneFreesIt) {
    prefs.setObject(buttons({{0, true}, {1, false}, {2, false}, {3, false}})[keys::PanelButtons], keys::PanelButtons);
    controller.onConfigurePanel();
    ButtonsSheetController& sheet = controller.buttons();
    QAbstractItemModelTester tester(&sheet, QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_FALSE(sheet.flags(sheet.index(0)) & Qt::ItemIsUserCheckable);
    EXPECT_FALSE(sheet.setData(sheet.index(0), Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_TRUE(bus.posted().empty());
    EXPECT_TRUE(sheet.setData(sheet.index(2), Qt::Checked, Qt::CheckStateRole));
    EXPECT_TRUE(sheet.flags(sheet.index(0)) & Qt::ItemIsUserCheckable);
    EXPECT_TRUE(sheet.flags(sheet.index(2)) & Qt::ItemIsUserCheckable);
    EXPECT_EQ(payloads(), (std::vector<Value>{buttons({{0, true}, {1, false}, {2, true}, {3, false}})}));
}

TEST_F(Options, ButtonsMoveByDropsBetweenRowsOnlyKeepingTheSelectionAndAreSentWhenTheOrderChanged) {
    controller.onConfigureStatusItem();
    ButtonsSheetController& sheet = controller.buttons();
    QAbstractItemModelTester tester(&sheet, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QPersistentModelIndex selected = sheet.index(0);  // Open

    std::unique_ptr<QMimeData> dragged(sheet.mimeData({sheet.index(0)}));
    EXPECT_FALSE(sheet.canDropMimeData(dragged.get(), Qt::MoveAction, -1, -1, sheet.index(2)));  // onto a row
    EXPECT_FALSE(sheet.canDropMimeData(dragged.get(), Qt::CopyAction, 2, 0, {}));
    ASSERT_TRUE(sheet.canDropMimeData(dragged.get(), Qt::MoveAction, 3, 0, {}));
    sheet.dropMimeData(dragged.get(), Qt::MoveAction, 3, 0, {});
    EXPECT_EQ(selected.row(), 2);
    EXPECT_TRUE(sheet.moveUp(0) == false);
    EXPECT_TRUE(sheet.moveDown(3) == false);
    EXPECT_TRUE(sheet.moveDown(2));

    Array expectedFirst = *buttons({{1, true}, {2, true}, {0, true}, {3, true}})[keys::PanelButtons].array();
    Array expectedSecond = *buttons({{1, true}, {2, true}, {3, true}, {0, true}})[keys::PanelButtons].array();
    EXPECT_EQ(payloads(), (std::vector<Value>{Dictionary{{keys::StatusItemButtons, expectedFirst}},
                                              Dictionary{{keys::StatusItemButtons, expectedSecond}}}));
    EXPECT_EQ(Value(prefs.prefsData()[keys::StatusItemButtons]), Value(expectedSecond));
}

TEST_F(Options, AControllerChangeRebuildsTheOpenSheetKeepingTheSelectionByMenu) {
    controller.onConfigurePanel();
    ButtonsSheetController& sheet = controller.buttons();
    QAbstractItemModelTester tester(&sheet, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QPersistentModelIndex special = sheet.index(3);
    controllerChanged(buttons({{3, true}, {0, false}, {1, true}, {2, true}}));
    EXPECT_EQ(special.row(), 0);
    EXPECT_EQ(sheet.rows().at(1), (ButtonRow{0, false}));
    EXPECT_TRUE(payloads().empty());
    controller.onCloseConfigureButtons();
    EXPECT_FALSE(sheet.isOpen());
    controller.onConfigureStatusItem();  // the other key's rows, in place of the panel's
    EXPECT_EQ(special.row(), 3);
}
