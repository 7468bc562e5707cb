#pragma once
// The Open menu's editor on the Configure Menus sheet: the menu's records as a
// list model, folders added from a panel or dropped from a file manager,
// renamed in place and re-pointed, paths followed when folders move, and every
// change told to the controller and, inside the pane, to the applications browser.

#include <map>
#include <optional>

#include "fileutils/CanonicalPathCache.h"
#include "menus/MenuItemListModel.h"
#include "platform/NotificationCenter.h"

namespace corvalis {


class ConfigureOpenMenuController : public MenuItemListModel {
    Q_OBJECT

public:
    ConfigureOpenMenuController(CorvalisPreferences& prefs, NotificationCenter& local, NotificationCenter& distributed,
                                BrowserLinkSource browser, QObject* parent = nullptr);
    ~ConfigureOpenMenuController() override;

    void initializePane(bool firstTime) override;
    void updatePane(std::string& report) override;
    void willShowPane() override;
    void didBeginSheet() override;
    void sheetWindowDidBecomeMain(bool shownOnSheet) override;

    void onAddItem(const std::string& kind) override;
    void onChangeItem();
    // The Actions entry of onChangeItem: its title, and whether it can be chosen.
    std::string changeItemTitle();
    bool canChangeItem() const;
    std::string showInfoTitle() const;
    void onMakeFolderMenusHierarchical(bool on);
    void onTurnOffSynchronization(bool on);
    bool hierarchicalFolderMenus() const { return _hierarchical; }
    bool synchronizationTurnedOff() const { return _synchronizationOff; }
    // The notes about synchronization show while it is off.
    bool showsSynchronizationNotes() const { return _synchronizationOff; }

    void onOpenMenuItemsChanged(const Notification& notification);

    // Adds folders (a panel asks for them when `paths` is none) at `index`; with
    // `move`, a folder already in the menu moves there.
    void _insertFolders(std::optional<std::vector<std::string>> paths, int index, bool move);
    // Follows moved folders, then drops the duplicates that produced and the separators they leave.
    void _updatePaths(bool save) override;

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
    bool canDropFiles(const std::vector<std::string>& paths) const override;
    bool dropFiles(const std::vector<std::string>& paths, int row) override;
    bool refusesDrops() const override { return _addingFolder || _changingFolder; }

private:
    void _initializeIconsAndPaths();
    void _insertResolvedFolders(const std::vector<std::string>& paths, int index, bool move, bool fromPanel);
    // While the change panel is open its words follow the selected folder's state.
    void _synchronizeOpenPanel();
    void _changeFolder(int row, const std::string& oldPath, const std::vector<std::string>& picked);
    int rowWithPath(const std::string& path, int except = -1) const;
    void synchronizeBrowser(int index, bool isFolder, bool removeDuplicate);
    void postLocal(const char* name, std::optional<plist::Dictionary> userInfo);

    NotificationCenter& _local;
    NotificationCenter& _distributed;
    ApplicationsBrowserLink* browser() const { return _browser ? _browser() : nullptr; }
    BrowserLinkSource _browser;
    std::map<std::string, std::string> _paths;
    std::map<std::string, std::string> _iconPaths;
    bool _showDeveloper = false;
    bool _addingFolder = false;
    bool _changingFolder = false;
    bool _hierarchical = false;
    bool _synchronizationOff = false;
    std::vector<NotificationCenter::Token> _observers;
    CanonicalPathCache _canonicalPaths;
};

// A new folder record for an existing folder: its display name, depths of 2, alias data when it has some.
plist::Dictionary newFolderRecord(const std::string& path);

}  // namespace corvalis
