#include "menus/ui/MenusTab.h"

#include <QEvent>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "controls/KVTableView.h"
#include "controls/LocalizedText.h"
#include "fileutils/KVOperatingSystem.h"
#include "keys/KVKeyCombinationValidator.h"
#include "keys/ui/KVKeyCombinationTextField.h"
#include "keys/ui/KeyCombinationTableKeys.h"
#include "menus/ConfigureOpenMenuController.h"
#include "menus/ConfigureSpecialMenuController.h"
#include "menus/ui/ConfigurePreviewsSheet.h"
#include "menus/ui/MenuHotKeysTable.h"
#include "menus/ui/OpenMenuPage.h"
#include "menus/ui/QuitMenuPage.h"
#include "menus/ui/SpecialMenuPage.h"
#include "menus/ui/SwitchMenuPage.h"
#include "pane/PaneControllers.h"
#include "pane/ui/CorvalisPane.h"
#include "platform/InProcessNotificationCenter.h"
#include "platform/linux/AssistiveTechnologies.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

constexpr const char* kOptionKeys[] = {keys::ShowIcons, keys::UseSmallerFontSize, keys::RemoveNoApplicationRunningGroups,
                                       keys::GroupsAreSelectable};
// The stored values of "IncludeTerminatedApplicationsWhere", in the pop-up's order.
constexpr int kTerminatedPlaces[] = {1, 2};

bool startDetached(const QString& program, const QStringList& arguments) {
    return QProcess::startDetached(program, arguments);
}

}  // namespace

template <class Editor, class Page>
void MenusTab::addEditor(const std::string& identifier, std::unique_ptr<Editor> editor) {
    Editor* model = editor.get();
    controller_->addEditor(identifier, *model);
    editors_.push_back(std::move(editor));
    pages_.push_back({identifier, [model](QWidget* sheet) -> QWidget* { return new Page(*model, sheet); }});
}

MenusTab::MenusTab(const MenusTabContext& context, QWidget* page, QWidget* window, QObject* parent)
    : QObject(parent),
      QtEditorView(window ? window : page->window()),
      context_(context),
      controller_(std::make_unique<MenusController>(context.prefs, context.validator, context.local,
                                                    context.distributed, context.browser, *this)),
      launcher_(&startDetached) {
    // The sheet's tabs, in order.
    addEditor<ConfigureOpenMenuController, OpenMenuPage>(
        "Open", std::make_unique<ConfigureOpenMenuController>(context.prefs, context.local, context.distributed,
                                                              context.browser));
    addEditor<ConfigureQuitMenuController, QuitMenuPage>(
        "Quit", std::make_unique<ConfigureQuitMenuController>(context.prefs, context.local, context.groups, context.browser));
    addEditor<ConfigureSwitchMenuController, SwitchMenuPage>(
        "Switch", std::make_unique<ConfigureSwitchMenuController>(context.prefs, context.local, context.distributed,
                                                                  context.assistiveAccess, context.browser));
    addEditor<ConfigureSpecialMenuController, SpecialMenuPage>(
        "Special", std::make_unique<ConfigureSpecialMenuController>(context.prefs, context.distributed));
    buildPage(page);
    context_.validator.setHotKeysTable([this] { hotKeysModel_->reload(); });
}

MenusTab::~MenusTab() {
    context_.validator.setHotKeysTable({});
    // Widgets first: an open recording ends through the controller, and the pages use the editors.
    delete menusSheet_.data();
    delete previewsSheet_.data();
    if (hotKeysTable_) hotKeysTable_->removeEventFilter(this);
    delete content_.data();
}

std::unique_ptr<MenusTab> MenusTab::make(ComKestrovaCorvalis_PrefsPane& pane) {
    auto tab = std::make_unique<MenusTab>(
        MenusTabContext{pane.prefs(), pane.keyCombinationValidator(), pane.localNotifications(),
                        pane.distributedNotifications(), [&pane] { return pane.applicationsBrowser(); },
                        [&pane] { return pane.groupsController(); }, &AssistiveTechnologiesEnabled},
        pane.page(tabs::Menus), pane.window());
    MenusTab* shown = tab.get();
    pane.addScreenshotView(
        "sheet-configure-menus", [shown] {
            shown->onConfigureMenus();
            return true;
        },
        tabs::Menus);
    // Each further menu editor on its own tab of the sheet.
    for (const std::string& identifier : shown->controller().editorIdentifiers()) {
        if (identifier == shown->controller().editorIdentifiers().front()) continue;
        pane.addScreenshotView(
            "sheet-configure-menus-" + QString::fromStdString(identifier).toLower(),
            [shown, identifier] {
                shown->onConfigureMenus();
                shown->showSheetTab(identifier);
                return true;
            },
            tabs::Menus);
    }
    pane.addScreenshotView(
        "sheet-configure-previews", [shown] {
            shown->onConfigurePreviews();
            return true;
        },
        tabs::Menus);
    return tab;
}

void MenusTab::buildPage(QWidget* page) {
    content_ = new QWidget(page);
    auto* pageLayout = page->layout() ? page->layout() : new QVBoxLayout(page);
    pageLayout->addWidget(content_);
    auto* layout = new QVBoxLayout(content_);
    layout->setContentsMargins(0, 0, 0, 0);

    auto* options = new QGridLayout;
    int place = 0;
    for (const char* key : kOptionKeys) {
        auto* box = new QCheckBox(localized(key), content_);
        options_.emplace_back(key, box);
        options->addWidget(box, place / 2, place % 2);
        ++place;
        connect(box, &QCheckBox::toggled, this, [this, key](bool on) {
            if (!showing_) controller_->setOption(key, on);
        });
    }
    layout->addLayout(options);

    termination_ = new QGroupBox(localized("AutomaticTermination"), content_);
    QGroupBox* termination = termination_;
    auto* terminationLayout = new QHBoxLayout(termination);
    includeTerminated_ = new QCheckBox(localized("IncludeTerminatedApplications"), termination);
    where_ = new QComboBox(termination);
    for (int where : kTerminatedPlaces)
        where_->addItem(localized(("IncludeTerminatedApplicationsWhere" + std::to_string(where)).c_str()), where);
    auto* whereLabel = new QLabel(localized("IncludeTerminatedApplicationsWhereLabel"), termination);
    whereLabel->setBuddy(where_);
    terminationLayout->addWidget(includeTerminated_);
    terminationLayout->addWidget(whereLabel);
    terminationLayout->addWidget(where_);
    terminationLayout->addStretch(1);
    layout->addWidget(termination);
    connect(includeTerminated_, &QCheckBox::toggled, this, [this](bool on) {
        where_->setEnabled(on);
        if (!showing_) controller_->onIncludeTerminatedApplications(on, where_->currentData().toInt());
    });
    connect(where_, &QComboBox::currentIndexChanged, this, [this] {
        if (!showing_)
            controller_->onIncludeTerminatedApplicationsWhere(where_->currentData().toInt(), includeTerminated_->isChecked());
    });

    auto* hotKeys = new QGroupBox(localized("MenuHotKeys"), content_);
    auto* hotKeysLayout = new QVBoxLayout(hotKeys);
    hotKeysTable_ = new KVTableView(hotKeys);
    setItemView(hotKeysTable_);
    hotKeysModel_ = new MenuHotKeysTableModel(
        *controller_,
        [this](int row, bool enabled) {
            bool selected = hotKeysTable_ && hotKeysTable_->selectionModel() &&
                            hotKeysTable_->selectionModel()->isRowSelected(row, QModelIndex());
            return ComKestrovaShortcutsController::keyCombinationTextColour(
                enabled, hotKeysTable_ && hotKeysTable_->isActiveWindow(), hotKeysTable_ && hotKeysTable_->hasFocus(),
                selected);
        },
        this);
    hotKeysTable_->setModel(hotKeysModel_);
    hotKeysTable_->setItemDelegateForColumn(MenuHotKeysTableModel::KeyCombinationColumn,
                                            new KVKeyCombinationCellDelegate(controller_.get(), hotKeysTable_));
    hotKeysTable_->setItemDelegateForColumn(MenuHotKeysTableModel::PositionColumn,
                                            new MenuPositionDelegate(hotKeysTable_));
    hotKeysTable_->setSelectionMode(QAbstractItemView::SingleSelection);
    hotKeysTable_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                   QAbstractItemView::SelectedClicked);
    hotKeysTable_->setTabKeyNavigation(false);
    hotKeysTable_->setWordWrap(false);
    hotKeysTable_->verticalHeader()->hide();
    QHeaderView* header = hotKeysTable_->horizontalHeader();
    header->setSectionResizeMode(MenuHotKeysTableModel::EnabledColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(MenuHotKeysTableModel::MenuColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(MenuHotKeysTableModel::KeyCombinationColumn, QHeaderView::Interactive);
    header->resizeSection(MenuHotKeysTableModel::KeyCombinationColumn, 130);
    header->setSectionResizeMode(MenuHotKeysTableModel::PositionColumn, QHeaderView::ResizeToContents);
    // A click in the header takes the keyboard to the table, as a click in its rows does.
    connect(header, &QHeaderView::sectionPressed, hotKeysTable_, [table = hotKeysTable_.data()] {
        if (!table->hasFocus()) table->setFocus(Qt::MouseFocusReason);
    });
    hotKeysTable_->setAccessibleName(localized("MenuHotKeys"));
    hotKeysTable_->installEventFilter(this);
    controller_->setTable(static_cast<QWidget*>(hotKeysTable_.data()));
    hotKeysLayout->addWidget(hotKeysTable_);
    layout->addWidget(hotKeys);

    auto* buttons = new QHBoxLayout;
    configureMenus_ = new QPushButton(localized("ConfigureMenusButton"), content_);
    configurePreviews_ = new QPushButton(localized("ConfigurePreviewsButton"), content_);
    connect(configureMenus_, &QPushButton::clicked, this, &MenusTab::onConfigureMenus);
    connect(configurePreviews_, &QPushButton::clicked, this, &MenusTab::onConfigurePreviews);
    buttons->addWidget(configureMenus_);
    buttons->addWidget(configurePreviews_);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    layout->addStretch(1);
}

QCheckBox* MenusTab::optionBox(const char* key) const {
    for (const auto& [optionKey, box] : options_)
        if (std::string(optionKey) == key) return box;
    return nullptr;
}

ConfigureOpenMenuController& MenusTab::openMenu() const {
    return static_cast<ConfigureOpenMenuController&>(*editors_.front());
}

void MenusTab::showOptions() {
    showing_ = true;
    for (const auto& [key, box] : options_) box->setChecked(controller_->option(key));
    includeTerminated_->setChecked(controller_->includeTerminatedApplications());
    where_->setCurrentIndex(std::max(0, where_->findData(controller_->includeTerminatedApplicationsWhere())));
    where_->setEnabled(includeTerminated_->isChecked());
    showing_ = false;
}

void MenusTab::initializePane(bool firstTime) {
    controller_->initializePane(firstTime);
    showOptions();
    // Systems before 10.7 quit no applications by themselves.
    termination_->setVisible(KVOperatingSystem::is10_7orLater());
    hotKeysModel_->reload();
    // Four rows and no more: the table is as tall as they are. Measured only now, as the
    // header's size asks the rows for their contents, which the settings must be loaded for.
    hotKeysTable_->setFixedHeight(hotKeysTable_->horizontalHeader()->sizeHint().height() +
                                  MenusController::kHotKeyRows * hotKeysTable_->verticalHeader()->defaultSectionSize() + 4);
    hotKeysTable_->clearSelection();
    hotKeysTable_->scrollToTop();
    if (menusSheet_)
        for (int i = 0; i < menusSheet_->tabs()->count(); ++i)
            if (auto* editorPage = qobject_cast<MenuItemListPage*>(menusSheet_->tabs()->widget(i))) editorPage->showSettings();
    if (previewsSheet_) previewsSheet_->showSettings();
}

void MenusTab::updatePane(std::string& report) { controller_->updatePane(report); }

void MenusTab::willShowPane() { controller_->willShowPane(); }

void MenusTab::windowDidBecomeMain() { controller_->windowDidBecomeMain(); }

void MenusTab::onConfigureMenus() {
    if (menusSheet_ && menusSheet_->isVisible()) return;
    if (!menusSheet_) menusSheet_ = new ConfigureMenusSheet(*controller_, pages_, window());
    controller_->onConfigureMenus();
}

void MenusTab::beginConfigureMenusSheet() { menusSheet_->open(); }

void MenusTab::showSheetTab(const std::string& identifier) {
    if (menusSheet_) menusSheet_->tabs()->setCurrentWidget(menusSheet_->page(identifier));
}

void MenusTab::endConfigureMenusSheet(int returnCode) {
    if (menusSheet_) menusSheet_->done(returnCode);
}

void MenusTab::openUniversalAccess() {
    const std::pair<QString, QStringList> settings[] = {{"gnome-control-center", {"universal-access"}},
                                                         {"systemsettings", {"kcm_access"}}};
    for (const auto& [program, arguments] : settings)
        if (!QStandardPaths::findExecutable(program).isEmpty() && launcher_(program, arguments)) return;
    beep();
}

void MenusTab::onConfigurePreviews() {
    if (previewsSheet_ && previewsSheet_->isVisible()) return;
    if (!previewsSheet_) previewsSheet_ = new ConfigurePreviewsSheet(context_.prefs, controller_->previews(), window());
    previewsSheet_->openSheet();
}

bool MenusTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched == hotKeysTable_ &&
        handleKeyCombinationTableKey(hotKeysTable_, event, MenuHotKeysTableModel::EnabledColumn,
                                     MenuHotKeysTableModel::KeyCombinationColumn))
        return true;
    return QObject::eventFilter(watched, event);
}

}  // namespace corvalis
