#include "platform/qt/unixsignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <map>

#include <fcntl.h>
#include <unistd.h>

namespace brimlet {
namespace {

/// The signal handler writes the signal's number as one byte, and the main loop reads it: a handler
/// may call little more than write(). Open until the process ends.
std::array<int, 2> pipeEnds{-1, -1};

std::map<int, std::function<void()>>& blocks() {
    static std::map<int, std::function<void()>> bySignal;
    return bySignal;
}

extern "C" void forwardToMainLoop(int signal) {
    const int savedErrno = errno; // the interrupted code may be about to read it
    const auto byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);
    errno = savedErrno;
}

void readSignals() {
    std::array<unsigned char, 16> numbers{};
    const auto count = ::read(pipeEnds[0], numbers.data(), numbers.size());
    for (long i = 0; i < count; ++i) {
        if (const auto& block = blocks()[numbers[static_cast<std::size_t>(i)]]) {
            block();
        }
    }
}

bool openPipe() {
    if (pipeEnds[0] >= 0) {
        return true;
    }
    if (::pipe(pipeEnds.data()) != 0) {
        return false;
    }
    for (const int end : pipeEnds) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    auto* const application = QCoreApplication::instance();
    auto* const notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, application);
    // Queued, because quit() has no effect before the main loop runs.
    QObject::connect(notifier, &QSocketNotifier::activated, application, readSignals,
                     Qt::QueuedConnection);
    return true;
}

} // namespace

void onUnixSignal(int signal, std::function<void()> block) {
    if (!openPipe()) {
        return;
    }
    blocks()[signal] = std::move(block);
    struct sigaction action {};
    action.sa_handler = forwardToMainLoop;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

void quitOnTerminationSignals() {
    onUnixSignal(SIGTERM, [] { QCoreApplication::quit(); });
    onUnixSignal(SIGINT, [] { QCoreApplication::quit(); });
}

} // namespace brimlet
