#pragma once

#include "platform/clock.h"
#include "platform/observers.h"
#include "platform/workspace.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <utility>

namespace brimlet {

/// A call whose reply says whether logind is about to suspend the machine, on the system bus.
[[nodiscard]] QDBusMessage suspendQuery();

/// A call whose reply is Mutter's power save mode.
[[nodiscard]] QDBusMessage powerSaveModeQuery();

/// The kernel's attributes of a built-in panel's connector, empty where they cannot be read.
struct PanelFacts final {
    QString connector; ///< With the card, as in "card0-eDP-1".
    QByteArray status;
    QByteArray mode; ///< The first one, in pixels.
    QByteArray power;

    bool operator==(const PanelFacts&) const = default;
};

/// The built-in panels in that sysfs folder.
[[nodiscard]] QList<PanelFacts> panelFacts(const QString& drmFolder);

/// The desktop session.
///
/// No single source reports sleeping screens on every desktop, so three are combined: logind's
/// announcement of a suspend, Mutter's power save mode, and the power state of the built-in panel
/// in sysfs. The screens count as asleep while any of them says so; observers are called each time
/// the combined state changes. A missing bus or service counts as awake.
///
/// logind delays a suspend while this holds an inhibitor: until what the observers began has ended,
/// or for two seconds.
class LinuxWorkspace final : public QObject, public Workspace {
    Q_OBJECT

public:
    /// `drmFolder` is the sysfs folder that lists the connectors of the graphics cards. The clock
    /// must outlive this.
    explicit LinuxWorkspace(Clock& clock, QString drmFolder = QStringLiteral("/sys/class/drm"));

    ObserverToken observeScreensDidSleep(std::function<void()> block) override;
    ObserverToken observeScreensDidWake(std::function<void()> block) override;

    [[nodiscard]] std::shared_ptr<void> delaySuspend() override { return m_inhibitor; }

    /// Starts "xdg-open" as a detached process. An address without a scheme is ignored.
    void open(const Url& url) override;

    /// With it `open()` first asks for a token that lets the browser come to the front. `request`
    /// calls its argument exactly once, with an empty token where there is none.
    using TokenRequest = std::function<void(std::function<void(const QString& token)>)>;
    void setTokenRequest(TokenRequest request) { m_requestToken = std::move(request); }

    /// Reads the panel's power state. The kernel sends no notification of a change, so the caller
    /// polls this; observers may be called before it returns.
    void checkPanelPower();

private Q_SLOTS:
    void prepareForSleep(bool isStarting);
    void mutterChanged(const QString& interface, const QVariantMap& changed,
                       const QStringList& invalidated);

private:
    void takeInhibitor();
    void endDelay();
    void readMutterMode();
    void setMutterMode(int mode);
    void update();

    Clock& m_clock;
    QString m_drmFolder;
    TokenRequest m_requestToken;
    QDBusServiceWatcher m_logindWatcher;
    QDBusServiceWatcher m_mutterWatcher;
    Observers m_sleepObservers;
    Observers m_wakeObservers;
    /// logind's lock, which is released when its descriptor is closed. Null while the machine goes
    /// to sleep, and without logind.
    std::shared_ptr<QDBusUnixFileDescriptor> m_inhibitor;
    std::weak_ptr<QDBusUnixFileDescriptor> m_delaying; ///< The last one, while tasks hold it.
    std::unique_ptr<RepeatingTimer> m_delayLimit;
    bool m_isMachineAsleep = false;
    bool m_isMutterSaving = false;
    bool m_isPanelOff = false;
    bool m_isAsleep = false;
};

} // namespace brimlet
