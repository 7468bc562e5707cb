#include "menus/ui/QuitMenuPage.h"

#include <QCheckBox>
#include <QVBoxLayout>

#include "controls/LocalizedText.h"
#include "menus/ConfigureQuitMenuController.h"
#include "menus/ui/ExcludedApplicationsBox.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

QuitMenuPage::QuitMenuPage(ConfigureQuitMenuController& controller, QWidget* sheet, QWidget* parent)
    : MenuItemListPage(controller, localized("QuitMenuTable"), sheet, parent), controller_(controller) {
    sortChronologically_ = makeOptionBox("SortChronologically", this,
                                           [this](bool on) { controller_.onSortChronologically(on); });
    markAppMode_ = makeOptionBox("MarkApplicationMode", this, [this](bool on) { controller_.onMarkAppMode(on); });
    markTranslated_ = makeOptionBox("MarkApplicationsUsingRosetta", this,
                                      [this](bool on) { controller_.onMarkApplicationsUsingRosetta(on); });
    excluded_ = new ExcludedApplicationsBox(controller_.excludedApplications(), localized("QuitExcludedApplications"),
                                            localized("QuitExcludedApplicationsList"),
                                            [this] { controller_.onBrowseApplications(); }, sheet, this);
    autoOpen_ = makeOptionBox("ExcludedAutoOpen", excluded_, [this](bool on) {
        controller_.onAutoOpen(on);
        hide_->setEnabled(on);
    });
    hide_ = makeOptionBox("ExcludedHide", excluded_, [this](bool on) { controller_.onHide(on); });
    excluded_->boxLayout()->addWidget(autoOpen_);
    excluded_->boxLayout()->addWidget(hide_);
    QVBoxLayout* side = sideLayout();
    for (QCheckBox* box : {sortChronologically_, markAppMode_, markTranslated_}) side->addWidget(box);
    side->addWidget(excluded_, 1);
    showSettings();
}

void QuitMenuPage::showSettings() {
    showing_ = true;
    sortChronologically_->setChecked(controller_.sortChronologically());
    markAppMode_->setVisible(controller_.marks().showsAppMode);
    markAppMode_->setChecked(controller_.option(keys::MarkApplicationMode));
    markTranslated_->setVisible(controller_.marks().showsTranslated);
    markTranslated_->setChecked(controller_.option(keys::MarkApplicationsUsingRosetta));
    autoOpen_->setChecked(controller_.autoOpen());
    hide_->setChecked(controller_.hide());
    hide_->setEnabled(controller_.autoOpen());
    showing_ = false;
}

}  // namespace corvalis
