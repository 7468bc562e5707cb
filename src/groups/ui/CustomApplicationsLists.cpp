#include "groups/ui/CustomApplicationsLists.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <algorithm>

#include "controls/KVIconServices.h"
#include "controls/KVTableView.h"

namespace corvalis {

void setUpApplicationsTable(KVTableView* table, QAbstractItemModel* model, int pathRole, const QString& accessibleName) {
    auto* icons = new ApplicationIconsProxy(pathRole, table);
    icons->setSourceModel(model);
    table->setModel(icons);
    table->setItemDelegate(new KVImageAndTextCell(table));
    table->setAccessibleName(accessibleName);
    table->horizontalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    table->verticalHeader()->hide();
    table->setShowGrid(false);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->setDragDropMode(QAbstractItemView::DropOnly);
    table->setAcceptDrops(true);
}

QVariant ApplicationIconsProxy::data(const QModelIndex& index, int role) const {
    if (role != Qt::DecorationRole && role != ErrorCodeRole) return QIdentityProxyModel::data(index, role);
    int error = 0;
    QIcon icon = KVIconServices::sharedIcons().iconForPath(QIdentityProxyModel::data(index, pathRole_).toString(), &error);
    if (role == ErrorCodeRole) return error;
    return icon;
}

std::vector<int> ApplicationListView::selectedRowNumbers() const {
    std::vector<int> rows;
    if (!itemView() || !itemView()->selectionModel()) return rows;
    for (const QModelIndex& index : itemView()->selectionModel()->selectedRows()) rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void ApplicationListView::sheetOpened() {
    if (sheets_++ == 0 && sheetShown_) sheetShown_(true);
}

void ApplicationListView::sheetClosed() {
    if (--sheets_ == 0 && sheetShown_) sheetShown_(false);
}

void ApplicationListView::ask(const EditorAlert& alert, std::function<void(int button)> answer) {
    sheetOpened();
    QtEditorView::ask(alert, [this, answer = std::move(answer)](int button) {
        sheetClosed();
        if (answer) answer(button);
    });
}

void ApplicationListView::pickFiles(const EditorOpenPanel& panel,
                                    std::function<void(std::vector<std::string>)> picked) {
    sheetOpened();
    QtEditorView::pickFiles(panel, [this, picked = std::move(picked)](std::vector<std::string> paths) {
        sheetClosed();
        if (picked) picked(std::move(paths));
    });
}

}  // namespace corvalis
