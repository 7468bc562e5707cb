#include "groups/ui/CustomApplicationsIcons.h"

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

}  // namespace corvalis
