#pragma once
// The Options tab: the panel, the status item and single-application mode, and
// the sheet that orders and shows the menu buttons. OptionsController decides
// what is stored and told; this is its view.

#include <QObject>
#include <QPointer>
#include <memory>

#include "groups/OptionsController.h"
#include "pane/PaneController.h"

class QCheckBox;
class QComboBox;
class QDialog;
class QLabel;
class QListView;
class QPushButton;
class QWidget;

namespace corvalis {

class ComKestrovaCorvalis_PrefsPane;

class OptionsTab : public QObject, public PaneController {
    Q_OBJECT

public:
    // Fills `page`; the buttons sheet is window-modal on `window`.
    OptionsTab(CorvalisPreferences& prefs, NotificationCenter& distributed, NotificationCenter& local,
               DomainStore& domains, QWidget* page, QWidget* window, QObject* parent = nullptr);
    ~OptionsTab() override;
    // The pane's Options tab, its buttons sheets among the pane's screenshot views.
    static std::unique_ptr<OptionsTab> create(ComKestrovaCorvalis_PrefsPane& pane);

    void initializePane(bool firstTime) override;

    OptionsController& controller() { return *controller_; }
    // The sheet for "PanelButtons" (panel) or "StatusItemButtons"; shown until closed.
    QDialog* openButtonsSheet(bool panel);
    QDialog* buttonsSheet() const { return sheet_; }
    QListView* buttonsList() const { return buttonsList_; }

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showControls();
    void showEnabledStates();
    QDialog* makeButtonsSheet();
    void moveSelectedButton(int step);

    std::unique_ptr<OptionsController> controller_;
    QWidget* window_;
    QCheckBox* showPanel_ = nullptr;
    QLabel* panelPositionLabel_ = nullptr;
    QComboBox* panelPosition_ = nullptr;
    QLabel* panelSizeLabel_ = nullptr;
    QComboBox* panelSize_ = nullptr;
    QCheckBox* autoHidePanel_ = nullptr;
    QPushButton* configurePanel_ = nullptr;
    QCheckBox* showStatusItem_ = nullptr;
    QLabel* statusItemPositionLabel_ = nullptr;
    QComboBox* statusItemPosition_ = nullptr;
    QPushButton* configureStatusItem_ = nullptr;
    QCheckBox* singleAppMode_ = nullptr;
    QLabel* turnOffActionLabel_ = nullptr;
    QComboBox* turnOffAction_ = nullptr;
    QPointer<QDialog> sheet_;
    QLabel* sheetText_ = nullptr;
    QListView* buttonsList_ = nullptr;
    bool showing_ = false;  // set while controls are set from the store, which is no user's choice
};

}  // namespace corvalis
