#pragma once
// The applications browser over preferences in memory, a recording window,
// fake running applications and workspace, and real folders on disk.

#include <QAbstractItemModelTester>
#include <QCoreApplication>

#include <filesystem>
#include <memory>

#include "fileutils/AliasResolution.h"
#include "fileutils/browser/ApplicationsBrowserController.h"
#include "prefs/MenuItemKinds.h"
#include "support/FakeRunningApplications.h"
#include "support/FakeWorkspace.h"
#include "support/PrefsFixture.h"
#include "support/RecordingEditorView.h"
#include "support/TestSupport.h"

namespace corvalis::test {

struct RecordingBrowserView : RecordingView<ApplicationsBrowserView> {
    std::vector<BrowserSource> sources;
    int selectedTag = -1;
    std::optional<int> depth;
    bool progress = false;
    SourceIcon icon = SourceIcon::None;
    std::string hint;
    bool info = false;

    void showSources(const std::vector<BrowserSource>& s, int tag) override {
        sources = s;
        selectedTag = tag;
    }
    void showDepth(std::optional<int> d) override { depth = d; }
    void showProgress(bool running) override { progress = running; }
    void showSourceIcon(SourceIcon i) override { icon = i; }
    void showHint(const std::string& text) override { hint = text; }
    void showInfoMode(bool i) override { info = i; }
};

// An application bundle "<name>.app" in `folder`.
inline std::filesystem::path makeApp(const std::filesystem::path& folder, const std::string& name) {
    std::filesystem::path bundle = folder / (name + ".app");
    std::filesystem::create_directories(bundle / "Contents");
    writeFile(bundle / "Contents" / "Info.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
    return bundle;
}

class BrowserTest : public PrefsTest {
protected:
    TempDir disk;
    FakeWorkspace workspace;
    FakeRunningApplications running;
    InProcessNotificationCenter local;
    RecordingBrowserView view;
    std::optional<std::string> developerFolder;
    std::vector<std::string> favorites;
    std::unique_ptr<ApplicationsBrowserController> browser;
    std::unique_ptr<QAbstractItemModelTester> tester;

    BrowserTest() { workspace.applicationsFolder = (disk / "Applications").string(); }

    void make(const plist::Dictionary& stored = {}) {
        load(stored);
        BrowserEnvironment environment{[this] { return developerFolder; }, [this] { return favorites; }};
        browser = std::make_unique<ApplicationsBrowserController>(prefs, local, running, domains, view, environment,
                                                                  workspace);
        tester = std::make_unique<QAbstractItemModelTester>(browser.get(),
                                                            QAbstractItemModelTester::FailureReportingMode::Fatal);
        browser->initializeBrowser(true);
    }
    // Opens the window on the source and waits for its list.
    void show(int tag, bool control = false) {
        if (!browser->isBrowserVisible()) browser->browserWillShow();
        browser->onShowWhat(tag, control);
        settle();
    }
    void settle() {
        ASSERT_TRUE(browser->waitForWalks(30000));
        QCoreApplication::processEvents();
    }
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (int row = 0; row < browser->rowCount(); ++row)
            result.push_back(browser->data(browser->index(row)).toString().toStdString());
        return result;
    }
    // A folder record of the Open menu, with the alias data a loaded menu has.
    plist::Dictionary folder(const std::filesystem::path& path, std::int32_t browserDepth = 2) {
        plist::Dictionary record{{keys::Item, items::Folder},
                                 {keys::Name, path.filename().string()},
                                 {keys::Path, path.string()},
                                 {keys::NameIsCustom, true},
                                 {keys::Depth, plist::Value::int32(2)},
                                 {keys::BrowserDepth, plist::Value::int32(browserDepth)}};
        if (auto alias = AliasData(path.string(), workspace)) record.set(keys::AliasData, *alias);
        return record;
    }
    static plist::Dictionary kind(const char* item) { return plist::Dictionary{{keys::Item, item}}; }
    plist::Array openMenu() { return prefs.arrayForKey(keys::OpenMenuItems).value_or(plist::Array()); }
};

}  // namespace corvalis::test
