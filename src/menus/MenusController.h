#pragma once
// The Menus tab without its widgets: the options every menu shares, the four
// menus' hot keys, and the Configure Menus sheet whose tabs host the menu
// editors, each registered under its tab's identifier.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "keys/KVKeyCombination.h"
#include "menus/ConfigurePreviewsController.h"
#include "menus/MenuEditor.h"
#include "pane/HotKeyRecording.h"
#include "platform/NotificationCenter.h"

namespace corvalis {

class CorvalisPreferences;
class KVKeyCombinationValidator;

// What the tab's logic asks of its widgets.
class MenusView : public virtual EditorView {
public:
    virtual void beginConfigureMenusSheet() = 0;
    // 1 when the sheet's own button closed it, 0 when it closed for the accessibility settings.
    virtual void endConfigureMenusSheet(int returnCode) = 0;
    // The desktop's accessibility settings.
    virtual void openUniversalAccess() = 0;
};

// Stores a check box of the tab and tells the controller.
void synchronizeOption(CorvalisPreferences& prefs, const char* key, bool on);

class MenusController : public HotKeyRecording {
public:
    static constexpr int kHotKeyRows = 4;
    static constexpr int kPositions = 6;

    MenusController(CorvalisPreferences& prefs, KVKeyCombinationValidator& validator, NotificationCenter& local,
                    NotificationCenter& distributed, BrowserLinkSource browser, MenusView& view);
    ~MenusController() override;

    // The sheet shows the editors in the order they were added.
    void addEditor(const std::string& identifier, MenuEditor& editor);
    const std::vector<std::string>& editorIdentifiers() const { return _order; }
    MenuEditor* editor(const std::string& identifier) const;
    ConfigurePreviewsController& previews() { return _previews; }

    void initializePane(bool firstTime);
    void updatePane(std::string& report);
    void willShowPane();
    void windowDidBecomeMain();

    // The options.
    bool option(const char* key) const;
    void setOption(const char* key, bool on) { synchronizeOption(_prefs, key, on); }
    bool includeTerminatedApplications() const;
    int includeTerminatedApplicationsWhere() const;
    void onIncludeTerminatedApplications(bool on, int where);
    void onIncludeTerminatedApplicationsWhere(int where, bool include);

    // The hot key table, one row per menu.
    static const char* enableKey(int row);
    static const char* menuNameKey(int row);
    bool hotKeyEnabled(int row) const;
    std::optional<KVKeyCombination> hotKeyCombination(int row) const;
    int hotKeyPosition(int row) const;
    void setHotKeyEnabled(int row, bool enabled);
    void setHotKeyCombination(int row, const std::optional<KVKeyCombination>& combination);
    void setHotKeyPosition(int row, int position);
    bool validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error) override;

    // The Configure Menus sheet.
    void onConfigureMenus();
    void tabWillSelect(const std::string& identifier);
    void tabDidSelect(const std::string& identifier);
    // `button`: the sheet's own button; without it the accessibility settings open afterwards.
    void onCloseConfigureMenus(bool button);
    void _configureMenusSheetDidEnd(int returnCode);
    void onOpenUniversalAccess() { onCloseConfigureMenus(false); }
    bool configureMenusSheetShown() const { return _sheetShown; }
    const std::string& selectedTab() const { return _selectedTab; }

private:
    std::optional<plist::Dictionary> hotKeyRecord(int row) const;
    void storeHotKey(int row, const plist::Dictionary& record);

    CorvalisPreferences& _prefs;
    KVKeyCombinationValidator& _validator;
    NotificationCenter& _local;
    ApplicationsBrowserLink* browser() const { return _browser ? _browser() : nullptr; }
    BrowserLinkSource _browser;
    MenusView& _view;
    ConfigurePreviewsController _previews;
    std::vector<std::string> _order;
    std::map<std::string, MenuEditor*> _paneControllers;
    std::string _selectedTab;
    bool _sheetShown = false;
    std::optional<NotificationCenter::Token> _universalAccessObserver;
};

}  // namespace corvalis
