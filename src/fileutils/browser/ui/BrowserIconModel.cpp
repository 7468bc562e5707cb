#include "fileutils/browser/ui/BrowserIconModel.h"

#include "controls/KVIconServices.h"
#include "controls/KVTableView.h"
#include "fileutils/browser/ApplicationsBrowserController.h"

namespace corvalis {

BrowserIconModel::BrowserIconModel(QObject* parent) : QIdentityProxyModel(parent) {
    // A new list may hold files that moved since their icons were looked up.
    connect(this, &QAbstractItemModel::modelReset, this, [this] { looks_.clear(); });
}

QVariant BrowserIconModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DecorationRole && role != ErrorCodeRole) return QIdentityProxyModel::data(index, role);
    QString path = QIdentityProxyModel::data(index, ApplicationsBrowserController::PathRole).toString();
    if (path.isEmpty()) return {};
    const Look& look = lookFor(path);
    return role == Qt::DecorationRole ? QVariant(look.icon) : QVariant(look.error);
}

const BrowserIconModel::Look& BrowserIconModel::lookFor(const QString& path) const {
    auto found = looks_.find(path);
    if (found != looks_.end()) return *found;
    ++lookups_;
    Look look;
    look.icon = KVIconServices::sharedIcons().iconForPath(path, &look.error);
    return *looks_.insert(path, look);
}

}  // namespace corvalis
