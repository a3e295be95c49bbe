#include "tests/support/testprogram.h"
#include "tools/placement/model.h"

#include <QtTest/QtTest>

using namespace brimlet::placement;
using namespace std::chrono_literals;

namespace {

// Monday, 5 February 2024, 00:00 UTC.
constexpr Instant monday{std::chrono::sys_days{std::chrono::year{2024} / 2 / 5}};

const std::string ada = "token-a";
const std::string ben = "token-b";

Heartbeat liveBeat() {
    Heartbeat beat;
    beat.slotsVisible = {"left", "right"};
    beat.fromApplications = true;
    return beat;
}

// One heartbeat in each of `windows` successive windows.
void earn(Model& model, const std::string& token, Instant from, int windows) {
    for (int window = 0; window < windows; ++window) {
        model.heartbeat(token, liveBeat(), from + window * Model::windowLength);
    }
}

// Seven euros a week for the real hosts alone: one a day.
Model sevenEuros() {
    Model model;
    model.setTerms({700, 0});
    return model;
}

} // namespace

class ModelTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aNewHostHasNothingYet();
    void onlyLiveHeartbeatsEarnAWindow_data();
    void onlyLiveHeartbeatsEarnAWindow();
    void windowsAreQuartersOfTheHour_data();
    void windowsAreQuartersOfTheHour();
    void aDayIsLiveAtFourWindows_data();
    void aDayIsLiveAtFourWindows();
    void windowsOfYesterdayDoNotCountToday();
    void aHostIsLiveForHalfAnHour_data();
    void aHostIsLiveForHalfAnHour();
    void simulatedHostsCountAsLive();
    void fromApplicationsIsThatOfTheLastHeartbeat();
    void withoutAgreementThereIsNoEstimate();
    void agreeingCountsForTheWeekSoFar();
    void theEstimateGrowsWithTodaysWindows_data();
    void theEstimateGrowsWithTodaysWindows();
    void theEstimateIsConstantBetweenWindows();
    void aDayIsSharedEquallyByItsLiveHosts();
    void aDayBelowFourWindowsPaysNothing();
    void aFullWeekIsThePool();
    void aNewWeekBanksTheShare();
    void unfinishedDaysAreNotBanked();
    void weeksWithoutRequestsBankOnce();
    void aClockSetBackBanksNothing();
    void sharesNeverExceedThePool();
};

void ModelTest::aNewHostHasNothingYet() {
    Model model;
    HostFigures expected;
    expected.liveHostCount = Terms{}.simulatedHosts;
    expected.liveBucketsNeeded = 4;
    QVERIFY(model.figures(ada, monday) == expected);
}

void ModelTest::onlyLiveHeartbeatsEarnAWindow_data() {
    QTest::addColumn<bool>("paused");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("fromApplications");
    QTest::addColumn<int>("windows");
    QTest::newRow("showing") << false << true << true << 1;
    QTest::newRow("paused") << true << true << true << 0;
    QTest::newRow("nothing visible") << false << false << true << 0;
    QTest::newRow("run from elsewhere") << false << true << false << 0;
    QTest::newRow("nothing right") << true << false << false << 0;
}

void ModelTest::onlyLiveHeartbeatsEarnAWindow() {
    QFETCH(bool, paused);
    QFETCH(bool, visible);
    QFETCH(bool, fromApplications);
    QFETCH(int, windows);
    Heartbeat beat;
    beat.paused = paused;
    beat.fromApplications = fromApplications;
    if (visible) {
        beat.slotsVisible = {"right"};
    }
    Model model;
    model.setTerms({0, 0});
    model.heartbeat(ada, beat, monday);
    QCOMPARE(model.figures(ada, monday).liveBucketsToday, windows);
    QCOMPARE(model.figures(ada, monday).liveHostCount, windows);
}

void ModelTest::windowsAreQuartersOfTheHour_data() {
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("windows");
    QTest::newRow("same second") << 0 << 0 << 1;
    QTest::newRow("start and end of one") << 0 << 899 << 1;
    QTest::newRow("across an edge") << 899 << 900 << 2;
    QTest::newRow("first and last of the day") << 0 << 86399 << 2;
    QTest::newRow("back in time") << 1800 << 0 << 2;
}

void ModelTest::windowsAreQuartersOfTheHour() {
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(int, windows);
    Model model;
    model.heartbeat(ada, liveBeat(), monday + std::chrono::seconds{first});
    model.heartbeat(ada, liveBeat(), monday + std::chrono::seconds{second});
    QCOMPARE(model.figures(ada, monday).liveBucketsToday, windows);
}

void ModelTest::aDayIsLiveAtFourWindows_data() {
    QTest::addColumn<int>("windows");
    QTest::addColumn<int>("days");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("three") << 3 << 0;
    QTest::newRow("four") << 4 << 1;
    QTest::newRow("all") << 96 << 1;
}

void ModelTest::aDayIsLiveAtFourWindows() {
    QFETCH(int, windows);
    QFETCH(int, days);
    Model model;
    earn(model, ada, monday, windows);
    const HostFigures figures = model.figures(ada, monday + 24h - 1s);
    QCOMPARE(figures.liveBucketsToday, windows);
    QCOMPARE(figures.liveDaysThisWeek, days);
}

void ModelTest::windowsOfYesterdayDoNotCountToday() {
    Model model;
    earn(model, ada, monday, 5);
    const HostFigures figures = model.figures(ada, monday + 24h);
    QCOMPARE(figures.liveBucketsToday, 0);
    QCOMPARE(figures.liveDaysThisWeek, 1);
}

void ModelTest::aHostIsLiveForHalfAnHour_data() {
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("live");
    QTest::newRow("at once") << 0 << 1;
    QTest::newRow("just within") << 1800 << 1;
    QTest::newRow("just past") << 1801 << 0;
}

void ModelTest::aHostIsLiveForHalfAnHour() {
    QFETCH(int, seconds);
    QFETCH(int, live);
    Model model;
    model.setTerms({0, 0});
    model.heartbeat(ada, liveBeat(), monday);
    QCOMPARE(model.figures(ben, monday + std::chrono::seconds{seconds}).liveHostCount, live);
}

void ModelTest::simulatedHostsCountAsLive() {
    Model model;
    model.setTerms({0, 9});
    model.heartbeat(ada, liveBeat(), monday);
    QCOMPARE(model.figures(ada, monday).liveHostCount, 10);
}

void ModelTest::fromApplicationsIsThatOfTheLastHeartbeat() {
    Model model;
    Heartbeat elsewhere = liveBeat();
    elsewhere.fromApplications = false;
    model.heartbeat(ada, elsewhere, monday);
    QVERIFY(!model.figures(ada, monday).fromApplications);
    QVERIFY(model.figures(ben, monday).fromApplications);
    model.heartbeat(ada, liveBeat(), monday);
    QVERIFY(model.figures(ada, monday).fromApplications);
}

void ModelTest::withoutAgreementThereIsNoEstimate() {
    Model model = sevenEuros();
    earn(model, ada, monday, 4);
    QCOMPARE(model.figures(ada, monday + 2h).estimatedCents, 0);
    QVERIFY(!model.figures(ada, monday + 2h).agreed);
}

void ModelTest::agreeingCountsForTheWeekSoFar() {
    Model model = sevenEuros();
    earn(model, ada, monday, 4);
    model.agree(ada, monday + 30h);
    const HostFigures figures = model.figures(ada, monday + 30h);
    QVERIFY(figures.agreed);
    QCOMPARE(figures.estimatedCents, 100);
}

void ModelTest::theEstimateGrowsWithTodaysWindows_data() {
    QTest::addColumn<int>("windows");
    QTest::addColumn<int>("cents");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("one") << 1 << 25;
    QTest::newRow("three") << 3 << 75;
    QTest::newRow("four") << 4 << 100;
    QTest::newRow("more") << 12 << 100;
}

void ModelTest::theEstimateGrowsWithTodaysWindows() {
    QFETCH(int, windows);
    QFETCH(int, cents);
    Model model = sevenEuros();
    model.agree(ada, monday);
    earn(model, ada, monday, windows);
    QCOMPARE(model.figures(ada, monday + 12h).estimatedCents, cents);
}

void ModelTest::theEstimateIsConstantBetweenWindows() {
    Model model;
    model.agree(ada, monday);
    earn(model, ada, monday, 2);
    const HostFigures first = model.figures(ada, monday + 16min);
    QVERIFY(first.estimatedCents > 0);
    for (auto second = 0s; second < 15min; second += 3s) {
        QVERIFY(model.figures(ada, monday + 16min + second) == first);
    }
}

void ModelTest::aDayIsSharedEquallyByItsLiveHosts() {
    Model model = sevenEuros();
    model.agree(ada, monday);
    model.agree(ben, monday);
    earn(model, ada, monday, 4);
    QCOMPARE(model.figures(ada, monday + 2h).estimatedCents, 100);
    earn(model, ben, monday + 2h, 4);
    QCOMPARE(model.figures(ada, monday + 3h).estimatedCents, 50);
    QCOMPARE(model.figures(ben, monday + 3h).estimatedCents, 50);
    earn(model, ada, monday + 24h, 4);
    QCOMPARE(model.figures(ada, monday + 26h).estimatedCents, 150);
    QCOMPARE(model.figures(ben, monday + 26h).estimatedCents, 50);
    model.setTerms({700, 3});
    QCOMPARE(model.figures(ada, monday + 26h).estimatedCents, 20 + 25);
}

void ModelTest::aDayBelowFourWindowsPaysNothing() {
    Model model = sevenEuros();
    model.agree(ada, monday);
    earn(model, ada, monday, 3);
    QCOMPARE(model.figures(ada, monday + 24h - 1s).estimatedCents, 75);
    QCOMPARE(model.figures(ada, monday + 24h).estimatedCents, 0);
}

void ModelTest::aFullWeekIsThePool() {
    Model model = sevenEuros();
    model.agree(ada, monday);
    for (int day = 0; day < 7; ++day) {
        earn(model, ada, monday + std::chrono::days{day}, 4);
    }
    const HostFigures figures = model.figures(ada, monday + std::chrono::days{7} - 1s);
    QCOMPARE(figures.liveDaysThisWeek, 7);
    QCOMPARE(figures.estimatedCents, 700);
    QCOMPARE(figures.pendingStipendCents, 0);
}

void ModelTest::aNewWeekBanksTheShare() {
    Model model = sevenEuros();
    model.agree(ada, monday);
    earn(model, ada, monday, 4);
    earn(model, ada, monday + std::chrono::days{6} + 22h, 8);
    const Instant sunday = monday + std::chrono::days{7} - 1s;
    QCOMPARE(model.figures(ada, sunday).estimatedCents, 200);
    const HostFigures turned = model.figures(ada, sunday + 1s);
    QCOMPARE(turned.pendingStipendCents, 200);
    QCOMPARE(turned.estimatedCents, 0);
    QCOMPARE(turned.liveDaysThisWeek, 0);
    QCOMPARE(turned.liveBucketsToday, 0);
    QVERIFY(turned.agreed);
    earn(model, ada, sunday + 1s, 4);
    QCOMPARE(model.figures(ada, sunday + 2h).estimatedCents, 100);
    QCOMPARE(model.figures(ada, sunday + 2h).pendingStipendCents, 200);
}

void ModelTest::unfinishedDaysAreNotBanked() {
    Model model = sevenEuros();
    model.agree(ada, monday);
    earn(model, ada, monday + std::chrono::days{6}, 3);
    QCOMPARE(model.figures(ada, monday + std::chrono::days{7}).pendingStipendCents, 0);
}

void ModelTest::weeksWithoutRequestsBankOnce() {
    Model model = sevenEuros();
    model.agree(ada, monday);
    earn(model, ada, monday, 4);
    QCOMPARE(model.figures(ada, monday + std::chrono::weeks{57}).pendingStipendCents, 100);
    QCOMPARE(model.figures(ada, monday + std::chrono::weeks{58}).pendingStipendCents, 100);
}

void ModelTest::aClockSetBackBanksNothing() {
    Model model = sevenEuros();
    model.agree(ada, monday);
    earn(model, ada, monday, 4);
    QCOMPARE(model.figures(ada, monday - std::chrono::days{10}).pendingStipendCents, 0);
    QCOMPARE(model.figures(ada, monday + 1h).estimatedCents, 100);
    QCOMPARE(model.figures(ada, monday + 1h).pendingStipendCents, 0);
}

void ModelTest::sharesNeverExceedThePool() {
    Model model;
    model.setTerms({1'000'000'000'000, 0});
    std::int64_t banked = 0;
    for (int host = 0; host < 3; ++host) {
        const std::string token = "host-" + std::to_string(host);
        model.agree(token, monday);
        for (int day = 0; day < 7; ++day) {
            earn(model, token, monday + std::chrono::days{day}, 96);
        }
    }
    for (int host = 0; host < 3; ++host) {
        const std::string token = "host-" + std::to_string(host);
        banked += model.figures(token, monday + std::chrono::weeks{1}).pendingStipendCents;
    }
    QVERIFY(banked <= 1'000'000'000'000);
    QVERIFY(banked > 999'999'999'900);
}

BRIMLET_TEST(ModelTest, brimlet::NoApplication)
#include "tst_model.moc"
