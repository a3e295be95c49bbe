#include "tests/soak/requesttimes.h"

#include <QDateTime>
#include <QJsonObject>

#include <algorithm>

namespace brimlet {
namespace {

// Milliseconds of the program's time.
constexpr qint64 kPoll = 3'000;
constexpr qint64 kHeartbeat = 900'000;

/// How much after the end the last request may arrive, where the next one is due much later.
constexpr qint64 kPatience = 500; // milliseconds of real time

qint64 longestGap(const std::vector<qint64>& times) {
    qint64 longest = 0;
    for (std::size_t i = 1; i < times.size(); ++i) {
        longest = std::max(longest, times[i] - times[i - 1]);
    }
    return longest;
}

} // namespace

RequestTimes timesOf(const QJsonArray& requests) {
    RequestTimes times;
    for (const auto& value : requests) {
        const QJsonObject request = value.toObject();
        const QString time = request.value(QStringLiteral("time")).toString();
        times[request.value(QStringLiteral("method")).toString() + u' ' +
              request.value(QStringLiteral("path")).toString()]
            .push_back(QDateTime::fromString(time, Qt::ISODateWithMs).toMSecsSinceEpoch());
    }
    return times;
}

void judgeRequests(Report& report, RequestTimes times, const Span& span, bool isShort) {
    const auto take = [&](const QString& kind, qint64 patience) {
        std::vector<qint64> taken = times.take(kind);
        taken.erase(
            std::upper_bound(taken.begin(), taken.end(), span.start + span.length + patience),
            taken.end());
        return taken;
    };
    const auto expect = [&](const QString& kind, qint64 due) {
        report.expect(kind, due, static_cast<qint64>(take(kind, kPatience).size()));
    };
    const qint64 length = span.length * span.speed;
    expect(QStringLiteral("GET /api/display"), 1);
    // One after the display, and then by the timer.
    expect(QStringLiteral("POST /api/host/heartbeat"), 1 + length / kHeartbeat);

    const QString poll = QStringLiteral("GET /api/host/me");
    const qint64 interval = kPoll / span.speed;
    const qint64 due = length / kPoll;
    const std::vector<qint64> polls = take(poll, interval / 2);
    report.expectWithin(poll, isShort ? due * 8 / 10 : due - 1, due + 1,
                        static_cast<qint64>(polls.size()));
    report.add(QStringLiteral("ms between two polls (due every %1), most").arg(interval),
               longestGap(polls));

    expect(QStringLiteral("GET /assets/quiet-bicycle.png"), 1);
    expect(QStringLiteral("GET /assets/palindrome-tea.png"), 1);
    report.expect(QStringLiteral("kinds of other requests"), 0, times.size());
}

} // namespace brimlet
