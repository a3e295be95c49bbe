#include "bench/figures.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

/// Half a minute with ten polls.
Spent halfAMinute() {
    Spent spent{.seconds = 30};
    spent.before = {.cpuMilliseconds = 100, .childrenMilliseconds = 50, .voluntary = 1000};
    spent.after = {
        .pssKib = 3072, .cpuMilliseconds = 104, .childrenMilliseconds = 60, .voluntary = 1060};
    return spent;
}

} // namespace

class TestFigures final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void memoryIsThatOfTheEnd() { QCOMPARE(figuresOf(halfAMinute()).at("pssMib"), 3.0); }

    void cpuOfEndedChildProcessesCountsToo() {
        QCOMPARE(figuresOf(halfAMinute()).at("cpuMsPerMinute"), 28.0);
    }

    void switchesAreThoseOfASecond() {
        QCOMPARE(figuresOf(halfAMinute()).at("voluntarySwitchesPerSecond"), 2.0);
    }

    void whatNobodyCountedHasNoFigure() {
        const Figures figures = figuresOf(halfAMinute());
        QVERIFY(!figures.contains("paintsPerMinute"));
        QVERIFY(!figures.contains("xRequestsPerMinute"));
        QVERIFY(!figures.contains("pollsPerMinute"));
    }

    void nothingCountedIsAZero() {
        Spent spent = halfAMinute();
        spent.paints = Paints();
        spent.xRequests = XRequests();
        QCOMPARE(figuresOf(spent).at("paintsPerMinute"), 0.0);
        QCOMPARE(figuresOf(spent).at("xRequestsPerMinute"), 0.0);
    }

    void bytesAreThoseOfOnePoll() {
        Spent spent = halfAMinute();
        spent.traffic = {.polls = 10, .pollBytesSent = 800, .pollBytesReceived = 3000};
        QCOMPARE(figuresOf(spent).at("bytesSentPerPoll"), 80.0);
        QCOMPARE(figuresOf(spent).at("bytesReceivedPerPoll"), 300.0);
    }

    void withoutAPollThereIsNoFigureOfOne() {
        Spent spent = halfAMinute();
        spent.traffic = Traffic();
        QCOMPARE(figuresOf(spent).at("pollsPerMinute"), 0.0);
        QVERIFY(!figuresOf(spent).contains("bytesReceivedPerPoll"));
    }

    void aConnectionThatIsKeptIsOne() {
        Spent spent = halfAMinute();
        spent.traffic = {.polls = 10};
        QCOMPARE(figuresOf(spent).at("pollConnections"), 1.0);
        spent.traffic->pollConnections = 10;
        QCOMPARE(figuresOf(spent).at("pollConnections"), 10.0);
    }

    void theMedianIsTheMiddleOrBetweenTheTwo() {
        QCOMPARE(median({5, 1, 3}), 3.0);
        QCOMPARE(median({5, 1, 3, 2}), 2.5);
    }

    void aFigureThatSomeRunLacksHasNoMedian() {
        const std::vector<Figures> runs{{{"a", 1}, {"b", 1}}, {{"a", 3}}, {{"a", 2}, {"b", 2}}};
        QCOMPARE(medianOf(runs), (Figures{{"a", 2}}));
        QCOMPARE(greatestOf(runs), (Figures{{"a", 3}}));
    }
};

BRIMLET_TEST(TestFigures, QCoreApplication)
#include "tst_figures.moc"
