#pragma once
// The browser's list as the view sees it: each row's icon and error code looked
// up only when the view asks for them (the rows it draws), and kept per path.

#include <QHash>
#include <QIcon>
#include <QIdentityProxyModel>

namespace corvalis {

class BrowserIconModel : public QIdentityProxyModel {
    Q_OBJECT

public:
    explicit BrowserIconModel(QObject* parent = nullptr);
    QVariant data(const QModelIndex& index, int role) const override;
    // How many icons were looked up so far.
    int lookups() const { return lookups_; }

private:
    struct Look {
        QIcon icon;
        int error = 0;
    };
    const Look& lookFor(const QString& path) const;

    mutable QHash<QString, Look> looks_;
    mutable int lookups_ = 0;
};

}  // namespace corvalis
