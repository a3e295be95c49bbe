#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QTest>

namespace brimlet {

/// A service on the session bus that says whether the session is locked: logind or a screen saver.
/// It uses a connection of its own, so its signals arrive like those of another program.
class FakeLocker final : public QDBusVirtualObject {
public:
    explicit FakeLocker(const QString& service, bool isLocked = false)
        : m_service(service)
        , m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, service))
        , m_isLocked(isLocked) {
        m_bus.registerVirtualObject(QStringLiteral("/org"), this, QDBusConnection::SubPath);
        m_isRegistered = m_bus.registerService(service);
    }
    /// As when it crashes: without a signal.
    ~FakeLocker() override {
        m_bus.unregisterObject(QStringLiteral("/org"));
        m_bus.unregisterService(m_service);
        QDBusConnection::disconnectFromBus(m_service);
    }
    FakeLocker(const FakeLocker&) = delete;
    FakeLocker& operator=(const FakeLocker&) = delete;

    [[nodiscard]] bool isRegistered() const { return m_isRegistered; }

    void setLocked(bool isLocked) {
        m_isLocked = isLocked;
        if (m_service == u"org.freedesktop.login1") {
            auto signal =
                QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1/session/_32"),
                                           QStringLiteral("org.freedesktop.DBus.Properties"),
                                           QStringLiteral("PropertiesChanged"));
            signal << kSession << QVariantMap{{QStringLiteral("LockedHint"), isLocked}}
                   << QStringList();
            m_bus.send(signal);
        } else {
            auto signal =
                QDBusMessage::createSignal(path(), m_service, QStringLiteral("ActiveChanged"));
            signal << isLocked;
            m_bus.send(signal);
        }
    }

    /// How often it was read.
    [[nodiscard]] int queries() const { return m_queries; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        ++m_queries;
        const QVariantList hint{kSession, QStringLiteral("LockedHint")};
        if (call.path() == u"/org/freedesktop/login1/session/auto" && call.member() == u"Get" &&
            call.arguments() == hint) {
            return bus.send(call.createReply(QVariant::fromValue(QDBusVariant(m_isLocked))));
        }
        return call.path() == path() && call.member() == u"GetActive" &&
               call.interface() == m_service && bus.send(call.createReply(m_isLocked));
    }
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

private:
    [[nodiscard]] QString path() const { return u'/' + QString(m_service).replace(u'.', u'/'); }

    const QString kSession = QStringLiteral("org.freedesktop.login1.Session");
    QString m_service;
    QDBusConnection m_bus;
    bool m_isLocked;
    bool m_isRegistered = false;
    int m_queries = 0;
};

} // namespace brimlet
