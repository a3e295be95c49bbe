#include "platform/linux/freedesktopapplication.h"

#include "platform/linux/startupnotification.h"

#include <utility>

namespace brimlet {

FreedesktopApplication::FreedesktopApplication(QObject* object,
                                               std::function<void(InstanceRequest)> requested)
    : QDBusAbstractAdaptor(object)
    , m_requested(std::move(requested)) {}

void FreedesktopApplication::Activate(const QVariantMap& platformData) {
    completeStartup(startupIdIn(platformData));
    request(InstanceRequest::Open);
}

void FreedesktopApplication::Open(const QStringList& /*uris*/, const QVariantMap& platformData) {
    Activate(platformData);
}

void FreedesktopApplication::ActivateAction(const QString& name, const QVariantList& /*parameter*/,
                                            const QVariantMap& platformData) {
    completeStartup(startupIdIn(platformData));
    if (name == QLatin1StringView("pause")) {
        request(InstanceRequest::Pause);
    } else if (name == QLatin1StringView("quit")) {
        request(InstanceRequest::Quit);
    }
}

void FreedesktopApplication::request(InstanceRequest request) {
    QMetaObject::invokeMethod(
        this, [this, request] { m_requested(request); }, Qt::QueuedConnection);
}

} // namespace brimlet
