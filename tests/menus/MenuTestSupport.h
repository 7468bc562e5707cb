#pragma once
// A menu editor's view that keeps the selection it was given, a browser that
// writes down what it is told, and the Open menu editor over a store in memory.

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QUrl>
#include <filesystem>
#include <memory>

#include "menus/ConfigureOpenMenuController.h"
#include "pane/ApplicationsBrowserLink.h"
#include "support/PrefsFixture.h"
#include "support/RecordingEditorView.h"
#include "support/TestSupport.h"

namespace corvalis::test {

// Files as a file manager drags them.
inline std::unique_ptr<QMimeData> filesDragged(const std::vector<std::string>& paths) {
    auto data = std::make_unique<QMimeData>();
    QList<QUrl> urls;
    for (const std::string& path : paths) urls << QUrl::fromLocalFile(QString::fromStdString(path));
    data->setUrls(urls);
    return data;
}

class MenuView : public RecordingView<MenuEditorView> {
public:
    std::vector<int> selected;
    void selectRows(const std::vector<EditorRow>& rows) override {
        RecordingView::selectRows(rows);
        selected.clear();
        for (const EditorRow& row : rows) selected.push_back(row.row);
    }
    std::vector<int> selectedRows() const override { return selected; }
};

class RecordingBrowser : public ApplicationsBrowserLink {
public:
    std::vector<std::string> calls;
    void showApplicationsBrowser() override { calls.push_back("show"); }
    void closeBrowser() override { calls.push_back("close"); }
    void updateBrowser() override { calls.push_back("update"); }
    void synchronizeDragApplicationsInfoWithPane(const std::string& identifier) override {
        calls.push_back("pane " + identifier);
    }
    void synchronizeOpenMenuItem(int index, bool isFolder, bool removeDuplicate, bool updateSelection) override {
        calls.push_back("item " + std::to_string(index) + (isFolder ? " folder" : "") +
                        (removeDuplicate ? " duplicate" : "") + (updateSelection ? " selection" : ""));
    }
};

class OpenMenuTest : public PrefsTest {
protected:
    TempDir dir;
    InProcessNotificationCenter local;
    RecordingBrowser browser;
    MenuView view;
    std::unique_ptr<ConfigureOpenMenuController> menu;
    std::unique_ptr<QAbstractItemModelTester> tester;

    // A folder made under the test's folder.
    std::string folder(const std::string& name) {
        std::filesystem::create_directories(dir / name);
        return (dir / name).string();
    }
    static plist::Dictionary folderItem(const std::string& path, const std::string& name = "") {
        return plist::Dictionary{{keys::Item, "Folder"},
                                 {keys::Name, name.empty() ? std::filesystem::path(path).filename().string() : name},
                                 {keys::Path, path},
                                 {keys::NameIsCustom, !name.empty()},
                                 {keys::Depth, plist::Value::int32(2)},
                                 {keys::BrowserDepth, plist::Value::int32(2)}};
    }
    static plist::Dictionary item(const char* kind) { return plist::Dictionary{{keys::Item, kind}}; }

    void open(const plist::Array& items) {
        load(plist::Dictionary{{keys::OpenMenuItems, items}});
        menu = std::make_unique<ConfigureOpenMenuController>(prefs, local, bus, [this] { return &browser; });
        tester = std::make_unique<QAbstractItemModelTester>(menu.get(),
                                                            QAbstractItemModelTester::FailureReportingMode::Fatal);
        menu->setView(&view);
        menu->initializePane(true);
        view.calls.clear();
        bus.clearPosted();
        local.clearPosted();
    }
    std::vector<std::string> kinds() { return PrefsTest::kinds(prefs.prefsData()[keys::OpenMenuItems]); }
    std::vector<std::string> names() {
        std::vector<std::string> result;
        for (int row = 0; row < menu->rowCount(); ++row) result.push_back(menu->displayNameAt(row));
        return result;
    }
    // The local notifications posted: the name's last words, then "Paths" and "Index" when there.
    std::vector<std::string> localPosts() {
        std::vector<std::string> result;
        for (const Notification& posted : local.posted()) {
            std::string text = posted.name.substr(posted.name.find(" - ") + 3);
            if (posted.userInfo) {
                if (const plist::Array* paths = (*posted.userInfo)["Paths"].array()) {
                    text += " [";
                    for (const plist::Value& path : *paths)
                        text += std::filesystem::path(path.stringOr("?")).filename().string() + ";";
                    text += "]";
                }
                if (const plist::Integer* index = (*posted.userInfo)["Index"].integer())
                    text += " " + std::to_string(index->toInt64());
                std::size_t expected = (*posted.userInfo)["Paths"].isAbsent() ? 1 : 2;
                if (posted.userInfo->size() != expected) text += " +extra";
            }
            result.push_back(text);
        }
        return result;
    }
    // How often the controller was told of the menu; each payload must be the store's whole menu.
    int menusSent() {
        int sent = 0;
        for (const Notification& posted : bus.posted()) {
            if (posted.name != "CorvalisPaneChangedPrefs") continue;
            const plist::Value& menu = (*posted.userInfo)["ChangeOpenMenuItems"]["OpenMenuItems"];
            EXPECT_TRUE(menu.array() && menu.array()->isSameObject(*prefs.prefsData()[keys::OpenMenuItems].array()));
            ++sent;
        }
        return sent;
    }
};

}  // namespace corvalis::test
