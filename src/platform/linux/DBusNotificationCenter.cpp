#include "platform/linux/DBusNotificationCenter.h"

#include <QDBusMessage>
#include <QLoggingCategory>

#include "platform/linux/BusProtocol.h"
#include "plist/PlistIO.h"

namespace corvalis {

namespace {

Q_LOGGING_CATEGORY(lcBus, "corvalis.bus")

// The round trip that guarantees an earlier signal has left this process: the
// bus answers messages from one connection in the order they were sent.
constexpr int kFlushTimeoutMs = 5000;

std::optional<plist::Dictionary> userInfoFromText(const QString& text) {
    if (text.isEmpty()) return std::nullopt;
    // Any sender may emit this signal: what does not read as a dictionary counts as none.
    const std::string xml = text.toStdString();
    plist::ParseResult parsed = plist::parse(std::string_view(xml));
    if (!parsed.ok()) return std::nullopt;
    return plist::asDictionary(parsed.value);
}

}  // namespace

DBusNotificationCenter::DBusNotificationCenter(QDBusConnection connection, QObject* parent)
    : QObject(parent), connection_(std::move(connection)) {
    if (!connection_.isConnected()) return;
    // An empty service matches every sender; the slot takes the whole message so
    // that signals of any argument types reach it and are checked here.
    subscribed_ = connection_.connect(QString(), QString::fromLatin1(bus::kNotificationPath),
                                      QString::fromLatin1(bus::kNotificationInterface),
                                      QString::fromLatin1(bus::kNotificationMember), this,
                                      SLOT(receive(QDBusMessage)));
    if (!subscribed_) qCWarning(lcBus) << "cannot observe notifications:" << connection_.lastError().message();
}

DBusNotificationCenter::~DBusNotificationCenter() {
    if (subscribed_)
        connection_.disconnect(QString(), QString::fromLatin1(bus::kNotificationPath),
                               QString::fromLatin1(bus::kNotificationInterface),
                               QString::fromLatin1(bus::kNotificationMember), this, SLOT(receive(QDBusMessage)));
}

bool DBusNotificationCenter::isConnected() const { return connection_.isConnected(); }

void DBusNotificationCenter::post(const Notification& notification) {
    if (!connection_.isConnected()) return;

    QString userInfo;
    if (notification.userInfo) {
        std::string xml = plist::toXml(*notification.userInfo);
        // Observers still learn of the event when its details cannot be written.
        if (xml.empty())
            qCWarning(lcBus) << "user info of" << notification.name.c_str() << "cannot be written; posted without it";
        userInfo = QString::fromStdString(xml);
    }

    QDBusMessage signal = QDBusMessage::createSignal(QString::fromLatin1(bus::kNotificationPath),
                                                     QString::fromLatin1(bus::kNotificationInterface),
                                                     QString::fromLatin1(bus::kNotificationMember));
    signal << QString::fromStdString(notification.name) << QString::fromStdString(notification.object) << userInfo;
    if (!connection_.send(signal)) {
        qCWarning(lcBus) << "cannot post" << notification.name.c_str() << ":" << connection_.lastError().message();
        return;
    }

    QDBusMessage ping = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                                       QStringLiteral("/org/freedesktop/DBus"),
                                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
    connection_.call(ping, QDBus::Block, kFlushTimeoutMs);
}

NotificationCenter::Token DBusNotificationCenter::addObserver(std::string name, std::string object, Observer observer) {
    return observers_.add(std::move(name), std::move(object), std::move(observer));
}

void DBusNotificationCenter::removeObserver(Token token) { observers_.remove(token); }

void DBusNotificationCenter::receive(const QDBusMessage& message) {
    const QList<QVariant> args = message.arguments();
    // Without a name and an object as strings the signal is not one of ours.
    if (args.size() < 2 || args[0].metaType().id() != QMetaType::QString ||
        args[1].metaType().id() != QMetaType::QString)
        return;

    Notification notification{args[0].toString().toStdString(), args[1].toString().toStdString(), std::nullopt};
    if (args.size() > 2 && args[2].metaType().id() == QMetaType::QString)
        notification.userInfo = userInfoFromText(args[2].toString());
    observers_.dispatch(notification);
}

}  // namespace corvalis
