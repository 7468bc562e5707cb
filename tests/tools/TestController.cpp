// A stand-in for the Corvalis controller in integration tests: owns the
// controller's bus name, records its start (with the process id and the
// settings it found) into a property-list file, and quits on SIGTERM.
//
// corvalis-test-controller --record FILE [--ignore-sigterm] [--no-bus-name]

#include <QCoreApplication>
#include <QDBusConnection>

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/FileDomainStore.h"
#include "platform/linux/BusProtocol.h"
#include "plist/PlistIO.h"
#include "prefs/NotificationNames.h"

using namespace corvalis;
using plist::Dictionary, plist::Value;

namespace {

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
    std::string recordPath;
    bool ownName = true, usable = true;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--record" && i + 1 < argc) recordPath = argv[++i];
        else if (arg == "--ignore-sigterm") std::signal(SIGTERM, SIG_IGN);
        else if (arg == "--no-bus-name") ownName = false;
        else usable = false;
    }
    if (!usable || recordPath.empty()) {
        std::fprintf(stderr, "usage: corvalis-test-controller --record FILE [--ignore-sigterm] [--no-bus-name]\n");
        return 2;
    }

    // One controller at a time, as the real one: a second start gives up.
    if (ownName && !QDBusConnection::sessionBus().registerService(QString::fromLatin1(bus::kControllerBusName)))
        return 3;

    Recorder recorder(recordPath);
    Dictionary started{{"Event", "Started"}, {"Pid", Value::int64(::getpid())}};
    FileDomainStore domains(FileDomainStore::defaultFolder());
    if (auto settings = domains.persistentDomainForName(notifications::Domain)) started.set("Settings", *settings);
    recorder.add(started);

    // Gone with the session bus, as the real controller is gone with the session.
    QDBusConnection::sessionBus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                          QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                                          &app, SLOT(quit()));
    return QCoreApplication::exec();
}
