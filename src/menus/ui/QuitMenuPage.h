#pragma once
// The "Quit" tab of the Configure Menus sheet: the Quit menu's table, and beside
// it the options for how running applications are listed and the applications
// the Quit commands leave running, with their open-automatically boxes.

#include "menus/ui/MenuItemListPage.h"

class QCheckBox;

namespace corvalis {

class ConfigureQuitMenuController;
class ExcludedApplicationsBox;

class QuitMenuPage : public MenuItemListPage {
    Q_OBJECT

public:
    QuitMenuPage(ConfigureQuitMenuController& controller, QWidget* sheet, QWidget* parent = nullptr);

    ExcludedApplicationsBox* excludedBox() const { return excluded_; }
    QCheckBox* sortChronologicallyBox() const { return sortChronologically_; }
    QCheckBox* markAppModeBox() const { return markAppMode_; }
    QCheckBox* markTranslatedBox() const { return markTranslated_; }
    QCheckBox* autoOpenBox() const { return autoOpen_; }
    QCheckBox* hideBox() const { return hide_; }
    void showSettings() override;

private:
    ConfigureQuitMenuController& controller_;
    QCheckBox* sortChronologically_;
    QCheckBox* markAppMode_;
    QCheckBox* markTranslated_;
    ExcludedApplicationsBox* excluded_;
    QCheckBox* autoOpen_;
    QCheckBox* hide_;
};

}  // namespace corvalis
