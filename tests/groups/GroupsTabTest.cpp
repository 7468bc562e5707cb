// The real Groups tab in the real pane, offscreen.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QImage>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QTabWidget>
#include <QTest>
#include <QUrl>

#include "controls/KVServicesBar.h"
#include "controls/KVTableView.h"
#include "groups/GroupOptions.h"
#include "groups/ui/GroupIcons.h"
#include "groups/ui/GroupOptionsBox.h"
#include "groups/ui/GroupsTab.h"
#include "keys/KeyStrings.h"
#include "keys/KeysFixture.h"
#include "keys/ui/KVKeyCombinationTextField.h"
#include "text/Localization.h"
#include "pane/ui/CorvalisPane.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "prefs/NotificationNames.h"
#include "plist/PlistIO.h"
#include "schema/PreferenceKeys.h"
#include "support/IntegrationSupport.h"

using namespace corvalis;
using namespace corvalis::plist;

namespace {

class GroupsTabTest : public ::testing::Test {
protected:
    test::TempDir dir;
    test::ScopedEnv prefsDir{"CORVALIS_PREFERENCES_DIR", (dir / "prefs").string()};
    test::ScopedEnv config{"XDG_CONFIG_HOME", (dir / "config").string()};
    std::unique_ptr<QMainWindow> window;
    std::unique_ptr<ComKestrovaCorvalis_PrefsPane> pane;
    KVOutlineView* outline = nullptr;
    GroupsController* groups = nullptr;

    std::string app(const std::string& name) { return test::makeBundle(dir.path(), name, "com.test." + name).string(); }

    void open(const Array& stored) {
        std::filesystem::create_directories(dir / "prefs");
        test::writeFile(dir / "prefs" / "com.kestrova.Corvalis.plist",
                        toXml(Dictionary{{keys::Groups, stored}, {keys::KeepGroupsAndApplicationsArranged, false}, {keys::CheckForUpdatesMaxVersion, "999"}}));
        window = std::make_unique<QMainWindow>();
        pane = std::make_unique<ComKestrovaCorvalis_PrefsPane>(window.get());
        window->setCentralWidget(pane->loadMainView());
        window->resize(800, 600);
        window->show();
        pane->showScreenshotView("tab-Groups");
        outline = pane->page("Groups")->findChild<KVOutlineView*>();
        ASSERT_TRUE(outline);
        groups = qobject_cast<GroupsController*>(outline->model());
    }
    GroupOptionsBox* box() { return pane->page("Groups")->findChild<GroupOptionsBox*>(); }
    QAction* addMenuAction(const QString& text) {
        for (QAction* action : pane->page("Groups")->findChild<KVServicesBar*>()->addButton()->menu()->actions())
            if (action->text() == text) return action;
        return nullptr;
    }
    static Dictionary group(const std::string& name, const std::vector<std::string>& paths = {}) {
        Array members;
        for (const std::string& path : paths) members.append(Dictionary{{keys::Name, "x"}, {keys::Path, path}});
        return Dictionary{{keys::Name, name}, {keys::CanBeDeleted, true}, {keys::Applications, members}};
    }
};

}  // namespace

TEST_F(GroupsTabTest, AddAndDuplicateGroupsFromTheAddMenu) {
    open(Array{group("Work", {app("Mail")})});
    ASSERT_EQ(groups->groupCount(), 1);
    outline->setCurrentIndex(groups->index(0, 0));
    addMenuAction("Duplicate Group")->trigger();
    QTest::qWait(150);  // the copy's name opens for typing; the next action waits for it to end
    addMenuAction("New Group")->trigger();
    QTest::qWait(150);
    ASSERT_EQ(groups->groupCount(), 3);
    EXPECT_EQ((*groups->groupAt(1))[keys::Name].stringOr(""), "Work copy");
    EXPECT_EQ(groups->applicationsOf(1)->size(), 1u);
    EXPECT_EQ((*groups->groupAt(2))[keys::Name].stringOr(""), "Group 3");
}

TEST_F(GroupsTabTest, DeleteKeyAsksBeforeDeletingAGroupWithMembers) {
    open(Array{group("Work", {app("Mail")}), group("Empty")});
    outline->setFocus();
    outline->setCurrentIndex(groups->index(0, 0));
    QTest::keyClick(outline, Qt::Key_Delete);
    auto* question = window->findChild<QMessageBox*>();
    ASSERT_TRUE(question && question->isVisible());
    question->buttons().back()->click();  // Cancel
    EXPECT_EQ(groups->groupCount(), 2);
    outline->setCurrentIndex(groups->index(1, 0));
    QTest::keyClick(outline, Qt::Key_Delete);
    EXPECT_EQ(groups->groupCount(), 1);
}

TEST_F(GroupsTabTest, MembersDragBetweenGroupsAndFilesDropIn) {
    std::string mail = app("Mail"), notes = app("Notes");
    open(Array{group("A", {mail}), group("B")});
    QModelIndex member = groups->index(0, 0, groups->index(0, 0));
    std::unique_ptr<QMimeData> drag(groups->mimeData({member}));
    ASSERT_TRUE(groups->dropMimeData(drag.get(), Qt::CopyAction, 0, 0, groups->index(1, 0)));
    EXPECT_EQ(groups->rowCount(groups->index(0, 0)), 1);
    EXPECT_EQ(groups->rowCount(groups->index(1, 0)), 1);
    EXPECT_TRUE(outline->isExpanded(groups->index(1, 0)));
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QString::fromStdString(notes))});
    ASSERT_TRUE(groups->dropMimeData(&files, Qt::MoveAction, -1, 0, groups->index(1, 0)));
    EXPECT_EQ(groups->index(0, 0, groups->index(1, 0)).data().toString(), "Notes");
    // The selection follows what was dropped, and never mixes groups with members.
    outline->selectionModel()->select(groups->index(0, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    for (const EditorRow& row : groups->selectedRows()) EXPECT_GE(row.group, 0);
}

// The outline draws a drop where the model puts it: between members unless they are kept
// arranged (then onto their group), above the first member for a drop onto an expanded group,
// onto a collapsed one, and below everything for a group dropped on the empty area.
TEST_F(GroupsTabTest, TheDropIndicatorShowsWhereTheDropLands) {
    std::string mail = app("Mail"), notes = app("Notes");
    open(Array{group("B", {mail}), group("A", {mail, notes})});
    QModelIndex b = groups->index(0, 0), a = groups->index(1, 0);
    outline->expand(a);
    std::unique_ptr<QMimeData> member(groups->mimeData({groups->index(0, 0, b)})), dragged(groups->mimeData({b}));
    auto line = [this](const QModelIndex& index, bool below) {
        QRect row = outline->visualRect(index);
        return QRect(row.left(), below ? row.bottom() + 1 : row.top(), row.width(), 0);
    };
    QRect end = line(groups->index(1, 0, a), true);
    end.setLeft(outline->visualRect(a).left());
    struct Case {
        bool arranged;
        QMimeData* data;
        int row;
        QModelIndex parent;
        QRect expected;
    } cases[] = {{false, member.get(), 1, a, line(groups->index(1, 0, a), false)},
                 {false, member.get(), -1, a, line(groups->index(0, 0, a), false)},
                 {false, member.get(), 1, b, outline->visualRect(b)},
                 {false, dragged.get(), -1, {}, end},
                 {true, member.get(), 1, a, outline->visualRect(a)}};
    for (const Case& c : cases) {
        if (c.arranged && !groups->keepAppsArranged())
            for (QAction* action : pane->page("Groups")->findChild<KVServicesBar*>()->actionButton()->menu()->actions())
                if (action->text() == "Keep Applications Arranged") action->trigger();
        ASSERT_EQ(groups->keepAppsArranged(), c.arranged);
        EXPECT_EQ(outline->dropIndicatorRect(c.data, c.row, c.parent), c.expected) << c.arranged << " " << c.row;
    }
}

TEST_F(GroupsTabTest, ArrangementMenuAndCustomIconFromAPng) {
    open(Array{group("b"), group("a")});
    QMenu* actions = pane->page("Groups")->findChild<KVServicesBar*>()->actionButton()->menu();
    for (QAction* action : actions->actions())
        if (action->text() == "Keep Groups Arranged") action->trigger();
    EXPECT_EQ(groups->index(0, 0).data().toString(), "a");

    QImage image(40, 20, QImage::Format_ARGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(QString::fromStdString((dir / "icon.png").string())));
    outline->setCurrentIndex(groups->index(0, 0));
    box()->chooseIcon(box()->iconMenu()->count() - 1);
    auto* dialog = window->findChild<QFileDialog*>();
    ASSERT_TRUE(dialog);
    dialog->selectFile(QString::fromStdString((dir / "icon.png").string()));
    QMetaObject::invokeMethod(dialog, "accept");
    Dictionary record = *groups->groupAt(0);
    EXPECT_EQ(record[keys::Icon].stringOr(""), "Custom 1");
    ASSERT_TRUE(record[keys::IconData].data());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(record[keys::IconData].data()->data()), 4), "icns");
    EXPECT_FALSE(groups->index(0, 0).data(GroupsController::IconDataRole).toByteArray().isEmpty());
}

// A chosen file that gives no image of its own (too big, or icon data that does not decode)
// falls back to its file's icon, or to no icon; the group never keeps the icon it had.
TEST_F(GroupsTabTest, AnUnusableIconFileReplacesTheOldIconWithItsFileIconOrNone) {
    QImage red(16, 16, QImage::Format_ARGB32);
    red.fill(Qt::red);
    QByteArray old = GroupIcons::encodeIcns(red);
    QImage huge(GroupIcons::kMaxSide + 1, 8, QImage::Format_RGB32);
    huge.fill(Qt::blue);
    ASSERT_TRUE(huge.save(QString::fromStdString((dir / "huge.png").string())));
    test::writeFile(dir / "broken.icns", std::string("icns\x00\x00\x00\x08", 8));
    for (const char* name : {"huge.png", "broken.icns"}) {
        Dictionary custom = group("a");
        custom.set(keys::Icon, std::string("Custom 1"));
        custom.set(keys::IconData, Data(old.begin(), old.end()));
        open(Array{custom});
        outline->setCurrentIndex(groups->index(0, 0));
        box()->chooseIcon(box()->iconMenu()->count() - 1);
        auto* dialog = window->findChild<QFileDialog*>();
        ASSERT_TRUE(dialog);
        dialog->selectFile(QString::fromStdString((dir / name).string()));
        QMetaObject::invokeMethod(dialog, "accept");
        Dictionary record = *groups->groupAt(0);
        std::string icon = record[keys::Icon].stringOr("?");
        if (const Data* data = record[keys::IconData].data()) {
            EXPECT_NE(QByteArray(reinterpret_cast<const char*>(data->data()), static_cast<qsizetype>(data->size())), old) << name;
            EXPECT_NE(icon.find("Custom"), std::string::npos) << name;
        } else {
            EXPECT_EQ(icon, "") << name;
        }
        EXPECT_EQ(pane->prefs().getOpenPanelPathForKey(keys::AddFileFolderPath), dir.path().string()) << name;
    }
}

// On the session bus: adding a group tells the controller of the groups, then of the group's
// disabled hot key; the controller's "GroupsChanged" replaces the groups in the open window.
TEST_F(GroupsTabTest, GroupsTravelOverTheBusBothWays) {
    open(Array{group("Work")});
    DBusNotificationCenter controller;
    std::vector<std::string> heard;
    controller.addObserver("", notifications::PaneObject, [&](const Notification& n) {
        if (n.userInfo) heard.push_back(n.userInfo->keys().front());
    });
    QTest::qWait(300);  // what the pane told the controller while opening
    heard.clear();
    groups->onAddGroup();
    ASSERT_TRUE(test::waitUntil([&] { return heard.size() >= 2; }, 5000));
    EXPECT_EQ(heard, (std::vector<std::string>{changes::ChangeGroups, changes::ChangeKeyboardShortcut}));

    controller.post(Notification{notifications::GroupsChanged, notifications::ControllerObject,
                                 Dictionary{{changes::ChangeGroups, Dictionary{{keys::Groups, Array{group("From the controller")}}}}}});
    ASSERT_TRUE(test::waitUntil([&] { return groups->groupCount() == 1 && groups->index(0, 0).data().toString() == "From the controller"; }, 5000));
}

TEST_F(GroupsTabTest, AHotKeyIsRecordedAndOneTakenByAMenuIsRefused) {
    test::ScopedLayout us{"us"};
    open(Array{group("Work")});
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    outline->setCurrentIndex(groups->index(0, 0));
    box()->enableShortcut()->setChecked(true);
    KVKeyCombinationTextField* field = box()->keyCombinationField();
    ASSERT_TRUE(field->isEnabled());
    auto press = [&](int key, std::uint32_t evdev, Qt::KeyboardModifiers held) {
        field->setFocus();
        QKeyEvent event(QEvent::KeyPress, key, held, evdev + 8, 0, 0);
        QApplication::sendEvent(field, &event);
    };
    auto recorded = [&] { return KVKeyCombination::fromValue((*groups->groupAt(0))[keys::KeyboardShortcut]); };
    press(Qt::Key_K, 37, Qt::MetaModifier);
    EXPECT_EQ(recorded(), KVKeyCombination(0, 40, modifiers::Command));
    press(Qt::Key_O, 24, Qt::ShiftModifier | Qt::ControlModifier);  // the Open menu's own hot key
    EXPECT_EQ(recorded(), KVKeyCombination(0, 40, modifiers::Command));
    auto* alert = window->findChild<QMessageBox*>();
    ASSERT_TRUE(alert && alert->isVisible());
    EXPECT_EQ(alert->informativeText().toStdString(), LocalizedString(keystrings::ChooseAnotherCombination));
    alert->done(0);
}

TEST_F(GroupsTabTest, SwitchingToTheApplicationsTabMendsItsKeyboardLoop) {
    open(Array{});
    QWidget* applications = pane->page(tabs::Applications);
    auto* list = applications->findChild<KVTableView*>();
    auto* bar = applications->findChild<KVServicesBar*>();
    QWidget::setTabOrder(bar->actionButton(), list);  // as if the list had joined the chain last
    pane->tabs()->setCurrentWidget(applications);
    QWidget* next = list->nextInFocusChain();
    while (list->isAncestorOf(next)) next = next->nextInFocusChain();  // past its viewport and headers
    EXPECT_EQ(next, bar->addButton());
}
