#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <iostream>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "platform/FileDomainStore.h"
#include "plist/PlistIO.h"
#include "support/TestSupport.h"

using namespace corvalis;
using namespace corvalis::plist;
namespace fs = std::filesystem;

TEST(FileDomainStore, WritesBinaryReadsBothAndReplacesWholeDomains) {
    test::TempDir dir;
    FileDomainStore store(dir / "nested/Preferences");  // created on first write
    EXPECT_FALSE(store.persistentDomainForName("com.example.app"));

    store.setPersistentDomain(Dictionary{{"A", Value::int32(1)}, {"B", "two"}}, "com.example.app");
    // Pending changes are visible before they are written.
    EXPECT_EQ(store.persistentDomainForName("com.example.app"), (Dictionary{{"A", Value::int32(1)}, {"B", "two"}}));
    EXPECT_TRUE(store.synchronize("com.example.app"));
    std::string bytes = test::readFile(store.pathForDomain("com.example.app"));
    EXPECT_EQ(bytes.substr(0, 8), "bplist00");

    // Removing and setting again leaves exactly the new domain (no keys merged).
    store.removePersistentDomainForName("com.example.app");
    store.setPersistentDomain(Dictionary{{"C", true}}, "com.example.app");
    EXPECT_TRUE(store.synchronize("com.example.app"));
    FileDomainStore reader(store.folder());
    EXPECT_EQ(reader.persistentDomainForName("com.example.app"), (Dictionary{{"C", true}}));

    // Other applications' domains in XML are read as well.
    test::writeFile(store.pathForDomain("com.apple.dock"), toXml(Dictionary{{"autohide", true}}));
    EXPECT_EQ(reader.persistentDomainForName("com.apple.dock"), (Dictionary{{"autohide", true}}));

    store.removePersistentDomainForName("com.example.app");
    EXPECT_TRUE(store.synchronize("com.example.app"));
    EXPECT_FALSE(fs::exists(store.pathForDomain("com.example.app")));
    // No temporary files are left behind.
    EXPECT_EQ(std::distance(fs::directory_iterator(store.folder()), fs::directory_iterator()), 1);
}

TEST(FileDomainStore, WritingBackWhatWasReadLeavesTheFileAlone) {
    test::TempDir dir;
    FileDomainStore writer(dir.path());
    writer.setPersistentDomain(Dictionary{{"A", Value::int32(1)}, {"Z", "z"}}, "com.example.app");
    ASSERT_TRUE(writer.synchronize("com.example.app"));
    fs::path file = writer.pathForDomain("com.example.app");
    auto inode = [&] {
        struct stat info {};
        return ::stat(file.c_str(), &info) == 0 ? info.st_ino : 0;
    };

    FileDomainStore store(dir.path());
    Dictionary read = *store.persistentDomainForName("com.example.app");
    auto before = inode();
    store.setPersistentDomain(read, "com.example.app");
    ASSERT_TRUE(store.synchronize("com.example.app"));
    EXPECT_EQ(inode(), before);  // not replaced
    store.setPersistentDomain(Dictionary{{"Z", "z"}, {"A", Value::int32(1)}}, "com.example.app");
    ASSERT_TRUE(store.synchronize("com.example.app"));
    EXPECT_EQ(inode(), before);  // keys that only moved are the same settings

    // Another writer's value stays unless this process changes that key itself.
    writer.setPersistentDomain(Dictionary{{"A", Value::int64(1)}, {"Z", "z"}, {"W", true}}, "com.example.app");
    ASSERT_TRUE(writer.synchronize("com.example.app"));
    read.set("B", true);  // the working copy the reader was given is its own
    store.setPersistentDomain(read, "com.example.app");
    ASSERT_TRUE(store.synchronize("com.example.app"));
    EXPECT_EQ(FileDomainStore(dir.path()).persistentDomainForName("com.example.app"),
              (Dictionary{{"A", Value::int64(1)}, {"Z", "z"}, {"W", true}, {"B", true}}));

    // Numerically equal is not the same contents: 1 becoming 1.0 reaches the file.
    FileDomainStore again(dir.path());
    Dictionary reread = *again.persistentDomainForName("com.example.app");
    reread.set("A", Value::real64(1.0));
    again.setPersistentDomain(reread, "com.example.app");
    ASSERT_TRUE(again.synchronize("com.example.app"));
    EXPECT_EQ((*FileDomainStore(dir.path()).persistentDomainForName("com.example.app"))["A"].type(), plist::Type::Real);
}

TEST(FileDomainStore, UnreadableFilesAreMovedAsideNeverOverwritten) {
    test::TempDir dir;
    FileDomainStore store(dir.path());
    test::writeFile(store.pathForDomain("bad.xml"), "not a property list");
    test::writeFile(store.pathForDomain("array.root"), toXml(Array{"x"}));
    EXPECT_FALSE(store.persistentDomainForName("bad.xml"));
    EXPECT_FALSE(store.persistentDomainForName("array.root"));
    std::vector<SetAsideDomain> aside = store.takeSetAsideDomains();
    ASSERT_EQ(aside.size(), 2u);
    EXPECT_NE(aside[1].reason.find("array"), std::string::npos) << aside[1].reason;
    for (const SetAsideDomain& file : aside) {
        EXPECT_TRUE(fs::exists(file.setAsidePath));
        EXPECT_FALSE(fs::exists(file.originalPath));
    }
    EXPECT_EQ(test::readFile(aside[0].setAsidePath), "not a property list");

    // A second unreadable file in the same second does not replace the first one kept aside.
    test::writeFile(store.pathForDomain("bad.xml"), "still broken");
    store.persistentDomainForName("bad.xml");
    std::vector<SetAsideDomain> again = store.takeSetAsideDomains();
    ASSERT_EQ(again.size(), 1u);
    EXPECT_NE(again[0].setAsidePath, aside[0].setAsidePath);
    EXPECT_EQ(test::readFile(aside[0].setAsidePath), "not a property list");
}

TEST(FileDomainStore, FailuresAreReportedAndNamesStayInsideTheFolder) {
    test::TempDir dir;
    test::writeFile(dir / "file", "x");
    FileDomainStore blocked(dir / "file/Preferences");  // the folder cannot be created
    blocked.setPersistentDomain(Dictionary{{"A", true}}, "d");
    EXPECT_FALSE(blocked.synchronize("d"));
    EXPECT_FALSE(blocked.lastWriteError().empty());

    FileDomainStore store(dir / "prefs");
    store.setPersistentDomain(Dictionary{{"A", true}}, "../escape");
    EXPECT_TRUE(store.synchronize("../escape"));  // nothing pending: the name is refused
    EXPECT_FALSE(fs::exists(dir / "escape.plist"));
    EXPECT_FALSE(store.persistentDomainForName(".."));
}

TEST(FileDomainStore, DefaultFolderFollowsTheEnvironment) {
    setenv("CORVALIS_PREFERENCES_DIR", "/tmp/corvalis-prefs-here", 1);
    EXPECT_EQ(FileDomainStore::defaultFolder(), "/tmp/corvalis-prefs-here");
    unsetenv("CORVALIS_PREFERENCES_DIR");
    setenv("XDG_CONFIG_HOME", "/tmp/xdg", 1);
    EXPECT_EQ(FileDomainStore::defaultFolder(), "/tmp/xdg/corvalis/Preferences");
    unsetenv("XDG_CONFIG_HOME");
    setenv("HOME", "/home/someone", 1);
    EXPECT_EQ(FileDomainStore::defaultFolder(), "/home/someone/.config/corvalis/Preferences");
}

namespace {

std::size_t filesIn(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

// Runs `body` in a child process (as an unprivileged user when run as root, so
// that permissions apply) and answers its exit status.
int inChild(bool unprivileged, const std::function<int()>& body) {
    pid_t pid = ::fork();
    if (pid == 0) {
        if (unprivileged && ::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(99);
        ::_exit(body());
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 100;
}

}  // namespace

TEST(FileDomainStore, FilesThatCannotBeOpenedAreReportedNeverSetAsideOrWritten) {
    struct Case {
        const char* name;
        std::function<void(const fs::path&)> make;
    } cases[] = {
        {"fifo", [](const fs::path& p) { ASSERT_EQ(::mkfifo(p.c_str(), 0644), 0); }},
        {"folder", [](const fs::path& p) { fs::create_directory(p); }},
        {"loop", [](const fs::path& p) { fs::create_symlink(p.filename(), p); }},
        {"unreadable", [](const fs::path& p) {
             test::writeFile(p, toXml(Dictionary{{"A", true}}));
             fs::permissions(p, fs::perms::owner_write);
         }},
    };
    for (const Case& c : cases) {
        test::TempDir dir;
        fs::permissions(dir.path(), fs::perms::all);
        fs::path file = dir / "d.plist";
        c.make(file);
        int status = inChild(true, [&] {
            FileDomainStore store(dir.path());
            if (store.persistentDomainForName("d")) return 1;
            std::vector<SetAsideDomain> aside = store.takeSetAsideDomains();
            if (aside.size() != 1 || !aside[0].notOpened || !aside[0].setAsidePath.empty()) return 2;
            store.setPersistentDomain(Dictionary{{"B", true}}, "d");
            return store.synchronize("d") ? 3 : 0;  // must refuse to write over it
        });
        EXPECT_EQ(status, 0) << c.name;
        EXPECT_EQ(filesIn(dir.path()), 1u) << c.name;  // nothing renamed, written or left behind
    }
}

TEST(FileDomainStore, ASymbolicLinkIsWrittenThroughAndStays) {
    test::TempDir dir;
    fs::create_directories(dir / "dotfiles");
    fs::create_directories(dir / "prefs");
    test::writeFile(dir / "dotfiles/d.plist", toXml(Dictionary{{"A", true}}));
    fs::create_symlink("../dotfiles/d.plist", dir / "prefs/d.plist");
    FileDomainStore store(dir / "prefs");
    Dictionary domain = *store.persistentDomainForName("d");
    domain.set("B", "new");
    store.setPersistentDomain(domain, "d");
    ASSERT_TRUE(store.synchronize("d"));
    EXPECT_TRUE(fs::is_symlink(dir / "prefs/d.plist"));
    EXPECT_EQ(FileDomainStore(dir / "dotfiles").persistentDomainForName("d"), (Dictionary{{"A", true}, {"B", "new"}}));
    EXPECT_EQ(filesIn(dir / "prefs"), 1u);
    EXPECT_EQ(filesIn(dir / "dotfiles"), 1u);
}

TEST(FileDomainStore, ConcurrentWritersOfDifferentKeysNeverUndoEachOther) {
    constexpr int kWriters = 4;
    constexpr auto kDuration = std::chrono::seconds(3);
    test::TempDir dir;
    int pipes[2];
    ASSERT_EQ(::pipe(pipes), 0);
    std::vector<pid_t> writers;
    for (int w = 0; w < kWriters; ++w) {
        pid_t pid = ::fork();
        if (pid == 0) {
            // Each writer reads once and then only sets its own key, as the window does.
            FileDomainStore store(dir.path());
            Dictionary mine = store.persistentDomainForName("d").value_or(Dictionary());
            std::string key = "Writer" + std::to_string(w);
            std::int64_t sets = 0;
            for (auto end = std::chrono::steady_clock::now() + kDuration; std::chrono::steady_clock::now() < end;) {
                mine.set(key, Value::int64(++sets));
                store.setPersistentDomain(mine, "d");
                if (!store.synchronize("d")) ::_exit(1);
            }
            std::int64_t report[2] = {w, sets};
            if (::write(pipes[1], report, sizeof report) != sizeof report) ::_exit(1);
            ::_exit(0);
        }
        writers.push_back(pid);
    }
    // One more writer dies while holding the lock: the others must not wait on it.
    pid_t holder = ::fork();
    if (holder == 0) {
        int fd = ::open((dir / ".d.plist.lock").c_str(), O_RDWR | O_CREAT, 0600);
        ::flock(fd, LOCK_EX);
        ::pause();
    }
    ::usleep(200000);
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    for (pid_t pid : writers) {
        int status = 0;
        ::waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    std::int64_t total = 0, lost = 0;
    Dictionary final = *FileDomainStore(dir.path()).persistentDomainForName("d");
    for (int w = 0; w < kWriters; ++w) {
        std::int64_t report[2] = {};
        ASSERT_EQ(::read(pipes[0], report, sizeof report), static_cast<ssize_t>(sizeof report));
        total += report[1];
        // Every writer's last value is in the final file.
        if (final["Writer" + std::to_string(report[0])].toInt64() != report[1]) ++lost;
    }
    ::close(pipes[0]);
    ::close(pipes[1]);
    std::cout << kWriters << " writers, " << kDuration.count() << " s, " << total << " sets, " << lost
              << " lost updates, " << filesIn(dir.path()) - 1 << " files left\n";
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(filesIn(dir.path()), 1u);  // no temporary or lock file left
}
