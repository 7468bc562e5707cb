#include "groups/ui/CustomApplicationsTab.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QRadioButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "controls/KVServicesBar.h"
#include "controls/KVTableView.h"
#include "controls/LocalizedText.h"
#include "pane/ApplicationsBrowserLink.h"
#include "pane/PaneControllers.h"
#include "pane/ui/CorvalisPane.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

QWidget* messagePage(const char* text, QWidget* parent) {
    auto* page = new QWidget(parent);
    auto* layout = new QVBoxLayout(page);
    auto* label = new QLabel(localized(text), page);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    layout->addWidget(label);
    return page;
}

QCheckBox* optionBox(const char* text, const char* option, QWidget* parent) {
    auto* box = new QCheckBox(localized(text), parent);
    box->setObjectName(option);
    box->setAccessibleName(localized(text));
    return box;
}

// The widgets of nested box layouts in the order they are drawn: a column top to bottom,
// a row in reading order. Hidden widgets stay in their place.
void appendInDrawingOrder(QLayout* layout, std::vector<QWidget*>& widgets) {
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (QWidget* widget = item->widget())
            widgets.push_back(widget);
        else if (QLayout* inner = item->layout())
            appendInDrawingOrder(inner, widgets);
    }
}

}  // namespace

CustomApplicationsTab::CustomApplicationsTab(CorvalisPreferences& prefs, NotificationCenter& distributed, QWidget* page,
                                             QWidget* window, ApplicationArchitectures architectures, QObject* parent)
    : QObject(parent),
      ApplicationListView(window ? window : page->window(), [this](bool shown) { controller_->setSheetShown(shown); }) {
    content_ = new QWidget(page);
    auto* pageLayout = page->layout() ? page->layout() : new QVBoxLayout(page);
    pageLayout->addWidget(content_);
    auto* layout = new QHBoxLayout(content_);
    layout->setContentsMargins(0, 0, 0, 0);

    auto* listSide = new QVBoxLayout;
    listSide->setSpacing(0);
    table_ = new KVTableView(content_);
    setItemView(table_);
    controller_ = std::make_unique<CustomApplicationsController>(prefs, distributed, *this, std::move(architectures));
    setUpApplicationsTable(table_, controller_.get(), CustomApplicationsController::PathRole,
                           localized("CustomApplicationsList"));
    table_->setTypeToSelect([this](const QString& typed) { return controller_->selectString(typed.toStdString()); });
    table_->installEventFilter(this);
    listSide->addWidget(table_, 1);

    bar_ = new KVServicesBar(content_);
    actions_ = new QMenu(bar_);
    changeAction_ = actions_->addAction(localized("ChangeApplication1"), this, [this] { controller_->onChangeApplication(); });
    infoAction_ = actions_->addAction(localized("ShowInfoTags"), this, [this] { controller_->onShowInfo(); });
    actions_->addSeparator();
    actions_->addAction(localized("BrowseApplications"), this, [this] {
        if (browse_) browse_();
    });
    connect(actions_, &QMenu::aboutToShow, this, &CustomApplicationsTab::updateActionMenu);
    bar_->setActionMenu(actions_);
    connect(bar_->addButton(), &QToolButton::clicked, this, [this] { controller_->onAddApplication(); });
    connect(bar_->removeButton(), &QToolButton::clicked, this, [this] { controller_->onRemoveApplication(); });
    listSide->addWidget(bar_);
    layout->addLayout(listSide, 2);

    optionsViewer_ = new QStackedWidget(content_);
    optionsViewer_->addWidget(messagePage("NoApplications", optionsViewer_));
    optionsViewer_->addWidget(messagePage("NoApplicationsSelected", optionsViewer_));
    auto* options = new QWidget(optionsViewer_);
    optionsPage_ = options;
    auto* boxes = new QVBoxLayout(options);
    dontActivate_ = optionBox("DontActivateAtLaunch", keys::DontActivate, options);
    hide_ = optionBox("HideAtLaunchBox", keys::Hide, options);
    hideMe_ = new QRadioButton(localized("HideThisApplication"), options);
    hideOthers_ = new QRadioButton(localized("HideOtherApplications"), options);
    auto* hideWhat = new QButtonGroup(this);
    hideWhat->addButton(hideMe_, 0);
    hideWhat->addButton(hideOthers_, 1);
    dontHideOnHideOthers_ = optionBox("DontHideOnHideOthers", keys::DontHideOnHideOthers, options);
    dontHideInSingleAppMode_ = optionBox("DontHideInSingleApplicationMode", keys::DontHideInSingleAppMode, options);
    dontAddToRecentItems_ = optionBox("DontAddToRecentItems", keys::DontAddToRecentItems, options);
    dontAddToRecentApps_ = optionBox("DontAddToRecentApplications", keys::DontAddToRecentApps, options);
    open_ = new QLabel(localized("OpenLabel"), options);
    openIn32BitMode_ = optionBox("OpenIn32BitMode", keys::Force32BitMode, options);
    openInRosetta_ = optionBox("OpenUsingRosetta", keys::ForceRosetta, options);
    boxes->addWidget(dontActivate_);
    auto* hideRow = new QHBoxLayout;
    hideRow->addWidget(hide_);
    auto* hideChoice = new QVBoxLayout;
    hideChoice->addWidget(hideMe_);
    hideChoice->addWidget(hideOthers_);
    hideRow->addLayout(hideChoice);
    hideRow->addStretch(1);
    boxes->addLayout(hideRow);
    for (QWidget* widget : std::initializer_list<QWidget*>{dontHideOnHideOthers_, dontHideInSingleAppMode_,
                                                            dontAddToRecentItems_, dontAddToRecentApps_, open_,
                                                            openIn32BitMode_, openInRosetta_})
        boxes->addWidget(widget);
    boxes->addStretch(1);
    optionsViewer_->addWidget(options);
    optionsViewer_->addWidget(messagePage("MultipleApplications", optionsViewer_));
    layout->addWidget(optionsViewer_, 3);

    for (QCheckBox* box : {dontActivate_, dontHideOnHideOthers_, dontHideInSingleAppMode_, dontAddToRecentItems_,
                           dontAddToRecentApps_, openInRosetta_})
        connect(box, &QCheckBox::clicked, this, [this] { optionClicked(OptionBox::Other); });
    connect(hide_, &QCheckBox::clicked, this, [this] { optionClicked(OptionBox::HideAtLaunch); });
    connect(openIn32BitMode_, &QCheckBox::clicked, this, [this] { optionClicked(OptionBox::OpenIn32BitMode); });
    connect(hideWhat, &QButtonGroup::idClicked, this, [this] { optionClicked(OptionBox::Other); });
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!showing_) controller_->selectionDidChange();
    });
    connect(table_, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& index) { controller_->onChangeApplication(index.row()); });
}

CustomApplicationsTab::~CustomApplicationsTab() {
    if (table_) table_->removeEventFilter(this);
    delete content_.data();
}

std::unique_ptr<CustomApplicationsTab> CustomApplicationsTab::create(ComKestrovaCorvalis_PrefsPane& pane) {
    auto tab = std::make_unique<CustomApplicationsTab>(pane.prefs(), pane.distributedNotifications(),
                                                       pane.page(tabs::Applications), pane.window());
    tab->setBrowseApplications([&pane] {
        if (ApplicationsBrowserLink* browser = pane.applicationsBrowser()) browser->showApplicationsBrowser();
    });
    return tab;
}

QCheckBox* CustomApplicationsTab::box(const char* option) const {
    return optionsViewer_->findChild<QCheckBox*>(QString::fromLatin1(option));
}

void CustomApplicationsTab::showOptions(OptionsViewState state) {
    optionsViewer_->setCurrentIndex(static_cast<int>(state));
    bar_->removeButton()->setEnabled(controller_->canRemove());
    std::optional<LaunchOptions> options = controller_->selectedOptions();
    if (state == OptionsViewState::Options && options) showLaunchOptions(*options);
    fixKeyboardLoop();
}

void CustomApplicationsTab::fixKeyboardLoop() {
    // Widgets join the focus chain as they are made, not where the layouts put them.
    std::vector<QWidget*> order{table_, bar_->addButton(), bar_->removeButton(), bar_->actionButton()};
    appendInDrawingOrder(optionsPage_->layout(), order);
    QWidget* previous = nullptr;
    for (QWidget* widget : order) {
        if (!(widget->focusPolicy() & Qt::TabFocus)) continue;
        if (previous) QWidget::setTabOrder(previous, widget);
        previous = widget;
    }
}

void CustomApplicationsTab::showLaunchOptions(const LaunchOptions& options) {
    showing_ = true;
    dontActivate_->setChecked(options.dontActivate);
    dontActivate_->setEnabled(dontActivateEnabled(options));
    hide_->setChecked(options.hide);
    hideMe_->setChecked(options.hideMeOrOthers == 0);
    hideOthers_->setChecked(options.hideMeOrOthers != 0);
    hideMe_->setEnabled(hideWhatEnabled(options));
    hideOthers_->setEnabled(hideWhatEnabled(options));
    dontHideOnHideOthers_->setChecked(options.dontHideOnHideOthers);
    dontHideInSingleAppMode_->setChecked(options.dontHideInSingleAppMode);
    dontAddToRecentItems_->setChecked(options.dontAddToRecentItems);
    dontAddToRecentApps_->setChecked(options.dontAddToRecentApps);
    // A Rosetta box alone takes the 32-bit box's place: the layout closes up over the hidden one.
    ArchitectureBoxes architecture = architectureBoxes(options);
    open_->setVisible(architecture.labelShown);
    openIn32BitMode_->setVisible(architecture.bit32Shown);
    openIn32BitMode_->setChecked(options.force32BitMode.value_or(false));
    openInRosetta_->setVisible(architecture.rosettaShown);
    openInRosetta_->setEnabled(architecture.rosettaEnabled);
    openInRosetta_->setChecked(architecture.rosettaChecked);
    showing_ = false;
}

LaunchOptions CustomApplicationsTab::optionsFromBoxes() const {
    LaunchOptions options;
    options.dontActivate = dontActivate_->isChecked();
    options.hide = hide_->isChecked();
    options.hideMeOrOthers = hideOthers_->isChecked() ? 1 : 0;
    options.dontHideOnHideOthers = dontHideOnHideOthers_->isChecked();
    options.dontHideInSingleAppMode = dontHideInSingleAppMode_->isChecked();
    options.dontAddToRecentItems = dontAddToRecentItems_->isChecked();
    options.dontAddToRecentApps = dontAddToRecentApps_->isChecked();
    // isVisibleTo: the tab itself may be hidden while a test or a screen reader works it.
    if (openIn32BitMode_->isVisibleTo(optionsViewer_)) options.force32BitMode = openIn32BitMode_->isChecked();
    if (openInRosetta_->isVisibleTo(optionsViewer_)) options.forceRosetta = openInRosetta_->isChecked();
    return options;
}

void CustomApplicationsTab::optionClicked(OptionBox changed) {
    if (!showing_) controller_->onEditOptions(optionsFromBoxes(), changed);
}

void CustomApplicationsTab::updateActionMenu() {
    std::optional<std::string> title = controller_->changeMenuTitle();
    changeAction_->setText(localized(title.value_or("ChangeApplication1").c_str()));
    changeAction_->setEnabled(title.has_value());
    infoAction_->setText(localized(controller_->showInfo() ? "HideInfoTags" : "ShowInfoTags"));
}

bool CustomApplicationsTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched == table_) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace) {
            controller_->onRemoveApplication();
            return true;
        }
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            controller_->onChangeApplication();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace corvalis
