#pragma once
// The "Open" tab of the Configure Menus sheet: the Open menu's table with its
// Change or Fix entry, and the folder menus' two check boxes with their notes.

#include "menus/ui/MenuItemListPage.h"

class QCheckBox;
class QLabel;

namespace corvalis {

class ConfigureOpenMenuController;

class OpenMenuPage : public MenuItemListPage {
    Q_OBJECT

public:
    OpenMenuPage(ConfigureOpenMenuController& controller, QWidget* sheet, QWidget* parent = nullptr);

    QCheckBox* hierarchicalBox() const { return hierarchical_; }
    QCheckBox* turnOffSynchronizationBox() const { return turnOffSynchronization_; }
    void showSettings() override;

protected:
    void addActions(QMenu* menu) override;

private:
    ConfigureOpenMenuController& controller_;
    QCheckBox* hierarchical_;
    QCheckBox* turnOffSynchronization_;
    QLabel* turnOffNote_;
    QLabel* manualNote_;
};

}  // namespace corvalis
