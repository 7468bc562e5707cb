#include "groups/ui/WindowRestorationTab.h"

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "controls/KVIconServices.h"
#include "controls/KVServicesBar.h"
#include "controls/KVTableView.h"
#include "controls/LocalizedText.h"
#include "pane/ApplicationsBrowserLink.h"
#include "pane/PaneControllers.h"
#include "pane/ui/CorvalisPane.h"
#include "platform/Workspace.h"

namespace corvalis {

namespace {

// Running applications are locked: their names are drawn light grey, their policy with a lock.
class RestorationRowsProxy : public ApplicationIconsProxy {
public:
    using ApplicationIconsProxy::ApplicationIconsProxy;
    QVariant data(const QModelIndex& index, int role) const override {
        if (role == Qt::ForegroundRole && index.column() == WindowRestorationController::ApplicationColumn &&
            QIdentityProxyModel::data(index, WindowRestorationController::RunningRole).toBool())
            return QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
        if (index.column() != WindowRestorationController::ApplicationColumn) {
            // The lock beside a policy that cannot change while the application runs.
            bool running = QIdentityProxyModel::data(index, WindowRestorationController::RunningRole).toBool();
            if (role == Qt::DecorationRole && running) return KVIconServices::loadResource("Locked");
            if (role == Qt::DecorationRole || role == ErrorCodeRole) return {};
        }
        return ApplicationIconsProxy::data(index, role);
    }
};

// The policy column: a pop-up of the two choices, index 1 keeping windows.
class PolicyDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override {
        auto* popUp = new QComboBox(parent);
        popUp->addItems({localized("DontKeepWindows"), localized("KeepWindows")});
        popUp->setAccessibleName(localized("PolicyColumn"));
        return popUp;
    }
    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        static_cast<QComboBox*>(editor)->setCurrentIndex(index.data(Qt::EditRole).toInt());
    }
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override {
        model->setData(index, static_cast<QComboBox*>(editor)->currentIndex(), Qt::EditRole);
    }
};

}  // namespace

WindowRestorationTab::WindowRestorationTab(CorvalisPreferences& prefs, const Workspace& workspace,
                                           RunningApplications& running, WindowRestorationFolders folders,
                                           QWidget* page, QWidget* window, QObject* parent)
    : QObject(parent),
      ApplicationListView(window ? window : page->window(),
                          [this](bool shown) { controller_->setSheetShown(shown); }),
      manager_(std::make_unique<KVWindowRestorationManager>(workspace, running, std::move(folders))) {
    controller_ = std::make_unique<WindowRestorationController>(prefs, *manager_, running, *this);
    content_ = new QWidget(page);
    auto* pageLayout = page->layout() ? page->layout() : new QVBoxLayout(page);
    pageLayout->addWidget(content_);
    auto* layout = new QVBoxLayout(content_);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* explanation = new QLabel(localized("WindowRestorationExplanation"), content_);
    explanation->setWordWrap(true);
    layout->addWidget(explanation);

    auto* list = new QVBoxLayout;
    list->setSpacing(0);
    table_ = new KVTableView(content_);
    setItemView(table_);
    auto* rows = new RestorationRowsProxy(WindowRestorationController::PathRole, this);
    rows->setSourceModel(controller_.get());
    table_->setModel(rows);
    table_->setItemDelegateForColumn(WindowRestorationController::ApplicationColumn, new KVImageAndTextCell(table_));
    table_->setItemDelegateForColumn(WindowRestorationController::PolicyColumn, new PolicyDelegate(table_));
    table_->setAccessibleName(localized("WindowRestorationList"));
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setSectionResizeMode(WindowRestorationController::ApplicationColumn, QHeaderView::Stretch);
    table_->horizontalHeader()->setSectionResizeMode(WindowRestorationController::PolicyColumn,
                                                     QHeaderView::ResizeToContents);
    table_->setShowGrid(false);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::SelectedClicked);
    table_->setTabKeyNavigation(false);
    table_->setDragDropMode(QAbstractItemView::DropOnly);
    table_->setAcceptDrops(true);
    table_->setTypeToSelect([this](const QString& typed) { return controller_->selectString(typed.toStdString()); });
    table_->installEventFilter(this);
    explanation->setBuddy(table_);
    list->addWidget(table_, 1);

    bar_ = new KVServicesBar(content_);
    auto* actions = new QMenu(bar_);
    infoAction_ = actions->addAction(localized("ShowInfoTags"), this, [this] { controller_->onShowInfo(); });
    actions->addSeparator();
    actions->addAction(localized("BrowseApplications"), this, [this] {
        if (browse_) browse_();
    });
    connect(actions, &QMenu::aboutToShow, this,
            [this] { infoAction_->setText(localized(controller_->showInfo() ? "HideInfoTags" : "ShowInfoTags")); });
    bar_->setActionMenu(actions);
    connect(bar_->addButton(), &QToolButton::clicked, this, [this] { controller_->onAddApplication(); });
    connect(bar_->removeButton(), &QToolButton::clicked, this, [this] { controller_->onRemoveApplication(); });
    list->addWidget(bar_);
    layout->addLayout(list, 1);

    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &WindowRestorationTab::selectionChanged);
    // A click on a column header gives the table the keyboard.
    connect(table_->horizontalHeader(), &QHeaderView::sectionClicked, this, [this] { table_->setFocus(); });
}

WindowRestorationTab::~WindowRestorationTab() {
    if (table_) table_->removeEventFilter(this);
    delete content_.data();
}

std::unique_ptr<WindowRestorationTab> WindowRestorationTab::create(ComKestrovaCorvalis_PrefsPane& pane) {
    auto tab = std::make_unique<WindowRestorationTab>(pane.prefs(), Workspace::shared(), pane.runningApplications(),
                                                      WindowRestorationFolders::system(), pane.page(tabs::Resume),
                                                      pane.window());
    tab->setBrowseApplications([&pane] {
        if (ApplicationsBrowserLink* browser = pane.applicationsBrowser()) browser->showApplicationsBrowser();
    });
    return tab;
}

void WindowRestorationTab::selectionChanged() {
    bar_->removeButton()->setEnabled(controller_->selectionContainsAtLeastOneClosedApplication());
}

bool WindowRestorationTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched == table_) {
        auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace) &&
            controller_->selectionContainsAtLeastOneClosedApplication()) {
            controller_->onRemoveApplication();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace corvalis
