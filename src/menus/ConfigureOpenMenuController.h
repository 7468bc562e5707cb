#pragma once
// The Open menu's editor on the Configure Menus sheet: the menu's records as a
// list model, folders added from a panel or dropped from a file manager,
// renamed in place and re-pointed, paths followed when folders move, and every
// change told to the controller and, inside the pane, to the applications browser.

#include <map>
#include <optional>

#include "menus/PathMenuItemListModel.h"
#include "platform/NotificationCenter.h"

namespace corvalis {


class ConfigureOpenMenuController : public PathMenuItemListModel {
    Q_OBJECT

public:
    ConfigureOpenMenuController(CorvalisPreferences& prefs, NotificationCenter& local, NotificationCenter& distributed,
                                BrowserLinkSource browser, QObject* parent = nullptr);
    ~ConfigureOpenMenuController() override;

    void initializePane(bool firstTime) override;

    void onMakeFolderMenusHierarchical(bool on);
    void onTurnOffSynchronization(bool on);
    bool hierarchicalFolderMenus() const { return _hierarchical; }
    bool synchronizationTurnedOff() const { return _synchronizationOff; }
    // The notes about synchronization show while it is off.
    bool showsSynchronizationNotes() const { return _synchronizationOff; }

    void onOpenMenuItemsChanged(const Notification& notification);

protected:
    std::vector<std::string> fixedKinds() const override;
    std::vector<std::string> unavailableKinds() const override;
    std::vector<std::string> alwaysOfferedKinds() const override;
    plist::Array defaultMenu() const override;
    std::string kindPath(const std::string& kind) const override;
    std::string kindIconPath(const std::string& kind) const override;
    void itemsAddedOrRearranged() override;
    void itemsRemoved(const plist::Array& paths, int index) override;
    bool rename(int row, const std::string& text) override;
    std::optional<std::string> usablePath(const std::string& path) const override;
    plist::Dictionary newPathRecord(const std::string& path) const override;
    void repointRecord(plist::Dictionary& record, const std::string& path) const override;
    bool checkPathRecord(plist::Dictionary& record) const override;
    bool namesOpenForTyping() const override { return true; }
    void pathRepaired(int row) override;
    void pathRowRemoved(const OpenMenuPathChange& change) override;
    void mergedIntoRow(const std::string& oldPath, int survivor) override;
    void rowRepointed(int row) override;

private:
    void _initializeIconsAndPaths();
    void synchronizeBrowser(int index, bool isFolder, bool removeDuplicate);
    void postLocal(const char* name, std::optional<plist::Dictionary> userInfo);

    NotificationCenter& _local;
    NotificationCenter& _distributed;
    ApplicationsBrowserLink* browser() const { return _browser ? _browser() : nullptr; }
    BrowserLinkSource _browser;
    std::map<std::string, std::string> _paths;
    std::map<std::string, std::string> _iconPaths;
    bool _showDeveloper = false;
    bool _hierarchical = false;
    bool _synchronizationOff = false;
    std::vector<NotificationCenter::Token> _observers;
};

// A new folder record for an existing folder: its display name, depths of 2, alias data when it has some.
plist::Dictionary newFolderRecord(const std::string& path);

}  // namespace corvalis
