#pragma once
// The box of a menu's excluded applications: the list with the applications'
// icons, its services bar (Add, Remove, and Actions: change or fix, info tags,
// the applications browser) and keyboard access (Delete removes, Return changes,
// typing selects by name). ExcludedApplicationsList decides everything.

#include <QGroupBox>
#include <QPointer>
#include <functional>

#include "controls/KVTableView.h"
#include "controls/QtEditorView.h"
#include "menus/MenuEditor.h"

class QMenu;
class QVBoxLayout;

namespace corvalis {

class ExcludedApplicationsList;
class KVServicesBar;

class ExcludedApplicationsBox : public QGroupBox, public MenuEditorView, public QtEditorView {
    Q_OBJECT

public:
    // Alerts and panels are sheets on `sheet`; `browse` opens the applications browser.
    ExcludedApplicationsBox(ExcludedApplicationsList& list, const QString& title, const QString& tableName,
                            std::function<void()> browse, QWidget* sheet, QWidget* parent = nullptr);
    ~ExcludedApplicationsBox() override;

    KVTableView* table() const { return table_; }
    KVServicesBar* servicesBar() const { return bar_; }
    QMenu* actionsMenu() const { return actions_; }
    // Below the list, for the menu's own boxes.
    QVBoxLayout* boxLayout() const { return layout_; }
    std::vector<int> selectedRows() const override;

private:
    void rebuildActionsMenu();
    void fillActionsMenu(const QString& changeTitle);
    void updateRemoveButton();
    bool eventFilter(QObject* watched, QEvent* event) override;

    ExcludedApplicationsList& list_;
    std::function<void()> browse_;
    QVBoxLayout* layout_;
    QPointer<KVTableView> table_;
    KVServicesBar* bar_;
    QMenu* actions_;
};

}  // namespace corvalis
