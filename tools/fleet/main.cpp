#include "platform/starttask.h"
#include "tools/fleet/cadence.h"
#include "tools/fleet/fleet.h"

#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <sys/signalfd.h>

namespace {

using namespace brimlet;
using namespace brimlet::fleet;

constexpr int kFailure = 1;
constexpr int kMisuse = 2;

int complain(const QString& message, int code) {
    std::fprintf(stderr, "brimlet-fleet: %s\n", message.toLocal8Bit().constData());
    return code;
}

/// A descriptor that becomes readable on SIGTERM and SIGINT, which no longer end the process.
/// Called before any thread starts.
int endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return ::signalfd(-1, &signals, SFD_CLOEXEC);
}

QCoro::Task<> measure(Fleet& fleet) {
    co_await fleet.run();
    QCoreApplication::quit();
}

int printFigures(const Fleet& fleet, QFile& jsonFile) {
    const Figures figures = fleet.figures();
    std::fputs(asTable(figures).c_str(), stdout);
    if (jsonFile.isOpen()) {
        const QByteArray line = QByteArray::fromStdString(asJson(figures)) + '\n';
        if (jsonFile.write(line) != line.size() || !jsonFile.flush()) {
            return complain(jsonFile.fileName() + QStringLiteral(": ") + jsonFile.errorString(),
                            kFailure);
        }
    }
    return fleet.hasSucceeded() ? 0 : complain(QStringLiteral("no request succeeded"), kFailure);
}

int run(const Options& options) {
    const quint64 needed = descriptorsNeeded(options.hosts, options.hasToken());
    if (const quint64 allowed = raiseDescriptorLimit(); allowed < needed) {
        return complain(QStringLiteral("%1 hosts can need %2 open files, and this process may have "
                                       "%3 (ulimit -Hn)")
                            .arg(options.hosts)
                            .arg(needed)
                            .arg(allowed),
                        kFailure);
    }
    QFile jsonFile(options.jsonFile);
    if (!options.jsonFile.isEmpty() && !jsonFile.open(QIODevice::WriteOnly)) {
        return complain(options.jsonFile + QStringLiteral(": ") + jsonFile.errorString(), kMisuse);
    }
    QSocketNotifier ending(endingSignals(), QSocketNotifier::Read);
    QObject::connect(&ending, &QSocketNotifier::activated, &QCoreApplication::quit);
    auto* const fleet = new Fleet(options);
    startTask(measure(*fleet));
    QCoreApplication::exec();
    return printFigures(*fleet, jsonFile);
}

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    QString error;
    const auto options = parseOptions(QCoreApplication::arguments().mid(1), error);
    if (!options) {
        return complain(error + QStringLiteral(" (--help lists the options)"), kMisuse);
    }
    if (options->help) {
        std::fputs(helpText().constData(), stdout);
        return 0;
    }
    if (options->version) {
        std::puts("brimlet-fleet " BRIMLET_VERSION);
        return 0;
    }
    const int code = run(*options);
    // Without destructors: thousands of requests may be under way.
    std::fflush(nullptr);
    std::_Exit(code);
}
