#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QTest>

namespace brimlet {

/// An object on the session bus under a name of its own, which goes when this goes. It is on a
/// connection of its own, so that what it says takes the same way as a stranger's words.
class BusService final {
public:
    BusService(const QString& name, const QString& path, QObject& object)
        : m_name(name)
        , m_path(path)
        , m_object(object)
        , m_connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)) {
        const auto everything = QDBusConnection::ExportAllContents;
        m_isThere = m_connection.registerObject(path, &object, everything) &&
                    m_connection.registerService(name);
    }
    ~BusService() {
        // Qt's bus thread would still look at the object while it closes the connection, and, as
        // the connection listens to the object, when it deletes it some time later.
        m_connection.unregisterObject(m_path);
        QObject::disconnect(&m_object, nullptr, nullptr, nullptr);
        m_connection.unregisterService(m_name);
        QDBusConnection::disconnectFromBus(m_name);
    }
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

    [[nodiscard]] bool isThere() const { return m_isThere; }
    [[nodiscard]] QDBusConnection& connection() { return m_connection; }

private:
    QString m_name;
    QString m_path;
    QObject& m_object;
    QDBusConnection m_connection;
    bool m_isThere = false;
};

/// Returns when the bus has taken in all that was said to it over that connection before, such as
/// whose signals are wanted.
inline void settle(const QDBusConnection& connection) {
    const QDBusMessage reply = connection.call(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
    QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
}

} // namespace brimlet
