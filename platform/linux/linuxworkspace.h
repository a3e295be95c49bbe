#pragma once

#include "platform/observers.h"
#include "platform/workspace.h"

#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace brimlet {

/// The desktop session.
///
/// No single sign tells on every desktop that the screens sleep, so there are three: logind going
/// to suspend the machine, Mutter's power saving, and the power state of the built-in panel in
/// sysfs. The screens are asleep while any of them says so, and a block is called each time that
/// changes. A missing bus or service only takes its sign away.
class LinuxWorkspace final : public QObject, public Workspace {
    Q_OBJECT

public:
    /// `drmFolder` is where the kernel lists the connectors of the graphics cards.
    explicit LinuxWorkspace(QString drmFolder = QStringLiteral("/sys/class/drm"));

    ObserverToken observeScreensDidSleep(std::function<void()> block) override;
    ObserverToken observeScreensDidWake(std::function<void()> block) override;

    /// Starts "xdg-open", which knows every desktop's own way, as a program of its own that is no
    /// child of this one. Only an address with a scheme is handed over.
    void open(const Url& url) override;

    /// Looks at the panel's power state. The kernel does not announce it, so this is called from a
    /// tick that happens anyway.
    void checkPanelPower();

private Q_SLOTS:
    void machineGoesToSleep(bool isStarting);
    void mutterChanged(const QString& interface, const QVariantMap& changed,
                       const QStringList& invalidated);

private:
    void askMutter();
    void setMutterMode(int mode);
    void update();

    QString m_drmFolder;
    QDBusServiceWatcher m_logindWatcher;
    QDBusServiceWatcher m_mutterWatcher;
    Observers m_sleepObservers;
    Observers m_wakeObservers;
    bool m_isMachineAsleep = false;
    bool m_isMutterSaving = false;
    bool m_isPanelOff = false;
    bool m_isAsleep = false;
};

} // namespace brimlet
