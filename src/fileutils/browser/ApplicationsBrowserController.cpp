#include "fileutils/browser/ApplicationsBrowserController.h"

#include <QMimeData>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <mutex>
#include <set>

#include "fileutils/NameOrder.h"
#include "fileutils/PathChecking.h"
#include "fileutils/PathLimits.h"
#include "fileutils/PathPredicates.h"
#include "fileutils/browser/OpenMenuPaths.h"
#include "prefs/CorvalisPreferences.h"
#include "prefs/NotificationNames.h"
#include "schema/PreferenceKeys.h"
#include "text/Localization.h"

namespace corvalis {

using namespace browser;

namespace {

constexpr const char* kDockDomain = "com.apple.dock";
constexpr const char* kDockPersistentApps = "persistent-apps";
constexpr const char* kFolderKeyPrefix = "folder ";
constexpr std::int32_t kNewFolderBrowserDepth = 2;

bool isFolderTag(int tag) { return tag >= OpenMenuFolderTag; }

std::string pathOfEntry(const plist::Value& entry) { return entry[keys::Path].stringOr(""); }

}  // namespace

// Where a walk delivers its result: the controller while it lives. A walk that
// ends after the controller went delivers nothing, so closing never waits for one.
struct WalkMailbox {
    std::mutex mutex;
    ApplicationsBrowserController* owner = nullptr;
};

BrowserEnvironment BrowserEnvironment::system() {
    return {[]() -> std::optional<std::string> {
                std::string folder;
                if (GetDeveloperApplicationsFolderRef(&folder) != kNoErr) return std::nullopt;
                return folder;
            },
            ReadGnomeFavoriteApps};
}

ApplicationsBrowserController::ApplicationsBrowserController(CorvalisPreferences& prefs, NotificationCenter& local,
                                                             RunningApplications& running, DomainStore& domains,
                                                             ApplicationsBrowserView& view,
                                                             BrowserEnvironment environment,
                                                             const Workspace& workspace, QObject* parent)
    : QAbstractListModel(parent),
      _prefs(prefs),
      _local(local),
      _running(running),
      _domains(domains),
      _view(view),
      _environment(std::move(environment)),
      _workspace(workspace),
      _mailbox(std::make_shared<WalkMailbox>()) {
    _mailbox->owner = this;
    auto openMenuChanged = [this](const Notification& notification) { onOpenMenuChanged(notification); };
    for (const char* name : {notifications::OpenMenuItemsAddedOrRearranged, notifications::OpenMenuItemChanged,
                             notifications::OpenMenuItemsRemoved})
        _observers.push_back(_local.addObserver(name, "", openMenuChanged));
    _observers.push_back(
        _local.addObserver(notifications::RecentItemsChanged, "", [this](const Notification&) { onRecentItemsChanged(); }));
}

ApplicationsBrowserController::~ApplicationsBrowserController() {
    {
        std::lock_guard lock(_mailbox->mutex);
        _mailbox->owner = nullptr;
    }
    for (NotificationCenter::Token token : _observers) _local.removeObserver(token);
    if (_runningObserver) _running.removeObserver(*_runningObserver);
}

// Sources and what they read.

plist::Array ApplicationsBrowserController::openMenuItems() {
    return _prefs.arrayForKey(keys::OpenMenuItems).value_or(plist::Array());
}

std::optional<std::string> ApplicationsBrowserController::folderOfSource(int tag) {
    if (!isFolderTag(tag)) return std::nullopt;
    const std::string* path = plist::Value(openMenuItems())[tag - OpenMenuFolderTag][keys::Path].string();
    return path ? std::optional<std::string>(*path) : std::nullopt;
}

// Open menu folders are cached by path, so that a list follows its folder when rows move.
std::string ApplicationsBrowserController::sourceKey(int tag) {
    if (!isFolderTag(tag)) return "source " + std::to_string(tag);
    std::optional<std::string> folder = folderOfSource(tag);
    return folder ? kFolderKeyPrefix + *folder : std::string();
}

// The depth keys are a list indexed by tag whose second key belongs to tag 2: tag 1
// was a source that no longer exists, so the Developer source takes the key after
// the Applications folder's.
const char* ApplicationsBrowserController::depthKey(int tag) const {
    static constexpr const char* kDepthKeys[] = {keys::BrowserApplicationsFolderDepth,
                                                 keys::BrowserDeveloperApplicationsFolderDepth};
    if (tag == ApplicationsFolderTag) return kDepthKeys[0];
    if (tag == DeveloperApplicationsTag) return kDepthKeys[1];
    return nullptr;
}

// A negative depth read from the settings counts as the depth of a new folder.
std::optional<int> ApplicationsBrowserController::storedDepth(int tag) {
    std::int32_t depth = kNewFolderBrowserDepth;
    if (const char* key = depthKey(tag)) depth = _prefs.intForKey(key);
    else if (folderOfSource(tag))
        depth = plist::Value(openMenuItems())[tag - OpenMenuFolderTag][keys::BrowserDepth].toInt32().value_or(depth);
    else return std::nullopt;
    return depth < 0 ? kNewFolderBrowserDepth : depth;
}

bool ApplicationsBrowserController::isCached(int tag) {
    return _cache.contains(sourceKey(tag));
}

bool ApplicationsBrowserController::waitForWalks(int ms) { return QThreadPool::globalInstance()->waitForDone(ms); }

std::string ApplicationsBrowserController::pathAt(int row) const {
    return pathOfEntry(plist::Value(_entries)[row]);
}

// The window's life.

void ApplicationsBrowserController::initializeBrowser(bool firstTime) {
    if (!firstTime) {
        _clearList();
        _cache.clear();
    }
    _info = _prefs.boolForKey(keys::BrowserInfo);
    _view.showInfoMode(_info);
    _shownTag = _prefs.intForKey(keys::BrowserShowWhat);
    _shownFolder = folderOfSource(_shownTag).value_or("");
    _synchronizeSources();
    if (!firstTime && _visible) _reload();
}

void ApplicationsBrowserController::browserWillShow() {
    _visible = true;
    if (!_runningObserver)
        _runningObserver = _running.addObserver([this](const RunningApplication& a) { onLaunchApplication(a); },
                                                [this](const RunningApplication& a) { onTerminateApplication(a); });
    if (_neverShown) {
        _neverShown = false;
        _reload();
    } else {
        _updateList();
    }
}

void ApplicationsBrowserController::browserDidHide() {
    _visible = false;
    if (_runningObserver) _running.removeObserver(*_runningObserver);
    _runningObserver.reset();
    // Nobody follows the running applications while the window is closed.
    _cache.erase(sourceKey(RunningApplicationsTag));
}

void ApplicationsBrowserController::updateBrowser() {
    if (_visible) _updateList();
}

// Actions.

void ApplicationsBrowserController::onShowWhat(int tag, bool controlHeld) {
    _updatePaths();
    bool forced = controlHeld && tag != RunningApplicationsTag && tag != RecentApplicationsTag;
    if (tag == _shownTag && !forced) return;
    if (tag != _shownTag) _showSource(tag);
    if (forced) _cache.erase(sourceKey(tag));
    _reload();
}

void ApplicationsBrowserController::onDepth(int depth) {
    _updatePaths();
    if (const char* key = depthKey(_shownTag)) {
        if (_prefs.intForKey(key) == depth) return;
        _prefs.setInt(depth, key);
    } else {
        int row = _shownTag - OpenMenuFolderTag;
        plist::Array items = openMenuItems();
        std::optional<plist::Dictionary> record = plist::asDictionary(plist::Value(items)[row]);
        if (!record || !folderOfSource(_shownTag) || storedDepth(_shownTag) == depth) return;
        record->set(keys::BrowserDepth, plist::Value::int32(depth));
        _prefs.synchronizeValue(plist::Dictionary{{changes::Index, plist::Value::int32(OpenMenuFolderIndex(items, row))},
                                                  {keys::BrowserDepth, plist::Value::int32(depth)}},
                                changes::ChangeOpenMenuItemBrowserDepth);
    }
    _cache.erase(sourceKey(_shownTag));
    _reload();
}

void ApplicationsBrowserController::onUpdateList() {
    // After the menu that asked has closed.
    QTimer::singleShot(0, this, [this] { _updateList(); });
}

void ApplicationsBrowserController::onShowInfo() {
    _info = !_info;
    _prefs.setBool(_info, keys::BrowserInfo);
    _view.showInfoMode(_info);
    if (rowCount() > 0) emit dataChanged(index(0), index(rowCount() - 1), {Qt::ToolTipRole});
}

void ApplicationsBrowserController::onDoubleClick(int row, bool modifiersHeld) {
    if (modifiersHeld) return;
    std::string path = pathAt(row);
    if (!path.empty() && isPathWithinLimit(path) && fileExistsAtPath(path)) _view.revealPath(path);
}

bool ApplicationsBrowserController::selectString(const std::string& text) {
    QString typed = QString::fromStdString(text);
    for (int row = 0; row < rowCount(); ++row) {
        QString name = QString::fromStdString(plist::Value(_entries)[row][keys::Name].stringOr(""));
        if (finderCompare(name.left(typed.size()).toStdString(), text) != 0) continue;
        _view.selectRows({EditorRow{row}});
        _view.scrollRowToVisible(EditorRow{row});
        return true;
    }
    return false;
}

void ApplicationsBrowserController::synchronizeDragApplicationsInfoWithPane(const std::string& identifier) {
    const char* key = "BrowserHintOther";
    if (identifier == "Groups") key = "BrowserHintGroups";
    else if (identifier == "Applications") key = "BrowserHintApplications";
    else if (identifier == "Resume") key = "BrowserHintResume";
    else if (identifier == "Quit" || identifier == "Switch") key = "BrowserHintExcluded";
    else if (identifier == "Open" || identifier == "Menus") key = "BrowserHintMenus";
    _view.showHint(LocalizedString(key));
}

void ApplicationsBrowserController::synchronizeOpenMenuItem(int, bool, bool, bool) { _synchronizeSources(); }

// The Open menu's paths.

void ApplicationsBrowserController::_updatePaths() {
    plist::Array items = openMenuItems();
    // The shown folder's record is followed to its new path (a duplicate's survivor has the same one).
    std::optional<plist::Dictionary> shownRecord =
        isFolderTag(_shownTag) ? plist::asDictionary(plist::Value(items)[_shownTag - OpenMenuFolderTag]) : std::nullopt;
    std::vector<OpenMenuPathChange> repaired = RepairOpenMenuPaths(items, _workspace);
    if (repaired.empty()) return;
    if (shownRecord)
        if (const std::string* path = (*shownRecord)[keys::Path].string()) _shownFolder = *path;
    for (const OpenMenuPathChange& change : repaired)
        synchronizeOpenMenuItem(change.index, change.isFolder, change.removeDuplicate, false);
    _prefs.synchronizeValue(plist::Dictionary{{keys::OpenMenuItems, items}}, changes::ChangeOpenMenuItems);
    _local.post(Notification{notifications::OpenMenuItemsUpdated, "", std::nullopt});
}

void ApplicationsBrowserController::onOpenMenuChanged(const Notification& notification) {
    plist::Value info = notification.userInfo ? plist::Value(*notification.userInfo) : plist::Value();
    std::optional<std::int64_t> index;
    if (const plist::Integer* number = info[changes::Index].integer()) index = number->toInt64();
    plist::Array items = openMenuItems();
    if (notification.name == notifications::OpenMenuItemChanged && index && *index + OpenMenuFolderTag == _shownTag) {
        // The shown folder was renamed or re-pointed: follow its row.
        std::string now = folderOfSource(_shownTag).value_or("");
        if (now != _shownFolder) {
            _cache.erase(kFolderKeyPrefix + _shownFolder);
            _shownFolder = now;
            _synchronizeSources();
            _synchronizeIcon();
            if (_visible) _reload();
            return;
        }
    }
    if (notification.name == notifications::OpenMenuItemsRemoved && index && *index >= 0 && isFolderTag(_shownTag)) {
        // The shown folder was re-pointed at a folder another row has: show that row.
        std::vector<int> rows = OpenMenuFolderRows(items);
        bool stillThere = std::any_of(rows.begin(), rows.end(), [&](int row) {
            return plist::Value(items)[row][keys::Path].stringOr("") == _shownFolder;
        });
        if (!stillThere) _shownFolder = plist::Value(items)[static_cast<std::size_t>(*index)][keys::Path].stringOr(_shownFolder);
    }
    _synchronizeSources();
}

void ApplicationsBrowserController::_synchronizeSources() {
    std::vector<BrowserSource> sources{{ApplicationsFolderTag, LocalizedString("BrowserApplicationsFolder")}};
    if (_environment.developerApplicationsFolder && _environment.developerApplicationsFolder())
        sources.push_back({DeveloperApplicationsTag, LocalizedString("BrowserDeveloperApplications")});
    sources.push_back({RunningApplicationsTag, LocalizedString("BrowserRunningApplications")});
    sources.push_back({RecentApplicationsTag, LocalizedString("BrowserRecentApplications")});
    sources.push_back({DockApplicationsTag, LocalizedString("BrowserDockApplications")});

    plist::Array items = openMenuItems();
    std::vector<int> rows = OpenMenuFolderRows(items);
    if (!rows.empty()) sources.push_back({-1, ""});
    std::set<std::string> folderKeys;
    std::optional<int> shownFolderTag;
    for (int row : rows) {
        std::string path = plist::Value(items)[row][keys::Path].stringOr("");
        std::string title = plist::Value(items)[row][keys::Name].stringOr(std::string(lastPathComponent(path)));
        sources.push_back({OpenMenuFolderTag + row, title});
        folderKeys.insert(kFolderKeyPrefix + path);
        if (!shownFolderTag && path == _shownFolder) shownFolderTag = OpenMenuFolderTag + row;
    }
    _sources = std::move(sources);
    std::erase_if(_cache, [&](const auto& entry) {
        return entry.first.starts_with(kFolderKeyPrefix) && !folderKeys.contains(entry.first);
    });

    int tag = _shownTag;
    if (isFolderTag(tag)) tag = shownFolderTag.value_or(ApplicationsFolderTag);
    bool known = std::any_of(_sources.begin(), _sources.end(), [&](const BrowserSource& s) { return s.tag == tag; });
    if (!known || tag < 0) tag = ApplicationsFolderTag;
    if (tag == _shownTag) {
        _view.showSources(_sources, _shownTag);
        _synchronizeFolderDepth();
        _synchronizeIcon();
        return;
    }
    bool lostFolder = isFolderTag(_shownTag) && !shownFolderTag;
    _showSource(tag);
    if (lostFolder && _visible) _reload();
}

void ApplicationsBrowserController::_showSource(int tag) {
    _shownTag = tag;
    _shownFolder = folderOfSource(tag).value_or("");
    _prefs.setInt(tag, keys::BrowserShowWhat);
    _view.showSources(_sources, tag);
    _synchronizeFolderDepth();
    _synchronizeIcon();
}

void ApplicationsBrowserController::_synchronizeFolderDepth() { _view.showDepth(storedDepth(_shownTag)); }

void ApplicationsBrowserController::_synchronizeIcon() {
    if (!isFolderTag(_shownTag)) return _view.showSourceIcon(SourceIcon::None);
    std::optional<std::string> folder = folderOfSource(_shownTag);
    _view.showSourceIcon(folder ? sourceIconForFolder(*folder) : SourceIcon::BadLink);
}

// Loading.

void ApplicationsBrowserController::_reload() {
    if (_neverShown) return;
    _clearList();
    auto cached = _cache.find(sourceKey(_shownTag));
    if (cached != _cache.end()) showEntries(cached->second);
    else _loadApplications();
    _scrollToTop();
}

void ApplicationsBrowserController::_updateList() {
    _updatePaths();
    if (_shownTag == RunningApplicationsTag || _shownTag == RecentApplicationsTag) _cache.erase(sourceKey(_shownTag));
    // A folder deleted or trashed since it was listed lists nothing now.
    std::optional<std::string> folder = folderOfSource(_shownTag);
    if (folder && !isBrowsableFolder(*folder)) _cache.erase(sourceKey(_shownTag));
    _synchronizeIcon();
    _reload();
}

void ApplicationsBrowserController::_clearList() {
    ++_generation;
    setLoading(false);
    if (_entries.empty()) return;
    beginResetModel();
    _entries = plist::Array();
    endResetModel();
}

void ApplicationsBrowserController::_scrollToTop() {
    if (rowCount() > 0) _view.scrollRowToVisible(EditorRow{0});
}

void ApplicationsBrowserController::showEntries(const plist::Array& entries) {
    beginResetModel();
    _entries = entries;
    endResetModel();
}

void ApplicationsBrowserController::storeIfFound(const std::string& key, const plist::Array& entries) {
    if (!entries.empty() && !key.empty()) _cache[key] = entries;
}

void ApplicationsBrowserController::_loadApplications() {
    int tag = _shownTag;
    std::string key = sourceKey(tag);
    plist::Array entries;
    switch (tag) {
    case ApplicationsFolderTag:
        return startWalk(key, _workspace.systemApplicationsFolder(), storedDepth(tag).value_or(0));
    case DeveloperApplicationsTag:
        if (auto folder = _environment.developerApplicationsFolder ? _environment.developerApplicationsFolder()
                                                                   : std::nullopt)
            startWalk(key, *folder, storedDepth(tag).value_or(0));
        return;
    case RunningApplicationsTag:
        entries = RunningApplicationEntries(_running.launchedApplications());
        break;
    case RecentApplicationsTag:
        entries = RecentApplicationEntries(_prefs.objectForKey(keys::RecentApplications),
                                           _prefs.intForKey(keys::RecentApplicationsMaxNum));
        break;
    case DockApplicationsTag:
        if (std::optional<plist::Dictionary> dock = _domains.persistentDomainForName(kDockDomain))
            entries = DockApplicationEntries((*dock)[kDockPersistentApps], _workspace);
        else if (_environment.desktopFavorites)
            entries = FavoriteApplicationEntries(_environment.desktopFavorites(), _workspace);
        break;
    default:
        if (std::optional<std::string> folder = folderOfSource(tag); folder && isBrowsableFolder(*folder))
            startWalk(key, *folder, storedDepth(tag).value_or(kNewFolderBrowserDepth));
        return;
    }
    storeIfFound(key, entries);
    showEntries(entries);
}

void ApplicationsBrowserController::startWalk(const std::string& key, const std::string& folder, int depth) {
    unsigned generation = ++_generation;
    setLoading(true);
    QThreadPool::globalInstance()->start([mailbox = _mailbox, generation, key, folder, depth] {
        plist::Array found = WalkFolderSource(folder, depth);
        // Back on the main thread, which alone touches the cache and the model.
        std::lock_guard lock(mailbox->mutex);
        if (ApplicationsBrowserController* owner = mailbox->owner)
            QMetaObject::invokeMethod(
                owner, [owner, generation, key, found] { owner->walkFinished(generation, key, found); },
                Qt::QueuedConnection);
    });
}

void ApplicationsBrowserController::walkFinished(unsigned generation, const std::string& key, plist::Array found) {
    if (generation != _generation) return;  // the source changed meanwhile
    setLoading(false);
    storeIfFound(key, found);
    if (sourceKey(_shownTag) != key) return;
    showEntries(found);
    _scrollToTop();
}

void ApplicationsBrowserController::setLoading(bool loading) {
    if (_loading == loading) return;
    _loading = loading;
    _view.showProgress(loading);
}

// Following the workspace.

// True when the shown running list takes the change row by row; otherwise a
// hidden list is dropped and an uncached shown one loaded whole.
bool ApplicationsBrowserController::followsRunningList() {
    std::string key = sourceKey(RunningApplicationsTag);
    if (_shownTag != RunningApplicationsTag) {
        _cache.erase(key);
        return false;
    }
    if (_cache.contains(key)) return true;
    _reload();
    return false;
}

void ApplicationsBrowserController::onLaunchApplication(const RunningApplication& application) {
    if (!followsRunningList()) return;
    plist::Array added = RunningApplicationEntries({application});
    if (added.empty()) return;
    for (const plist::Value& entry : _entries)
        if (pathOfEntry(entry) == application.path) return;
    int row = 0;
    while (row < rowCount() && SortByNameAndPath(plist::Value(_entries)[row], added[0]) <= 0) ++row;
    beginInsertRows(QModelIndex(), row, row);
    _entries.insert(row, added[0]);
    endInsertRows();
}

void ApplicationsBrowserController::onTerminateApplication(const RunningApplication& application) {
    if (!followsRunningList()) return;
    for (int row = 0; row < rowCount(); ++row) {
        if (pathAt(row) != application.path) continue;
        beginRemoveRows(QModelIndex(), row, row);
        _entries.removeAt(row);
        endRemoveRows();
        return;
    }
}

void ApplicationsBrowserController::onRecentItemsChanged() {
    _cache.erase(sourceKey(RecentApplicationsTag));
    if (_shownTag == RecentApplicationsTag && _visible) _reload();
}

// The model.

int ApplicationsBrowserController::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(_entries.size());
}

QVariant ApplicationsBrowserController::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) return {};
    const plist::Value& entry = plist::Value(_entries)[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return QString::fromStdString(entry[keys::Name].stringOr(""));
    case Qt::ToolTipRole:
        return _info ? QVariant(QString::fromStdString(pathOfEntry(entry))) : QVariant();
    case PathRole:
        return QString::fromStdString(pathOfEntry(entry));
    default:
        return {};
    }
}

Qt::ItemFlags ApplicationsBrowserController::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

QStringList ApplicationsBrowserController::mimeTypes() const { return {QStringLiteral("text/uri-list")}; }

// The selected files in row order, as a file manager drags them.
QMimeData* ApplicationsBrowserController::mimeData(const QModelIndexList& indexes) const {
    std::set<int> rows;
    for (const QModelIndex& index : indexes)
        if (index.isValid() && index.row() < rowCount()) rows.insert(index.row());
    QList<QUrl> urls;
    for (int row : rows) urls << QUrl::fromLocalFile(QString::fromStdString(pathAt(row)));
    auto* mime = new QMimeData;
    mime->setUrls(urls);
    return mime;
}

}  // namespace corvalis
