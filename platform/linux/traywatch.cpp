#include "platform/linux/traywatch.h"

#include "platform/linux/buscall.h"
#include "platform/linux/x11.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace brimlet {
namespace {

const QString notifierName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString notifierPath = QStringLiteral("/StatusNotifierWatcher");
/// In milliseconds. After that an XEmbed tray is used even if the notifier watcher hangs.
constexpr int kTimeout = 3000;

} // namespace

QDBusMessage notifierHostQuery() {
    return propertyQuery(notifierName, notifierPath, notifierName,
                         QStringLiteral("IsStatusNotifierHostRegistered"));
}

TrayWatch::TrayWatch()
    : m_notifierWatcher(notifierName, QDBusConnection::sessionBus(),
                        QDBusServiceWatcher::WatchForRegistration) {
    connect(&m_notifierWatcher, &QDBusServiceWatcher::serviceRegistered, this,
            &TrayWatch::checkNotifier);
    // A host may register later than the watcher.
    QDBusConnection::sessionBus().connect(notifierName, notifierPath, notifierName,
                                          QStringLiteral("StatusNotifierHostRegistered"), this,
                                          SLOT(checkNotifier()));
    QCoreApplication::instance()->installNativeEventFilter(this);
    checkNotifier();
}

void TrayWatch::checkNotifier() {
    if (!QDBusConnection::sessionBus().isConnected()) {
        // The call below would never finish, not even with an error.
        QMetaObject::invokeMethod(this, &TrayWatch::checkXEmbed, Qt::QueuedConnection);
        return;
    }
    auto* const watcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(notifierHostQuery(), kTimeout), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply(*watcher);
        if (reply.isValid() && reply.value().variant().toBool()) {
            emitFound();
        } else {
            checkXEmbed();
        }
        watcher->deleteLater();
    });
}

void TrayWatch::checkXEmbed() {
    if (x11::hasSystemTray()) {
        emitFound();
    }
}

bool TrayWatch::nativeEventFilter(const QByteArray& /*eventType*/, void* message,
                                  qintptr* /*result*/) {
    if (x11::announcesSystemTray(message)) {
        // Queued, because Qt has not handled the event yet.
        QMetaObject::invokeMethod(this, &TrayWatch::checkXEmbed, Qt::QueuedConnection);
    }
    return false;
}

void TrayWatch::emitFound() {
    if (!m_isFound) {
        m_isFound = true;
        QCoreApplication::instance()->removeNativeEventFilter(this);
        Q_EMIT found();
    }
}

} // namespace brimlet
