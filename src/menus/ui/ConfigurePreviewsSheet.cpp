#include "menus/ui/ConfigurePreviewsSheet.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

#include "controls/LocalizedText.h"
#include "menus/MenusController.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

QValidator::State ExtensionValidator::validate(QString& input, int&) const {
    std::string cleaned;
    if (!formatter_.isPartialStringValid(input.toStdString(), &cleaned)) {
        QApplication::beep();
        return Invalid;
    }
    if (!input.isEmpty()) input = QString::fromStdString(cleaned);
    return Acceptable;
}

ConfigurePreviewsSheet::ConfigurePreviewsSheet(CorvalisPreferences& prefs, ConfigurePreviewsController& controller,
                                               QWidget* window)
    : QDialog(window), prefs_(prefs), controller_(controller) {
    setWindowModality(Qt::WindowModal);
    setWindowTitle(localized("ConfigurePreviews"));
    auto* layout = new QVBoxLayout(this);
    auto addBox = [&](const char* key) {
        auto* box = new QCheckBox(localized(key), this);
        boxes_.emplace_back(key, box);
        layout->addWidget(box);
        connect(box, &QCheckBox::toggled, this, [this, key](bool on) {
            if (showing_) return;
            synchronizeOption(prefs_, key, on);
            if (key == std::string(keys::ShowPreviews)) _enablePreviewOptions(on);
        });
        return box;
    };
    for (const char* key : {keys::ShowPreviews, keys::FramePreviews, keys::ShowTitleAndAuthor,
                            keys::ShowFullPagePreviewsForTextFiles})
        addBox(key);

    auto* grid = new QGridLayout;
    for (std::size_t i = 0; i < ConfigurePreviewsController::kSizeCount; ++i) {
        const PreviewSizeLimits& limits = ConfigurePreviewsController::sizeLimits()[i];
        SizeRow& row = sizes_[i];
        row.caption = new QLabel(localized(limits.captionKey), this);
        row.slider = new QSlider(Qt::Horizontal, this);
        row.slider->setRange(static_cast<int>(limits.minimum), static_cast<int>(limits.maximum));
        row.slider->setAccessibleName(localized(limits.captionKey));
        row.caption->setBuddy(row.slider);
        row.size = new QLabel(this);
        row.minimum = new QLabel(QString::number(limits.minimum, 'f', 0), this);
        row.maximum = new QLabel(QString::number(limits.maximum, 'f', 0), this);
        int line = static_cast<int>(i);
        grid->addWidget(row.caption, line, 0);
        grid->addWidget(row.minimum, line, 1);
        grid->addWidget(row.slider, line, 2);
        grid->addWidget(row.maximum, line, 3);
        grid->addWidget(row.size, line, 4);
        connect(row.slider, &QSlider::valueChanged, this, [this, i](int value) {
            if (!showing_ && controller_.onChangeSize(i, value)) showSize(i, controller_.size(i));
        });
    }
    grid->setColumnStretch(2, 1);
    layout->addLayout(grid);
    restoreSizes_ = new QPushButton(localized("RestoreSizes"), this);
    connect(restoreSizes_, &QPushButton::clicked, this, [this] {
        controller_.onRestoreSizes();
        showSizes();
    });
    layout->addWidget(restoreSizes_, 0, Qt::AlignLeft);

    for (const char* key : {keys::PlayMusic, keys::PlayMovies, keys::DisablePreviewsOnNetworkDisks}) addBox(key);
    QCheckBox* filter = new QCheckBox(localized(keys::EnableFilterExtensions), this);
    boxes_.emplace_back(keys::EnableFilterExtensions, filter);
    layout->addWidget(filter);
    extensions_ = new QLineEdit(this);
    extensions_->setAccessibleName(localized("FilteredExtensions"));
    extensions_->setPlaceholderText(localized("FilteredExtensionsPlaceholder"));
    extensions_->setValidator(new ExtensionValidator(extensions_));
    layout->addWidget(extensions_);
    connect(filter, &QCheckBox::toggled, this, [this](bool on) {
        if (showing_) return;
        extensions_->setEnabled(on);
        controller_.onEnableFilterExtensions(on);
    });
    connect(extensions_, &QLineEdit::textEdited, this,
            [this](const QString& text) { controller_.extensionsTextDidChange(text.toStdString()); });

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* doneButton = buttons->addButton(localized("Done"), QDialogButtonBox::AcceptRole);
    connect(doneButton, &QPushButton::clicked, this, [this] { done(1); });
    layout->addWidget(buttons);
    showSettings();
}

QCheckBox* ConfigurePreviewsSheet::box(const char* key) const {
    for (const auto& [boxKey, box] : boxes_)
        if (std::string(boxKey) == key) return box;
    return nullptr;
}

void ConfigurePreviewsSheet::showSettings() {
    showing_ = true;
    for (const auto& [key, box] : boxes_) box->setChecked(prefs_.boolForKey(key));
    extensions_->setText(QString::fromStdString(controller_.extensionsText()));
    showing_ = false;
    _enablePreviewOptions(prefs_.boolForKey(keys::ShowPreviews));
}

void ConfigurePreviewsSheet::openSheet() {
    if (controller_.prepared()) {
        QString stored = QString::fromStdString(controller_.extensionsText());
        if (extensions_->text() != stored) {
            extensions_->setText(stored);
            extensions_->selectAll();
        }
    } else {
        controller_._initializeConfigurePreviewsSheet();
        showSizes();
    }
    open();
}

void ConfigurePreviewsSheet::showSizes() {
    for (std::size_t i = 0; i < ConfigurePreviewsController::kSizeCount; ++i) showSize(i, controller_.size(i));
}

void ConfigurePreviewsSheet::showSize(std::size_t index, float value) {
    showing_ = true;
    sizes_[index].slider->setValue(static_cast<int>(value));
    showing_ = false;
    std::string points = QString::number(value, 'f', 0).toStdString();
    sizes_[index].size->setText(localizedFormat("PreviewSize", {points, points}));
}

void ConfigurePreviewsSheet::_enablePreviewOptions(bool on) {
    for (const auto& [key, box] : boxes_)
        if (std::string(key) != keys::ShowPreviews) box->setEnabled(on);
    for (const SizeRow& row : sizes_)
        for (QWidget* part : {static_cast<QWidget*>(row.caption), static_cast<QWidget*>(row.slider),
                              static_cast<QWidget*>(row.size), static_cast<QWidget*>(row.minimum),
                              static_cast<QWidget*>(row.maximum)})
            part->setEnabled(on);
    restoreSizes_->setEnabled(on);
    extensions_->setEnabled(on && box(keys::EnableFilterExtensions)->isChecked());
}

}  // namespace corvalis
