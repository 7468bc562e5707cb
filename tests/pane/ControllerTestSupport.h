#pragma once
// Shared by the controller tests: an application object for the bus, waiting
// with a deadline, controller bundles made on disk, and the test controller's record.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>

#include "plist/PlistIO.h"
#include "support/TestSupport.h"

namespace corvalis::test {

inline QCoreApplication& application() {
    static int argc = 1;
    static char name[] = "corvalis-tests-pane";
    static char* argv[] = {name, nullptr};
    static auto* app = new QCoreApplication(argc, argv);  // outlives QtDBus's own clean-up
    return *app;
}

// Runs the event loop until `done` holds; false after `ms` milliseconds.
inline bool waitUntil(const std::function<bool()>& done, int ms = 5000) {
    QTimer tick;
    tick.start(10);
    for (QDeadlineTimer deadline(ms); !done();) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
}

inline std::string shellQuoted(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
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

// Runs desktop-file-validate; "" when the entry passes, else what it said.
inline std::string desktopFileProblems(const std::filesystem::path& entry) {
    std::string command = "desktop-file-validate " + shellQuoted(entry.string()) + " 2>&1";
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return "cannot run desktop-file-validate";
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
    int status = ::pclose(pipe);
    if (status != 0 && output.empty()) output = "desktop-file-validate failed";
    return output;
}

}  // namespace corvalis::test
