#include "platform/linux/buscall.h"

#include <QDBusError>
#include <QDBusVariant>

namespace brimlet {
namespace {

[[nodiscard]] BusReply::Outcome outcomeOf(const QDBusError& error) {
    switch (error.type()) {
    case QDBusError::NoError:
        return BusReply::Outcome::Answered;
    case QDBusError::ServiceUnknown:
        return BusReply::Outcome::NoService;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected:
        return BusReply::Outcome::NoAnswer;
    default:
        return error.name() == QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner")
                   ? BusReply::Outcome::NoService
                   : BusReply::Outcome::Refused;
    }
}

} // namespace

BusReply callBus(const QDBusConnection& bus, QDBusMessage call, std::chrono::milliseconds timeout) {
    if (!bus.isConnected()) {
        return {};
    }
    call.setAutoStartService(false);
    const QDBusMessage reply = bus.call(call, QDBus::Block, static_cast<int>(timeout.count()));
    const BusReply::Outcome outcome = outcomeOf(QDBusError(reply));
    if (outcome != BusReply::Outcome::Answered) {
        return {outcome, {}}; // the argument of an error is a text
    }
    const QVariant value = reply.arguments().value(0);
    return {outcome,
            value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value};
}

QDBusMessage propertyQuery(const QString& service, const QString& path, const QString& interface,
                           const QString& property) {
    auto query = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    query.setArguments({interface, property});
    query.setAutoStartService(false);
    return query;
}

} // namespace brimlet
