#pragma once
// The options box beside the groups outline, without its widgets: the selected
// group's switches, icon and hot key, what each edit stores and what it tells
// the controller, and the controller's hot keys paused while a key is recorded.

#include <functional>
#include <optional>
#include <string>

#include "keys/KVKeyCombination.h"
#include "keys/KVKeyCombinationRecorder.h"
#include "plist/Value.h"

namespace corvalis {

class CorvalisPreferences;
class EditorView;
class GroupsController;
class KVKeyCombinationValidator;
class NotificationCenter;

// The built-in icons, in menu order.
inline constexpr const char* kBuiltInGroupIcons[] = {"RedFolder",  "OrangeFolder", "YellowFolder", "GreenFolder",
                                                     "BlueFolder", "PurpleFolder", "GrayFolder"};
// The icon menu's entry that asks for a file.
inline constexpr const char* kCustomIcon = "Custom";

class GroupOptions : public KeyCombinationFieldDelegate {
public:
    GroupOptions(GroupsController& groups, CorvalisPreferences& prefs, KVKeyCombinationValidator& validator,
                 NotificationCenter& distributed, EditorView& view);

    void setOutline(Responder outline) { _outline = outline; }

    // What the box shows of the selected group (none without one).
    std::optional<plist::Dictionary> group() const;
    bool flag(const char* key) const;
    // "Hide" only means something for groups that open by themselves.
    bool hideEnabled() const { return flag("AutoOpen"); }
    std::string iconName() const;
    bool shortcutEnabled() const;
    int shortcutAction() const;
    std::optional<KVKeyCombination> keyCombination() const;

    // Edits of the selected group.
    void setFlag(const char* key, bool on);
    // A built-in name or "" (no icon); "Custom" with the icon's ICNS bytes (none: no icon).
    void setIcon(const std::string& name, const std::optional<plist::Data>& iconData = std::nullopt);
    // A custom icon from the file chosen at `path`, whose ICNS bytes `read` makes (none: no icon);
    // the panel then starts there next time. A path the file system would not take (too long, not
    // UTF-8) changes nothing and answers false.
    using IconFileReader = std::function<std::optional<plist::Data>(const std::string& path)>;
    bool setIconFromFile(const std::string& path, const IconFileReader& read);
    void setShortcutEnabled(bool enabled);
    void setShortcutAction(int action);
    void setKeyCombination(const std::optional<KVKeyCombination>& combination);

    // The recording field's delegate.
    void keyCombinationWillBeginEditing() override;
    void keyCombinationWillEndEditing() override;
    bool validateKeyCombination(const std::optional<KVKeyCombination>& combination, std::string* error) override;
    void didFailToValidateKeyCombination(const std::string& error) override;
    Responder nextFirstResponderForControl() override { return _outline; }

private:
    plist::Dictionary shortcut() const;
    // The group's shortcut with `changes`, keeping its key only while it has one.
    plist::Dictionary rewrittenShortcut(const plist::Dictionary& changes) const;
    void store(const plist::Dictionary& shortcut);

    GroupsController& _groups;
    CorvalisPreferences& _prefs;
    KVKeyCombinationValidator& _validator;
    NotificationCenter& _distributed;
    EditorView& _view;
    Responder _outline = nullptr;
};

}  // namespace corvalis
