#include "groups/ui/GroupsTab.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QVBoxLayout>

#include "controls/KVIconServices.h"
#include "controls/KVServicesBar.h"
#include "controls/KVTableView.h"
#include "controls/LocalizedText.h"
#include "groups/GroupOptions.h"
#include "groups/GroupTexts.h"
#include "groups/ui/GroupIcons.h"
#include "groups/ui/GroupOptionsBox.h"
#include "groups/ui/GroupsOutline.h"
#include "keys/KVKeyCombinationValidator.h"
#include "keys/ui/KVKeyCombinationTextField.h"
#include "pane/ApplicationsBrowserLink.h"
#include "pane/PaneControllers.h"
#include "pane/ui/CorvalisPane.h"
#include "platform/InProcessNotificationCenter.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

GroupsTab::GroupsTab(ComKestrovaCorvalis_PrefsPane& pane, QObject* parent)
    : QObject(parent), QtEditorView(pane.window()), pane_(pane), icons_(std::make_unique<GroupIcons>()) {
    controller_ = std::make_unique<GroupsController>(pane.prefs(), pane.keyCombinationValidator(),
                                                     pane.distributedNotifications(), pane.localNotifications(),
                                                     pane.runningApplications(), *this);
    options_ = std::make_unique<GroupOptions>(*controller_, pane.prefs(), pane.keyCombinationValidator(),
                                              pane.distributedNotifications(), *this);
    QWidget* page = pane.page(tabs::Groups);
    content_ = new QWidget(page);
    auto* pageLayout = page->layout() ? page->layout() : new QVBoxLayout(page);
    pageLayout->addWidget(content_);
    auto* layout = new QHBoxLayout(content_);
    layout->setContentsMargins(0, 0, 0, 0);

    auto* left = new QVBoxLayout;
    left->setSpacing(0);
    outline_ = makeGroupsOutline(*controller_, *icons_, content_);
    setItemView(outline_);
    outline_->setTypeToSelect([this](const QString& typed) { return controller_->selectString(typed.toStdString()); });
    outline_->installEventFilter(this);
    left->addWidget(outline_, 1);
    bar_ = new KVServicesBar(content_);
    left->addWidget(bar_);
    layout->addLayout(left, 3);
    optionsBox_ = new GroupOptionsBox(*controller_, *options_, pane.prefs(), *this, *icons_, content_);
    layout->addWidget(optionsBox_, 2);
    options_->setOutline(static_cast<QWidget*>(outline_.data()));
    buildMenus();

    connect(outline_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &GroupsTab::selectionDidChange);
    // Rows that move under the selection are not reported by the selection model.
    for (auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(controller_.get(), signal, this, &GroupsTab::selectionDidChange);
    connect(controller_.get(), &QAbstractItemModel::layoutChanged, this, &GroupsTab::selectionDidChange);
    connect(controller_.get(), &QAbstractItemModel::modelReset, this, &GroupsTab::selectionDidChange);
    connect(controller_.get(), &GroupsController::optionsNeedRefresh, optionsBox_, &GroupOptionsBox::synchronize);
    connect(outline_, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& index) { controller_->onDoubleClick(controller_->rowOf(index)); });
    pane.keyCombinationValidator().setGroupShortcutField(
        [this] { optionsBox_->keyCombinationField()->setObjectValue(options_->keyCombination()); });
    addScreenshotViews(pane);
}

GroupsTab::~GroupsTab() {
    pane_.keyCombinationValidator().setGroupShortcutField({});
    if (outline_) outline_->removeEventFilter(this);
    // The widgets call into the controllers (an open recording ends), so they go first.
    delete content_.data();
}

void GroupsTab::buildMenus() {
    addMenu_ = new QMenu(bar_);
    addMenu_->addAction(localized("AddGroup"), controller_.get(), &GroupsController::onAddGroup);
    duplicate_ = addMenu_->addAction(localized("DuplicateGroup"), controller_.get(), &GroupsController::onDuplicateGroup);
    addMenu_->addSeparator();
    addApplication_ = addMenu_->addAction(localized("AddApplicationMenuItem"), controller_.get(),
                                          &GroupsController::onAddApplication);
    addRunning_ = addMenu_->addAction(localized("AddRunningApplications"), controller_.get(),
                                      &GroupsController::onAddRunningApplications);
    addBackground_ = addMenu_->addAction(localized("AddBackgroundOnlyApplications"), controller_.get(),
                                         &GroupsController::onAddBackgroundOnlyApplications);
    browse_ = addMenu_->addAction(localized("BrowseApplications"), this, [this] {
        if (ApplicationsBrowserLink* browser = pane_.applicationsBrowser()) browser->showApplicationsBrowser();
    });
    bar_->setAddMenu(addMenu_);
    connect(bar_->removeButton(), &QToolButton::clicked, controller_.get(), &GroupsController::onRemoveItem);

    actionMenu_ = new QMenu(bar_);
    change_ = actionMenu_->addAction(QString(), controller_.get(), &GroupsController::onChangeApplication);
    actionMenu_->addSeparator();
    const std::pair<int, const char*> arrangements[] = {{ArrangeNone, "ArrangeNone"},
                                                        {ArrangeBoth, "ArrangeBoth"},
                                                        {ArrangeGroupsOnly, "ArrangeGroupsOnly"},
                                                        {ArrangeApplicationsOnly, "ArrangeApplicationsOnly"}};
    for (const auto& [tag, title] : arrangements) {
        QAction* entry = actionMenu_->addAction(localized(title), this, [this, tag = tag] { controller_->onSortItems(tag); });
        entry->setCheckable(true);
        arrangement_.emplace_back(tag, entry);
    }
    actionMenu_->addSeparator();
    showInfo_ = actionMenu_->addAction(QString(), controller_.get(), &GroupsController::onShowInfo);
    bar_->setActionMenu(actionMenu_);
    connect(addMenu_, &QMenu::aboutToShow, this, &GroupsTab::updateMenus);
    // Not before: the settings are read only once the pane has loaded them.
    connect(actionMenu_, &QMenu::aboutToShow, this, &GroupsTab::updateMenus);
}

void GroupsTab::updateMenus() {
    bool hasGroup = controller_->selectedGroup().has_value();
    duplicate_->setEnabled(hasGroup);
    addApplication_->setEnabled(hasGroup);
    addRunning_->setEnabled(controller_->canAddRunningApplications());
    addBackground_->setVisible(!pane_.prefs().hideAddBOAsCommand());
    addBackground_->setEnabled(addBackground_->isVisible() && controller_->canAddBackgroundOnlyApplications());
    browse_->setEnabled(pane_.applicationsBrowser() != nullptr);
    const std::vector<EditorRow>& rows = controller_->selectedRows();
    if (rows.size() == 1 && rows[0].group >= 0) controller_->_updatePaths();
    change_->setText(localized(controller_->changeApplicationTitleKey().c_str()));
    change_->setEnabled(controller_->selectedRows().size() == 1 && controller_->selectedRows()[0].group >= 0);
    for (const auto& [tag, entry] : arrangement_) entry->setChecked(controller_->isArrangementChecked(tag));
    showInfo_->setText(localized(controller_->showInfo() ? "HideInfoTags" : "ShowInfoTags"));
    bar_->removeButton()->setEnabled(!rows.empty());
}

// A selection never mixes groups and applications: rows of the other kind than the current row are let go.
void GroupsTab::selectionDidChange() {
    if (fixingSelection_ || !outline_->selectionModel()) return;
    QModelIndexList indexes = outline_->selectionModel()->selectedRows();
    QModelIndex current = outline_->currentIndex();
    std::vector<EditorRow> rows;
    for (const QModelIndex& index : indexes) rows.push_back(controller_->rowOf(index));
    if (!rows.empty() && current.isValid()) {
        bool groups = current.data(GroupsController::IsGroupRole).toBool();
        fixingSelection_ = true;
        for (const QModelIndex& index : indexes)
            if (index.data(GroupsController::IsGroupRole).toBool() != groups)
                outline_->selectionModel()->select(index, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
        fixingSelection_ = false;
        std::erase_if(rows, [groups](const EditorRow& row) { return (row.group < 0) != groups; });
    }
    controller_->setSelectedRows(rows);
    bar_->removeButton()->setEnabled(!rows.empty());
}

bool GroupsTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched == outline_ && !isEditingName()) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace) {
            if (!controller_->selectedRows().empty()) controller_->onRemoveItem();
            return true;
        }
        QModelIndex current = outline_->currentIndex();
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && current.isValid() &&
            current.data(GroupsController::IsGroupRole).toBool()) {
            outline_->edit(current);
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

bool GroupsTab::isExpanded(int group) const { return outline_->isExpanded(controller_->index(group, 0)); }

void GroupsTab::collapseAll() { outline_->collapseAll(); }

// An open name editor is the current row's index widget.
bool GroupsTab::isEditingName() const { return outline_->indexWidget(outline_->currentIndex()) != nullptr; }

void GroupsTab::ask(const EditorAlert& alert, std::function<void(int button)> answer) {
    if (sheets_++ == 0) controller_->setSheetShown(true);
    QtEditorView::ask(alert, [this, answer = std::move(answer)](int button) {
        if (--sheets_ == 0) controller_->setSheetShown(false);
        if (answer) answer(button);
    });
}

void GroupsTab::pickFiles(const EditorOpenPanel& panel, std::function<void(std::vector<std::string> paths)> picked) {
    if (sheets_++ == 0) controller_->setSheetShown(true);
    QtEditorView::pickFiles(panel, [this, picked = std::move(picked)](std::vector<std::string> paths) {
        if (--sheets_ == 0) controller_->setSheetShown(false);
        if (picked) picked(std::move(paths));
    });
}

void GroupsTab::initializePane(bool firstTime) {
    controller_->initializePane(firstTime);
    optionsBox_->synchronize();
}

void GroupsTab::willShowPane() { controller_->willShowPane(); }

void GroupsTab::willHidePane() {
    if (optionsBox_ && QApplication::focusWidget() == optionsBox_->keyCombinationField()) outline_->setFocus();
}

void GroupsTab::windowDidBecomeMain() { controller_->windowDidBecomeMain(); }

void GroupsTab::updatePane(std::string& report) { controller_->updatePane(report); }

void GroupsTab::addScreenshotViews(ComKestrovaCorvalis_PrefsPane& pane) {
    pane.addScreenshotView(
        "groups-expanded", [this] {
            outline_->expandAll();
            if (controller_->groupCount() > 0) selectRows({EditorRow{0}});
            optionsBox_->synchronize();
            return true;
        },
        tabs::Groups);
    const std::pair<const char*, GroupOptionsState> states[] = {{"groups-options-no-groups", GroupOptionsState::NoGroups},
                                                                {"groups-options-none-selected", GroupOptionsState::NoGroupsSelected},
                                                                {"groups-options-multiple", GroupOptionsState::MultipleGroups}};
    for (const auto& [name, state] : states)
        pane.addScreenshotView(name, [this, state = state] {
            // The selection that leads to the state where there is one; "no groups" can only be shown.
            if (state == GroupOptionsState::NoGroupsSelected) selectRows({});
            if (state == GroupOptionsState::MultipleGroups && controller_->groupCount() > 1)
                selectRows({EditorRow{0}, EditorRow{1}});
            optionsBox_->showState(state);
            return true;
        }, tabs::Groups);
    pane.addScreenshotView("groups-delete-confirmation", [this] {
        optionsBox_->synchronize();
        // The question as it is asked for the first group, whether or not it has members yet.
        std::optional<plist::Dictionary> first = controller_->groupAt(0);
        std::string name = first ? (*first)[keys::Name].stringOr("") : LocalizedFormat(groupstrings::NewGroup, {1LL});
        ask(GroupsController::deleteGroupsAlert(name, false), {});
        return true;
    }, tabs::Groups);
}

}  // namespace corvalis
