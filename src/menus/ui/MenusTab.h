#pragma once
// The Menus tab: the options every menu shares, the automatic-termination box,
// the four menus' hot keys, and the buttons of the Configure Menus and Configure
// Previews sheets, which are built the first time they open. MenusController
// holds the rules; the menu editors are registered here, one line each.

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>
#include <vector>

#include "controls/KVTableView.h"
#include "controls/QtEditorView.h"
#include "menus/ConfigureQuitMenuController.h"
#include "menus/ConfigureSwitchMenuController.h"
#include "menus/MenusController.h"
#include "menus/ui/ConfigureMenusSheet.h"
#include "menus/ui/ConfigurePreviewsSheet.h"
#include "pane/PaneController.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QPushButton;

namespace corvalis {

class ConfigureOpenMenuController;
class MenuHotKeysTableModel;
class MenuItemListModel;

class ComKestrovaCorvalis_PrefsPane;

// What the tab needs of the pane.
struct MenusTabContext {
    CorvalisPreferences& prefs;
    KVKeyCombinationValidator& validator;
    NotificationCenter& local;
    NotificationCenter& distributed;
    BrowserLinkSource browser;
    // The groups editor, for the Quit menu's excluded applications; the accessibility status, for the Switch menu.
    GroupsControllerSource groups = {};
    ConfigureSwitchMenuController::AssistiveAccess assistiveAccess = {};
};

class MenusTab : public QObject, public PaneController, public MenusView, public QtEditorView {
    Q_OBJECT

public:
    // Starts a program detached; false when it could not be started.
    using Launcher = std::function<bool(const QString& program, const QStringList& arguments)>;

    MenusTab(const MenusTabContext& context, QWidget* page, QWidget* window, QObject* parent = nullptr);
    // The tab on the pane's "Menus" page, its sheets among the pane's screenshot views.
    static std::unique_ptr<MenusTab> make(ComKestrovaCorvalis_PrefsPane& pane);
    ~MenusTab() override;

    void initializePane(bool firstTime) override;
    void updatePane(std::string& report) override;
    void willShowPane() override;
    void windowDidBecomeMain() override;

    // The Configure Menus and Configure Previews buttons.
    void onConfigureMenus();
    void onConfigurePreviews();
    // Brings the editor's tab of the open Configure Menus sheet to the front.
    void showSheetTab(const std::string& identifier);

    MenusController& controller() { return *controller_; }
    ConfigureOpenMenuController& openMenu() const;
    KVTableView* hotKeysTable() const { return hotKeysTable_; }
    QCheckBox* optionBox(const char* key) const;
    QCheckBox* includeTerminatedBox() const { return includeTerminated_; }
    QComboBox* includeTerminatedWhere() const { return where_; }
    QPushButton* configureMenusButton() const { return configureMenus_; }
    QPushButton* configurePreviewsButton() const { return configurePreviews_; }
    // Null until first opened.
    ConfigureMenusSheet* configureMenusSheet() const { return menusSheet_; }
    ConfigurePreviewsSheet* configurePreviewsSheet() const { return previewsSheet_; }
    void setLauncher(Launcher launcher) { launcher_ = std::move(launcher); }

    // MenusView.
    void beginConfigureMenusSheet() override;
    void endConfigureMenusSheet(int returnCode) override;
    void openUniversalAccess() override;

private:
    // Registers a menu editor: its logic now, its page when the sheet is first built.
    template <class Editor, class Page>
    void addEditor(const std::string& identifier, std::unique_ptr<Editor> editor);
    void buildPage(QWidget* page);
    void showOptions();
    bool eventFilter(QObject* watched, QEvent* event) override;

    MenusTabContext context_;
    std::unique_ptr<MenusController> controller_;
    std::vector<std::unique_ptr<MenuItemListModel>> editors_;
    std::vector<ConfigureMenusSheet::Page> pages_;
    QPointer<QWidget> content_;
    std::vector<std::pair<const char*, QCheckBox*>> options_;
    QGroupBox* termination_ = nullptr;
    QCheckBox* includeTerminated_ = nullptr;
    QComboBox* where_ = nullptr;
    QPointer<KVTableView> hotKeysTable_;
    MenuHotKeysTableModel* hotKeysModel_ = nullptr;
    QPushButton* configureMenus_ = nullptr;
    QPushButton* configurePreviews_ = nullptr;
    QPointer<ConfigureMenusSheet> menusSheet_;
    QPointer<ConfigurePreviewsSheet> previewsSheet_;
    Launcher launcher_;
    // Until the settings are shown the boxes store nothing (they are not even loaded yet).
    bool showing_ = true;
};

}  // namespace corvalis
