#include "platform/qt/qtclock.h"

#include "platform/deferred.h"

#include <QTimer>

namespace brimlet {
namespace {

class QtRepeatingTimer final : public RepeatingTimer {
public:
    QtRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> tick) {
        // Precise timers do not wake the program more often, and coarse ones drift apart.
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout(std::move(tick));
        m_timer.start(interval);
    }

private:
    QTimer m_timer;
};

/// A timer that may end inside its own signal.
struct DeleteLater {
    void operator()(QTimer* timer) const { timer->deleteLater(); }
};

} // namespace

std::unique_ptr<RepeatingTimer> QtClock::repeat(std::chrono::milliseconds interval,
                                                std::function<void()> tick) {
    return std::make_unique<QtRepeatingTimer>(interval, std::move(tick));
}

QCoro::Task<> QtClock::sleep(std::chrono::nanoseconds duration, std::stop_token stop) {
    const Deferred<bool> wake;
    const std::unique_ptr<QTimer, DeleteLater> timer(new QTimer);
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    timer->callOnTimeout([wake] { wake.resolve(true); });
    timer->start(std::chrono::ceil<std::chrono::milliseconds>(duration));
    const std::stop_callback onStop(stop, [wake] { wake.resolve(false); });
    co_await wake;
}

} // namespace brimlet
