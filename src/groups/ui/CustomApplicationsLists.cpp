#include "groups/ui/CustomApplicationsLists.h"

#include <QAbstractItemView>
#include <algorithm>

#include "controls/KVIconServices.h"
#include "controls/KVTableView.h"

namespace corvalis {

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
