#include "platform/linux/terminationsignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <cstdint>

#include <sys/eventfd.h>
#include <unistd.h>

namespace brimlet {
namespace {

/// Carries the news out of the signal handler, where little else is allowed. Open until the
/// process ends.
int descriptor = -1;

extern "C" void wakeMainLoop(int /*signal*/) {
    constexpr std::uint64_t kOne = 1;
    [[maybe_unused]] const auto written = ::write(descriptor, &kOne, sizeof kOne);
}

} // namespace

void quitOnTerminationSignals() {
    descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0) {
        return;
    }
    auto* const application = QCoreApplication::instance();
    auto* const notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, application);
    // Queued, so that a signal before the main loop runs is not lost.
    QObject::connect(
        notifier, &QSocketNotifier::activated, application,
        [notifier] {
            notifier->setEnabled(false);
            QCoreApplication::quit();
        },
        Qt::QueuedConnection);
    struct sigaction action {};
    action.sa_handler = wakeMainLoop;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
}

} // namespace brimlet
