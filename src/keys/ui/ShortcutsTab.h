#pragma once
// The Shortcuts tab: a table of the controller's fixed commands, each with a
// check box that turns it on and a cell that records its key combination.
// ComKestrovaShortcutsController decides what is stored and told; this is its view.

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <memory>

#include "controls/KVTableView.h"
#include "controls/QtEditorView.h"
#include "pane/ComKestrovaShortcutsController.h"
#include "pane/PaneController.h"

namespace corvalis {

class CorvalisPreferences;
class KVKeyCombinationValidator;
class NotificationCenter;
class ShortcutsTableModel;

class ShortcutsTab : public QObject, public PaneController, public ShortcutsView, public QtEditorView {
    Q_OBJECT

public:
    enum Column { EnabledColumn, CommandColumn, KeyCombinationColumn, ColumnCount };

    // Fills `page` with the tab's widgets; alerts are sheets on `window`. Without a
    // validator the tab makes its own; the pane passes the one its other tabs share.
    ShortcutsTab(CorvalisPreferences& prefs, NotificationCenter& distributed, QWidget* page, QWidget* window,
                 KVKeyCombinationValidator* validator = nullptr, QObject* parent = nullptr);
    ~ShortcutsTab() override;

    void initializePane(bool firstTime) override;
    void willShowPane() override;
    void updatePane(std::string& report) override;

    KVTableView* table() const { return table_; }
    ComKestrovaShortcutsController& controller() { return *controller_; }
    // The alert shown for a refused combination while it is open.
    QMessageBox* alert() const { return alert_; }

    // What the controller asks of the table beyond what every editor's view does.
    void reloadData() override;
    void ask(const EditorAlert& alert, std::function<void(int button)> answer) override;

private:

    bool eventFilter(QObject* watched, QEvent* event) override;
    ShortcutTextColour textColour(int row, bool rowEnabled) const;
    void keyboardMayHaveChanged();

    std::unique_ptr<KVKeyCombinationValidator> ownValidator_;
    KVKeyCombinationValidator& validator_;
    std::unique_ptr<ComKestrovaShortcutsController> controller_;
    QPointer<QWidget> content_;
    QPointer<KVTableView> table_;
    ShortcutsTableModel* model_ = nullptr;
    QPointer<QMessageBox> alert_;
};

}  // namespace corvalis
