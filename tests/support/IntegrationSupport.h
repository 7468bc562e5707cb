#pragma once
// Shared by the tests that meet a real bus or real processes: an application
// object for the bus, waiting with a deadline, controller bundles made on disk,
// and the test controller's record.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <signal.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>

#include "plist/PlistIO.h"
#include "support/TestSupport.h"

namespace corvalis::test {

inline QCoreApplication& application() {
    static int argc = 1;
    static char name[] = "corvalis-tests";
    static char* argv[] = {name, nullptr};
    static auto* app = new QCoreApplication(argc, argv);  // outlives QtDBus's own clean-up
    return *app;
}

// Runs the event loop until `done` holds; false after `ms` milliseconds. Generous: while the
// kill-during-save test floods the disk with flushes, starting a controller can take seconds.
inline bool waitUntil(const std::function<bool()>& done, int ms = 30000) {
    QTimer tick;
    tick.start(10);
    for (QDeadlineTimer deadline(ms); !done();) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
}

// Name.app with an Info.plist and an executable script that runs `command`.
inline std::filesystem::path makeBundle(const std::filesystem::path& folder, const std::string& name,
                                        const std::string& identifier, const std::string& command = "exit 0",
                                        const std::string& executable = "Launcher") {
    std::filesystem::path bundle = folder / (name + ".app");
    std::filesystem::create_directories(bundle / "Contents" / "MacOS");
    writeFile(bundle / "Contents" / "Info.plist",
              plist::toXml(plist::Dictionary{{"CFBundleIdentifier", identifier}, {"CFBundleExecutable", executable}}));
    std::filesystem::path program = bundle / "Contents" / "MacOS" / executable;
    writeFile(program, "#!/bin/sh\n" + command + "\n");
    ::chmod(program.c_str(), 0755);
    return bundle;
}

// The events the test controller recorded, oldest first (empty before it started).
inline plist::Array controllerRecord(const std::filesystem::path& file) {
    plist::ParseResult parsed = plist::parse(std::string_view(readFile(file)));
    return plist::asArray(parsed.value).value_or(plist::Array());
}

// Ends every test controller that the record says was started.
inline void killRecordedControllers(const std::filesystem::path& record) {
    for (const plist::Value& event : controllerRecord(record))
        if (auto pid = (*event.dictionary())["Pid"].toInt64()) ::kill(static_cast<pid_t>(*pid), SIGKILL);
}

#ifdef CORVALIS_TEST_CONTROLLER
// The controller's bundle, whose program runs the test controller recording into `record`.
inline std::filesystem::path recordingControllerBundle(const std::filesystem::path& folder,
                                                       const std::filesystem::path& record,
                                                       const std::string& extraArguments = "") {
    return makeBundle(folder, "Corvalis", "com.kestrova.Corvalis.Controller",
                      "exec " + shellQuoted(CORVALIS_TEST_CONTROLLER) + " --record " + shellQuoted(record.string()) +
                          " " + extraArguments,
                      "CorvalisController");
}
#endif

// Runs desktop-file-validate; "" when the entry passes, else what it said.
inline std::string desktopFileProblems(const std::filesystem::path& entry) {
    CommandRun run = runCommand("desktop-file-validate " + shellQuoted(entry.string()));
    return run.status != 0 && run.output.empty() ? "desktop-file-validate failed" : run.output;
}

}  // namespace corvalis::test
