#pragma once
// What the editors of menus that hold files or folders (Open, Special) share
// beyond every menu's rules: paths inserted at the insertion point (from a
// panel or dropped from a file manager, a path already in the menu moved or
// only selected), the Change or Fix panel that re-points a row, paths followed
// when their files move with the duplicates that leaves dropped, and the
// summary line of paths that can't be found. Each editor says how a path is
// accepted and checked, what record it makes and whom it tells.

#include <optional>
#include <string>
#include <vector>

#include "fileutils/CanonicalPathCache.h"
#include "fileutils/browser/OpenMenuPaths.h"
#include "menus/MenuItemListModel.h"

namespace corvalis {

class PathMenuItemListModel : public MenuItemListModel {
    Q_OBJECT

public:
    // The localized texts that name what the editor's paths are (folders, or files and folders).
    struct PathWords {
        const char* addKind;      // the Add pull-down's entry that asks for paths
        const char* addPanel;     // the title of its panel
        const char* changeEntry;  // the Actions entry while the path is valid
        const char* changePanel;  // the title of the change panel while the path is valid
        const char* summary;      // the pane's summary format when paths can't be found
        bool choosesFiles;        // files as well as folders
        bool resolvesAliases;     // the panels answer the files aliases point to
    };

    PathMenuItemListModel(CorvalisPreferences& prefs, const char* menuKey, const char* changeKey,
                          const char* showInfoKey, PathWords words, QObject* parent = nullptr);

    void updatePane(std::string& report) override;
    void willShowPane() override;
    void didBeginSheet() override;
    void sheetWindowDidBecomeMain(bool shownOnSheet) override;

    void onAddItem(const std::string& kind) override;
    void onChangeItem();
    // The Actions entry of onChangeItem: its title, and whether it can be chosen.
    std::string changeItemTitle();
    bool canChangeItem() const;

    // Adds paths (a panel asks for them when `paths` is none) at `index`; with
    // `move`, a path already in the menu moves there.
    void _insertPaths(std::optional<std::vector<std::string>> paths, int index, bool move);
    // Follows moved files, then drops the duplicates that produced and the separators they leave.
    void _updatePaths(bool save) override;

protected:
    // The path the menu would keep for a chosen or dropped one; none when it is refused.
    virtual std::optional<std::string> usablePath(const std::string& path) const = 0;
    virtual plist::Dictionary newPathRecord(const std::string& path) const = 0;
    // Points an existing record at another path.
    virtual void repointRecord(plist::Dictionary& record, const std::string& path) const = 0;
    // Repairs a record whose file moved; true when it changed.
    virtual bool checkPathRecord(plist::Dictionary& record) const = 0;
    // A new or re-pointed row's name opens for typing.
    virtual bool namesOpenForTyping() const { return false; }
    // What others are told: a path repaired in place, rows dropped after a repair,
    // a re-pointed row merged into another that has its path, a row re-pointed.
    virtual void pathRepaired(int row) { (void)row; }
    virtual void pathRowRemoved(const OpenMenuPathChange& change) { (void)change; }
    virtual void mergedIntoRow(const std::string& oldPath, int survivor) { (void)oldPath, (void)survivor; }
    virtual void rowRepointed(int row) { (void)row; }

    bool canDropFiles(const std::vector<std::string>& paths) const override;
    bool dropFiles(const std::vector<std::string>& paths, int row) override;
    bool refusesDrops() const override { return _addingPaths || _changingPath; }

    int rowWithPath(const std::string& path, int except = -1) const;
    // While the change panel is open its words follow the selected row's state.
    void _synchronizeOpenPanel();

private:
    void insertUsablePaths(const std::vector<std::string>& paths, int index, bool move, bool fromPanel);
    void changePath(int row, const std::string& oldPath, const std::vector<std::string>& picked);

    PathWords _words;
    bool _addingPaths = false;
    bool _changingPath = false;
    CanonicalPathCache _canonicalPaths;
};

// "~" and "~/…" with the home folder spelt out.
std::string expandTilde(const std::string& path);

}  // namespace corvalis
