#pragma once
// The applications browser without its window: the sources (Applications
// folder, Developer applications, running, recent, Dock, each Open menu
// folder), their lists cached per source, folder walks on a worker thread,
// per-source depth, and the Open menu's paths kept right. It is the item model
// of the list: one row per application entry {"Name", "Path"}, dragged out as
// files. The store and the model are touched on the main thread only.

#include <QAbstractListModel>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "fileutils/browser/ApplicationsBrowserView.h"
#include "platform/DomainStore.h"
#include "platform/NotificationCenter.h"
#include "platform/RunningApplications.h"
#include "platform/Workspace.h"
#include "plist/Value.h"

namespace corvalis {

class CorvalisPreferences;
struct WalkMailbox;

// Source tags of the pop-up; an Open menu folder at row i has kOpenMenuFolderTag + i.
namespace browser {
inline constexpr int ApplicationsFolderTag = 0;
inline constexpr int DeveloperApplicationsTag = 2;
inline constexpr int RunningApplicationsTag = 3;
inline constexpr int RecentApplicationsTag = 4;
inline constexpr int DockApplicationsTag = 5;
inline constexpr int OpenMenuFolderTag = 1000;
}  // namespace browser

// What the browser asks of the machine beyond the store and the workspace; tests answer for another.
struct BrowserEnvironment {
    // The Developer applications folder, none when it does not exist.
    std::function<std::optional<std::string>()> developerApplicationsFolder;
    // The desktop's favourite applications as desktop file ids (the Dock's stand-in).
    std::function<std::vector<std::string>()> desktopFavorites;

    static BrowserEnvironment system();
};

class ApplicationsBrowserController : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { PathRole = Qt::UserRole };

    ApplicationsBrowserController(CorvalisPreferences& prefs, NotificationCenter& local, RunningApplications& running,
                                  DomainStore& domains, ApplicationsBrowserView& view,
                                  BrowserEnvironment environment = BrowserEnvironment::system(),
                                  const Workspace& workspace = Workspace::shared(), QObject* parent = nullptr);
    ~ApplicationsBrowserController() override;

    // The source pop-up from the Open menu and the stored choice; after an import
    // (false) every cached list is dropped and a visible browser reloads.
    void initializeBrowser(bool firstTime);
    // The window opens (the first time loads the list) and closes; running
    // applications are followed while it is open.
    void browserWillShow();
    void browserDidHide();
    bool isBrowserVisible() const { return _visible; }
    // Reloads the shown source when the window is open.
    void updateBrowser();
    void windowDidBecomeMain() { updateBrowser(); }

    // The user's actions. `controlHeld`: Ctrl was down, asking to read the source again.
    void onShowWhat(int tag, bool controlHeld);
    void onDepth(int depth);
    void onUpdateList();
    void onShowInfo();
    // A double click without modifiers reveals an existing file.
    void onDoubleClick(int row, bool modifiersHeld);
    // Selects the first row whose name begins with `text` in the name order; false when none does.
    bool selectString(const std::string& text);

    void synchronizeDragApplicationsInfoWithPane(const std::string& identifier);
    // An Open menu row was re-pointed or removed: the folder sources follow it.
    void synchronizeOpenMenuItem(int index, bool isFolder, bool removeDuplicate, bool updateSelection);

    int shownTag() const { return _shownTag; }
    bool infoMode() const { return _info; }
    bool isLoading() const { return _loading; }
    bool isCached(int tag);
    const std::vector<BrowserSource>& sources() const { return _sources; }
    std::string pathAt(int row) const;
    // Waits for the walks under way; true when none is left. Their results still arrive through the event loop.
    bool waitForWalks(int ms);

    // The model.
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction; }

    // Keeping the Open menu's paths right: run before each action.
    void _updatePaths();

private:
    plist::Array openMenuItems();
    std::string sourceKey(int tag);
    std::optional<std::string> folderOfSource(int tag);
    const char* depthKey(int tag) const;
    std::optional<int> storedDepth(int tag);
    void _synchronizeSources();
    void _synchronizeFolderDepth();
    void _synchronizeIcon();
    void _showSource(int tag);
    void _clearList();
    // Clears the list, then shows the cached one or loads it (never before the first showing).
    void _reload();
    void _loadApplications();
    void _updateList();
    void _scrollToTop();
    void showEntries(const plist::Array& entries);
    void storeIfFound(const std::string& key, const plist::Array& entries);
    void startWalk(const std::string& key, const std::string& folder, int depth);
    void walkFinished(unsigned generation, const std::string& key, plist::Array found);
    void setLoading(bool loading);
    bool followsRunningList();
    void onLaunchApplication(const RunningApplication& application);
    void onTerminateApplication(const RunningApplication& application);
    void onRecentItemsChanged();
    void onOpenMenuChanged(const Notification& notification);

    CorvalisPreferences& _prefs;
    NotificationCenter& _local;
    RunningApplications& _running;
    DomainStore& _domains;
    ApplicationsBrowserView& _view;
    BrowserEnvironment _environment;
    const Workspace& _workspace;

    std::vector<BrowserSource> _sources;
    std::map<std::string, plist::Array> _cache;
    plist::Array _entries;
    int _shownTag = browser::ApplicationsFolderTag;
    std::string _shownFolder;  // the path of a shown Open menu folder, which keeps it across renumbering
    bool _info = false;
    bool _neverShown = true;
    bool _visible = false;
    bool _loading = false;
    unsigned _generation = 0;  // a walk whose number is not the latest is stale
    std::vector<NotificationCenter::Token> _observers;
    std::optional<RunningApplications::Token> _runningObserver;
    std::shared_ptr<WalkMailbox> _mailbox;
};

}  // namespace corvalis
