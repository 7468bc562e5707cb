#pragma once
// The part every menu editor shares: the store's own array of menu item
// records shown as a list model, the Add pull-down's missing kinds, inserting
// at the insertion point, removing with its selection rule, restoring the
// factory menu, moving rows by drag and drop, dropping extra separators when
// the sheet closes, info-mode tool tips and row colours by path. Each editor
// (Open, Quit, Switch, Special) derives from it and adds its own rules.

#include <QAbstractListModel>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "menus/MenuEditor.h"
#include "plist/Value.h"

namespace corvalis {

class CorvalisPreferences;

class MenuItemListModel : public QAbstractListModel, public MenuEditor {
    Q_OBJECT

public:
    // Rows dragged inside an editor travel as this type, with no data: the editor keeps them.
    static constexpr const char* kMenuItemsMimeType = "application/x-kestrova-corvalis-menu-items";
    // The icon of a row: the path shown (the record's, or its kind's), and its kind.
    using IconProvider = std::function<QVariant(const std::string& path, const std::string& kind)>;
    enum Role { KindRole = Qt::UserRole + 200, PathRole };

    // `menuKey` names the array in the store, `changeKey` the change the controller is told.
    MenuItemListModel(CorvalisPreferences& prefs, const char* menuKey, const char* changeKey,
                      const char* showInfoKey, QObject* parent = nullptr);

    void setView(MenuEditorView* view) { _view = view; }
    void setIconProvider(IconProvider provider) { _iconProvider = std::move(provider); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::MoveAction; }
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

    // The records, in menu order (the store's own array).
    const plist::Array& menuItems() const { return _menuItems; }
    std::string kindAt(int row) const;
    const std::string* pathAt(int row) const;
    virtual std::string displayNameAt(int row) const;

    // The entries of the Add pull-down, in order: the missing kinds, then those always offered.
    std::vector<std::string> addMenuKinds() const;
    // The title of a kind, in its rows and in the Add pull-down.
    virtual std::string kindTitle(const std::string& kind) const;
    bool showInfo() const { return _showInfo; }
    // Menus without a stored info mode (null key) show no paths and offer no entry for them.
    bool hasInfoMode() const { return showInfoKey_ != nullptr; }

    // Actions of the services bar.
    virtual void onAddItem(const std::string& kind);
    void onRemoveItem();
    void onRestoreDefaultMenu();
    void onShowInfo();

    void initializePane(bool firstTime) override;
    void didEndSheet() override;

protected:
    // The kinds the Add pull-down offers while missing, in their fixed order.
    virtual std::vector<std::string> fixedKinds() const = 0;
    virtual std::vector<std::string> unavailableKinds() const { return {}; }
    virtual std::vector<std::string> alwaysOfferedKinds() const;
    virtual plist::Array defaultMenu() const = 0;
    // The path a row of this kind stands for (tool tips), and the one whose icon it shows.
    virtual std::string kindPath(const std::string& kind) const;
    virtual std::string kindIconPath(const std::string& kind) const;
    // Follows moved files before an edit; true when something changed.
    virtual void _updatePaths(bool save) { (void)save; }
    // What the editor tells others after each kind of change.
    virtual void itemsAddedOrRearranged() {}
    virtual void itemsRemoved(const plist::Array& paths, int index) { (void)paths, (void)index; }
    // A rename typed in the row; false when refused.
    virtual bool rename(int row, const std::string& text) { (void)row, (void)text; return false; }
    // Files dropped from a file manager above `row`; false when they are refused.
    virtual bool canDropFiles(const std::vector<std::string>& paths) const { (void)paths; return false; }
    virtual bool dropFiles(const std::vector<std::string>& paths, int row) { (void)paths, (void)row; return false; }
    // While a file panel of the editor is open, nothing is dropped.
    virtual bool refusesDrops() const { return false; }
    // The pane's image a row shows after its title (none: ""), and whether its title is greyed.
    virtual std::string extraImage(int row) const { (void)row; return {}; }
    virtual bool isDimmed(int row) const { (void)row; return false; }

    // The selection, sorted; and the view's answers.
    std::vector<int> selection() const;
    void selectRows(const std::vector<int>& rows);
    void selectAndScroll(int row);
    // The records, rows and the store, each change announced to views.
    void fetchMenu();
    void reload();
    void rowChanged(int row);
    void insertRecord(int row, const plist::Dictionary& record);
    plist::Value removeRecord(int row);
    void insertKinds(const std::vector<std::string>& kinds, int index);
    // Moves the rows above old row `target`; answers where they landed.
    int moveRecords(const std::vector<int>& rows, int target);
    // Removes the separators a menu must not keep; true when there were some.
    bool _removeExtraSeparators();
    void save();

    CorvalisPreferences& _prefs;
    MenuEditorView* _view = nullptr;
    plist::Array _menuItems;
    bool _showInfo = false;
    bool _showIcons = true;

private:
    const char* menuKey_;
    const char* changeKey_;
    const char* showInfoKey_;
    IconProvider _iconProvider;
    mutable std::vector<int> _draggedIndexes;
};

// The line an editor adds to the summary after an import when some of its paths are gone.
void appendInvalidPathsLine(std::string& report, const char* summaryKey, int invalid);

}  // namespace corvalis
