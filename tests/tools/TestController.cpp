// A stand-in for the Corvalis controller in integration tests: owns the
// controller's bus name, records what it meets into a property-list file
// (its start, with the settings it found, and every notification from the
// pane), can post the controller's notifications, and quits on SIGTERM.
//
// corvalis-test-controller --record FILE [--ignore-sigterm] [--no-bus-name]
//                          [--post NAME[=USERINFO.plist]]... [--answer-check USERINFO.plist]

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTimer>

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/FileDomainStore.h"
#include "platform/linux/BusProtocol.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "plist/PlistIO.h"
#include "prefs/NotificationNames.h"

using namespace corvalis;
using plist::Dictionary, plist::Value;

namespace {

std::optional<Dictionary> readDictionary(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    plist::ParseResult parsed = plist::parse(std::string_view(text));
    return parsed.ok() ? plist::asDictionary(parsed.value) : std::nullopt;
}

// The whole record is rewritten after each event, through a rename, so a
// reader never sees half of it and nothing is lost when SIGTERM ends us.
class Recorder {
public:
    // Controllers started one after another share a record: each adds to it.
    explicit Recorder(std::string path) : path_(std::move(path)) {
        std::ifstream in(path_, std::ios::binary);
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (auto earlier = plist::asArray(plist::parse(std::string_view(text)).value)) events_ = *earlier;
    }
    void add(Dictionary event) {
        events_.append(event);
        std::string temporary = path_ + ".tmp";
        std::ofstream(temporary, std::ios::binary | std::ios::trunc) << plist::toXml(events_);
        std::rename(temporary.c_str(), path_.c_str());
    }

private:
    std::string path_;
    plist::Array events_;
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    std::string recordPath, answerPath;
    bool ignoreTerm = false, ownName = true;
    std::vector<std::pair<std::string, std::string>> posts;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--record" && i + 1 < argc) recordPath = argv[++i];
        else if (arg == "--answer-check" && i + 1 < argc) answerPath = argv[++i];
        else if (arg == "--ignore-sigterm") ignoreTerm = true;
        else if (arg == "--no-bus-name") ownName = false;
        else if (arg == "--post" && i + 1 < argc) {
            std::string argument = argv[++i];
            auto equals = argument.find('=');
            posts.emplace_back(argument.substr(0, equals), equals == std::string::npos ? "" : argument.substr(equals + 1));
        } else {
            std::fprintf(stderr, "corvalis-test-controller: unknown argument %s\n", arg.c_str());
            return 2;
        }
    }
    if (recordPath.empty()) {
        std::fprintf(stderr, "usage: corvalis-test-controller --record FILE [options]\n");
        return 2;
    }
    if (ignoreTerm) std::signal(SIGTERM, SIG_IGN);

    // One controller at a time, as the real one: a second start gives up.
    if (ownName && !QDBusConnection::sessionBus().registerService(QString::fromLatin1(bus::kControllerBusName)))
        return 3;

    Recorder recorder(recordPath);
    Dictionary started{{"Event", "Started"}, {"Pid", Value::int64(::getpid())}};
    FileDomainStore domains(FileDomainStore::defaultFolder());
    if (auto settings = domains.persistentDomainForName(notifications::Domain)) started.set("Settings", *settings);
    recorder.add(started);

    DBusNotificationCenter center;
    center.addObserver("", notifications::PaneObject, [&](const Notification& n) {
        Dictionary event{{"Event", "Notification"}, {"Name", n.name}, {"Object", n.object}};
        if (n.userInfo) event.set("UserInfo", *n.userInfo);
        recorder.add(event);
        if (n.name == notifications::CheckForUpdates && !answerPath.empty())
            center.post({notifications::CheckForUpdatesChanged, notifications::ControllerObject, readDictionary(answerPath)});
    });
    // Gone with the session bus, as the real controller is gone with the session.
    QDBusConnection::sessionBus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                          QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                                          &app, SLOT(quit()));
    QTimer::singleShot(0, [&] {
        for (const auto& [name, userInfoPath] : posts)
            center.post({name, notifications::ControllerObject,
                         userInfoPath.empty() ? std::nullopt : readDictionary(userInfoPath)});
    });
    return QCoreApplication::exec();
}
