#pragma once
// The Switch menu's editor on the Configure Menus sheet: the menu's records as a
// list model, the Switch menu's own excluded applications (the store's array),
// its options, and the notes that say when single application mode or missing
// access for assistive technologies changes what the menu can show.

#include <functional>
#include <map>
#include <optional>

#include "fileutils/KVOperatingSystem.h"
#include "menus/ConfigureQuitMenuController.h"
#include "menus/ExcludedApplicationsList.h"
#include "menus/MenuItemListModel.h"
#include "platform/NotificationCenter.h"

namespace corvalis {

class ConfigureSwitchMenuController : public MenuItemListModel {
    Q_OBJECT

public:
    // Whether assistive technologies may read other applications' windows now.
    using AssistiveAccess = std::function<bool()>;

    ConfigureSwitchMenuController(CorvalisPreferences& prefs, NotificationCenter& local, NotificationCenter& distributed,
                                  AssistiveAccess assistiveAccess, BrowserLinkSource browser,
                                  KVOperatingSystem::SystemVersion system = KVOperatingSystem::current(),
                                  QObject* parent = nullptr);
    ~ConfigureSwitchMenuController() override;

    void initializePane(bool firstTime) override;
    void updatePane(std::string& report) override;
    void willShowPane() override { _excluded._updatePaths(); }
    void willBeginSheet() override;
    void didBeginSheet() override { _excluded._updatePaths(); }
    void didEndSheet() override;
    void sheetWindowDidBecomeMain(bool shownOnSheet) override;

    ExcludedApplicationsList& excludedApplications() { return _excluded; }

    // The options.
    const RunningApplicationMarks& marks() const { return _marks; }
    bool option(const char* key) const;
    bool sortChronologically() const;
    void onSortChronologically(bool on);
    void onReopenApplications(bool on);
    void onShowApplicationWindows(bool on);
    void onMarkAppMode(bool on);
    void onMarkApplicationsUsingRosetta(bool on);
    void onBrowseApplications();

    // The notes, as _synchronizeMessages last decided them.
    bool showsApplicationWindowsCaution() const { return _windowsCaution; }
    bool showsSingleApplicationModeInfo() const { return _singleAppModeInfo; }
    bool showsUniversalAccessWarning() const { return _universalAccessWarning; }
    std::string universalAccessWarningText() const;
    std::string universalAccessButtonTitle() const;
    // The warning's button: the Menus tab closes the sheet and opens the accessibility settings.
    void onOpenUniversalAccess();

    void onSingleApplicationModeToggled();
    void onExcludedAppsChanged(const Notification& notification);

signals:
    // A note appeared or went.
    void messagesChanged();

protected:
    std::vector<std::string> fixedKinds() const override;
    plist::Array defaultMenu() const override;
    std::string extraImage(int row) const override;
    bool isDimmed(int row) const override;
    // The notes depend on whether "Groups" and the windows item are in the menu.
    void itemsAddedOrRearranged() override { _synchronizeMessages(); }
    void itemsRemoved(const plist::Array&, int) override { _synchronizeMessages(); }

private:
    // The store's own list: kept in name order here, sent whole after each change.
    class SwitchExcludedList : public ExcludedApplicationsList {
    public:
        explicit SwitchExcludedList(CorvalisPreferences& prefs);

    protected:
        int addApplication(const std::string& path, int index, bool move, bool* alreadyListed) override;
        void removeApplication(int row) override { removeRow(row); }
        void saveApplications(bool applicationsChanged) override;
    };

    void fetchExcludedApplications();
    bool menuHolds(const char* kind) const;
    bool singleApplicationModeOn() const;
    void _synchronizeGroupsExtraIcon();
    void _synchronizeActiveApplicationWindowsExtraIcon();
    void _synchronizeMessages();

    NotificationCenter& _local;
    NotificationCenter& _distributed;
    AssistiveAccess _assistiveAccess;
    BrowserLinkSource _browser;
    KVOperatingSystem::SystemVersion _system;
    SwitchExcludedList _excluded;
    RunningApplicationMarks _marks;
    std::map<std::string, std::string> _extraIcons;
    bool _assistiveDevicesEnabled = true;
    bool _windowsCaution = false;
    bool _singleAppModeInfo = false;
    bool _universalAccessWarning = false;
    std::optional<NotificationCenter::Token> _excludedObserver;
    std::optional<NotificationCenter::Token> _singleAppModeObserver;
};

}  // namespace corvalis
