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
/// No single source reports sleeping screens on every desktop, so three are combined: logind's
/// announcement of a suspend, Mutter's power save mode, and the power state of the built-in panel
/// in sysfs. The screens count as asleep while any of them says so; observers are called each time
/// the combined state changes. A missing bus or service counts as awake.
class LinuxWorkspace final : public QObject, public Workspace {
    Q_OBJECT

public:
    /// `drmFolder` is the sysfs folder that lists the connectors of the graphics cards.
    explicit LinuxWorkspace(QString drmFolder = QStringLiteral("/sys/class/drm"));

    ObserverToken observeScreensDidSleep(std::function<void()> block) override;
    ObserverToken observeScreensDidWake(std::function<void()> block) override;

    /// Starts "xdg-open" as a detached process. An address without a scheme is ignored.
    void open(const Url& url) override;

    /// Reads the panel's power state. The kernel sends no notification of a change, so the caller
    /// polls this; observers may be called before it returns.
    void checkPanelPower();

private Q_SLOTS:
    void prepareForSleep(bool isStarting);
    void mutterChanged(const QString& interface, const QVariantMap& changed,
                       const QStringList& invalidated);

private:
    void readMutterMode();
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
