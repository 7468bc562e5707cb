#pragma once
// The Quit menu's editor on the Configure Menus sheet: the menu's records as a
// list model (kinds only, no paths), the applications the Quit commands leave
// running (a copy of the groups editor's excluded-applications group, handed back
// after each change), and the options for how the menus show running applications.

#include <functional>
#include <optional>

#include "fileutils/KVOperatingSystem.h"
#include "menus/ExcludedApplicationsList.h"
#include "menus/MenuItemListModel.h"
#include "platform/NotificationCenter.h"

namespace corvalis {

class GroupsController;

// The groups editor as it is now: null until the pane has one.
using GroupsControllerSource = std::function<GroupsController*()>;

// Check boxes on the Quit and Switch tabs: how the menus mark running applications.
struct RunningApplicationMarks {
    // A 64-bit processor marks the application mode; one without marks translated applications,
    // as do systems before 10.7 beside the mode.
    bool showsAppMode = true;
    bool showsTranslated = false;
    static RunningApplicationMarks forThisComputer(const KVOperatingSystem::SystemVersion& system);
};

class ConfigureQuitMenuController : public MenuItemListModel {
    Q_OBJECT

public:
    ConfigureQuitMenuController(CorvalisPreferences& prefs, NotificationCenter& local, GroupsControllerSource groups,
                                BrowserLinkSource browser, QObject* parent = nullptr);
    ~ConfigureQuitMenuController() override;

    void initializePane(bool firstTime) override;
    void updatePane(std::string& report) override;
    void willShowPane() override { _excluded._updatePaths(); }
    void didBeginSheet() override { _excluded._updatePaths(); }
    void sheetWindowDidBecomeMain(bool shownOnSheet) override;

    ExcludedApplicationsList& excludedApplications() { return _excluded; }
    std::string kindTitle(const std::string& kind) const override;

    // The options.
    const RunningApplicationMarks& marks() const { return _marks; }
    bool sortChronologically() const;
    void onSortChronologically(bool on);
    bool option(const char* key) const;
    void onMarkAppMode(bool on);
    void onMarkApplicationsUsingRosetta(bool on);
    // The excluded group's boxes; Hide can be set only while AutoOpen is on.
    bool autoOpen() const;
    bool hide() const;
    void onAutoOpen(bool on);
    void onHide(bool on);
    void onBrowseApplications();

    // The groups editor replaced its groups (the controller's change, an import).
    void onExcludedAppsChanged();

protected:
    std::vector<std::string> fixedKinds() const override;
    plist::Array defaultMenu() const override;

private:
    // The excluded applications stored in the groups: adding and removing go through the groups
    // editor, which keeps the group in name order; every change posts the whole groups.
    class ExcludedGroupList : public ExcludedApplicationsList {
    public:
        ExcludedGroupList(ConfigureQuitMenuController& owner);
        void saveGroup(std::optional<bool> applicationsChanged);

    protected:
        int addApplication(const std::string& path, int index, bool move, bool* alreadyListed) override;
        void removeApplication(int row) override;
        void saveApplications(bool applicationsChanged) override { saveGroup(applicationsChanged); }
        bool savesUnchangedAdditions() const override { return true; }

    private:
        ConfigureQuitMenuController& owner_;
    };

    GroupsController* groups() const { return _groups ? _groups() : nullptr; }
    // A fresh copy of the groups editor's excluded group, shown in the list.
    void copyExcludedGroup();
    void setGroupOption(const char* key, bool on);

    NotificationCenter& _local;
    GroupsControllerSource _groups;
    BrowserLinkSource _browser;
    plist::Dictionary _excludedApplications;
    ExcludedGroupList _excluded;
    RunningApplicationMarks _marks;
    bool _showBackgroundProcesses = true;
    std::optional<NotificationCenter::Token> _observer;
};

}  // namespace corvalis
