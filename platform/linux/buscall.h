#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>

#include <chrono>

namespace brimlet {

/// What came of a call to a service on a message bus.
struct BusReply final {
    enum class Outcome {
        NoBus,
        NoService, ///< The name has no owner.
        NoAnswer,  ///< Within the time given.
        Refused,   ///< The service answered with an error.
        Answered,
    };

    Outcome outcome = Outcome::NoBus;
    QVariant value; ///< The first one of an answer; what it holds if that is a D-Bus variant.
};

/// Calls a service that is running; does not have the bus start it. Blocks until there is an answer
/// or the time is over.
[[nodiscard]] BusReply callBus(const QDBusConnection& bus, QDBusMessage call,
                               std::chrono::milliseconds timeout = std::chrono::seconds(1));

/// A call that reads a property; it does not have the bus start the service.
[[nodiscard]] QDBusMessage propertyQuery(const QString& service, const QString& path,
                                         const QString& interface, const QString& property);

} // namespace brimlet
