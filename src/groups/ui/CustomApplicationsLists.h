#pragma once
// What the lists of applications (the Applications and Resume tabs) share: icons
// from the icon service by each row's path, and an editor view that tells its
// controller while a sheet is open, since drops wait until it closes.

#include <QIdentityProxyModel>
#include <functional>

#include "controls/QtEditorView.h"

namespace corvalis {

class KVTableView;

// A list model seen with the icon service's icons: each row's path (from
// `pathRole`) gives its icon and error code, asked only for the rows drawn.
class ApplicationIconsProxy : public QIdentityProxyModel {
    Q_OBJECT

public:
    ApplicationIconsProxy(int pathRole, QObject* parent) : QIdentityProxyModel(parent), pathRole_(pathRole) {}
    QVariant data(const QModelIndex& index, int role) const override;

private:
    int pathRole_;
};

// A list of applications by name with their icons (by each row's path, from `pathRole`): rows
// selected whole, several at once, nothing typed in place, files dropped onto the whole list.
void setUpApplicationsTable(KVTableView* table, QAbstractItemModel* model, int pathRole, const QString& accessibleName);

class ApplicationListView : public QtEditorView {
public:
    // `sheetShown` hears true when a sheet opens and false when the last one closes.
    ApplicationListView(QWidget* window, std::function<void(bool)> sheetShown)
        : QtEditorView(window), sheetShown_(std::move(sheetShown)) {}

    // The selected rows of the item view, in order.
    std::vector<int> selectedRowNumbers() const;
    void ask(const EditorAlert& alert, std::function<void(int button)> answer) override;
    void pickFiles(const EditorOpenPanel& panel, std::function<void(std::vector<std::string>)> picked) override;

private:
    void sheetOpened();
    void sheetClosed();

    std::function<void(bool)> sheetShown_;
    int sheets_ = 0;
};

}  // namespace corvalis
