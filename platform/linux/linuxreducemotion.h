#pragma once

#include "platform/observers.h"
#include "platform/reducemotion.h"

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QStandardPaths>
#include <QStringList>
#include <QVariant>

namespace brimlet {

/// Reduced motion as set in the desktop. It is on when any of these is set: the desktop portal's
/// "reduced-motion", GNOME's "enable-animations" turned off, or KDE's "AnimationDurationFactor" of
/// 0 or less.
///
/// All three come from the settings portal on the session bus, asynchronously. KDE's factor is also
/// read from its configuration files, at construction and whenever KDE signals a change, because
/// the portals of many KDE versions do not report that change. The most recent source counts, so
/// the portal's first reply replaces the value from the files. GNOME's switch has no such second
/// source, since reading it needs GSettings.
class LinuxReduceMotion final : public QObject, public ReduceMotion {
    Q_OBJECT

public:
    /// `configFolders` may contain KDE's "kdeglobals"; earlier folders take precedence.
    explicit LinuxReduceMotion(QStringList configFolders = QStandardPaths::standardLocations(
                                   QStandardPaths::GenericConfigLocation));

    [[nodiscard]] bool isOn() const override { return m_isOn; }
    ObserverToken observeChanges(std::function<void()> changed) override;

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);
    void readKdeFiles();

private:
    void readPortalSettings();
    void apply(const QString& group, const QString& key, const QVariant& value);
    void update();

    QStringList m_configFolders;
    QDBusServiceWatcher m_portalWatcher;
    Observers m_observers;
    bool m_isMotionReduced = false;
    bool m_areGnomeAnimationsOff = false;
    bool m_areKdeAnimationsOff = false;
    bool m_isOn = false;
};

} // namespace brimlet
