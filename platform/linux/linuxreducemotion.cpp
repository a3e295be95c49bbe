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

/// The animation factor in one of KDE's configuration files; absent when the file has none.
[[nodiscard]] std::optional<QString> factorIn(const QString& path) {
    // Colour schemes are stored there too, and take several kilobytes.
    constexpr qint64 kMaxBytes = 1 << 20;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    bool isInGroup = false;
    std::optional<QString> factor;
    const QList<QByteArray> lines = file.read(kMaxBytes).split('\n');
    for (const QByteArray& untrimmed : lines) {
        const QByteArray line = untrimmed.trimmed();
        if (line.startsWith('[')) {
            // A group or key may have flags, as in "[KDE][$i]".
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

[[nodiscard]] bool disablesAnimations(const QVariant& factor) {
    bool isNumber = false;
    const double number = factor.toDouble(&isNumber);
    return isNumber && number <= 0;
}

} // namespace

LinuxReduceMotion::LinuxReduceMotion(QStringList configFolders)
    : m_configFolders(std::move(configFolders))
    , m_portalWatcher(portalName, QDBusConnection::sessionBus(),
                      QDBusServiceWatcher::WatchForRegistration) {
    // The slot below is connected by name, which needs its parameter types registered.
    qRegisterMetaType<QDBusVariant>();
    QDBusConnection::sessionBus().connect(portalName, portalPath, settingsInterface,
                                          QStringLiteral("SettingChanged"), this,
                                          SLOT(settingChanged(QString, QString, QDBusVariant)));
    // The arguments say what changed, but reading the short file again needs no knowledge of their
    // format.
    QDBusConnection::sessionBus().connect(
        QString(), QStringLiteral("/kdeglobals"), QStringLiteral("org.kde.kconfig.notify"),
        QStringLiteral("ConfigChanged"), this, SLOT(readKdeFiles()));
    connect(&m_portalWatcher, &QDBusServiceWatcher::serviceRegistered, this,
            &LinuxReduceMotion::readPortalSettings);
    readKdeFiles();
    readPortalSettings();
}

ObserverToken LinuxReduceMotion::observeChanges(std::function<void()> changed) {
    return m_observers.add(std::move(changed));
}

void LinuxReduceMotion::readPortalSettings() {
    // Read wraps its value in one variant too many, and many desktops lack its successor ReadOne.
    auto request = QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface,
                                                  QStringLiteral("ReadAll"));
    request.setArguments({QStringList{appearance, gnomeInterface, kdeGroup}});
    auto* const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(request), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<> reply(*watcher);
        if (!reply.isError() && reply.reply().signature() == QLatin1StringView("a{sa{sv}}")) {
            const auto settings = qdbus_cast<Settings>(reply.reply().arguments().at(0));
            for (auto group = settings.cbegin(); group != settings.cend(); ++group) {
                for (auto key = group->cbegin(); key != group->cend(); ++key) {
                    apply(group.key(), key.key(), key.value());
                }
            }
            update();
        }
        watcher->deleteLater();
    });
}

void LinuxReduceMotion::settingChanged(const QString& group, const QString& key,
                                       const QDBusVariant& value) {
    apply(group, key, value.variant());
    update();
}

void LinuxReduceMotion::readKdeFiles() {
    // KDE removes the key when the factor has its default value.
    m_areKdeAnimationsOff = false;
    for (const QString& folder : std::as_const(m_configFolders)) {
        if (const auto factor = factorIn(QDir(folder).filePath(QStringLiteral("kdeglobals")))) {
            m_areKdeAnimationsOff = disablesAnimations(*factor);
            break;
        }
    }
    update();
}

void LinuxReduceMotion::apply(const QString& group, const QString& key, const QVariant& value) {
    if (group == appearance && key == QLatin1StringView("reduced-motion")) {
        m_isMotionReduced = value.toUInt() == 1;
    } else if (group == gnomeInterface && key == QLatin1StringView("enable-animations")) {
        m_areGnomeAnimationsOff = !value.toBool();
    } else if (group == kdeGroup && key == animationDurationFactor) {
        m_areKdeAnimationsOff = disablesAnimations(value);
    }
}

void LinuxReduceMotion::update() {
    const bool isOn = m_isMotionReduced || m_areGnomeAnimationsOff || m_areKdeAnimationsOff;
    if (std::exchange(m_isOn, isOn) != isOn) {
        m_observers.notify();
    }
}

} // namespace brimlet
