#include "host/hoststore.h"

#include "host/notch.h"
#include "host/statusline.h"
#include "host/visibility.h"
#include "platform/sharedports.h"
#include "platform/starttask.h"

namespace brimlet {
namespace {

constexpr auto kHeartbeatInterval = std::chrono::seconds(900);
constexpr auto kEstimateInterval = std::chrono::seconds(3);

} // namespace

std::shared_ptr<HostStore> HostStore::create(const HostPorts& ports) {
    return std::shared_ptr<HostStore>(new HostStore(ports));
}

const std::shared_ptr<HostStore>& HostStore::shared() {
    // Never destroyed, on purpose: its timers and observers need no teardown.
    static const auto* const store =
        new std::shared_ptr<HostStore>(create(SharedPorts<HostPorts>::get()));
    return *store;
}

HostStore::HostStore(const HostPorts& ports)
    : m_ports(ports)
    , m_token(readToken().value_or(QString()))
    , m_assignment(initialAssignment(inApplications()))
    , m_statusLine(statusline::loading())
    , m_hasNotch(brimlet::hasNotch(builtInScreen(ports.screens))) {}

bool HostStore::isPaused() const {
    return m_pausedUntil && isPausedAt(m_ports.clock.now(), m_pausedUntil);
}

bool HostStore::adsVisible() const {
    return areAdsVisible(
        m_hasNotch, [this] { return isPaused(); }, m_screenAsleep, m_assignment.forceHide,
        m_assignment.weekStatus);
}

bool HostStore::inApplications() const {
    return isInApplications(m_ports.bundle.path());
}

void HostStore::startTimers() {
    const auto self = shared_from_this(); // resetting the timers may drop the last other reference
    m_heartbeatTimer.reset();
    m_estimateTimer.reset();
    m_heartbeatTimer =
        m_ports.clock.repeat(kHeartbeatInterval, [self] { startTask(self->heartbeat()); });
    m_estimateTimer =
        m_ports.clock.repeat(kEstimateInterval, [self] { startTask(self->refreshEstimate()); });
    startTask(refreshDisplayThenHeartbeat());
}

void HostStore::watchScreens() {
    const auto observer = [weak = weak_from_this()](bool asleep) {
        return [weak, asleep] {
            if (const auto store = weak.lock()) {
                startTask(store->screensChanged(asleep));
            }
        };
    };
    m_sleepObserver = m_ports.workspace.observeScreensDidSleep(observer(true));
    m_wakeObserver = m_ports.workspace.observeScreensDidWake(observer(false));
}

QCoro::Task<> HostStore::screensChanged(bool asleep) {
    const auto self = shared_from_this();
    // Until the heartbeat has ended, so that the service hears of the sleep before it begins.
    const auto delay = asleep ? m_ports.workspace.delaySuspend() : nullptr;
    publish(m_screenAsleep, asleep);
    Q_EMIT overlayNeedsRender();
    co_await heartbeat();
}

} // namespace brimlet
