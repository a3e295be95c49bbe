#include "platform/linux/traywatch.h"

#include "platform/linux/x11.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace brimlet {
namespace {

const QString notifierName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString notifierPath = QStringLiteral("/StatusNotifierWatcher");
/// Milliseconds; a watcher that hangs does not keep a tray of the other kind from being used.
constexpr int kPatience = 3000;

} // namespace

TrayWatch::TrayWatch()
    : m_notifierWatcher(notifierName, QDBusConnection::sessionBus(),
                        QDBusServiceWatcher::WatchForRegistration) {
    connect(&m_notifierWatcher, &QDBusServiceWatcher::serviceRegistered, this,
            &TrayWatch::askNotifier);
    // A host may come after the watcher.
    QDBusConnection::sessionBus().connect(notifierName, notifierPath, notifierName,
                                          QStringLiteral("StatusNotifierHostRegistered"), this,
                                          SLOT(askNotifier()));
    QCoreApplication::instance()->installNativeEventFilter(this);
    askNotifier();
}

TrayWatch::~TrayWatch() = default;

void TrayWatch::askNotifier() {
    if (!QDBusConnection::sessionBus().isConnected()) {
        // No answer would come, not even a failure.
        QMetaObject::invokeMethod(this, &TrayWatch::askTray, Qt::QueuedConnection);
        return;
    }
    auto question = QDBusMessage::createMethodCall(
        notifierName, notifierPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    question.setArguments({notifierName, QStringLiteral("IsStatusNotifierHostRegistered")});
    question.setAutoStartService(false);
    auto* const watcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(question, kPatience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply(*watcher);
        if (reply.isValid() && reply.value().variant().toBool()) {
            tell();
        } else {
            askTray();
        }
        watcher->deleteLater();
    });
}

void TrayWatch::askTray() {
    if (x11::hasSystemTray()) {
        tell();
    }
}

bool TrayWatch::nativeEventFilter(const QByteArray& /*eventType*/, void* message,
                                  qintptr* /*result*/) {
    if (x11::announcesSystemTray(message)) {
        // Queued: Qt itself has yet to learn of it.
        QMetaObject::invokeMethod(this, &TrayWatch::askTray, Qt::QueuedConnection);
    }
    return false;
}

void TrayWatch::tell() {
    if (!m_isTold) {
        m_isTold = true;
        QCoreApplication::instance()->removeNativeEventFilter(this);
        Q_EMIT found();
    }
}

} // namespace brimlet
