#pragma once
// The Special menu's editor on the Configure Menus sheet: system places and
// commands, each at most once, and files or folders the user adds (kept as
// chosen, never renamed here), with the options that belong to the menu: which
// disks "Volumes" lists, alias resolution and the quick copy-path format.

#include <cstdint>
#include <string>
#include <vector>

#include "menus/PathMenuItemListModel.h"
#include "platform/NotificationCenter.h"
#include "platform/Workspace.h"

namespace corvalis {

// The title key of the iPhoto library entry for the installed version (none installed: `installed` false).
const char* iPhotoLibraryTitleKey(bool installed, std::uint32_t major, std::uint32_t minor);
// The title key of the Aperture library entry: older libraries had their own name.
const char* apertureLibraryTitleKey(bool installed, std::uint32_t major);

class ConfigureSpecialMenuController : public PathMenuItemListModel {
    Q_OBJECT

public:
    // The disk boxes' keys, in their order on the sheet.
    static constexpr const char* kDiskKeys[] = {"ShowInternalDisks", "ShowExternalDisks", "ShowEjectableDisks",
                                                "ShowNetworkDisks", "ShowInactiveDisks"};
    static constexpr int kQuickCopyPathFormats = 6;

    ConfigureSpecialMenuController(CorvalisPreferences& prefs, NotificationCenter& distributed,
                                   const Workspace& workspace = Workspace::shared(), QObject* parent = nullptr);
    ~ConfigureSpecialMenuController() override;

    void initializePane(bool firstTime) override;

    std::string displayNameAt(int row) const override;
    std::string kindTitle(const std::string& kind) const override;
    // Names are never typed here: a double click re-points the row instead.
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    void _onMenuTableViewDoubleClick(int row);

    // The disk options matter only while the menu lists the disks.
    bool showsDiskOptions() const;
    bool showsDisks(const char* key) const;
    void onShowDisks(const char* key, bool on);
    bool resolveAliases() const;
    void onResolveAliases(bool on);
    // The pop-up's entry (0 to 5) whose stored text is the current format; -1 when none is.
    int quickCopyPathCommand() const;
    void onQuickCopyPathCommand(int tag);
    // The text stored for the pop-up's entry `tag`: its four-character code as a decimal number.
    static std::string quickCopyPathCommandText(int tag);

    void onSpecialMenuItemsChanged(const Notification& notification);

protected:
    std::vector<std::string> fixedKinds() const override;
    std::vector<std::string> unavailableKinds() const override;
    std::vector<std::string> alwaysOfferedKinds() const override;
    plist::Array defaultMenu() const override;
    std::string kindPath(const std::string& kind) const override;
    std::optional<std::string> usablePath(const std::string& path) const override;
    plist::Dictionary newPathRecord(const std::string& path) const override;
    void repointRecord(plist::Dictionary& record, const std::string& path) const override;
    bool checkPathRecord(plist::Dictionary& record) const override;

private:
    void chooseLibraryTitles() const;

    NotificationCenter& _distributed;
    const Workspace& _workspace;
    // The title keys of the two photo libraries, chosen by the first title asked for.
    mutable std::string _apertureLibrary;
    mutable std::string _iPhotoLibrary;
    std::optional<NotificationCenter::Token> _observer;
};

}  // namespace corvalis
