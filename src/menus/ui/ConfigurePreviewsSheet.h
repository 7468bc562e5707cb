#pragma once
// The Configure Previews sheet: which previews the menus show, six sliders of
// maximum sizes, and the filter of file extensions. ConfigurePreviewsController
// holds the rules; this shows them.

#include <QDialog>
#include <QValidator>
#include <array>

#include "menus/ConfigurePreviewsController.h"
#include "menus/KVExtensionFormatter.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;

namespace corvalis {

class CorvalisPreferences;

// The extension field's typing rules as a Qt validator: refused text beeps.
class ExtensionValidator : public QValidator {
    Q_OBJECT

public:
    using QValidator::QValidator;
    State validate(QString& input, int& position) const override;

private:
    KVExtensionFormatter formatter_;
};

class ConfigurePreviewsSheet : public QDialog {
    Q_OBJECT

public:
    ConfigurePreviewsSheet(CorvalisPreferences& prefs, ConfigurePreviewsController& controller, QWidget* window);

    // onConfigurePreviews: the sizes repaired the first time after a start or an import, then shown.
    void openSheet();
    // The boxes and the field from the settings (after start or an import).
    void showSettings();

    QSlider* slider(std::size_t index) const { return sizes_[index].slider; }
    QLabel* sizeLabel(std::size_t index) const { return sizes_[index].size; }
    QLineEdit* extensionsField() const { return extensions_; }
    QCheckBox* box(const char* key) const;
    QPushButton* restoreSizesButton() const { return restoreSizes_; }

private:
    struct SizeRow {
        QLabel* caption;
        QSlider* slider;
        QLabel* size;
        QLabel* minimum;
        QLabel* maximum;
    };

    void showSizes();
    void showSize(std::size_t index, float value);
    void _enablePreviewOptions(bool on);

    CorvalisPreferences& prefs_;
    ConfigurePreviewsController& controller_;
    std::vector<std::pair<const char*, QCheckBox*>> boxes_;
    std::array<SizeRow, ConfigurePreviewsController::kSizeCount> sizes_{};
    QLineEdit* extensions_;
    QPushButton* restoreSizes_;
    bool showing_ = false;
};

}  // namespace corvalis
