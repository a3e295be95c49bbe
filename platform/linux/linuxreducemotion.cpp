#include "platform/linux/linuxreducemotion.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace brimlet {
namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnomeInterface = QStringLiteral("org.gnome.desktop.interface");

/// Settings by group and key.
using Settings = QMap<QString, QVariantMap>;

} // namespace

LinuxReduceMotion::LinuxReduceMotion()
    : m_portalWatcher(portalName, QDBusConnection::sessionBus(),
                      QDBusServiceWatcher::WatchForRegistration) {
    // Qt looks the slot's types up by name, and knows this one only after it was used.
    qRegisterMetaType<QDBusVariant>();
    QDBusConnection::sessionBus().connect(portalName, portalPath, settingsInterface,
                                          QStringLiteral("SettingChanged"), this,
                                          SLOT(settingChanged(QString, QString, QDBusVariant)));
    connect(&m_portalWatcher, &QDBusServiceWatcher::serviceRegistered, this,
            &LinuxReduceMotion::askPortal);
    askPortal();
}

ObserverToken LinuxReduceMotion::observeChanges(std::function<void()> changed) {
    return m_observers.add(std::move(changed));
}

void LinuxReduceMotion::askPortal() {
    // Read alone would wrap its value once too often, and its successor is too new for many
    // desktops.
    auto question = QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface,
                                                   QStringLiteral("ReadAll"));
    question.setArguments({QStringList{appearance, gnomeInterface}});
    auto* const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<> reply(*watcher);
        if (!reply.isError() && reply.reply().signature() == QLatin1StringView("a{sa{sv}}")) {
            const auto settings = qdbus_cast<Settings>(reply.reply().arguments().at(0));
            for (auto group = settings.cbegin(); group != settings.cend(); ++group) {
                for (auto key = group->cbegin(); key != group->cend(); ++key) {
                    take(group.key(), key.key(), key.value());
                }
            }
            update();
        }
        watcher->deleteLater();
    });
}

void LinuxReduceMotion::settingChanged(const QString& group, const QString& key,
                                       const QDBusVariant& value) {
    take(group, key, value.variant());
    update();
}

void LinuxReduceMotion::take(const QString& group, const QString& key, const QVariant& value) {
    if (group == appearance && key == QLatin1StringView("reduced-motion")) {
        m_isMotionReduced = value.toUInt() == 1;
    } else if (group == gnomeInterface && key == QLatin1StringView("enable-animations")) {
        m_areAnimationsOff = !value.toBool();
    }
}

void LinuxReduceMotion::update() {
    const bool isOn = m_isMotionReduced || m_areAnimationsOff;
    if (std::exchange(m_isOn, isOn) != isOn) {
        m_observers.notify();
    }
}

} // namespace brimlet
