#pragma once
// The "Special" tab of the Configure Menus sheet: the Special menu's table with
// its Change or Fix entry (a double click or Return opens the same panel), the disk
// options shown while the menu lists the disks, alias resolution and the quick
// copy-path format.

#include <utility>
#include <vector>

#include "menus/ui/MenuItemListPage.h"

class QCheckBox;
class QComboBox;
class QGroupBox;

namespace corvalis {

class ConfigureSpecialMenuController;

class SpecialMenuPage : public MenuItemListPage {
    Q_OBJECT

public:
    SpecialMenuPage(ConfigureSpecialMenuController& controller, QWidget* sheet, QWidget* parent = nullptr);

    QGroupBox* volumesOptions() const { return volumesOptions_; }
    QCheckBox* diskBox(const char* key) const;
    QCheckBox* resolveAliasesBox() const { return resolveAliases_; }
    QComboBox* quickCopyPathCommand() const { return quickCopyPathCommand_; }
    void showSettings() override;

protected:
    void addActions(QMenu* menu) override;

private:
    void showDiskOptions();

    ConfigureSpecialMenuController& controller_;
    QGroupBox* volumesOptions_;
    std::vector<std::pair<const char*, QCheckBox*>> diskBoxes_;
    QCheckBox* resolveAliases_;
    QComboBox* quickCopyPathCommand_;
    // While the settings are being shown the controls store nothing.
};

// The icon of a Special menu row: the file's own for a path, else the theme's image of the place or command.
QVariant specialMenuItemIcon(const std::string& path, const std::string& kind);

}  // namespace corvalis
