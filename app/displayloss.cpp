#include "app/displayloss.h"

#include "app/brimletapp.h"
#include "platform/linux/x11.h"
#include "platform/wayland/waylandsocket.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QtGlobal>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <thread>

#include <linux/close_range.h>
#include <unistd.h>

namespace brimlet {
namespace {

/// Set for the next start: the end of the pause in milliseconds since 1970, 0 for none.
constexpr const char* kVariable = "BRIMLET_DISPLAY_LOST";

struct Running final {
    const BrimletApp* app = nullptr; ///< Null while the main loop does not run.
    std::vector<std::string> arguments;
    QtMessageHandler otherMessages = nullptr;
};
Running running;

std::chrono::milliseconds sinceEpoch(Clock::TimePoint time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
}

/// Checks every half second. This process has neither an event loop nor a display yet.
bool waitFor(bool (*isThere)(), std::chrono::seconds limit) {
    constexpr std::chrono::milliseconds kInterval{500};
    const auto end = std::chrono::steady_clock::now() + limit;
    do {
        // First, so that a display that breaks at once does not keep the processor busy.
        std::this_thread::sleep_for(kInterval);
        if (isThere()) {
            return true;
        }
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

/// Returns only when that is not possible.
void restartAfterDisplayLoss() {
    if (running.app == nullptr) {
        return;
    }
    const auto pause = running.app->store()->pausedUntil();
    qputenv(kVariable, QByteArray::number(qint64(pause ? sinceEpoch(*pause).count() : 0)));
    std::vector<char*> arguments;
    for (std::string& argument : running.arguments) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    // Whatever a library has left open.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    const QByteArray program = QFile::encodeName(QCoreApplication::applicationFilePath());
    ::execv(program.constData(), arguments.data());
    ::execv("/proc/self/exe", arguments.data()); // it was renamed or removed
}

/// Qt's Wayland platform ends the process at once, without the functions of `std::atexit()`, but
/// not without a word. Neither do any of them run when warnings are fatal.
void restartAtLastWords(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (message.startsWith(QStringLiteral("The Wayland connection broke")) ||
        message.startsWith(QStringLiteral("The X11 connection broke"))) {
        restartAfterDisplayLoss();
    }
    running.otherMessages(type, context, message);
}

/// The pause of the run that a loss has ended; absent at any other start.
std::optional<Clock::TimePoint> takePauseBeforeDisplayLoss() {
    const qint64 milliseconds = qgetenv(kVariable).toLongLong();
    qunsetenv(kVariable);
    if (milliseconds <= 0) {
        return std::nullopt;
    }
    return Clock::TimePoint(std::chrono::milliseconds(milliseconds));
}

} // namespace

bool isStartAfterDisplayLoss() {
    return qEnvironmentVariableIsSet(kVariable);
}

bool awaitDisplay() {
    if (!waitFor(compositorAccepts, std::chrono::minutes(1))) {
        return false;
    }
    if (!qEnvironmentVariableIsEmpty("DISPLAY")) {
        // Without it the program runs as on a desktop that has none.
        (void)waitFor(x11::canConnect, std::chrono::seconds(10));
    }
    return true;
}

int runAcrossDisplayLoss(BrimletApp& app, std::vector<std::string> arguments) {
    if (const auto pause = takePauseBeforeDisplayLoss()) {
        app.store()->continuePause(*pause);
    }
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        return app.run();
    }
    running = {&app, std::move(arguments), qInstallMessageHandler(restartAtLastWords)};
    // Where Qt calls exit(); nothing else does within the main loop.
    std::atexit(restartAfterDisplayLoss);
    const int exitCode = app.run();
    running.app = nullptr;
    return exitCode;
}

} // namespace brimlet
