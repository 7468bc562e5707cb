#pragma once
// The page of a menu editor on the Configure Menus sheet: the menu as a table
// with its services bar (Add pull-down of the kinds still missing, Remove, an
// Actions pull-down), keyboard editing (Delete removes, Return or F2 renames)
// and drag and drop. The editor's model decides everything; each editor's page
// adds its own actions and controls below the table.

#include <QPointer>
#include <QWidget>
#include <functional>

#include "controls/KVTableView.h"
#include "controls/QtEditorView.h"
#include "menus/MenuEditor.h"

class QCheckBox;
class QHBoxLayout;
class QMenu;
class QVBoxLayout;

namespace corvalis {

class KVServicesBar;
class MenuItemListModel;

class MenuItemListPage : public QWidget, public MenuEditorView, public QtEditorView {
    Q_OBJECT

public:
    // Alerts and panels are sheets on `sheet`.
    MenuItemListPage(MenuItemListModel& model, const QString& tableName, QWidget* sheet, QWidget* parent = nullptr);
    ~MenuItemListPage() override;

    KVTableView* table() const { return table_; }
    KVServicesBar* servicesBar() const { return bar_; }
    QMenu* addMenu() const { return addMenu_; }
    QMenu* actionsMenu() const { return actionsMenu_; }
    std::vector<int> selectedRows() const override;
    void editName(const EditorRow& row) override;
    // The editor's own controls from the settings (after start or an import).
    virtual void showSettings() {}

protected:
    // Below the table, for the editor's own controls.
    QVBoxLayout* pageLayout() const { return layout_; }
    // A column beside the table, made on first use, for editors with more to show.
    QVBoxLayout* sideLayout();
    // Entries the editor puts first in the Actions pull-down, refreshed each time it opens.
    virtual void addActions(QMenu* menu) { (void)menu; }
    // A check box of the editor's options: `changed` hears the user's changes, not the page's own
    // while it shows the settings (with `showing` set).
    QCheckBox* makeOptionBox(const char* titleKey, QWidget* parent, std::function<void(bool)> changed);

    bool showing_ = false;

private:
    void editNameOnceActive(const EditorRow& row, int tries);
    void rebuildAddMenu();
    void rebuildActionsMenu();
    void updateRemoveButton();
    bool eventFilter(QObject* watched, QEvent* event) override;

    MenuItemListModel& model_;
    QHBoxLayout* columns_;
    QVBoxLayout* layout_;
    QVBoxLayout* side_ = nullptr;
    QPointer<KVTableView> table_;
    KVServicesBar* bar_;
    QMenu* addMenu_;
    QMenu* actionsMenu_;
};

// The icon of a menu row: the file's own for a path, else the kind's theme image.
QVariant menuItemIcon(const std::string& path, const std::string& kind);

}  // namespace corvalis
