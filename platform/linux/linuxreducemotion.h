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

/// The desktop's settings, as its portal tells them: reduced motion where that is known, GNOME's
/// switch for animations, and the factor by which KDE stretches them, where 0 is none. Any of them
/// is enough. Until the portal has answered, and where there is none, KDE's factor alone counts.
///
/// KDE's factor is also read from the files that hold it, at the start and when KDE's settings say
/// that they have changed, since the portal of many KDE versions does not pass such a change on.
/// What was read or told last counts, so the portal's answer at the start replaces the files'.
/// GNOME's switch is the portal's alone: only GSettings could read where it is kept.
class LinuxReduceMotion final : public QObject, public ReduceMotion {
    Q_OBJECT

public:
    /// `configFolders` are the folders that may have KDE's "kdeglobals", the strongest first.
    explicit LinuxReduceMotion(QStringList configFolders = QStandardPaths::standardLocations(
                                   QStandardPaths::GenericConfigLocation));

    [[nodiscard]] bool isOn() const override { return m_isOn; }
    ObserverToken observeChanges(std::function<void()> changed) override;

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);
    void kdeSettingsChanged();

private:
    void askPortal();
    void take(const QString& group, const QString& key, const QVariant& value);
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
