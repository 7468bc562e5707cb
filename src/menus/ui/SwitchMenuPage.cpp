#include "menus/ui/SwitchMenuPage.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "controls/KVIconServices.h"
#include "controls/LocalizedText.h"
#include "menus/ConfigureSwitchMenuController.h"
#include "menus/ui/ExcludedApplicationsBox.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

// A note: one of the pane's images before a wrapped text, read as that text.
QWidget* noteWidget(const char* image, const QString& text, QWidget* parent) {
    auto* note = new QWidget(parent);
    auto* layout = new QHBoxLayout(note);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* icon = new QLabel(note);
    icon->setPixmap(KVIconServices::loadResource(image).pixmap(16, 16));
    icon->setAlignment(Qt::AlignTop);
    auto* label = new QLabel(text, note);
    label->setWordWrap(true);
    layout->addWidget(icon);
    layout->addWidget(label, 1);
    note->setAccessibleName(text);
    return note;
}

}  // namespace

SwitchMenuPage::SwitchMenuPage(ConfigureSwitchMenuController& controller, QWidget* sheet, QWidget* parent)
    : MenuItemListPage(controller, localized("SwitchMenuTable"), sheet, parent), controller_(controller) {
    QVBoxLayout* side = sideLayout();
    auto addOption = [&](const char* key, const char* title, std::function<void(bool)> changed) {
        QCheckBox* box = makeOptionBox(title, this, std::move(changed));
        options_.emplace_back(key, box);
        return box;
    };
    side->addWidget(addOption(keys::SwitchMenuRunningApplicationsSortAlphabetically, "SortChronologically",
                              [this](bool on) { controller_.onSortChronologically(on); }));
    side->addWidget(addOption(keys::ReopenApplicationsOnSwitch, "ReopenApplicationsOnSwitch",
                              [this](bool on) { controller_.onReopenApplications(on); }));
    side->addWidget(addOption(keys::AddApplicationWindows, "AddApplicationWindows",
                              [this](bool on) { controller_.onShowApplicationWindows(on); }));
    // Under the box it is about, indented like the box's title.
    windowsCaution_ = noteWidget("Caution", localized("ShowApplicationWindowsCaution"), this);
    windowsCaution_->setContentsMargins(style()->pixelMetric(QStyle::PM_IndicatorWidth) +
                                            style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing), 0, 0, 0);
    side->addWidget(windowsCaution_);
    side->addWidget(addOption(keys::SwitchMenuMarkApplicationMode, "MarkApplicationMode",
                              [this](bool on) { controller_.onMarkAppMode(on); }));
    side->addWidget(addOption(keys::SwitchMenuMarkApplicationsUsingRosetta, "MarkApplicationsUsingRosetta",
                              [this](bool on) { controller_.onMarkApplicationsUsingRosetta(on); }));

    excluded_ = new ExcludedApplicationsBox(controller_.excludedApplications(), localized("SwitchExcludedApplications"),
                                            localized("SwitchExcludedApplicationsList"),
                                            [this] { controller_.onBrowseApplications(); }, sheet, this);
    side->addWidget(excluded_, 1);

    singleAppModeInfo_ = noteWidget("Note", localized("SingleApplicationModeInfo"), this);
    side->addWidget(singleAppModeInfo_);
    // The warning's text, with its button under it at the right.
    universalAccessWarning_ = new QWidget(this);
    auto* warning = new QVBoxLayout(universalAccessWarning_);
    warning->setContentsMargins(0, 0, 0, 0);
    warning->addWidget(noteWidget("Caution", QString::fromStdString(controller_.universalAccessWarningText()),
                                  universalAccessWarning_));
    openUniversalAccess_ = new QPushButton(QString::fromStdString(controller_.universalAccessButtonTitle()),
                                           universalAccessWarning_);
    openUniversalAccess_->setAutoDefault(false);
    warning->addWidget(openUniversalAccess_, 0, Qt::AlignRight);
    connect(openUniversalAccess_, &QPushButton::clicked, this, [this] { controller_.onOpenUniversalAccess(); });
    side->addWidget(universalAccessWarning_);
    connect(&controller_, &ConfigureSwitchMenuController::messagesChanged, this, &SwitchMenuPage::showMessages);
    showSettings();
}

QCheckBox* SwitchMenuPage::optionBox(const char* key) const {
    for (const auto& [optionKey, box] : options_)
        if (std::string(optionKey) == key) return box;
    return nullptr;
}

void SwitchMenuPage::showSettings() {
    showing_ = true;
    for (const auto& [key, box] : options_) box->setChecked(controller_.option(key));
    // The box reads as the menu shows them; the key stores the other order.
    optionBox(keys::SwitchMenuRunningApplicationsSortAlphabetically)->setChecked(controller_.sortChronologically());
    optionBox(keys::SwitchMenuMarkApplicationMode)->setVisible(controller_.marks().showsAppMode);
    optionBox(keys::SwitchMenuMarkApplicationsUsingRosetta)->setVisible(controller_.marks().showsTranslated);
    showing_ = false;
    showMessages();
}

void SwitchMenuPage::showMessages() {
    windowsCaution_->setVisible(controller_.showsApplicationWindowsCaution());
    singleAppModeInfo_->setVisible(controller_.showsSingleApplicationModeInfo());
    universalAccessWarning_->setVisible(controller_.showsUniversalAccessWarning());
    table()->viewport()->update();
}

}  // namespace corvalis
