#include "platform/qt/qtclock.h"
#include "platform/starttask.h"
#include "tests/support/fakeclock.h"

#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

/// Lets time pass on a clock until something is so.
using PassUntil = std::function<bool(const std::function<bool()>&)>;

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

} // namespace

/// What every clock keeps to, run over the fake one and the real one.
class TestClock final : public QObject {
    Q_OBJECT

    FakeClock m_fake;
    QtClock m_real;

    Clock& clockOf(bool isReal) { return isReal ? static_cast<Clock&>(m_real) : m_fake; }
    bool pass(bool isReal, const std::function<bool()>& isSo) {
        return isReal ? passForReal(isSo) : passOnFake(m_fake, isSo);
    }
    static void bothClocks() {
        QTest::addColumn<bool>("isReal");
        QTest::newRow("fake") << false;
        QTest::newRow("real") << true;
    }

private Q_SLOTS:
    void aTimerTicksAgainAndAgain_data() { bothClocks(); }
    void aTimerTicksAgainAndAgain() {
        QFETCH(bool, isReal);
        int ticks = 0;
        const auto timer = clockOf(isReal).repeat(5ms, [&] { ++ticks; });
        QCOMPARE(ticks, 0);
        QVERIFY(pass(isReal, [&] { return ticks >= 3; }));
    }

    void aDestroyedTimerIsSilent_data() { bothClocks(); }
    void aDestroyedTimerIsSilent() {
        QFETCH(bool, isReal);
        int ticks = 0;
        int others = 0;
        auto timer = clockOf(isReal).repeat(2ms, [&] { ++ticks; });
        timer.reset();
        const auto other = clockOf(isReal).repeat(5ms, [&] { ++others; });
        QVERIFY(pass(isReal, [&] { return others >= 2; }));
        QCOMPARE(ticks, 0);
    }

    void aTimerMayBeDestroyedByItsOwnTick_data() { bothClocks(); }
    void aTimerMayBeDestroyedByItsOwnTick() {
        QFETCH(bool, isReal);
        int ticks = 0;
        std::unique_ptr<RepeatingTimer> timer;
        timer = clockOf(isReal).repeat(2ms, [&] {
            ++ticks;
            timer.reset();
        });
        QVERIFY(pass(isReal, [&] { return ticks == 1; }));
    }

    void aSleepEndsAfterItsTime_data() { bothClocks(); }
    void aSleepEndsAfterItsTime() {
        QFETCH(bool, isReal);
        int woken = 0;
        startTask(sleepThenCount(clockOf(isReal), 5ms, {}, woken));
        QCOMPARE(woken, 0);
        QVERIFY(pass(isReal, [&] { return woken == 1; }));
    }

    void aSleepEndsAtOnceWhenStopped_data() { bothClocks(); }
    void aSleepEndsAtOnceWhenStopped() {
        QFETCH(bool, isReal);
        int woken = 0;
        std::stop_source stop;
        startTask(sleepThenCount(clockOf(isReal), 1h, stop.get_token(), woken));
        QCOMPARE(woken, 0);
        stop.request_stop();
        QCOMPARE(woken, 1);
    }

    void aSleepThatWasStoppedBeforeDoesNotBegin_data() { bothClocks(); }
    void aSleepThatWasStoppedBeforeDoesNotBegin() {
        QFETCH(bool, isReal);
        int woken = 0;
        std::stop_source stop;
        stop.request_stop();
        startTask(sleepThenCount(clockOf(isReal), 1h, stop.get_token(), woken));
        QCOMPARE(woken, 1);
    }

    void theRealWallClockIsTheSystems() {
        const auto before = std::chrono::system_clock::now();
        const auto now = m_real.now();
        QVERIFY(now >= before && now <= std::chrono::system_clock::now());
    }
};

QTEST_GUILESS_MAIN(TestClock)
#include "tst_clock.moc"
