#include "platform/linux/sessionlock.h"

#include "platform/linux/buscall.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace brimlet {
namespace {

const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString sessionInterface = QStringLiteral("org.freedesktop.login1.Session");
const QString screenSaverName = QStringLiteral("org.freedesktop.ScreenSaver");
const QString gnomeName = QStringLiteral("org.gnome.ScreenSaver");
const QString activeChanged = QStringLiteral("ActiveChanged");

[[nodiscard]] QDBusMessage activeQuery(const QString& name, const QString& path) {
    return QDBusMessage::createMethodCall(name, path, name, QStringLiteral("GetActive"));
}

} // namespace

QDBusMessage lockedHintQuery() {
    // "auto" is this process's session, or for a process outside of a session the user's graphical
    // one. Its signals come from another path.
    return propertyQuery(QStringLiteral("org.freedesktop.login1"),
                         QStringLiteral("/org/freedesktop/login1/session/auto"), sessionInterface,
                         QStringLiteral("LockedHint"));
}

QDBusMessage screenSaverQuery() {
    return activeQuery(screenSaverName, QStringLiteral("/org/freedesktop/ScreenSaver"));
}

QDBusMessage gnomeScreenSaverQuery() {
    return activeQuery(gnomeName, QStringLiteral("/org/gnome/ScreenSaver"));
}

LockSource::LockSource(const QDBusConnection& bus, const QDBusMessage& query,
                       const QString& signalInterface, const QString& signalName,
                       const QStringList& arguments)
    : m_bus(bus)
    , m_query(query)
    , m_watcher(m_query.service(), bus) {
    m_query.setAutoStartService(false);
    m_bus.connect(m_query.service(), QString(), signalInterface, signalName, arguments, QString(),
                  this, SLOT(read()));
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &LockSource::read);
    read();
}

void LockSource::read() {
    auto* const watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(m_query), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        // The argument of an error is a text.
        QVariant value = watcher->reply().arguments().value(0);
        if (value.canConvert<QDBusVariant>()) {
            value = value.value<QDBusVariant>().variant();
        }
        const bool isLocked = value.typeId() == QMetaType::Bool && value.toBool();
        if (std::exchange(m_isLocked, isLocked) != isLocked) {
            Q_EMIT changed();
        }
        watcher->deleteLater();
    });
}

SessionLock::SessionLock()
    : m_logind(QDBusConnection::systemBus(), lockedHintQuery(), propertiesInterface,
               QStringLiteral("PropertiesChanged"), {sessionInterface})
    , m_screenSaver(QDBusConnection::sessionBus(), screenSaverQuery(), screenSaverName,
                    activeChanged)
    , m_gnome(QDBusConnection::sessionBus(), gnomeScreenSaverQuery(), gnomeName, activeChanged) {
    for (const LockSource* const source : {&m_logind, &m_screenSaver, &m_gnome}) {
        connect(source, &LockSource::changed, this, &SessionLock::changed);
    }
}

bool SessionLock::isLocked() const {
    return m_logind.isLocked() || m_screenSaver.isLocked() || m_gnome.isLocked();
}

} // namespace brimlet
