#include "menus/ui/ExcludedApplicationsBox.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QVBoxLayout>

#include "controls/KVServicesBar.h"
#include "controls/LocalizedText.h"
#include "groups/ui/CustomApplicationsLists.h"
#include "menus/ExcludedApplicationsList.h"

namespace corvalis {

ExcludedApplicationsBox::ExcludedApplicationsBox(ExcludedApplicationsList& list, const QString& title,
                                                 const QString& tableName, std::function<void()> browse,
                                                 QWidget* sheet, QWidget* parent)
    : QGroupBox(title, parent), QtEditorView(sheet), list_(list), browse_(std::move(browse)) {
    layout_ = new QVBoxLayout(this);
    auto* listSide = new QVBoxLayout;
    listSide->setSpacing(0);
    table_ = new KVTableView(this);
    setItemView(table_);
    // Applications come from a file manager or the applications browser, onto the whole list.
    setUpApplicationsTable(table_, &list_, ExcludedApplicationsList::PathRole, tableName);
    table_->setTypeToSelect([this](const QString& typed) { return list_.selectString(typed.toStdString()); });
    table_->installEventFilter(this);
    table_->viewport()->installEventFilter(this);
    listSide->addWidget(table_, 1);

    bar_ = new KVServicesBar(this);
    actions_ = new QMenu(bar_);
    bar_->setActionMenu(actions_);
    connect(actions_, &QMenu::aboutToShow, this, &ExcludedApplicationsBox::rebuildActionsMenu);
    connect(bar_->addButton(), &QToolButton::clicked, this, [this] { list_.onAddApplication(); });
    connect(bar_->removeButton(), &QToolButton::clicked, this, [this] { list_.onRemoveApplication(); });
    bar_->addButton()->setAccessibleName(localized("AddApplicationButton"));
    // Named apart from the menu list's own bar on the same page.
    bar_->removeButton()->setAccessibleName(localized("RemoveApplicationButton"));
    bar_->actionButton()->setAccessibleName(localized("ApplicationActionsButton"));
    for (QToolButton* button : {static_cast<QToolButton*>(bar_->addButton()), static_cast<QToolButton*>(bar_->removeButton()),
                                static_cast<QToolButton*>(bar_->actionButton())})
        button->setToolTip(button->accessibleName());
    listSide->addWidget(bar_);
    layout_->addLayout(listSide, 1);

    connect(table_, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) { list_.onDoubleClick(index.row()); });
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ExcludedApplicationsBox::updateRemoveButton);
    connect(&list_, &QAbstractItemModel::modelReset, this, &ExcludedApplicationsBox::updateRemoveButton);
    connect(&list_, &QAbstractItemModel::rowsRemoved, this, &ExcludedApplicationsBox::updateRemoveButton);

    list_.setView(this);
    // The editor chose its first row before there was a list to show it.
    if (list_.rowCount() > 0) selectRows({EditorRow{0}});
    // Filled now so the keyboard finds the entries; their titles follow the paths when it opens.
    fillActionsMenu(localized("ChangeApplication1"));
    updateRemoveButton();
}

ExcludedApplicationsBox::~ExcludedApplicationsBox() {
    list_.setView(nullptr);
    if (table_) {
        table_->removeEventFilter(this);
        table_->viewport()->removeEventFilter(this);
    }
}

std::vector<int> ExcludedApplicationsBox::selectedRows() const {
    std::vector<int> rows;
    if (!table_ || !table_->selectionModel()) return rows;
    for (const QModelIndex& index : table_->selectionModel()->selectedRows()) rows.push_back(index.row());
    return rows;
}

void ExcludedApplicationsBox::rebuildActionsMenu() { fillActionsMenu(QString::fromStdString(list_.changeApplicationTitle())); }

void ExcludedApplicationsBox::fillActionsMenu(const QString& changeTitle) {
    actions_->clear();
    QAction* change = actions_->addAction(changeTitle, this, [this] { list_.onChangeApplication(); });
    change->setEnabled(list_.canChangeApplication());
    actions_->addAction(localized(list_.showInfo() ? "HideInfoTags" : "ShowInfoTags"), this, [this] { list_.onShowInfo(); });
    actions_->addSeparator();
    actions_->addAction(localized("BrowseApplications"), this, [this] {
        if (browse_) browse_();
    });
}

void ExcludedApplicationsBox::updateRemoveButton() { bar_->removeButton()->setEnabled(!selectedRows().empty()); }

bool ExcludedApplicationsBox::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched == table_) {
        auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace) && !selectedRows().empty()) {
            list_.onRemoveApplication();
            return true;
        }
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && selectedRows().size() == 1) {
            list_.onChangeApplication();
            return true;
        }
    }
    if (table_ && watched == table_->viewport() && event->type() == QEvent::ToolTip)
        return showToolTipOverName(table_, static_cast<QHelpEvent*>(event));
    return QGroupBox::eventFilter(watched, event);
}

}  // namespace corvalis
