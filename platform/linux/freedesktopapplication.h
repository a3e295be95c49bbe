#pragma once

#include "platform/instancerequest.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace brimlet {

/// The D-Bus interface by which desktops start a program and run the actions of its menu entry. It
/// returns no data.
class FreedesktopApplication final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// An adaptor of `object`, which owns it. `requested` is called in a later turn of the main
    /// loop, after the caller got its reply.
    FreedesktopApplication(QObject* object, std::function<void(InstanceRequest)> requested);

public Q_SLOTS:
    void Activate(const QVariantMap& platformData);
    /// The same as Activate: Brimlet opens no files.
    void Open(const QStringList& uris, const QVariantMap& platformData);
    /// "pause" and "quit"; others are ignored.
    void ActivateAction(const QString& name, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    void request(InstanceRequest request, const QVariantMap& platformData);

    std::function<void(InstanceRequest)> m_requested;
};

} // namespace brimlet
