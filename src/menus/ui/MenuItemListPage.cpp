#include "menus/ui/MenuItemListPage.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QStyle>
#include <QKeyEvent>
#include <QMenu>
#include <QTimer>
#include <QVBoxLayout>

#include "controls/KVIconServices.h"
#include "controls/KVServicesBar.h"
#include "controls/KVTableView.h"
#include "controls/LocalizedText.h"
#include "menus/MenuItemListModel.h"
#include "prefs/MenuItemKinds.h"

namespace corvalis {

namespace {
constexpr int kEditDelayMs = 100;
constexpr int kEditTries = 30;
}  // namespace

QVariant menuItemIcon(const std::string& path, const std::string& kind) {
    if (!path.empty()) return KVIconServices::sharedIcons().iconForPath(QString::fromStdString(path), nullptr);
    // The pane's own image of the kind; the folders whose place is unknown get the theme's folder.
    static const std::map<std::string, const char*> images{
        {items::Groups, "YellowFolder"},
        {items::DockApplications, "Dock"},
        {items::RecentApplications, "RecentApps"},
        {items::SystemPreferences, "PrefApp"},
        {items::RunningApplications, "RunningApps"},
        {items::ExcludedApplications, "ExcludedApps"},
        {items::BackgroundOnlyApplications, "BackgroundOnlyApps"},
        {items::ActiveApplicationWindows, "Window"},
    };
    if (auto found = images.find(kind); found != images.end()) return KVIconServices::loadResource(found->second);
    if (kind == items::ApplicationsFolder || kind == items::DeveloperApplicationsFolder)
        return QIcon::fromTheme("folder", QApplication::style()->standardIcon(QStyle::SP_DirIcon));
    return {};
}

MenuItemListPage::MenuItemListPage(MenuItemListModel& model, const QString& tableName, QWidget* sheet, QWidget* parent)
    : QWidget(parent), QtEditorView(sheet), model_(model) {
    columns_ = new QHBoxLayout(this);
    layout_ = new QVBoxLayout;
    columns_->addLayout(layout_, 2);
    table_ = new KVTableView(this);
    setItemView(table_);
    table_->setModel(&model_);
    table_->setAccessibleName(tableName);
    table_->horizontalHeader()->hide();
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->verticalHeader()->hide();
    // Separator rows are thinner than the others.
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    table_->setTabKeyNavigation(false);
    table_->setWordWrap(false);
    // Rows move by drag and drop inside the model; files come from a file manager.
    table_->setDragDropMode(QAbstractItemView::DragDrop);
    table_->setDefaultDropAction(Qt::MoveAction);
    table_->setDragDropOverwriteMode(false);
    table_->setDropIndicatorShown(true);
    table_->installEventFilter(this);
    table_->viewport()->installEventFilter(this);
    layout_->addWidget(table_, 1);

    bar_ = new KVServicesBar(this);
    addMenu_ = new QMenu(bar_);
    actionsMenu_ = new QMenu(bar_);
    bar_->setAddMenu(addMenu_);
    bar_->setActionMenu(actionsMenu_);
    layout_->addWidget(bar_);
    connect(addMenu_, &QMenu::aboutToShow, this, &MenuItemListPage::rebuildAddMenu);
    connect(actionsMenu_, &QMenu::aboutToShow, this, &MenuItemListPage::rebuildActionsMenu);
    connect(bar_->removeButton(), &QToolButton::clicked, this, [this] { model_.onRemoveItem(); });
    // Remove is there while rows are selected.
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &MenuItemListPage::updateRemoveButton);
    connect(&model_, &QAbstractItemModel::modelReset, this, &MenuItemListPage::updateRemoveButton);
    connect(&model_, &QAbstractItemModel::rowsRemoved, this, &MenuItemListPage::updateRemoveButton);

    model_.setView(this);
    model_.setIconProvider(&menuItemIcon);
    // The editor chose its first row before there was a table to show it.
    if (model_.rowCount() > 0) selectRows({EditorRow{0}});
    // The menus are built for the pull-downs at once, so the keyboard finds them too.
    rebuildAddMenu();
    rebuildActionsMenu();
    updateRemoveButton();
}

MenuItemListPage::~MenuItemListPage() {
    model_.setView(nullptr);
    model_.setIconProvider({});
    if (table_) {
        table_->removeEventFilter(this);
        table_->viewport()->removeEventFilter(this);
    }
}

QVBoxLayout* MenuItemListPage::sideLayout() {
    if (!side_) {
        side_ = new QVBoxLayout;
        columns_->addLayout(side_, 3);
    }
    return side_;
}

QCheckBox* MenuItemListPage::makeOptionBox(const char* titleKey, QWidget* parent, std::function<void(bool)> changed) {
    auto* box = new QCheckBox(localized(titleKey), parent);
    connect(box, &QCheckBox::toggled, this, [this, changed = std::move(changed)](bool on) {
        if (!showing_) changed(on);
    });
    return box;
}

std::vector<int> MenuItemListPage::selectedRows() const {
    std::vector<int> rows;
    if (!table_ || !table_->selectionModel()) return rows;
    for (const QModelIndex& index : table_->selectionModel()->selectedRows()) rows.push_back(index.row());
    return rows;
}

void MenuItemListPage::editName(const EditorRow& row) { editNameOnceActive(row, kEditTries); }

// Once the panel that asked for the row has gone and the sheet has the focus back, which
// on a busy machine takes longer than one wait: an editor opened in an inactive sheet
// would not get the keyboard.
void MenuItemListPage::editNameOnceActive(const EditorRow& row, int tries) {
    QTimer::singleShot(kEditDelayMs, this, [this, row, tries] {
        if (!table_) return;
        table_->window()->activateWindow();
        if (!table_->window()->isActiveWindow() && tries > 1) return editNameOnceActive(row, tries - 1);
        table_->setFocus();
        QtEditorView::editName(row);
    });
}

void MenuItemListPage::rebuildAddMenu() {
    addMenu_->clear();
    for (const std::string& kind : model_.addMenuKinds()) {
        QString title = QString::fromStdString(model_.kindTitle(kind));
        addMenu_->addAction(title, this, [this, kind] { model_.onAddItem(kind); });
        if (kind == items::Folder || kind == items::FileOrFolder) addMenu_->insertSeparator(addMenu_->actions().last());
    }
}

void MenuItemListPage::rebuildActionsMenu() {
    actionsMenu_->clear();
    addActions(actionsMenu_);
    if (model_.hasInfoMode()) {
        actionsMenu_->addAction(localized(model_.showInfo() ? "HideInfoTags" : "ShowInfoTags"), this,
                                [this] { model_.onShowInfo(); });
        actionsMenu_->addSeparator();
    }
    actionsMenu_->addAction(localized("RestoreDefaultMenu"), this, [this] { model_.onRestoreDefaultMenu(); });
}

void MenuItemListPage::updateRemoveButton() { bar_->removeButton()->setEnabled(!selectedRows().empty()); }

bool MenuItemListPage::eventFilter(QObject* watched, QEvent* event) {
    // Keys that reach the table from a name being typed are the editor's.
    if (event->type() == QEvent::KeyPress && watched == table_ && !table_->indexWidget(table_->currentIndex())) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace) {
            if (selectedRows().empty()) return false;
            model_.onRemoveItem();
            return true;
        }
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && table_->currentIndex().isValid() &&
            (model_.flags(table_->currentIndex()) & Qt::ItemIsEditable)) {
            table_->edit(table_->currentIndex());
            return true;
        }
    }
    if (table_ && watched == table_->viewport() && event->type() == QEvent::ToolTip)
        return showToolTipOverName(table_, static_cast<QHelpEvent*>(event));
    return QWidget::eventFilter(watched, event);
}

}  // namespace corvalis
