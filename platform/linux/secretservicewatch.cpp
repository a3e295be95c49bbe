#include "platform/linux/secretservicewatch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace brimlet {
namespace {

const QString kService = QStringLiteral("org.freedesktop.secrets");
const QString kServicePath = QStringLiteral("/org/freedesktop/secrets");
const QString kServiceInterface = QStringLiteral("org.freedesktop.Secret.Service");
const QString kPromptInterface = QStringLiteral("org.freedesktop.Secret.Prompt");
const QString kLocked = QStringLiteral("Locked");

using Paths = QList<QDBusObjectPath>;

} // namespace

template <typename First, typename Second>
void SecretServiceWatch::callService(const QString& method, const QVariant& argument,
                                     std::function<void(First, Second)> answered) {
    auto message =
        QDBusMessage::createMethodCall(kService, kServicePath, kServiceInterface, method);
    message.setArguments({argument});
    auto* const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, answered = std::move(answered)] {
                watcher->deleteLater();
                const QDBusPendingReply<First, Second> reply = *watcher;
                if (reply.isError()) {
                    m_hasAsked = false;
                } else {
                    answered(reply.template argumentAt<0>(), reply.template argumentAt<1>());
                }
            });
}

SecretServiceWatch::SecretServiceWatch(const QString& service, const QString& account)
    : m_attributes{{QStringLiteral("service"), service}, {QStringLiteral("account"), account}}
    , m_service(kService, QDBusConnection::sessionBus(),
                QDBusServiceWatcher::WatchForRegistration) {
    qDBusRegisterMetaType<QMap<QString, QString>>();
    connect(&m_service, &QDBusServiceWatcher::serviceRegistered, this,
            &SecretServiceWatch::changed);
    QDBusConnection bus = QDBusConnection::sessionBus();
    for (const char* const name : {"CollectionCreated", "CollectionChanged"}) {
        bus.connect(kService, kServicePath, kServiceInterface, QString::fromLatin1(name), this,
                    SIGNAL(changed()));
    }
    // Of every collection.
    bus.connect(kService, QString(), QStringLiteral("org.freedesktop.DBus.Properties"),
                QStringLiteral("PropertiesChanged"), this,
                SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
}

SecretServiceWatch::~SecretServiceWatch() {
    if (isPrompting()) {
        callPrompt(QStringLiteral("Dismiss"), {});
    }
}

void SecretServiceWatch::askToUnlock() {
    if (std::exchange(m_hasAsked, true)) {
        return;
    }
    callService<Paths, Paths>(
        QStringLiteral("SearchItems"), QVariant::fromValue(m_attributes),
        [this](const Paths& /*unlocked*/, const Paths& locked) { unlock(locked); });
}

void SecretServiceWatch::unlock(const QList<QDBusObjectPath>& items) {
    if (items.isEmpty()) {
        m_hasAsked = false;
        return;
    }
    callService<Paths, QDBusObjectPath>(
        QStringLiteral("Unlock"), QVariant::fromValue(items),
        [this](const Paths& /*unlocked*/, const QDBusObjectPath& prompt) {
            if (prompt.path() == u"/") { // no prompt is needed
                Q_EMIT changed();
                return;
            }
            m_promptPath = prompt.path();
            QDBusConnection::sessionBus().connect(kService, m_promptPath, kPromptInterface,
                                                  QStringLiteral("Completed"), this,
                                                  SLOT(promptCompleted()));
            callPrompt(QStringLiteral("Prompt"), {QString()});
        });
}

void SecretServiceWatch::promptCompleted() {
    m_promptPath.clear();
    Q_EMIT changed();
}

void SecretServiceWatch::callPrompt(const QString& method, const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(kService, m_promptPath, kPromptInterface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false); // a service that has ended shows no prompt
    QDBusConnection::sessionBus().send(message);
}

void SecretServiceWatch::propertiesChanged(const QString& /*interface*/, const QVariantMap& values,
                                           const QStringList& invalidated) {
    if (values.contains(kLocked) || invalidated.contains(kLocked)) {
        Q_EMIT changed();
    }
}

} // namespace brimlet
