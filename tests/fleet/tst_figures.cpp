#include "tests/support/testprogram.h"
#include "tools/fleet/cadence.h"
#include "tools/fleet/latencies.h"
#include "tools/fleet/report.h"

#include <QTest>

#include <nlohmann/json.hpp>

#include <numeric>

using namespace brimlet::fleet;
using namespace std::chrono_literals;

namespace {

std::vector<float> upTo(int last) {
    std::vector<float> samples(static_cast<std::size_t>(last));
    std::iota(samples.begin(), samples.end(), 1.0F);
    return samples;
}

Figures someFigures() {
    Figures figures;
    figures.hosts = 100;
    figures.seconds = 30;
    figures.requestsDue = 1003;
    figures.requestsMade = 1000;
    figures.whole = 90;
    figures.notModified = 900;
    figures.refused = 7;
    figures.unanswered = 3;
    figures.polls = {0.25, 0.5, 1.25, 2};
    figures.heartbeats = {3, 4, 5, 6};
    figures.cpuMilliseconds = 200;
    figures.kib = 1500;
    figures.heapKib = 1400;
    figures.bytesSent = 140'000;
    figures.bytesReceived = 173'000;
    figures.connectionsOpened = 200;
    figures.connectionsOpen = 101;
    return figures;
}

} // namespace

class TestFleetFigures final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsAreSpreadEvenly_data() {
        QTest::addColumn<int>("hosts");
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QList<qint64>>("milliseconds");
        QTest::newRow("one") << 1 << 3 << QList<qint64>{0};
        QTest::newRow("three") << 3 << 3 << QList<qint64>{0, 1000, 2000};
        QTest::newRow("four") << 4 << 3 << QList<qint64>{0, 750, 1500, 2250};
        QTest::newRow("at once") << 3 << 0 << QList<qint64>{0, 0, 0};
    }

    void startsAreSpreadEvenly() {
        QFETCH(const int, hosts);
        QFETCH(const int, seconds);
        QFETCH(const QList<qint64>, milliseconds);
        for (int i = 0; i < hosts; ++i) {
            QCOMPARE(startOffset(i, hosts, std::chrono::seconds(seconds)),
                     std::chrono::nanoseconds(std::chrono::milliseconds(milliseconds.at(i))));
        }
    }

    void theLongestSpreadOfTheMostHostsDoesNotOverflow() {
        const auto last = startOffset(19'999, 20'000, 24h);
        QVERIFY(last < 24h && last > 24h - 5s);
    }

    void requestsAreDueByTheTimersOfAHost_data() {
        QTest::addColumn<int>("hosts");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<bool>("hasToken");
        QTest::addColumn<qint64>("due");
        QTest::newRow("one poll") << 1 << 3.0 << false << qint64{1};
        QTest::newRow("a thousand") << 1000 << 30.0 << false << qint64{10'000};
        QTest::newRow("with heartbeats") << 1000 << 90.0 << true << qint64{30'100};
        QTest::newRow("a day of one") << 1 << 86'400.0 << true << qint64{28'896};
        QTest::newRow("no time") << 1000 << 0.0 << true << qint64{0};
    }

    void requestsAreDueByTheTimersOfAHost() {
        QFETCH(const int, hosts);
        QFETCH(const double, seconds);
        QFETCH(const bool, hasToken);
        QFETCH(const qint64, due);
        QCOMPARE(requestsDue(hosts, seconds, hasToken), due);
    }

    void aHeartbeatNeedsASecondDescriptor() {
        const quint64 alone = descriptorsNeeded(1000, false);
        QVERIFY(alone >= 1000 && alone < 1100);
        QCOMPARE(descriptorsNeeded(1000, true), alone + 1000);
    }

    void aPercentileIsOneOfTheSamples_data() {
        QTest::addColumn<int>("last"); // samples are 1, 2, ... up to it
        QTest::addColumn<double>("percent");
        QTest::addColumn<float>("value");
        QTest::newRow("p50 of 1") << 1 << 50.0 << 1.0F;
        QTest::newRow("p99 of 1") << 1 << 99.0 << 1.0F;
        QTest::newRow("p50 of 2") << 2 << 50.0 << 1.0F;
        QTest::newRow("p50 of 3") << 3 << 50.0 << 2.0F;
        QTest::newRow("p90 of 10") << 10 << 90.0 << 9.0F;
        QTest::newRow("p99 of 10") << 10 << 99.0 << 10.0F;
        QTest::newRow("p99 of 100") << 100 << 99.0 << 99.0F;
        QTest::newRow("p99 of 101") << 101 << 99.0 << 100.0F;
        QTest::newRow("p0 of 10") << 10 << 0.0 << 1.0F;
        QTest::newRow("p100 of 10") << 10 << 100.0 << 10.0F;
    }

    void aPercentileIsOneOfTheSamples() {
        QFETCH(const int, last);
        QFETCH(const double, percent);
        QFETCH(const float, value);
        QCOMPARE(percentile(upTo(last), percent), value);
    }

    void samplesNeedNoOrder() {
        Latencies latencies;
        latencies.prepare(3);
        QCOMPARE(latencies.count(), 0U);
        for (const double sample : {9.0, 1.0, 5.0}) {
            latencies.add(sample);
        }
        QVERIFY((latencies.summary() == Latencies::Summary{5, 9, 9, 9}));
        latencies.clear();
        QVERIFY(latencies.summary() == Latencies::Summary());
    }

    void theObjectHasEveryFigure() {
        const auto told = nlohmann::json::parse(asJson(someFigures()), nullptr, false);
        const nlohmann::json expected = {
            {"hosts", 100},
            {"seconds", 30.0},
            {"requestsDue", 1003},
            {"requestsMade", 1000},
            {"requestsPerSecond", 33.333},
            {"failed", 10},
            {"notModified", 900},
            {"latencyMs", {{"p50", 0.25}, {"p90", 0.5}, {"p99", 1.25}, {"max", 2.0}}},
            {"heartbeatLatencyMs", {{"p50", 3.0}, {"p90", 4.0}, {"p99", 5.0}, {"max", 6.0}}},
            {"cpuMsPerPoll", 0.2},
            {"cpuMsPerHostMinute", 4.0},
            {"kibPerHost", 15.0},
            {"heapKibPerHost", 14.0},
            {"bytesSentPerPoll", 140.0},
            {"bytesReceivedPerPoll", 173.0},
            {"connectionsOpened", 200},
            {"connectionsOpen", 101},
        };
        QCOMPARE(told.dump(), expected.dump());
    }

    void theTableHasTheSameFigures() {
        const QByteArray table = QByteArray::fromStdString(asTable(someFigures()));
        for (const char* row :
             {"| hosts | 100 |\n", "| measured | 30.0 s |\n",
              "| requests due / made | 1003 / 1000 |\n", "| requests a second | 33.3 |\n",
              "| replies: whole / not modified / other status / none | 90 / 900 / 7 / 3 |\n",
              "| poll: p50 / p90 / p99 / max | 0.25 / 0.50 / 1.25 / 2.00 ms |\n",
              "| heartbeat: p50 / p90 / p99 / max | 3.00 / 4.00 / 5.00 / 6.00 ms |\n",
              "| CPU a poll | 0.200 ms |\n", "| CPU a host and minute | 4.00 ms |\n",
              "| memory a host: private / of that heap | 15.0 / 14.0 KiB |\n",
              "| a poll: sent / received | 140 / 173 bytes |\n",
              "| connections opened / open at the end | 200 / 101 |\n"}) {
            QVERIFY2(table.contains(row), row);
        }
    }

    void aRunWithoutRequestsCanBeReported() {
        QVERIFY(!nlohmann::json::parse(asJson(Figures()), nullptr, false).is_discarded());
        QVERIFY(!asTable(Figures()).empty());
    }
};

BRIMLET_TEST(TestFleetFigures, QCoreApplication)
#include "tst_figures.moc"
