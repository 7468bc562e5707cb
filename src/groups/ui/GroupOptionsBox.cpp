#include "groups/ui/GroupOptionsBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "controls/LocalizedText.h"
#include "groups/GroupOptions.h"
#include "groups/GroupTexts.h"
#include "groups/GroupsController.h"
#include "groups/ui/GroupIcons.h"
#include "keys/ui/KVKeyCombinationTextField.h"
#include "prefs/CorvalisPreferences.h"
#include "schema/PreferenceKeys.h"

namespace corvalis {

namespace {

// The stacked pages, in the order of GroupOptionsState.
constexpr int kPageOf[] = {0, 1, 3, 2};

}  // namespace

GroupOptionsBox::GroupOptionsBox(GroupsController& groups, GroupOptions& options, CorvalisPreferences& prefs,
                                 EditorView& view, GroupIcons& icons, QWidget* parent)
    : QWidget(parent), groups_(groups), options_(options), prefs_(prefs), view_(view), icons_(icons) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    optionsViewer_ = new QStackedWidget(this);
    optionsViewer_->addWidget(messagePage("NoGroups"));
    optionsViewer_->addWidget(messagePage("NoGroupsSelected"));
    optionsViewer_->addWidget(messagePage("MultipleGroups"));
    optionsViewer_->addWidget(buildOptionsPage());
    layout->addWidget(optionsViewer_);
    setAccessibleName(localized("GroupOptionsBox"));
}

QLabel* GroupOptionsBox::messagePage(const char* key) {
    auto* label = new QLabel(localized(key), this);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setObjectName(key);
    return label;
}

QWidget* GroupOptionsBox::buildOptionsPage() {
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);

    groupName_ = new QLabel(page);
    QFont bold = groupName_->font();
    bold.setBold(true);
    groupName_->setFont(bold);
    groupName_->setAccessibleName(localized("GroupName"));
    groupInfo_ = new QLabel(page);
    groupInfo_->setAccessibleName(localized("GroupInfoLabel"));
    form->addRow(groupName_);
    form->addRow(groupInfo_);

    auto* iconRow = new QHBoxLayout;
    groupIcon_ = new QLabel(page);
    groupIcon_->setFixedSize(32, 32);
    groupIcon_->setAccessibleName(localized("GroupIcon"));
    chooseIcon_ = new QComboBox(page);
    chooseIcon_->addItem(localized("NoIcon"), QString());
    for (const char* name : kBuiltInGroupIcons)
        if (QIcon icon = GroupIcons::builtIn(name); !icon.isNull()) chooseIcon_->addItem(icon, localized(name), QString(name));
    chooseIcon_->addItem(localized("CustomIcon"), QString(kCustomIcon));
    iconRow->addWidget(groupIcon_);
    iconRow->addWidget(chooseIcon_, 1);
    auto* iconLabel = new QLabel(localized("GroupIcon"), page);
    iconLabel->setBuddy(chooseIcon_);
    form->addRow(iconLabel, iconRow);
    connect(chooseIcon_, &QComboBox::activated, this, &GroupOptionsBox::chooseIcon);

    const std::pair<const char*, const char*> switches[] = {{keys::ShowInOpenMenu, groupstrings::ShowInOpenMenuBox},
                                                            {keys::ShowInQuitMenu, groupstrings::ShowInQuitMenuBox},
                                                            {keys::ShowInSwitchMenu, groupstrings::ShowInSwitchMenuBox},
                                                            {keys::AutoOpen, groupstrings::AutoOpenBox},
                                                            {keys::Hide, groupstrings::HideBox}};
    for (const auto& [key, title] : switches) {
        auto* box = new QCheckBox(localized(title), page);
        // toggled, not clicked: the keyboard and a screen reader's toggle change it too.
        connect(box, &QCheckBox::toggled, this, [this, key = key](bool on) {
            if (!synchronizing_) options_.setFlag(key, on);
        });
        boxes_.emplace_back(key, box);
        form->addRow(box);
    }

    enableShortcut_ = new QCheckBox(localized("GroupShortcutEnabled"), page);
    connect(enableShortcut_, &QCheckBox::toggled, this, [this](bool on) {
        if (!synchronizing_) options_.setShortcutEnabled(on);
    });
    form->addRow(enableShortcut_);
    shortcutAction_ = new QComboBox(page);
    for (const char* action : groupstrings::Actions) shortcutAction_->addItem(localized(action));
    connect(shortcutAction_, &QComboBox::activated, this, [this](int index) { options_.setShortcutAction(index); });
    shortcutLabel_ = new QLabel(localized("GroupShortcutAction"), page);
    shortcutLabel_->setBuddy(shortcutAction_);
    form->addRow(shortcutLabel_, shortcutAction_);
    keyCombination_ = new KVKeyCombinationTextField(page);
    keyCombination_->setDelegate(&options_);
    keyCombination_->setAccessibleName(localized("GroupKeyCombination"));
    connect(keyCombination_, &KVKeyCombinationTextField::keyCombinationChanged, this,
            [this] { options_.setKeyCombination(keyCombination_->objectValue()); });
    auto* keyLabel = new QLabel(localized("GroupKeyCombination"), page);
    keyLabel->setBuddy(keyCombination_);
    form->addRow(keyLabel, keyCombination_);
    return page;
}

QCheckBox* GroupOptionsBox::box(const char* key) const {
    for (const auto& [name, box] : boxes_)
        if (std::string_view(name) == key) return box;
    return nullptr;
}

void GroupOptionsBox::showState(GroupOptionsState state) { optionsViewer_->setCurrentIndex(kPageOf[static_cast<int>(state)]); }

void GroupOptionsBox::synchronize() {
    showState(groups_.optionsState());
    std::optional<plist::Dictionary> group = options_.group();
    if (!group) return;
    synchronizing_ = true;
    groupName_->setText(QString::fromStdString((*group)[keys::Name].stringOr("")));
    groupInfo_->setText(QString::fromStdString(groupInfo(*group)));
    QString iconName = QString::fromStdString(options_.iconName());
    const plist::Data* data = (*group)[keys::IconData].data();
    QIcon icon = icons_.iconFor(iconName, data ? QByteArray(reinterpret_cast<const char*>(data->data()),
                                                            static_cast<qsizetype>(data->size()))
                                               : QByteArray());
    groupIcon_->setPixmap(icon.isNull() ? QPixmap() : icon.pixmap(32, 32));
    int entry = chooseIcon_->findData(iconName.contains("Custom") ? QString(kCustomIcon) : iconName);
    chooseIcon_->setCurrentIndex(std::max(entry, 0));
    for (const auto& [key, box] : boxes_) box->setChecked(options_.flag(key));
    box(keys::Hide)->setEnabled(options_.hideEnabled());
    bool enabled = options_.shortcutEnabled();
    enableShortcut_->setChecked(enabled);
    shortcutAction_->setCurrentIndex(options_.shortcutAction());
    shortcutAction_->setEnabled(enabled);
    shortcutLabel_->setEnabled(enabled);
    keyCombination_->setEnabled(enabled);
    keyCombination_->setObjectValue(options_.keyCombination());
    synchronizing_ = false;
}

void GroupOptionsBox::chooseIcon(int index) {
    QString name = chooseIcon_->itemData(index).toString();
    if (name != kCustomIcon) {
        options_.setIcon(name.toStdString());
        return;
    }
    EditorOpenPanel panel;
    panel.canChooseDirectories = true;
    panel.prompt = LocalizedString(groupstrings::Choose);
    panel.directory = prefs_.getOpenPanelPathForKey(keys::AddFileFolderPath);
    view_.pickFiles(panel, [this](std::vector<std::string> paths) {
        if (paths.empty()) {
            synchronize();  // cancelled: the menu shows the icon the group still has
            return;
        }
        // A file that gives no icon at all leaves the group with none, not with the one it had.
        bool taken = options_.setIconFromFile(paths.front(), [](const std::string& path) -> std::optional<plist::Data> {
            std::optional<QByteArray> bytes = GroupIcons::icnsForFile(QString::fromStdString(path));
            return bytes ? std::optional(plist::Data(bytes->begin(), bytes->end())) : std::nullopt;
        });
        if (!taken) synchronize();  // refused: the menu shows the icon the group kept
    });
}

}  // namespace corvalis
