#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/sanitized.h"
#include "tests/support/testprogram.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSaveFile>
#include <QTest>

#include <algorithm>
#include <optional>
#include <vector>

using namespace brimlet;

namespace {

const int kPatience = 20'000 * slowness();
/// Polls are 50 milliseconds apart, timed heartbeats 15 seconds.
constexpr int kSpeed = 60;
const qint64 kSpacing = 3000 / kSpeed * slowness();
const QString kToken = QStringLiteral("demo-host-token");
const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");
const QString kEstimate = QStringLiteral("GET /api/host/me");

/// Changes the wall clock of a running program, with libfaketime.
class WallClock final {
public:
    WallClock() { jumpTo("+0"); }

    /// Empty where libfaketime is not installed.
    [[nodiscard]] static QString library() {
        for (const QString& folder : QDir(QStringLiteral("/usr/lib")).entryList(QDir::Dirs)) {
            const QString path =
                QStringLiteral("/usr/lib/%1/faketime/libfaketime.so.1").arg(folder);
            if (QFile::exists(path)) {
                return path;
            }
        }
        return {};
    }
    [[nodiscard]] EnvironmentChanges environment() const {
        return {{QStringLiteral("LD_PRELOAD"), library()},
                {QStringLiteral("FAKETIME_TIMESTAMP_FILE"), file()},
                {QStringLiteral("FAKETIME_DONT_FAKE_MONOTONIC"), QStringLiteral("1")},
                {QStringLiteral("FAKETIME_NO_CACHE"), QStringLiteral("1")}};
    }
    /// Sets the offset from the real time, e.g. "+400d" or "-10d".
    void jumpTo(const char* offset) const {
        QSaveFile saved(file());
        if (!saved.open(QIODevice::WriteOnly) || saved.write(offset) < 0 || !saved.commit()) {
            qFatal("the clock cannot be set");
        }
    }

private:
    [[nodiscard]] QString file() const { return m_folder.filePath(QStringLiteral("offset")); }

    QTemporaryDir m_folder;
};

qint64 now() {
    return QDateTime::currentMSecsSinceEpoch();
}

/// The arrival times of requests of that kind after a moment, in milliseconds.
std::vector<qint64> arrivals(const PlacementProcess& service, const QString& line, qint64 after) {
    std::vector<qint64> times;
    const QJsonArray requests = service.requests();
    const QStringList lines = service.requestLines();
    for (qsizetype i = 0; i < std::min(requests.size(), lines.size()); ++i) {
        const qint64 time = QDateTime::fromString(
                                requests.at(i).toObject().value(QStringLiteral("time")).toString(),
                                Qt::ISODateWithMs)
                                .toMSecsSinceEpoch();
        if (lines.at(i) == line && time > after) {
            times.push_back(time);
        }
    }
    return times;
}

/// The most that arrived within half a second.
std::size_t mostInHalfASecond(const std::vector<qint64>& times) {
    std::size_t most = 0;
    for (auto first = times.begin(); first != times.end(); ++first) {
        const auto last = std::upper_bound(first, times.end(), *first + 500);
        most = std::max(most, static_cast<std::size_t>(last - first));
    }
    return most;
}

/// The polls of half a second, and two that were under way or late.
const std::size_t kMostInHalfASecond = static_cast<std::size_t>(500 / kSpacing) + 1 + 2;

} // namespace

/// Case 5, a long sleep, and case 7, jumps of the wall clock, for the whole program.
class TestTime final : public QObject {
    Q_OBJECT

    std::optional<PlacementProcess> m_service;

    [[nodiscard]] static QJsonObject at(const QString& root) {
        return {{QStringLiteral("BrimletAPIURL"), root}};
    }
    [[nodiscard]] QJsonObject machine() const {
        return {{QStringLiteral("infoDictionary"), at(m_service->root())},
                {QStringLiteral("secretStore"), QStringLiteral("memory")},
                {QStringLiteral("speed"), kSpeed}};
    }
    /// Saves the token once the program has started, and waits for the heartbeat.
    void saveToken(SimulatorProcess& program) const {
        const qsizetype before = count(kHeartbeat);
        // A first reply with a token would send another heartbeat.
        QTRY_VERIFY_WITH_TIMEOUT(program.statusLine().startsWith(QStringLiteral("Ads on. Add")),
                                 kPatience);
        (void)program.ask("save-token " + kToken.toUtf8());
        QTRY_COMPARE_WITH_TIMEOUT(count(kHeartbeat), before + 1, kPatience);
    }
    [[nodiscard]] qsizetype count(const QString& line) const {
        return m_service->requestLines().count(line);
    }
    /// Checks that about as many polls arrive within the next second as are due.
    void comparePace(const QString& line = kEstimate) {
        const qint64 kWatched = 1000 * slowness();
        const qint64 from = now();
        QTRY_VERIFY_WITH_TIMEOUT(!arrivals(*m_service, line, from + kWatched).empty(), kPatience);
        std::vector<qint64> times = arrivals(*m_service, line, from);
        times.erase(std::remove_if(times.begin(), times.end(),
                                   [&](qint64 time) { return time > from + kWatched; }),
                    times.end());
        // A busy machine delays polls; it never adds any.
        const auto kExpected = static_cast<std::size_t>(kWatched / kSpacing);
        QVERIFY2(times.size() <= kExpected + 2, QByteArray::number(times.size()).constData());
        QVERIFY2(times.size() >= kExpected / 2, QByteArray::number(times.size()).constData());
        QVERIFY(mostInHalfASecond(times) <= kMostInHalfASecond);
    }

private Q_SLOTS:
    void initTestCase() { m_service.emplace(); }

    void aLongSleepIsFollowedByOneHeartbeatAndNoBurst_data() {
        QTest::addColumn<bool>("isClockSet");
        QTest::addColumn<bool>("isReached");
        QTest::newRow("refused at first") << false << false;
        QTest::newRow("rejected at first") << false << true;
        QTest::newRow("eight hours later by the wall clock") << true << true;
    }
    void aLongSleepIsFollowedByOneHeartbeatAndNoBurst() {
        QFETCH(bool, isClockSet);
        QFETCH(bool, isReached);
        if (isClockSet && (kIsSanitized || WallClock::library().isEmpty())) {
            QSKIP("needs libfaketime, and no sanitizer beside it");
        }
        const WallClock clock;
        // Receives the requests while the network is away.
        const PlacementProcess away;
        away.setScenario({{QStringLiteral("endpoints"),
                           QJsonObject{{QStringLiteral("/api/host/me"),
                                        QJsonObject{{QStringLiteral("status"), 503}}},
                                       {QStringLiteral("/api/host/heartbeat"),
                                        QJsonObject{{QStringLiteral("status"), 503}}}}}});
        SimulatorProcess program(machine(),
                                 isClockSet ? clock.environment() : EnvironmentChanges());
        const qsizetype before = count(kHeartbeat);
        saveToken(program);
        program.edit({{QStringLiteral("screensAsleep"), true}});
        QTRY_COMPARE_WITH_TIMEOUT(count(kHeartbeat), before + 2, kPatience);
        program.freeze();
        program.edit({{QStringLiteral("screensAsleep"), false},
                      {QStringLiteral("infoDictionary"),
                       at(isReached ? away.root() : QStringLiteral("http://127.0.0.1:1"))}});
        clock.jumpTo("+8h");
        // Forty ticks are missed.
        QTest::qWait(2000);
        const qint64 wake = now();
        program.thaw();
        // Ten seconds of simulated time would be too short to check, so it is a second.
        if (isReached) {
            QTRY_VERIFY_WITH_TIMEOUT(!arrivals(away, kEstimate, wake + 1000).empty(), kPatience);
            QCOMPARE(away.requestLines().count(kHeartbeat), 1);
            QVERIFY(mostInHalfASecond(arrivals(away, kEstimate, wake)) <= kMostInHalfASecond);
        } else {
            QTRY_COMPARE_WITH_TIMEOUT(program.statusLine(),
                                      QStringLiteral("Heartbeat failed. Will retry."), kPatience);
        }
        const qint64 back = now();
        program.edit({{QStringLiteral("infoDictionary"), at(m_service->root())}});
        QTRY_VERIFY_WITH_TIMEOUT(!arrivals(*m_service, kEstimate, back + 500).empty(), kPatience);
        QVERIFY(mostInHalfASecond(arrivals(*m_service, kEstimate, wake)) <= kMostInHalfASecond);
        comparePace();
        QCOMPARE(count(kHeartbeat), before + 2);
        QVERIFY(program.isPanelShown());
    }

    void aJumpOfTheWallClockMovesThePauseAndNothingElse_data() {
        QTest::addColumn<QByteArray>("offset");
        QTest::addColumn<bool>("isPausedThen");
        QTest::newRow("400 days forward") << QByteArray("+400d") << false;
        QTest::newRow("10 days back") << QByteArray("-10d") << true;
    }
    void aJumpOfTheWallClockMovesThePauseAndNothingElse() {
        QFETCH(QByteArray, offset);
        QFETCH(bool, isPausedThen);
        if (kIsSanitized || WallClock::library().isEmpty()) {
            QSKIP("needs libfaketime, and no sanitizer beside it");
        }
        const WallClock clock;
        SimulatorProcess program(machine(), clock.environment());
        const auto isPaused = [&] {
            return program.state().value(QStringLiteral("isPaused")).toBool();
        };
        const qsizetype before = count(kHeartbeat);
        saveToken(program);
        (void)program.ask("pause");
        QTRY_COMPARE_WITH_TIMEOUT(count(kHeartbeat), before + 2, kPatience);
        QVERIFY(isPaused());
        comparePace();
        const qint64 jump = now();
        clock.jumpTo(offset.constData());
        QTRY_VERIFY_WITH_TIMEOUT(arrivals(*m_service, kEstimate, jump).size() > 5, kPatience);
        comparePace();
        QVERIFY(mostInHalfASecond(arrivals(*m_service, kEstimate, jump)) <= kMostInHalfASecond);
        QCOMPARE(count(kHeartbeat), before + 2);
        QCOMPARE(isPaused(), isPausedThen);
        QTRY_COMPARE_WITH_TIMEOUT(program.isPanelShown(), !isPausedThen, kPatience);
        if (isPausedThen) {
            clock.jumpTo("+400d"); // after the pause's end
            QTRY_VERIFY_WITH_TIMEOUT(!isPaused(), kPatience);
            QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        }
    }
};

BRIMLET_TEST(TestTime, QCoreApplication)
#include "tst_time.moc"
