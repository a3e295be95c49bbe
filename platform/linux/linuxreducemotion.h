#pragma once

#include "platform/observers.h"
#include "platform/reducemotion.h"

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QVariant>

namespace brimlet {

/// The desktop's settings, as its portal tells them: reduced motion where that is known, and
/// GNOME's switch for animations. Off until the portal has answered, and where there is none.
class LinuxReduceMotion final : public QObject, public ReduceMotion {
    Q_OBJECT

public:
    LinuxReduceMotion();

    [[nodiscard]] bool isOn() const override { return m_isOn; }
    ObserverToken observeChanges(std::function<void()> changed) override;

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void askPortal();
    void take(const QString& group, const QString& key, const QVariant& value);
    void update();

    QDBusServiceWatcher m_portalWatcher;
    Observers m_observers;
    bool m_isMotionReduced = false;
    bool m_areAnimationsOff = false;
    bool m_isOn = false;
};

} // namespace brimlet
