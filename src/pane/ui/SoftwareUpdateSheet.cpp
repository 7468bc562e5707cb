#include "pane/ui/SoftwareUpdateSheet.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

#include "controls/LocalizedText.h"

namespace corvalis {

namespace {
constexpr int kCautionSize = 32;
}  // namespace

SoftwareUpdateSheet::SoftwareUpdateSheet(CorvalisPreferences& prefs, NotificationCenter& distributed, QWidget* window,
                                         QObject* parent)
    : QObject(parent), sheet_(new QDialog(window)) {
    build();
    controller_ = std::make_unique<UpdatesController>(prefs, distributed, *this);
}

SoftwareUpdateSheet::~SoftwareUpdateSheet() {
    // The controller goes first: it stops listening before its view disappears.
    controller_.reset();
    delete sheet_;
}

QDialog* SoftwareUpdateSheet::sheet() const { return sheet_; }

void SoftwareUpdateSheet::build() {
    QDialog* sheet = sheet_;
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setWindowTitle(localized("SoftwareUpdate"));
    sheet->installEventFilter(this);
    auto* layout = new QVBoxLayout(sheet);

    auto* title = new QLabel(QStringLiteral("<b>%1</b>").arg(localized("SoftwareUpdate").toHtmlEscaped()), sheet);
    layout->addWidget(title);

    auto* settings = new QHBoxLayout;
    automatically_ = new QCheckBox(localized("AutomaticallyCheckForUpdates"), sheet);
    frequency_ = new QComboBox(sheet);
    // A combo box's accessible name comes from its label (one set in code is not used), so it has one.
    auto* frequencyLabel = new QLabel(localized("CheckFrequency"), sheet);
    frequencyLabel->setBuddy(frequency_);
    frequency_->addItem(localized("CheckDaily"), 1);
    frequency_->addItem(localized("CheckWeekly"), 7);
    frequency_->addItem(localized("CheckMonthly"), 30);
    settings->addWidget(automatically_);
    settings->addWidget(frequencyLabel);
    settings->addWidget(frequency_);
    settings->addStretch(1);
    layout->addLayout(settings);

    lastCheck_ = new QLabel(sheet);
    checkResult_ = new QLabel(sheet);
    checkResult_->setWordWrap(true);
    layout->addWidget(lastCheck_);
    layout->addWidget(checkResult_);

    auto* notice = new QHBoxLayout;
    caution_ = new QLabel(sheet);
    caution_->setPixmap(QIcon(QStringLiteral(":/images/Caution.svg")).pixmap(kCautionSize, kCautionSize));
    caution_->setAccessibleName(localized("CautionImage"));
    turnOn_ = new QLabel(localized("TurnCorvalisOn"), sheet);
    turnOn_->setWordWrap(true);
    notice->addWidget(caution_, 0, Qt::AlignTop);
    notice->addWidget(turnOn_, 1);
    layout->addLayout(notice);

    auto* buttons = new QHBoxLayout;
    checkNow_ = new QPushButton(localized("CheckNow"), sheet);
    done_ = new QPushButton(localized("Done"), sheet);
    done_->setDefault(true);
    buttons->addWidget(checkNow_);
    buttons->addStretch(1);
    buttons->addWidget(done_);
    layout->addLayout(buttons);

    // Only the user's own choices are stored: the controller's updates of the controls are made
    // with signals blocked. State changes, not clicks, so a screen reader's toggle counts too.
    connect(automatically_, &QCheckBox::toggled, this,
            [this](bool checked) { controller_->onAutomaticallyCheckForUpdates(checked); });
    connect(frequency_, &QComboBox::currentIndexChanged, this,
            [this](int index) { controller_->onCheckFrequency(frequency_->itemData(index).toInt()); });
    connect(checkNow_, &QPushButton::clicked, this, [this] { controller_->onCheckNow(); });
    connect(done_, &QPushButton::clicked, sheet, &QDialog::accept);
}

void SoftwareUpdateSheet::setAutomaticallyCheckForUpdates(bool checked) {
    QSignalBlocker quiet(automatically_);
    automatically_->setChecked(checked);
}

void SoftwareUpdateSheet::selectCheckFrequency(int days) {
    QSignalBlocker quiet(frequency_);
    frequency_->setCurrentIndex(frequency_->findData(days));
}

void SoftwareUpdateSheet::setCheckFrequencyEnabled(bool enabled) { frequency_->setEnabled(enabled); }

void SoftwareUpdateSheet::setLastCheckAndResult(const UpdateTexts& texts) {
    lastCheck_->setText(QString::fromStdString(texts.lastCheck));
    checkResult_->setText(QString::fromStdString(texts.checkResult));
}

void SoftwareUpdateSheet::showSoftwareUpdateSheet(const UpdateSheetState& state) {
    automatically_->setEnabled(state.checkboxEnabled);
    checkNow_->setEnabled(state.checkNowEnabled);
    frequency_->setEnabled(state.frequencyEnabled);
    // A disabled label draws in the palette's disabled text colour.
    lastCheck_->setEnabled(state.textsEnabled);
    checkResult_->setEnabled(state.textsEnabled);
    caution_->setVisible(state.showTurnOnNotice);
    turnOn_->setVisible(state.showTurnOnNotice);
    // Qt announces no time zone change; writing the date again on each showing keeps it current.
    controller_->_fillLastCheckAndResult();
    if (!sheet_->isVisible()) sheet_->open();
}

void SoftwareUpdateSheet::runLater(std::chrono::milliseconds delay, std::function<void()> action) {
    QTimer::singleShot(delay, this, std::move(action));
}

bool SoftwareUpdateSheet::eventFilter(QObject* watched, QEvent* event) {
    if (controller_ && event->type() == QEvent::LocaleChange && watched == sheet_)
        controller_->onCheckForUpdatesFormatChanged();
    return QObject::eventFilter(watched, event);
}

}  // namespace corvalis
