#include "tests/soak/day.h"

#include "tests/soak/programuse.h"
#include "tests/soak/progress.h"
#include "tests/soak/requesttimes.h"
#include "tests/support/failure.h"

#include <QDir>

#include <algorithm>

#include <sched.h>

namespace brimlet {
namespace {

constexpr qint64 kHour = 3'600'000; // milliseconds
constexpr qint64 kSecond = 1'000;

void keepTokenInKeyring() {
    QProcess tool;
    tool.start(QStringLiteral("secret-tool"),
               {QStringLiteral("store"), QStringLiteral("--label=Brimlet"),
                QStringLiteral("service"), QStringLiteral("app.brimlet.host"),
                QStringLiteral("account"), QStringLiteral("host-token")});
    tool.write("demo-host-token");
    tool.closeWriteChannel();
    if (!tool.waitForFinished() || tool.exitCode() != 0) {
        throw Failure("the token cannot be put into the keyring");
    }
}

/// Figures of a host that has signed and has earned something.
QJsonObject scenario() {
    const QJsonObject change{
        {QStringLiteral("merge"),
         QJsonObject{{QStringLiteral("agreed"), true}, {QStringLiteral("estimatedCents"), 1234}}}};
    return {{QStringLiteral("endpoints"),
             QJsonObject{{QStringLiteral("/api/host/me"), change},
                         {QStringLiteral("/api/host/heartbeat"), change}}}};
}

/// Raises the process's priority, since missed ticks are not made up, and a slow service lets
/// requests time out.
void raisePriority(qint64 process) {
    const sched_param priority{.sched_priority = 1};
    const QDir threads(QStringLiteral("/proc/%1/task").arg(process));
    bool isRaised = true;
    for (const QString& thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        isRaised = ::sched_setscheduler(thread.toInt(), SCHED_RR, &priority) == 0 && isRaised;
    }
    if (!isRaised) {
        printProgress(
            QStringLiteral("no program can be put before others: a busy machine misses ticks"));
    }
}

/// The arrival of the first request, which is sent when the timers start.
qint64 startOf(const PlacementProcess& service) {
    constexpr int kTries = 200;
    for (int tries = 0; tries < kTries; ++tries) {
        const RequestTimes times = timesOf(service.requests());
        if (const auto display = times.value(QStringLiteral("GET /api/display"));
            !display.empty()) {
            return display.front();
        }
        sleepUntil(realTime() + kSecond / 10);
    }
    throw Failure("the program asks for nothing");
}

} // namespace

void soakADay(const DaySettings& settings, Report& report) {
    keepTokenInKeyring();
    const PlacementProcess service;
    service.setScenario(scenario());
    SimulatorProcess program({{QStringLiteral("infoDictionary"),
                               QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
                              {QStringLiteral("secretStore"), QStringLiteral("system")},
                              {QStringLiteral("speed"), settings.speed}});
    raisePriority(service.pid());
    raisePriority(program.pid());
    const Span span{startOf(service), qRound64(settings.hours * kHour / settings.speed),
                    settings.speed};
    if (!program.state().value(QStringLiteral("hasToken")).toBool()) {
        throw Failure("the program does not find the token");
    }

    const qint64 warmUp = std::min(kHour / settings.speed, span.length / 4);
    const qint64 interval = std::min(30 * kSecond, (span.length - warmUp) / 4);
    UseWatch use(program.pid());
    for (qint64 passed = warmUp; passed <= span.length; passed += interval) {
        sleepUntil(span.start + passed);
        use.sample();
        printProgress(QStringLiteral("%1 of %2 s: %3")
                          .arg(passed / kSecond)
                          .arg(span.length / kSecond)
                          .arg(use.description()));
    }
    // Until the last requests have arrived.
    sleepUntil(span.start + span.length + kSecond);
    use.sample();

    report.begin(
        QStringLiteral("%1 hours, %2 times as fast").arg(settings.hours).arg(settings.speed));
    judgeRequests(report, timesOf(service.requests()), span, settings.isShort);
    use.judge(report, settings.isShort);
    judgeOutput(report, program, QStringLiteral("Ads on. This week ~€12.34 estimate."));
}

} // namespace brimlet
