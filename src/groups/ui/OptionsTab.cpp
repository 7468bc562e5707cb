#include "groups/ui/OptionsTab.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "controls/KVIconServices.h"
#include "controls/LocalizedText.h"
#include "pane/PaneControllers.h"
#include "pane/ui/CorvalisPane.h"
#include "platform/FileDomainStore.h"
#include "platform/InProcessNotificationCenter.h"

namespace corvalis {

namespace {

// Each row shows the colour image of its button before the menu's name.
class ButtonImageDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        QIcon image = KVIconServices::loadResource(index.data(ButtonsSheetController::ColorImageRole).toString());
        if (image.isNull()) return;
        option->icon = image;
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationSize = QSize(16, 16);
    }
};

QComboBox* popUp(const char* name, std::initializer_list<const char*> items, QWidget* parent) {
    auto* combo = new QComboBox(parent);
    for (const char* item : items) combo->addItem(localized(item));
    combo->setAccessibleName(localized(name));
    return combo;
}

QCheckBox* checkBox(const char* text, QWidget* parent) {
    auto* box = new QCheckBox(localized(text), parent);
    box->setAccessibleName(box->text().remove('&'));
    return box;
}

// A pop-up with its label on the next row of `grid`; the label names it for screen readers.
QComboBox* addPopUpRow(QGridLayout* grid, const char* name, std::initializer_list<const char*> items, QLabel** label) {
    QWidget* parent = grid->parentWidget();
    QComboBox* combo = popUp(name, items, parent);
    *label = new QLabel(localized(name), parent);
    (*label)->setBuddy(combo);
    int row = grid->rowCount();
    grid->addWidget(*label, row, 0);
    grid->addWidget(combo, row, 1);
    return combo;
}

// A titled box whose first row is its switch, with the box's configure button (if any) at the right.
QGridLayout* section(const char* title, QCheckBox** toggle, const char* toggleText, QPushButton** configure,
                     const char* configureName, QWidget* parent) {
    auto* box = new QGroupBox(localized(title), parent);
    parent->layout()->addWidget(box);
    auto* grid = new QGridLayout(box);
    *toggle = checkBox(toggleText, box);
    grid->addWidget(*toggle, 0, 0, 1, 2);
    if (configure) {
        *configure = new QPushButton(localized("ConfigureButtons"), box);
        (*configure)->setAccessibleName(localized(configureName));
        grid->addWidget(*configure, 0, 2, Qt::AlignRight);
    }
    grid->setColumnStretch(2, 1);
    return grid;
}

}  // namespace

OptionsTab::OptionsTab(CorvalisPreferences& prefs, NotificationCenter& distributed, NotificationCenter& local,
                       DomainStore& domains, QWidget* page, QWidget* window, QObject* parent)
    : QObject(parent),
      controller_(std::make_unique<OptionsController>(prefs, distributed, local, domains)),
      window_(window ? window : page->window()) {
    auto* pageLayout = page->layout() ? page->layout() : new QVBoxLayout(page);
    auto* content = new QWidget(page);
    pageLayout->addWidget(content);
    auto* layout = new QVBoxLayout(content);

    QGridLayout* panel = section("MenuPanel", &showPanel_, "ShowMenuPanel", &configurePanel_, "ConfigurePanelButtons", content);
    panelPosition_ = addPopUpRow(panel, "PanelPositionLabel", {"PanelTop", "PanelLeft", "PanelBottom", "PanelRight"},
                                 &panelPositionLabel_);
    panelSize_ = addPopUpRow(panel, "PanelSizeLabel", {"PanelSmall", "PanelMedium", "PanelLarge"}, &panelSizeLabel_);
    autoHidePanel_ = checkBox("AutoHidePanel", panel->parentWidget());
    panel->addWidget(autoHidePanel_, panel->rowCount(), 1, 1, 2);

    QGridLayout* status = section("StatusItem", &showStatusItem_, "ShowStatusItem", &configureStatusItem_,
                                  "ConfigureStatusItemButtons", content);
    statusItemPosition_ = addPopUpRow(status, "StatusItemPositionLabel", {"StatusItemLeft", "StatusItemRight"},
                                      &statusItemPositionLabel_);
    // Only where applications can place their status item; elsewhere the layout closes up.
    statusItemPositionLabel_->setVisible(OptionsController::statusItemPositionShown());
    statusItemPosition_->setVisible(OptionsController::statusItemPositionShown());

    QGridLayout* single = section("SingleApplicationMode", &singleAppMode_, "TurnOnSingleApplicationMode", nullptr,
                                  nullptr, content);
    turnOffAction_ = addPopUpRow(single, "TurnOffSingleAppModeLabel", {"ShowAllApplications", "KeepOthersHidden"},
                                 &turnOffActionLabel_);
    layout->addStretch(1);

    auto whenUser = [this](auto action) {
        return [this, action](auto value) {
            if (!showing_) action(value);
        };
    };
    connect(showPanel_, &QCheckBox::toggled, this, whenUser([this](bool on) {
                controller_->onShowPanel(on);
                showEnabledStates();
            }));
    connect(panelPosition_, &QComboBox::activated, this, whenUser([this](int index) { controller_->onPanelPosition(index); }));
    connect(panelSize_, &QComboBox::activated, this, whenUser([this](int index) { controller_->onPanelSize(index); }));
    connect(autoHidePanel_, &QCheckBox::toggled, this, whenUser([this](bool on) { controller_->onAutoHidePanel(on); }));
    connect(showStatusItem_, &QCheckBox::toggled, this, whenUser([this](bool on) {
                controller_->onShowStatusItem(on);
                showEnabledStates();
            }));
    connect(statusItemPosition_, &QComboBox::activated, this,
            whenUser([this](int index) { controller_->onStatusItemPosition(index); }));
    connect(singleAppMode_, &QCheckBox::toggled, this, whenUser([this](bool on) { controller_->onTurnOnSingleAppMode(on); }));
    connect(turnOffAction_, &QComboBox::activated, this,
            whenUser([this](int index) { controller_->onTurnOffSingleAppModeAction(index); }));
    connect(configurePanel_, &QPushButton::clicked, this, [this] { openButtonsSheet(true); });
    connect(configureStatusItem_, &QPushButton::clicked, this, [this] { openButtonsSheet(false); });
    controller_->setControlsChangedHandler([this] { showControls(); });
}

std::unique_ptr<OptionsTab> OptionsTab::create(ComKestrovaCorvalis_PrefsPane& pane) {
    auto tab = std::make_unique<OptionsTab>(pane.prefs(), pane.distributedNotifications(), pane.localNotifications(),
                                            pane.domainStore(), pane.page(tabs::Options), pane.window());
    OptionsTab* shown = tab.get();
    pane.addScreenshotView("sheet-panel-buttons", [shown] { return shown->openButtonsSheet(true) != nullptr; }, tabs::Options);
    pane.addScreenshotView("sheet-status-item-buttons", [shown] { return shown->openButtonsSheet(false) != nullptr; },
                           tabs::Options);
    return tab;
}

OptionsTab::~OptionsTab() {
    if (sheet_) delete sheet_;
}

void OptionsTab::initializePane(bool firstTime) {
    controller_->initializePane(firstTime);
    showControls();
}

void OptionsTab::showControls() {
    showing_ = true;
    OptionsController& c = *controller_;
    showPanel_->setChecked(c.showPanel());
    panelPosition_->setCurrentIndex(c.panelPosition());
    panelSize_->setCurrentIndex(c.panelSize());
    autoHidePanel_->setChecked(c.autoHidePanel());
    showStatusItem_->setChecked(c.showStatusItem());
    if (OptionsController::statusItemPositionShown()) statusItemPosition_->setCurrentIndex(c.statusItemPosition());
    singleAppMode_->setChecked(c.singleApplicationMode());
    turnOffAction_->setCurrentIndex(c.turnOffSingleAppModeAction());
    showing_ = false;
    showEnabledStates();
}

// Disabled labels draw in the disabled text colour by themselves.
void OptionsTab::showEnabledStates() {
    bool panel = showPanel_->isChecked();
    for (QWidget* control : std::initializer_list<QWidget*>{configurePanel_, panelPosition_, panelPositionLabel_,
                                                             panelSize_, panelSizeLabel_, autoHidePanel_})
        control->setEnabled(panel);
    bool status = showStatusItem_->isChecked();
    for (QWidget* control : std::initializer_list<QWidget*>{configureStatusItem_, statusItemPosition_,
                                                             statusItemPositionLabel_})
        control->setEnabled(status);
}

QDialog* OptionsTab::openButtonsSheet(bool panel) {
    if (!sheet_) sheet_ = makeButtonsSheet();
    if (panel) controller_->onConfigurePanel();
    else controller_->onConfigureStatusItem();
    sheetText_->setText(localized(panel ? "ConfigurePanelText" : "ConfigureStatusItemText"));
    buttonsList_->clearSelection();
    sheet_->open();
    buttonsList_->setFocus();
    return sheet_;
}

QDialog* OptionsTab::makeButtonsSheet() {
    auto* sheet = new QDialog(window_);
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setWindowTitle(localized("ConfigureButtonsTitle"));
    auto* layout = new QVBoxLayout(sheet);
    sheetText_ = new QLabel(sheet);
    sheetText_->setWordWrap(true);
    layout->addWidget(sheetText_);

    auto* rows = new QHBoxLayout;
    buttonsList_ = new QListView(sheet);
    buttonsList_->setAccessibleName(localized("ButtonsList"));
    buttonsList_->setModel(&controller_->buttons());
    buttonsList_->setItemDelegate(new ButtonImageDelegate(buttonsList_));
    buttonsList_->setSelectionMode(QAbstractItemView::SingleSelection);
    buttonsList_->setDragDropMode(QAbstractItemView::DragDrop);
    buttonsList_->setDragDropOverwriteMode(false);
    buttonsList_->setDefaultDropAction(Qt::MoveAction);
    buttonsList_->setDropIndicatorShown(true);
    // Four rows, no empty space below them.
    buttonsList_->setFixedHeight(4 * qMax(buttonsList_->fontMetrics().height() + 8, 22) + 2 * buttonsList_->frameWidth());
    rows->addWidget(buttonsList_, 1);
    auto* moves = new QVBoxLayout;
    auto* up = new QPushButton(localized("MoveUp"), sheet);
    auto* down = new QPushButton(localized("MoveDown"), sheet);
    up->setToolTip(localized("MoveUpHint"));
    down->setToolTip(localized("MoveDownHint"));
    buttonsList_->installEventFilter(this);
    moves->addWidget(up);
    moves->addWidget(down);
    moves->addStretch(1);
    rows->addLayout(moves);
    layout->addLayout(rows);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, sheet);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, sheet, &QDialog::reject);
    connect(sheet, &QDialog::finished, this, [this] { controller_->onCloseConfigureButtons(); });
    connect(up, &QPushButton::clicked, this, [this] { moveSelectedButton(-1); });
    connect(down, &QPushButton::clicked, this, [this] { moveSelectedButton(1); });
    return sheet;
}

// Alt+Up and Alt+Down move the current row: reordering without dragging.
bool OptionsTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched == buttonsList_) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->modifiers() == Qt::AltModifier && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
            moveSelectedButton(key->key() == Qt::Key_Up ? -1 : 1);
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

void OptionsTab::moveSelectedButton(int step) {
    QModelIndex current = buttonsList_->currentIndex();
    if (!current.isValid()) return;
    ButtonsSheetController& buttons = controller_->buttons();
    if (step < 0) buttons.moveUp(current.row());
    else buttons.moveDown(current.row());
}

}  // namespace corvalis
