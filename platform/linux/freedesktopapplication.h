#pragma once

#include "platform/instancerequest.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace brimlet {

/// The interface by which desktops start programs and press their menu entries. It hands out
/// nothing.
class FreedesktopApplication final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// An adaptor of `object`, which owns it. `requested` is called in a later turn of the main
    /// loop, when the caller has its answer.
    FreedesktopApplication(QObject* object, std::function<void(InstanceRequest)> requested);

public Q_SLOTS:
    void Activate(const QVariantMap& platformData);
    /// There are no files to open, so it is an Activate.
    void Open(const QStringList& uris, const QVariantMap& platformData);
    /// "pause" and "quit"; others are ignored.
    void ActivateAction(const QString& name, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    void request(InstanceRequest request);

    std::function<void(InstanceRequest)> m_requested;
};

} // namespace brimlet
