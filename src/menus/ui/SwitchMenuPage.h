#pragma once
// The "Switch" tab of the Configure Menus sheet: the Switch menu's table, and
// beside it the menu's options, its own excluded applications, and the notes
// about single application mode and access for assistive technologies (with the
// button that opens the desktop's accessibility settings).

#include "menus/ui/MenuItemListPage.h"

class QCheckBox;
class QPushButton;

namespace corvalis {

class ConfigureSwitchMenuController;
class ExcludedApplicationsBox;

class SwitchMenuPage : public MenuItemListPage {
    Q_OBJECT

public:
    SwitchMenuPage(ConfigureSwitchMenuController& controller, QWidget* sheet, QWidget* parent = nullptr);

    ExcludedApplicationsBox* excludedBox() const { return excluded_; }
    QCheckBox* optionBox(const char* key) const;
    QWidget* windowsCaution() const { return windowsCaution_; }
    QWidget* singleApplicationModeInfo() const { return singleAppModeInfo_; }
    QWidget* universalAccessWarning() const { return universalAccessWarning_; }
    QPushButton* openUniversalAccessButton() const { return openUniversalAccess_; }
    void showSettings() override;

private:
    void showMessages();

    ConfigureSwitchMenuController& controller_;
    std::vector<std::pair<const char*, QCheckBox*>> options_;
    QWidget* windowsCaution_;
    QWidget* singleAppModeInfo_;
    QWidget* universalAccessWarning_;
    QPushButton* openUniversalAccess_;
    ExcludedApplicationsBox* excluded_;
};

}  // namespace corvalis
