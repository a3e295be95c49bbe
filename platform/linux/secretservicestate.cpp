#include "platform/linux/secretservicestate.h"

#include "platform/linux/buscall.h"

#include <QDBusObjectPath>
#include <QDeadlineTimer>
#include <QStringList>

#include <algorithm>

namespace brimlet {
namespace {

using Outcome = BusReply::Outcome;

const QString kService = QStringLiteral("org.freedesktop.secrets");
constexpr std::chrono::milliseconds kTimeout(1500);

[[nodiscard]] bool isStartable(const QDBusConnection& bus, std::chrono::milliseconds timeout) {
    const QString name = QStringLiteral("org.freedesktop.DBus");
    const BusReply reply =
        callBus(bus,
                QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/DBus"), name,
                                               QStringLiteral("ListActivatableNames")),
                timeout);
    return reply.value.toStringList().contains(kService);
}

} // namespace

SecretServiceState secretServiceState() {
    const QDeadlineTimer deadline(kTimeout);
    const auto left = [&deadline] {
        return std::max(std::chrono::milliseconds(1),
                        std::chrono::milliseconds(deadline.remainingTime()));
    };
    const QDBusConnection bus = QDBusConnection::sessionBus();
    auto aliasQuery = QDBusMessage::createMethodCall(
        kService, QStringLiteral("/org/freedesktop/secrets"),
        QStringLiteral("org.freedesktop.Secret.Service"), QStringLiteral("ReadAlias"));
    aliasQuery.setArguments({QStringLiteral("default")});
    BusReply reply = callBus(bus, aliasQuery, left());
    if (reply.outcome == Outcome::Answered) {
        const QString path = reply.value.value<QDBusObjectPath>().path();
        if (path.isEmpty() || path == u"/") {
            return SecretServiceState::NoCollection;
        }
        reply = callBus(bus,
                        propertyQuery(kService, path,
                                      QStringLiteral("org.freedesktop.Secret.Collection"),
                                      QStringLiteral("Locked")),
                        left());
    }
    switch (reply.outcome) {
    case Outcome::NoBus:
        return SecretServiceState::NoBus;
    case Outcome::NoService:
        return isStartable(bus, left()) ? SecretServiceState::NotStarted
                                        : SecretServiceState::Absent;
    case Outcome::NoAnswer:
        return SecretServiceState::NoAnswer;
    case Outcome::Refused:
        return SecretServiceState::Failed;
    case Outcome::Answered:
        break;
    }
    return reply.value.toBool() ? SecretServiceState::Locked : SecretServiceState::Unlocked;
}

} // namespace brimlet
