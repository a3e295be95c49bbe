#include "platform/linux/linuxreducemotion.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QFile>

#include <optional>
#include <utility>

namespace brimlet {
namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnomeInterface = QStringLiteral("org.gnome.desktop.interface");
const QString kdeGroup = QStringLiteral("org.kde.kdeglobals.KDE");
const QString animationDurationFactor = QStringLiteral("AnimationDurationFactor");

/// Settings by group and key.
using Settings = QMap<QString, QVariantMap>;

/// What a file of KDE's settings says of the factor, if anything.
[[nodiscard]] std::optional<QString> factorIn(const QString& path) {
    // Some colour schemes make it several kilobytes long.
    constexpr qint64 kLongest = 1 << 20;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    bool isInGroup = false;
    std::optional<QString> factor;
    const QList<QByteArray> lines = file.read(kLongest).split('\n');
    for (const QByteArray& untrimmed : lines) {
        const QByteArray line = untrimmed.trimmed();
        if (line.startsWith('[')) {
            // A group or key may carry marks, as in "[KDE][$i]".
            isInGroup = line == "[KDE]" || line.startsWith("[KDE][$");
        } else if (const auto equals = line.indexOf('='); isInGroup && equals > 0) {
            const QByteArray key = line.left(equals).trimmed();
            if (key == "AnimationDurationFactor" || key.startsWith("AnimationDurationFactor[$")) {
                factor = QString::fromUtf8(line.mid(equals + 1).trimmed());
            }
        }
    }
    return factor;
}

[[nodiscard]] bool isNone(const QVariant& factor) {
    bool isNumber = false;
    const double number = factor.toDouble(&isNumber);
    return isNumber && number <= 0;
}

} // namespace

LinuxReduceMotion::LinuxReduceMotion(QStringList configFolders)
    : m_configFolders(std::move(configFolders))
    , m_portalWatcher(portalName, QDBusConnection::sessionBus(),
                      QDBusServiceWatcher::WatchForRegistration) {
    // Qt looks the slot's types up by name, and knows this one only after it was used.
    qRegisterMetaType<QDBusVariant>();
    QDBusConnection::sessionBus().connect(portalName, portalPath, settingsInterface,
                                          QStringLiteral("SettingChanged"), this,
                                          SLOT(settingChanged(QString, QString, QDBusVariant)));
    // What changed is in the arguments, but reading the short file again is as good and does not
    // depend on their form.
    QDBusConnection::sessionBus().connect(
        QString(), QStringLiteral("/kdeglobals"), QStringLiteral("org.kde.kconfig.notify"),
        QStringLiteral("ConfigChanged"), this, SLOT(kdeSettingsChanged()));
    connect(&m_portalWatcher, &QDBusServiceWatcher::serviceRegistered, this,
            &LinuxReduceMotion::askPortal);
    kdeSettingsChanged();
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
    question.setArguments({QStringList{appearance, gnomeInterface, kdeGroup}});
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

void LinuxReduceMotion::kdeSettingsChanged() {
    // KDE removes the key when the factor is the usual one.
    m_areKdeAnimationsOff = false;
    for (const QString& folder : std::as_const(m_configFolders)) {
        if (const auto factor = factorIn(QDir(folder).filePath(QStringLiteral("kdeglobals")))) {
            m_areKdeAnimationsOff = isNone(*factor);
            break;
        }
    }
    update();
}

void LinuxReduceMotion::take(const QString& group, const QString& key, const QVariant& value) {
    if (group == appearance && key == QLatin1StringView("reduced-motion")) {
        m_isMotionReduced = value.toUInt() == 1;
    } else if (group == gnomeInterface && key == QLatin1StringView("enable-animations")) {
        m_areGnomeAnimationsOff = !value.toBool();
    } else if (group == kdeGroup && key == animationDurationFactor) {
        m_areKdeAnimationsOff = isNone(value);
    }
}

void LinuxReduceMotion::update() {
    const bool isOn = m_isMotionReduced || m_areGnomeAnimationsOff || m_areKdeAnimationsOff;
    if (std::exchange(m_isOn, isOn) != isOn) {
        m_observers.notify();
    }
}

} // namespace brimlet
