#include "platform/qt/qtclock.h"
#include "platform/simulated/simulatedclock.h"
#include "platform/starttask.h"
#include "tests/support/emulated.h"
#include "tests/support/fakeclock.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <vector>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

bool passOnFake(FakeClock& clock, const std::function<bool()>& isSo) {
    for (int i = 0; i < 1000 && !isSo(); ++i) {
        clock.advance(1ms);
    }
    return isSo();
}

bool passForReal(const std::function<bool()>& isSo) {
    return QTest::qWaitFor(isSo, 5000);
}

QCoro::Task<> sleepThenCount(Clock& clock, std::chrono::nanoseconds duration, std::stop_token stop,
                             int& count) {
    co_await clock.sleep(duration, stop);
    ++count;
}

QCoro::Task<> sleepThenStop(Clock& clock, std::stop_source& stop) {
    co_await clock.sleep(5ms, {});
    stop.request_stop();
}

QCoro::Task<> sleepThenAppend(Clock& clock, int milliseconds, QList<int>& order) {
    co_await clock.sleep(std::chrono::milliseconds(milliseconds), {});
    order << milliseconds;
}

} // namespace

/// The contract of every clock, for the fake, the real and an accelerated one.
class TestClock final : public QObject {
    Q_OBJECT

    enum Kind { Fake, Real, Accelerated };

    FakeClock m_fake;
    QtClock m_real;
    SimulatedClock m_accelerated{m_real, 3};

    Clock& clockOf(int kind) {
        switch (kind) {
        case Fake:
            return m_fake;
        case Real:
            return m_real;
        default:
            return m_accelerated;
        }
    }
    bool pass(int kind, const std::function<bool()>& isSo) {
        return kind == Fake ? passOnFake(m_fake, isSo) : passForReal(isSo);
    }
    static void allClocks() {
        QTest::addColumn<int>("kind");
        QTest::newRow("fake") << int(Fake);
        QTest::newRow("real") << int(Real);
        QTest::newRow("accelerated") << int(Accelerated);
    }

private Q_SLOTS:
    void aTimerTicksRepeatedly_data() { allClocks(); }
    void aTimerTicksRepeatedly() {
        QFETCH(int, kind);
        int ticks = 0;
        const auto timer = clockOf(kind).repeat(5ms, [&] { ++ticks; });
        QCOMPARE(ticks, 0);
        QVERIFY(pass(kind, [&] { return ticks >= 3; }));
    }

    void aDestroyedTimerIsSilent_data() { allClocks(); }
    void aDestroyedTimerIsSilent() {
        QFETCH(int, kind);
        int ticks = 0;
        int others = 0;
        auto timer = clockOf(kind).repeat(2ms, [&] { ++ticks; });
        timer.reset();
        const auto other = clockOf(kind).repeat(5ms, [&] { ++others; });
        QVERIFY(pass(kind, [&] { return others >= 2; }));
        QCOMPARE(ticks, 0);
    }

    void aTimerMayBeDestroyedByItsOwnTick_data() { allClocks(); }
    void aTimerMayBeDestroyedByItsOwnTick() {
        QFETCH(int, kind);
        int ticks = 0;
        std::unique_ptr<RepeatingTimer> timer;
        timer = clockOf(kind).repeat(2ms, [&] {
            ++ticks;
            timer.reset();
        });
        QVERIFY(pass(kind, [&] { return ticks == 1; }));
    }

    void aSleepEndsAfterItsTime_data() { allClocks(); }
    void aSleepEndsAfterItsTime() {
        QFETCH(int, kind);
        int woken = 0;
        startTask(sleepThenCount(clockOf(kind), 5ms, {}, woken));
        QCOMPARE(woken, 0);
        QVERIFY(pass(kind, [&] { return woken == 1; }));
    }

    void aSleepEndsAtOnceWhenStopped_data() { allClocks(); }
    void aSleepEndsAtOnceWhenStopped() {
        QFETCH(int, kind);
        int woken = 0;
        std::stop_source stop;
        startTask(sleepThenCount(clockOf(kind), 1h, stop.get_token(), woken));
        QCOMPARE(woken, 0);
        stop.request_stop();
        QCOMPARE(woken, 1);
    }

    void aSleepWithAStoppedTokenEndsAtOnce_data() { allClocks(); }
    void aSleepWithAStoppedTokenEndsAtOnce() {
        QFETCH(int, kind);
        int woken = 0;
        std::stop_source stop;
        stop.request_stop();
        startTask(sleepThenCount(clockOf(kind), 1h, stop.get_token(), woken));
        QCOMPARE(woken, 1);
    }

    void aSleeperMayStopAnotherThatEndsWithIt_data() { allClocks(); }
    void aSleeperMayStopAnotherThatEndsWithIt() {
        QFETCH(int, kind);
        int stopped = 0;
        std::stop_source stop;
        startTask(sleepThenStop(clockOf(kind), stop));
        startTask(sleepThenCount(clockOf(kind), 5ms, stop.get_token(), stopped));
        QVERIFY(pass(kind, [&] { return stopped == 1; }));
        int later = 0;
        startTask(sleepThenCount(clockOf(kind), 5ms, {}, later));
        QVERIFY(pass(kind, [&] { return later == 1; }));
        QCOMPARE(stopped, 1);
    }

    void sleepsEndInTheOrderOfTheirEnds_data() { allClocks(); }
    void sleepsEndInTheOrderOfTheirEnds() {
        QFETCH(int, kind);
        QList<int> order;
        for (const int milliseconds : {9, 3, 6}) {
            startTask(sleepThenAppend(clockOf(kind), milliseconds * slowness(), order));
        }
        QVERIFY(pass(kind, [&] { return order.size() == 3; }));
        QCOMPARE(order, (QList<int>{3 * slowness(), 6 * slowness(), 9 * slowness()}));
    }

    void aSleepOfAMonthDoesNotEndEarly_data() { allClocks(); }
    void aSleepOfAMonthDoesNotEndEarly() {
        QFETCH(int, kind);
        int ticks = 0;
        int woken = 0;
        std::stop_source stop;
        startTask(sleepThenCount(clockOf(kind), 30 * 24h, stop.get_token(), woken));
        const auto timer = clockOf(kind).repeat(1ms, [&] { ++ticks; });
        QVERIFY(pass(kind, [&] { return ticks >= 3; }));
        QCOMPARE(woken, 0);
        stop.request_stop();
        QCOMPARE(woken, 1);
    }

    void uptimePassesWithSleeps_data() { allClocks(); }
    void uptimePassesWithSleeps() {
        QFETCH(int, kind);
        const auto before = clockOf(kind).uptime();
        int woken = 0;
        startTask(sleepThenCount(clockOf(kind), 5ms, {}, woken));
        QVERIFY(pass(kind, [&] { return woken == 1; }));
        QVERIFY(clockOf(kind).uptime() - before >= 5ms);
    }

    void aJumpOfTheWallClockDoesNotChangeUptime() {
        const auto before = m_fake.uptime();
        m_fake.jump(400 * 24h);
        QCOMPARE(m_fake.uptime(), before);
    }

    void anAcceleratedClockSpeedsUpTimersSleepsAndBothTimes() {
        FakeClock real;
        SimulatedClock clock(real, 60);
        const auto start = clock.now();
        const auto uptime = clock.uptime();
        int ticks = 0;
        int woken = 0;
        const auto timer = clock.repeat(3s, [&] { ++ticks; });
        startTask(sleepThenCount(clock, 16s, {}, woken));
        real.advance(250ms);
        QCOMPARE(ticks, 5);
        QCOMPARE(woken, 0);
        real.advance(17ms);
        QCOMPARE(woken, 1);
        real.advance(733ms);
        QCOMPARE(ticks, 20);
        QCOMPARE(clock.now() - start, std::chrono::nanoseconds(1min));
        QCOMPARE(clock.uptime() - uptime, std::chrono::nanoseconds(1min));
    }

    void aLateTickDoesNotShiftTheNextOnes_data() {
        QTest::addColumn<std::chrono::milliseconds>("now");
        QTest::addColumn<std::chrono::milliseconds>("next");
        QTest::newRow("on time") << 3000ms << 6000ms;
        QTest::newRow("a little early") << 2999ms << 6000ms;
        QTest::newRow("late by less than an interval") << 4500ms << 6000ms;
        QTest::newRow("a millisecond before the next") << 5999ms << 6000ms;
        QTest::newRow("late by one interval") << 6000ms << 9000ms;
        QTest::newRow("late by more than an interval") << 7000ms << 9000ms;
        QTest::newRow("late by an hour and a bit") << 3'604'000ms << 3'606'000ms;
    }
    void aLateTickDoesNotShiftTheNextOnes() {
        QFETCH(const std::chrono::milliseconds, now);
        QFETCH(const std::chrono::milliseconds, next);
        QCOMPARE(nextTick(3s, 3s, now), std::chrono::nanoseconds(next));
    }

    void aLateTimerDoesNotMakeUpForMissedTicks() {
        std::vector<std::chrono::nanoseconds> ticks;
        const auto timer = m_real.repeat(5ms, [&] {
            ticks.push_back(m_real.uptime());
            while (ticks.size() == 1 && m_real.uptime() < ticks.front() + 22ms) {
            }
        });
        QVERIFY(passForReal([&] { return ticks.size() >= 6; }));
        QVERIFY(ticks[1] - ticks[0] >= 22ms);
        // The last four are at different multiples of the interval after the late one.
        QVERIFY(ticks[5] - ticks[1] > 15ms);
    }

    void aTimerOfADestroyedClockIsSilent() {
        int ticks = 0;
        auto clock = std::make_unique<QtClock>();
        auto timer = clock->repeat(1ms, [&] { ++ticks; });
        clock.reset();
        int others = 0;
        const auto other = m_real.repeat(5ms, [&] { ++others; });
        QVERIFY(passForReal([&] { return others >= 2; }));
        timer.reset();
        QCOMPARE(ticks, 0);
    }

    void aTickMayDestroyItsClock() {
        auto clock = std::make_unique<QtClock>();
        int ticks = 0;
        const auto tick = [&] {
            ++ticks;
            clock.reset();
        };
        const auto first = clock->repeat(1ms, tick);
        const auto second = clock->repeat(1ms, tick);
        QVERIFY(passForReal([&] { return ticks == 1; }));
        QVERIFY(!clock);
    }

    void theRealWallClockIsTheSystems() {
        const auto before = std::chrono::system_clock::now();
        const auto now = m_real.now();
        QVERIFY(now >= before && now <= std::chrono::system_clock::now());
    }
};

BRIMLET_TEST(TestClock, QCoreApplication)
#include "tst_clock.moc"
