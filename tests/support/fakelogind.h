#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>

#include <array>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace brimlet {

/// The part of logind that suspends the machine, on the session bus. It uses a connection of its
/// own, so its signals arrive like those of another program.
class FakeLogind final : public QDBusVirtualObject {
public:
    /// `name` is logind's unless another program is to be shown.
    explicit FakeLogind(const QString& name = QStringLiteral("org.freedesktop.login1"))
        : m_name(name)
        , m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)) {
        m_isRegistered = m_bus.registerVirtualObject(path(), this) && m_bus.registerService(name);
    }
    ~FakeLogind() override {
        m_bus.unregisterObject(path());
        m_bus.unregisterService(m_name);
        QDBusConnection::disconnectFromBus(m_name);
        for (const int inhibitor : m_inhibitors) {
            ::close(inhibitor);
        }
    }
    FakeLogind(const FakeLogind&) = delete;
    FakeLogind& operator=(const FakeLogind&) = delete;

    [[nodiscard]] bool isRegistered() const { return m_isRegistered; }

    void prepareForSleep(bool isStarting) {
        auto signal =
            QDBusMessage::createSignal(path(), QStringLiteral("org.freedesktop.login1.Manager"),
                                       QStringLiteral("PrepareForSleep"));
        signal << isStarting;
        m_bus.send(signal);
    }

    /// The arguments of each inhibitor that was taken.
    [[nodiscard]] const QList<QStringList>& taken() const { return m_taken; }
    /// Whether one of them is still held.
    [[nodiscard]] bool isInhibited() const { return !areReleasedWithin(0); }
    /// Blocks until all are released. False if they are not after that many milliseconds each.
    [[nodiscard]] bool areReleasedWithin(int milliseconds) const {
        for (const int inhibitor : m_inhibitors) {
            pollfd end{inhibitor, 0, 0}; // the other end's closing is always reported
            if (::poll(&end, 1, milliseconds) != 1) {
                return false;
            }
        }
        return true;
    }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        std::array<int, 2> ends{};
        if (call.member() != u"Inhibit" || ::pipe2(ends.data(), O_CLOEXEC) != 0) {
            return false;
        }
        QDBusUnixFileDescriptor inhibitor;
        inhibitor.giveFileDescriptor(ends[1]);
        m_inhibitors.push_back(ends[0]);
        QStringList arguments;
        for (const QVariant& argument : call.arguments()) {
            arguments << argument.toString();
        }
        m_taken << arguments;
        return bus.send(call.createReply(QVariant::fromValue(inhibitor)));
    }
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

private:
    [[nodiscard]] static QString path() { return QStringLiteral("/org/freedesktop/login1"); }

    QString m_name;
    QDBusConnection m_bus;
    bool m_isRegistered = false;
    QList<QStringList> m_taken;
    std::vector<int> m_inhibitors;
};

} // namespace brimlet
