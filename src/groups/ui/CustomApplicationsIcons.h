#pragma once
// A list model seen with the icon service's icons: each row's path (from
// `pathRole`) gives its icon and error code, asked only for the rows drawn.

#include <QIdentityProxyModel>

namespace corvalis {

class ApplicationIconsProxy : public QIdentityProxyModel {
    Q_OBJECT

public:
    ApplicationIconsProxy(int pathRole, QObject* parent) : QIdentityProxyModel(parent), pathRole_(pathRole) {}
    QVariant data(const QModelIndex& index, int role) const override;

private:
    int pathRole_;
};

}  // namespace corvalis
