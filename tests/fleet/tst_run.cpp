#include "tests/placement/serviceprocess.h"
#include "tests/support/emulated.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <nlohmann/json.hpp>

#include <csignal>
#include <map>
#include <optional>

#include <sys/resource.h>

using brimlet::placementtest::ServiceProcess;
using Json = nlohmann::json;

using namespace Qt::StringLiterals;

namespace {

constexpr int kPatience = 30'000; // milliseconds

/// A brimlet-fleet process.
class FleetProcess final {
public:
    /// With `files`, its limit of open files.
    explicit FleetProcess(const QStringList& arguments, std::optional<rlim_t> files = {}) {
        if (files) {
            m_process.setChildProcessModifier([most = *files] {
                const rlimit limit{most, most};
                ::setrlimit(RLIMIT_NOFILE, &limit);
            });
        }
        m_process.start(brimlet::programPath(u"brimlet-fleet"), arguments);
    }
    ~FleetProcess() {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
    FleetProcess(const FleetProcess&) = delete;
    FleetProcess& operator=(const FleetProcess&) = delete;

    /// Waits for the end and returns the exit code, -1 when it does not end.
    [[nodiscard]] int end() {
        const bool isOver = m_process.waitForFinished(kPatience);
        return isOver && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    [[nodiscard]] QByteArray output() { return m_process.readAllStandardOutput(); }
    [[nodiscard]] QByteArray errors() { return m_process.readAllStandardError(); }
    void send(int signal) const { ::kill(static_cast<pid_t>(m_process.processId()), signal); }

private:
    QProcess m_process;
};

QStringList requesting(quint16 port, int hosts, const QStringList& more) {
    return QStringList{u"--hosts"_s,  QString::number(hosts),
                       u"--root"_s,   u"http://127.0.0.1:%1"_s.arg(port),
                       u"--spread"_s, u"1"_s} +
           more;
}

/// A fleet and the service that it uses.
struct Run final {
    explicit Run(int hosts, const QStringList& more, const QByteArray& scenario = {})
        : service(scenario)
        , fleet(requesting(service.port(), hosts, more)) {}

    ServiceProcess service;
    FleetProcess fleet;
};

/// The number of requests for each method and path.
std::map<std::string, int> countByTarget(const QByteArray& log) {
    std::map<std::string, int> counts;
    for (const QByteArray& line : log.split('\n')) {
        const auto entry = Json::parse(line.toStdString(), nullptr, false);
        if (entry.is_object()) {
            ++counts[entry.value("method", "") + " " + entry.value("path", "")];
        }
    }
    return counts;
}

Json readObject(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly)
               ? Json::parse(file.readAll().toStdString(), nullptr, false)
               : Json();
}

} // namespace

/// The whole program, at the pace of real hosts. The runs, which mostly wait, go on side by side.
class TestFleetRun final : public QObject {
    Q_OBJECT

    static constexpr int kHosts = 20;
    const QTemporaryDir m_folder;
    const QString m_file = m_folder.filePath(u"figures"_s);
    std::optional<Run> m_withToken;
    std::optional<Run> m_withoutToken;
    std::optional<Run> m_refused;
    std::optional<Run> m_terminated;
    std::optional<Run> m_interrupted;

private Q_SLOTS:
    void initTestCase() {
        const QStringList threeSeconds{u"--seconds"_s, u"3"_s};
        const QStringList anHour{u"--seconds"_s, u"3600"_s};
        m_withToken.emplace(kHosts, threeSeconds + QStringList{u"--token"_s, u"demo-host-token"_s,
                                                               u"--json"_s, m_file});
        m_withoutToken.emplace(3, threeSeconds);
        m_refused.emplace(2, QStringList{u"--seconds"_s, u"1"_s},
                          R"({"endpoints": {"/api/display": {"status": 503}}})");
        m_terminated.emplace(2, anHour);
        m_interrupted.emplace(2, anHour);
    }
    void cleanupTestCase() {
        for (auto* const run :
             {&m_withToken, &m_withoutToken, &m_refused, &m_terminated, &m_interrupted}) {
            run->reset();
        }
    }

    void twentyHostsSendTheRequestsOfTwentyPrograms() {
        auto& [service, fleet] = *m_withToken;
        QCOMPARE(fleet.end(), 0);
        QCOMPARE(fleet.errors(), QByteArray());
        QVERIFY(fleet.output().contains("| hosts | 20 |"));

        auto asked = countByTarget(service.log());
        QCOMPARE(asked["GET /api/display"], kHosts + 1); // one to warm up
        QCOMPARE(asked["POST /api/host/heartbeat"], kHosts);
        QVERIFY(asked["GET /api/host/me"] >= 2 * kHosts); // before and while it was measured

        const Json figures = readObject(m_file);
        QVERIFY(figures.is_object());
        QCOMPARE(figures.value("hosts", 0), kHosts);
        QCOMPARE(figures.value("failed", -1), 0);
        const int made = figures.value("requestsMade", 0);
        QVERIFY2(made >= kHosts / 2 && made <= 2 * kHosts, QByteArray::number(made).constData());
        QVERIFY(figures.value("bytesSentPerPoll", 0.0) > 50);
        QVERIFY(figures.value("bytesReceivedPerPoll", 0.0) > 50);
        QVERIFY(figures.value("cpuMsPerPoll", 0.0) > 0);
        if (brimlet::emulated() != "computer") { // its free pages are large enough for twenty hosts
            QVERIFY(figures.value("kibPerHost", 0.0) > 0);
        }
        // Each host's own, and one more for its heartbeat.
        QCOMPARE(figures.value("connectionsOpened", 0), 2 * kHosts);
        const Json times = figures.value("latencyMs", Json());
        QVERIFY(times.value("p50", 0.0) > 0);
        QVERIFY(times.value("max", 0.0) >= times.value("p99", 0.0));
        QVERIFY(figures.value("heartbeatLatencyMs", Json()).value("p50", 0.0) > 0);
    }

    void withoutATokenOnlyThePublicDisplayIsRequested() {
        auto& [service, fleet] = *m_withoutToken;
        QCOMPARE(fleet.end(), 0);
        auto asked = countByTarget(service.log());
        QVERIFY(asked["GET /api/display"] >= 2 * 3);
        QCOMPARE(asked.size(), 1U);
    }

    void aServiceThatRefusesEverythingIsAFailure() {
        auto& [service, fleet] = *m_refused;
        QCOMPARE(fleet.end(), 1);
        QCOMPARE(fleet.errors(), "brimlet-fleet: no request succeeded\n");
        QVERIFY(fleet.output().contains("| hosts | 2 |"));
    }

    void aSignalEndsItWithTheFiguresSoFar_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }

    void aSignalEndsItWithTheFiguresSoFar() {
        QFETCH(const int, signal);
        auto& [service, fleet] = signal == SIGTERM ? *m_terminated : *m_interrupted;
        QTRY_VERIFY_WITH_TIMEOUT(countByTarget(service.log())["GET /api/display"] >= 3, kPatience);
        QElapsedTimer timer;
        timer.start();
        fleet.send(signal);
        QCOMPARE(fleet.end(), 0);
        QVERIFY(timer.elapsed() < 5000);
        QVERIFY(fleet.output().contains("| hosts | 2 |"));
    }

    void hostsThatCannotAllHaveAConnectionAreNotStarted() {
        FleetProcess fleet(requesting(1, 100, {u"--token"_s, u"a"_s}), 200);
        QCOMPARE(fleet.end(), 1);
        QCOMPARE(fleet.errors(),
                 "brimlet-fleet: 100 hosts can need 264 open files, and this process "
                 "may have 200 (ulimit -Hn)\n");
        QCOMPARE(fleet.output(), QByteArray());
    }

    void aWrongOptionIsNamedOnOneLine() {
        FleetProcess fleet({u"--hosts"_s, u"none"_s});
        QCOMPARE(fleet.end(), 2);
        QCOMPARE(fleet.errors(),
                 "brimlet-fleet: --hosts must be a number from 1 to 20000, not none "
                 "(--help lists the options)\n");
        FleetProcess unwritable(requesting(1, 1, {u"--json"_s, u"/nowhere/figures"_s}));
        QCOMPARE(unwritable.end(), 2);
        QCOMPARE(unwritable.errors().count('\n'), 1);
    }
};

BRIMLET_TEST(TestFleetRun, QCoreApplication)
#include "tst_run.moc"
