#include "platform/linux/freedesktopapplication.h"

#include "platform/linux/startupnotification.h"

#include <utility>

namespace brimlet {

FreedesktopApplication::FreedesktopApplication(QObject* object,
                                               std::function<void(InstanceRequest)> requested)
    : QDBusAbstractAdaptor(object)
    , m_requested(std::move(requested)) {}

void FreedesktopApplication::Activate(const QVariantMap& platformData) {
    request(InstanceRequest::Open, platformData);
}

void FreedesktopApplication::Open(const QStringList& /*uris*/, const QVariantMap& platformData) {
    Activate(platformData);
}

void FreedesktopApplication::ActivateAction(const QString& name, const QVariantList& /*parameter*/,
                                            const QVariantMap& platformData) {
    if (name == QLatin1StringView("pause")) {
        request(InstanceRequest::Pause, platformData);
    } else if (name == QLatin1StringView("quit")) {
        request(InstanceRequest::Quit, platformData);
    }
}

void FreedesktopApplication::request(InstanceRequest request, const QVariantMap& platformData) {
    const auto carryOut = [this, request, id = startupIdIn(platformData)] {
        leaveStartupId(id);
        m_requested(request);
        completeStartup(takeStartupId());
    };
    QMetaObject::invokeMethod(this, carryOut, Qt::QueuedConnection);
}

} // namespace brimlet
