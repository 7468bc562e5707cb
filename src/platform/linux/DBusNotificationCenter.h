#pragma once
// The distributed notification centre over the D-Bus session bus: posts go out
// as the signal of BusProtocol.h and every such signal on the bus, from any
// sender (this process included), is handed to the matching observers.
// Observers are called only from a running Qt event loop in this object's thread.

#include <QDBusConnection>
#include <QObject>

#include "platform/NotificationCenter.h"
#include "platform/ObserverList.h"

class QDBusMessage;

namespace corvalis {

class DBusNotificationCenter : public QObject, public NotificationCenter {
    Q_OBJECT

public:
    // Without a bus (none configured, or the connection failed) posting does
    // nothing and no observer is ever called.
    explicit DBusNotificationCenter(QDBusConnection connection = QDBusConnection::sessionBus(),
                                    QObject* parent = nullptr);
    ~DBusNotificationCenter() override;

    // Returns once the bus has the signal, so a process may exit right after.
    void post(const Notification& notification) override;
    Token addObserver(std::string name, std::string object, Observer observer) override;
    void removeObserver(Token token) override;

    bool isConnected() const;

private slots:
    void receive(const QDBusMessage& message);

private:
    QDBusConnection connection_;
    bool subscribed_ = false;
    ObserverList observers_;
};

}  // namespace corvalis
