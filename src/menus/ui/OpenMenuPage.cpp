#include "menus/ui/OpenMenuPage.h"

#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>

#include "controls/LocalizedText.h"
#include "menus/ConfigureOpenMenuController.h"
#include "menus/ui/ChangeItemAction.h"

namespace corvalis {

OpenMenuPage::OpenMenuPage(ConfigureOpenMenuController& controller, QWidget* sheet, QWidget* parent)
    : MenuItemListPage(controller, localized("OpenMenuTable"), sheet, parent), controller_(controller) {
    hierarchical_ = new QCheckBox(localized("MakeFolderMenusHierarchical"), this);
    turnOffSynchronization_ = new QCheckBox(localized("TurnOffSynchronization"), this);
    turnOffNote_ = new QLabel(localized("TurnOffSynchronizationNote"), this);
    manualNote_ = new QLabel(localized("ManualSynchronizationNote"), this);
    for (QLabel* note : {turnOffNote_, manualNote_}) {
        note->setWordWrap(true);
        note->setEnabled(false);  // drawn as a quiet note
    }
    pageLayout()->addWidget(hierarchical_);
    pageLayout()->addWidget(turnOffSynchronization_);
    pageLayout()->addWidget(turnOffNote_);
    pageLayout()->addWidget(manualNote_);
    connect(hierarchical_, &QCheckBox::toggled, this, [this](bool on) {
        if (on != controller_.hierarchicalFolderMenus()) controller_.onMakeFolderMenusHierarchical(on);
    });
    connect(turnOffSynchronization_, &QCheckBox::toggled, this, [this](bool on) {
        if (on != controller_.synchronizationTurnedOff()) controller_.onTurnOffSynchronization(on);
        showSettings();
    });
    showSettings();
}

void OpenMenuPage::showSettings() {
    hierarchical_->setChecked(controller_.hierarchicalFolderMenus());
    turnOffSynchronization_->setChecked(controller_.synchronizationTurnedOff());
    turnOffNote_->setVisible(controller_.showsSynchronizationNotes());
    manualNote_->setVisible(controller_.showsSynchronizationNotes());
}

void OpenMenuPage::addActions(QMenu* menu) { addChangeItemAction(menu, controller_); }

}  // namespace corvalis
