#include "platform/linux/AssistiveTechnologies.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

namespace corvalis {

namespace {
// Asked while a sheet opens: a bus that does not answer soon is taken as no.
constexpr int kTimeoutMs = 500;
}  // namespace

bool AssistiveTechnologiesEnabled() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return false;
    QDBusMessage call = QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus",
                                                       "org.freedesktop.DBus.Properties", "Get");
    call << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled");
    QDBusMessage reply = bus.call(call, QDBus::Block, kTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return false;
    return reply.arguments().first().value<QDBusVariant>().variant().toBool();
}

}  // namespace corvalis
