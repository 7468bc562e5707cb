#pragma once
// The options box beside the groups outline: the selected group's name and
// contents, icon menu, five switches and hot key, or a line saying why there
// is nothing to show. GroupOptions decides what is stored; this is its view.

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QStackedWidget;

namespace corvalis {

class CorvalisPreferences;
class EditorView;
class GroupIcons;
class GroupOptions;
class GroupsController;
class KVKeyCombinationTextField;
enum class GroupOptionsState;

class GroupOptionsBox : public QWidget {
    Q_OBJECT

public:
    GroupOptionsBox(GroupsController& groups, GroupOptions& options, CorvalisPreferences& prefs, EditorView& view,
                    GroupIcons& icons, QWidget* parent = nullptr);

    // Shows the box for the selection now (or the page of `state`, for screenshots).
    void synchronize();
    void showState(GroupOptionsState state);
    // The recording field takes focus from the outline (Tab from the last switch).
    KVKeyCombinationTextField* keyCombinationField() const { return keyCombination_; }
    QComboBox* iconMenu() const { return chooseIcon_; }
    QCheckBox* box(const char* key) const;
    QCheckBox* enableShortcut() const { return enableShortcut_; }
    QComboBox* shortcutAction() const { return shortcutAction_; }
    // Runs the icon menu's choice at `index` (the menu's own signal comes here too).
    void chooseIcon(int index);

private:
    QWidget* buildOptionsPage();
    QLabel* messagePage(const char* key);

    GroupsController& groups_;
    GroupOptions& options_;
    CorvalisPreferences& prefs_;
    EditorView& view_;
    GroupIcons& icons_;
    QStackedWidget* optionsViewer_ = nullptr;
    QLabel* groupName_ = nullptr;
    QLabel* groupInfo_ = nullptr;
    QLabel* groupIcon_ = nullptr;
    QComboBox* chooseIcon_ = nullptr;
    std::vector<std::pair<const char*, QCheckBox*>> boxes_;
    QCheckBox* enableShortcut_ = nullptr;
    QComboBox* shortcutAction_ = nullptr;
    QLabel* shortcutLabel_ = nullptr;
    KVKeyCombinationTextField* keyCombination_ = nullptr;
    bool synchronizing_ = false;
};

}  // namespace corvalis
