#pragma once
// The groups controller over preferences in memory, with a recording outline
// that reports selections back as the real one does, applications made on disk
// and Qt's model checker watching every signal.

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QUrl>
#include <set>

#include "groups/GroupTexts.h"
#include "groups/GroupsController.h"
#include "keys/KVKeyCombinationValidator.h"
#include "prefs/NotificationNames.h"
#include "support/FakeRunningApplications.h"
#include "support/IntegrationSupport.h"
#include "support/PrefsFixture.h"
#include "support/RecordingEditorView.h"

namespace corvalis::test {

class RecordingGroupsView : public RecordingView<GroupsView> {
public:
    GroupsController* controller = nullptr;
    std::set<int> expanded;
    bool editing = false;

    void selectRows(const std::vector<EditorRow>& rows) override {
        RecordingView<GroupsView>::selectRows(rows);
        if (controller) controller->setSelectedRows(rows);
    }
    void expandGroup(int group) override {
        RecordingView<GroupsView>::expandGroup(group);
        expanded.insert(group);
    }
    bool isExpanded(int group) const override { return expanded.count(group) > 0; }
    void collapseAll() override { expanded.clear(); }
    bool isEditingName() const override { return editing; }
};

class GroupsTest : public PrefsTest {
protected:
    TempDir dir;
    FakeRunningApplications running;
    InProcessNotificationCenter local;
    KVKeyCombinationValidator validator{prefs};
    RecordingGroupsView view;
    std::unique_ptr<GroupsController> groups;
    std::unique_ptr<QAbstractItemModelTester> tester;

    // An application bundle in the temporary folder.
    std::string app(const std::string& name) {
        std::filesystem::path bundle = dir / (name + ".app");
        if (!std::filesystem::exists(bundle)) makeBundle(dir.path(), name, "com.test." + name);
        return bundle.string();
    }
    static plist::Dictionary member(const std::string& path) {
        return plist::Dictionary{{keys::Name, std::filesystem::path(path).stem().string()}, {keys::Path, path}};
    }
    static plist::Dictionary group(const std::string& name, std::vector<plist::Dictionary> members = {}) {
        plist::Array applications;
        for (auto& record : members) applications.append(record);
        return plist::Dictionary{{keys::Name, name}, {keys::CanBeDeleted, true}, {keys::Applications, applications}};
    }
    // Loads the domain and opens the tab on it; the bus starts empty.
    void open(plist::Dictionary stored) {
        load(stored);
        groups = std::make_unique<GroupsController>(prefs, validator, bus, local, running, view);
        view.controller = groups.get();
        tester = std::make_unique<QAbstractItemModelTester>(groups.get(), QAbstractItemModelTester::FailureReportingMode::Warning);
        groups->initializePane(true);
        bus.clearPosted();
        view.calls.clear();
    }
    void openWithGroups(std::vector<plist::Dictionary> list, bool arranged = false, int arrangeWhat = 0) {
        plist::Array array;
        for (auto& record : list) array.append(record);
        open(plist::Dictionary{{keys::Groups, array},
                               {keys::KeepGroupsAndApplicationsArranged, arranged},
                               {keys::ArrangeWhat, plist::Value::int32(arrangeWhat)}});
    }
    std::vector<std::string> names() {
        std::vector<std::string> result;
        for (int row = 0; row < groups->groupCount(); ++row) result.push_back((*groups->groupAt(row))[keys::Name].stringOr(""));
        return result;
    }
    std::vector<std::string> memberNames(int group) {
        std::vector<std::string> result;
        for (const plist::Value& record : groups->applicationsOf(group).value_or(plist::Array()))
            result.push_back(record[keys::Name].stringOr(""));
        return result;
    }
    // The user info of each post to the controller, in order: { change key: payload }.
    std::vector<plist::Dictionary> posts() {
        std::vector<plist::Dictionary> result;
        for (const Notification& posted : bus.posted())
            if (posted.userInfo) result.push_back(*posted.userInfo);
        return result;
    }
    std::vector<std::string> postedKeys() {
        std::vector<std::string> result;
        for (const plist::Dictionary& info : posts()) result.push_back(info.keys().front());
        return result;
    }
    QModelIndex groupIndex(int group) { return groups->index(group, 0); }
    QModelIndex memberIndex(int group, int row) { return groups->index(row, 0, groupIndex(group)); }
    static QMimeData* files(const std::vector<std::string>& paths) {
        auto* data = new QMimeData;
        QList<QUrl> urls;
        for (const std::string& path : paths) urls << QUrl::fromLocalFile(QString::fromStdString(path));
        data->setUrls(urls);
        return data;
    }
};

}  // namespace corvalis::test
