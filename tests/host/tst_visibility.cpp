#include "host/visibility.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

class TestVisibility final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPauseCountsStrictlyBeforeItsEnd_data() {
        QTest::addColumn<int>("secondsLeft");
        QTest::addColumn<bool>("isPaused");
        QTest::newRow("before the end") << 1 << true;
        QTest::newRow("pausedUntil equal to now: not paused") << 0 << false;
        QTest::newRow("past") << -1 << false;
    }
    void aPauseCountsStrictlyBeforeItsEnd() {
        QFETCH(int, secondsLeft);
        QFETCH(bool, isPaused);
        const Clock::TimePoint now{1000s};
        QCOMPARE(isPausedAt(now, now + std::chrono::seconds(secondsLeft)), isPaused);
    }

    void withoutAPauseNothingIsPaused() { QVERIFY(!isPausedAt(Clock::TimePoint{}, std::nullopt)); }

    void adsNeedEveryCondition_data() {
        QTest::addColumn<bool>("hasNotch");
        QTest::addColumn<bool>("paused");
        QTest::addColumn<bool>("screenAsleep");
        QTest::addColumn<bool>("forceHide");
        QTest::addColumn<QString>("weekStatus");
        QTest::addColumn<bool>("visible");
        const QString live = QStringLiteral("live");
        // Every combination; only one shows ads.
        for (int bits = 0; bits < 32; ++bits) {
            const bool notch = bits & 16;
            const bool pause = bits & 8;
            const bool sleep = bits & 4;
            const bool hide = bits & 2;
            const bool isLive = bits & 1;
            QTest::addRow("notch %d, paused %d, asleep %d, hidden %d, live %d", notch, pause, sleep,
                          hide, isLive)
                << notch << pause << sleep << hide << (isLive ? live : QStringLiteral("unfilled"))
                << (notch && !pause && !sleep && !hide && isLive);
        }
        QTest::newRow("live in other letter case")
            << true << false << false << false << QStringLiteral("Live") << false;
        QTest::newRow("live with a trailing blank")
            << true << false << false << false << QStringLiteral("live ") << false;
        QTest::newRow("empty status") << true << false << false << false << QString() << false;
    }
    void adsNeedEveryCondition() {
        QFETCH(bool, hasNotch);
        QFETCH(bool, paused);
        QFETCH(bool, screenAsleep);
        QFETCH(bool, forceHide);
        QFETCH(QString, weekStatus);
        const auto isPaused = [paused] { return paused; };
        QTEST(areAdsVisible(hasNotch, isPaused, screenAsleep, forceHide, weekStatus), "visible");
    }

    void thePauseIsCheckedOnlyWithANotch() {
        int calls = 0;
        const auto isPaused = [&calls] {
            ++calls;
            return false;
        };
        QVERIFY(!areAdsVisible(false, isPaused, false, false, u"live"));
        QCOMPARE(calls, 0);
        QVERIFY(areAdsVisible(true, isPaused, false, false, u"live"));
        QCOMPARE(calls, 1);
    }
};

BRIMLET_TEST(TestVisibility, brimlet::NoApplication)
#include "tst_visibility.moc"
