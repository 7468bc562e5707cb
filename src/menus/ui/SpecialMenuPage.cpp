#include "menus/ui/SpecialMenuPage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>
#include <map>

#include "controls/KVIconServices.h"
#include "controls/LocalizedText.h"
#include "menus/ConfigureSpecialMenuController.h"
#include "menus/ui/ChangeItemAction.h"
#include "prefs/MenuItemKinds.h"

namespace corvalis {

namespace {

constexpr int kIconSize = 16;
constexpr int kDiskColumns = 3;

// The theme's icon, its symbolic form when the theme has only that, else our own image.
QIcon themeIcon(const char* name, const char* ownImage = nullptr) {
    QString symbolic = QString(name) + "-symbolic";
    if (*name && QIcon::hasThemeIcon(name)) return QIcon::fromTheme(name);
    if (*name && QIcon::hasThemeIcon(symbolic)) return QIcon::fromTheme(symbolic);
    return ownImage ? KVIconServices::loadResource(ownImage) : QIcon();
}

// Beside each disk box: what such a disk looks like.
QIcon diskIcon(const std::string& key) {
    if (key == "ShowExternalDisks") return themeIcon("drive-harddisk-usb");
    if (key == "ShowEjectableDisks") return themeIcon("drive-removable-media");
    if (key == "ShowNetworkDisks") return themeIcon("network-server");
    return themeIcon("drive-harddisk");
}

}  // namespace

QVariant specialMenuItemIcon(const std::string& path, const std::string& kind) {
    static const std::map<std::string, std::pair<const char*, const char*>> images{
        {items::Volumes, {"drive-harddisk", nullptr}},
        {items::Home, {"user-home", nullptr}},
        {items::Library, {"folder", nullptr}},
        {items::RecentFolders, {"document-open-recent", nullptr}},
        {items::RecentDocuments, {"document-open-recent", nullptr}},
        {items::RecentServers, {"network-server", nullptr}},
        {items::AddressBook, {"x-office-address-book", nullptr}},
        {items::iPhotoLibrary, {"folder-pictures", nullptr}},
        {items::ApertureLibrary, {"camera-photo", nullptr}},
        {items::SystemMemory, {"computer", nullptr}},
        {items::Uptime, {"preferences-system-time", nullptr}},
        {items::RelaunchFinder, {"system-file-manager", nullptr}},
        {items::QuitLaunchFinder, {"system-file-manager", nullptr}},
        {items::RelaunchDock, {"", "Dock"}},
        {items::LoginWindow, {"system-lock-screen", nullptr}},
        {items::Sleep, {"system-suspend", "Sleep"}},
        {items::Restart, {"system-reboot", nullptr}},
        {items::ShutDown, {"system-shutdown", nullptr}},
        {items::LogOut, {"system-log-out", nullptr}},
    };
    if (!path.empty()) return menuItemIcon(path, kind);
    auto found = images.find(kind);
    if (found == images.end()) return {};
    QIcon icon = themeIcon(found->second.first, found->second.second);
    return icon.isNull() ? QVariant() : QVariant(icon);
}

SpecialMenuPage::SpecialMenuPage(ConfigureSpecialMenuController& controller, QWidget* sheet, QWidget* parent)
    : MenuItemListPage(controller, localized("SpecialMenuTable"), sheet, parent), controller_(controller) {
    controller_.setIconProvider(&specialMenuItemIcon);
    // A double click, or Return, re-points the row.
    connect(table(), &QAbstractItemView::activated, this,
            [this](const QModelIndex& index) { controller_._onMenuTableViewDoubleClick(index.row()); });

    volumesOptions_ = new QGroupBox(localized("DiskOptions"), this);
    auto* disks = new QGridLayout(volumesOptions_);
    int place = 0;
    for (const char* key : ConfigureSpecialMenuController::kDiskKeys) {
        auto* icon = new QLabel(volumesOptions_);
        icon->setPixmap(diskIcon(key).pixmap(kIconSize, kIconSize, key == std::string("ShowInactiveDisks")
                                                                        ? QIcon::Disabled
                                                                        : QIcon::Normal));
        QCheckBox* box = makeOptionBox(key, volumesOptions_, [this, key](bool on) { controller_.onShowDisks(key, on); });
        diskBoxes_.emplace_back(key, box);
        // Columns of icon and box, filled row by row.
        int row = place / kDiskColumns, column = (place % kDiskColumns) * 2;
        disks->addWidget(icon, row, column);
        disks->addWidget(box, row, column + 1);
        disks->setColumnStretch(column + 1, 1);
        ++place;
    }
    pageLayout()->addWidget(volumesOptions_);

    resolveAliases_ = makeOptionBox("ResolveAliases", this, [this](bool on) { controller_.onResolveAliases(on); });
    pageLayout()->addWidget(resolveAliases_);

    auto* copyPath = new QFormLayout;
    quickCopyPathCommand_ = new QComboBox(this);
    for (int tag = 0; tag < ConfigureSpecialMenuController::kQuickCopyPathFormats; ++tag)
        quickCopyPathCommand_->addItem(localized(("QuickCopyPathCommand" + std::to_string(tag)).c_str()), tag);
    auto* copyPathLabel = new QLabel(localized("QuickCopyPathCommandLabel"), this);
    copyPathLabel->setBuddy(quickCopyPathCommand_);
    copyPath->addRow(copyPathLabel, quickCopyPathCommand_);
    pageLayout()->addLayout(copyPath);
    connect(quickCopyPathCommand_, &QComboBox::currentIndexChanged, this, [this] {
        if (!showing_) controller_.onQuickCopyPathCommand(quickCopyPathCommand_->currentData().toInt());
    });

    // The disk options come and go with the "Volumes" row.
    for (auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(&controller_, signal, this, &SpecialMenuPage::showDiskOptions);
    connect(&controller_, &QAbstractItemModel::modelReset, this, &SpecialMenuPage::showDiskOptions);
    showSettings();
}

QCheckBox* SpecialMenuPage::diskBox(const char* key) const {
    for (const auto& [boxKey, box] : diskBoxes_)
        if (std::string(boxKey) == key) return box;
    return nullptr;
}

void SpecialMenuPage::showDiskOptions() { volumesOptions_->setVisible(controller_.showsDiskOptions()); }

void SpecialMenuPage::showSettings() {
    showing_ = true;
    for (const auto& [key, box] : diskBoxes_) box->setChecked(controller_.showsDisks(key));
    resolveAliases_->setChecked(controller_.resolveAliases());
    quickCopyPathCommand_->setCurrentIndex(quickCopyPathCommand_->findData(controller_.quickCopyPathCommand()));
    showDiskOptions();
    showing_ = false;
}

void SpecialMenuPage::addActions(QMenu* menu) { addChangeItemAction(menu, controller_); }

}  // namespace corvalis
