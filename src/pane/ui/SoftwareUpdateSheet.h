#pragma once
// The software update sheet: whether and how often the controller checks for new
// versions, "Check Now", and how the last check went. It exists for the pane's
// life and is shown window-modal on the pane's window; UpdatesController holds
// the rules, this only draws them and forwards the user's actions.

#include <QObject>
#include <QPointer>

#include <memory>

#include "pane/UpdatesController.h"

class QCheckBox;
class QComboBox;
class QDialog;
class QLabel;
class QPushButton;

namespace corvalis {

class SoftwareUpdateSheet : public QObject, public UpdatesView {
    Q_OBJECT

public:
    // `distributed` carries "CheckForUpdates" to the controller and its answers back.
    SoftwareUpdateSheet(CorvalisPreferences& prefs, NotificationCenter& distributed, QWidget* window,
                        QObject* parent = nullptr);
    ~SoftwareUpdateSheet() override;

    UpdatesController& controller() { return *controller_; }

    // UpdatesView
    void setAutomaticallyCheckForUpdates(bool checked) override;
    void selectCheckFrequency(int days) override;
    void setCheckFrequencyEnabled(bool enabled) override;
    void setLastCheckAndResult(const UpdateTexts& texts) override;
    void showSoftwareUpdateSheet(const UpdateSheetState& state) override;
    void runLater(std::chrono::milliseconds delay, std::function<void()> action) override;

    QDialog* sheet() const;
    QCheckBox* automaticallyCheckForUpdates() const { return automatically_; }
    QComboBox* checkFrequency() const { return frequency_; }
    QLabel* lastCheck() const { return lastCheck_; }
    QLabel* checkResult() const { return checkResult_; }
    QLabel* caution() const { return caution_; }
    QLabel* turnCorvalisOn() const { return turnOn_; }
    QPushButton* checkNow() const { return checkNow_; }
    QPushButton* done() const { return done_; }

protected:
    // The sheet's locale changed: the date line is written again.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build();

    QPointer<QDialog> sheet_;
    QCheckBox* automatically_ = nullptr;
    QComboBox* frequency_ = nullptr;
    QLabel* lastCheck_ = nullptr;
    QLabel* checkResult_ = nullptr;
    QLabel* caution_ = nullptr;
    QLabel* turnOn_ = nullptr;
    QPushButton* checkNow_ = nullptr;
    QPushButton* done_ = nullptr;
    std::unique_ptr<UpdatesController> controller_;
};

}  // namespace corvalis
