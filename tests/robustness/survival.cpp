#include "tests/robustness/survival.h"
#include "tests/support/emulated.h"

#include <QElapsedTimer>

#include <algorithm>

namespace brimlet {
namespace {

const int kPatience = 20'000 * slowness(); // milliseconds
/// As many requests show that polls continue.
constexpr qsizetype kSeveral = 8;

bool hasPictures(WatchedProgram& watched) {
    const QJsonArray pills = watched.program().state().value(QStringLiteral("pills")).toArray();
    return pills.size() == 2 && std::all_of(pills.begin(), pills.end(), [](const QJsonValue& pill) {
               return pill.toObject().value(QStringLiteral("hasImage")).toBool();
           });
}

/// Whether polls continue at their interval, however long each takes. The limit allows for a busy
/// machine; polls that wait for each other, or pause after a fault, would take far longer.
bool keepsPace(WatchedProgram& watched) {
    constexpr int kSlack = 6;
    const qsizetype enough = watched.requests() + kSeveral;
    return QTest::qWaitFor([&] { return watched.requests() >= enough; },
                           kSlack * static_cast<int>(kSeveral) * WatchedProgram::kPollMilliseconds);
}

/// Waits until no request has arrived for the time of several polls.
bool fallsSilent(WatchedProgram& watched) {
    qsizetype seen = watched.requests();
    QElapsedTimer since;
    since.start();
    return QTest::qWaitFor(
        [&] {
            if (const qsizetype now = watched.requests(); now != seen) {
                seen = now;
                since.restart();
            }
            return since.hasExpired(kSeveral * WatchedProgram::kPollMilliseconds);
        },
        kPatience);
}

} // namespace

QString statusOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::TransferFailed:
        return QStringLiteral("Heartbeat failed. Will retry.");
    case Outcome::Rejected:
        return QStringLiteral("Server rejected the host token.");
    case Outcome::Applied:
        return WatchedProgram::otherStatus();
    case Outcome::Nothing:
        break;
    }
    return WatchedProgram::goodStatus();
}

void begin(WatchedProgram& watched) {
    QVERIFY(watched.reaches(WatchedProgram::goodStatus()));
    QTRY_VERIFY_WITH_TIMEOUT(hasPictures(watched), kPatience);
    // Until the tasks that a start defers are done.
    QTRY_VERIFY_WITH_TIMEOUT(watched.requests() > 5 * kSeveral, kPatience);
    watched.recordUse();
}

void survive(WatchedProgram& watched, const Fault& fault) {
    const QString before = watched.content();
    watched.forgetPeakMemory();
    if (!fault.root.isNull()) {
        watched.moveTo(fault.root);
    }
    watched.follow(fault.script);
    watched.askAll();
    QVERIFY(watched.reaches(statusOf(fault.outcome)));
    if (fault.outcome == Outcome::Nothing) {
        QVERIFY(fallsSilent(watched));
        QCOMPARE(watched.program().statusLine(), statusOf(fault.outcome));
    } else if (fault.root.isNull() && fault.script.contains(QStringLiteral("answers"))) {
        QVERIFY(keepsPace(watched));
    }
    if (fault.outcome == Outcome::Applied) {
        QVERIFY(watched.content() != before);
    } else {
        QCOMPARE(watched.content(), before);
    }
    watched.behave();
    QVERIFY(watched.reaches(WatchedProgram::goodStatus()));
    QTRY_COMPARE_WITH_TIMEOUT(watched.complaint(), QString(), kPatience);
    QTRY_COMPARE_WITH_TIMEOUT(watched.content(), before, kPatience);
}

} // namespace brimlet
