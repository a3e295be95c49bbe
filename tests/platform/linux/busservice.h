#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QTest>

namespace brimlet {

/// Exports an object on the session bus under a service name, for the lifetime of this. It uses a
/// separate connection, so its signals arrive like those of another program.
class BusService final {
public:
    BusService(const QString& name, const QString& path, QObject& object)
        : m_name(name)
        , m_path(path)
        , m_object(object)
        , m_connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)) {
        const auto everything = QDBusConnection::ExportAllContents;
        m_isRegistered = m_connection.registerObject(path, &object, everything) &&
                         m_connection.registerService(name);
    }
    ~BusService() {
        // Qt's bus thread accesses the object while it closes the connection and, as the connection
        // is connected to the object's signals, again when it deletes the connection later.
        m_connection.unregisterObject(m_path);
        QObject::disconnect(&m_object, nullptr, nullptr, nullptr);
        m_connection.unregisterService(m_name);
        QDBusConnection::disconnectFromBus(m_name);
    }
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

    [[nodiscard]] bool isRegistered() const { return m_isRegistered; }
    [[nodiscard]] QDBusConnection& connection() { return m_connection; }

private:
    QString m_name;
    QString m_path;
    QObject& m_object;
    QDBusConnection m_connection;
    bool m_isRegistered = false;
};

/// Returns when the bus has processed all messages sent on that connection before, such as match
/// rules for signals.
inline void settle(const QDBusConnection& connection) {
    const QDBusMessage reply = connection.call(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
}

} // namespace brimlet
