#include "tests/placement/serviceprocess.h"
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

namespace {

constexpr int kPatience = 30'000; // milliseconds

/// The real program.
class FleetProcess final {
public:
    /// With `files` it may not open more than that.
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

    /// The exit code, -1 when it does not end by itself.
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

QStringList asking(quint16 port, int hosts, const QStringList& more) {
    return QStringList{u"--hosts"_qs,  QString::number(hosts),
                       u"--root"_qs,   u"http://127.0.0.1:%1"_qs.arg(port),
                       u"--spread"_qs, u"1"_qs} +
           more;
}

/// How often each method and path was asked for.
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

/// The whole program, at the pace of real hosts.
class TestFleetRun final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void twentyHostsAskAsTwentyProgramsWould() {
        constexpr int kHosts = 20;
        const ServiceProcess service;
        const QTemporaryDir folder;
        const QString file = folder.filePath(u"figures"_qs);
        FleetProcess fleet(asking(
            service.port(), kHosts,
            {u"--token"_qs, u"demo-host-token"_qs, u"--seconds"_qs, u"3"_qs, u"--json"_qs, file}));
        QCOMPARE(fleet.end(), 0);
        QCOMPARE(fleet.errors(), QByteArray());
        QVERIFY(fleet.output().contains("| hosts | 20 |"));

        auto asked = countByTarget(service.log());
        QCOMPARE(asked["GET /api/display"], kHosts + 1); // one to warm up
        QCOMPARE(asked["POST /api/host/heartbeat"], kHosts);
        QVERIFY(asked["GET /api/host/me"] >= 2 * kHosts); // before and while it was measured

        const Json figures = readObject(file);
        QVERIFY(figures.is_object());
        QCOMPARE(figures.value("hosts", 0), kHosts);
        QCOMPARE(figures.value("failed", -1), 0);
        const int made = figures.value("requestsMade", 0);
        QVERIFY2(made >= kHosts / 2 && made <= 2 * kHosts, QByteArray::number(made).constData());
        QVERIFY(figures.value("bytesSentPerPoll", 0.0) > 50);
        QVERIFY(figures.value("bytesReceivedPerPoll", 0.0) > 50);
        QVERIFY(figures.value("cpuMsPerPoll", 0.0) > 0);
        QVERIFY(figures.value("kibPerHost", 0.0) > 0);
        // Each host's own, and one more for its heartbeat.
        QCOMPARE(figures.value("connectionsOpened", 0), 2 * kHosts);
        const Json times = figures.value("latencyMs", Json());
        QVERIFY(times.value("p50", 0.0) > 0);
        QVERIFY(times.value("max", 0.0) >= times.value("p99", 0.0));
        QVERIFY(figures.value("heartbeatLatencyMs", Json()).value("p50", 0.0) > 0);
    }

    void withoutATokenOnlyThePublicDisplayIsAskedFor() {
        const ServiceProcess service;
        FleetProcess fleet(asking(service.port(), 3, {u"--seconds"_qs, u"3"_qs}));
        QCOMPARE(fleet.end(), 0);
        auto asked = countByTarget(service.log());
        QVERIFY(asked["GET /api/display"] >= 2 * 3);
        QCOMPARE(asked.size(), 1U);
    }

    void aServiceThatRefusesEverythingIsAFailure() {
        const ServiceProcess service(R"({"endpoints": {"/api/display": {"status": 503}}})");
        FleetProcess fleet(asking(service.port(), 2, {u"--seconds"_qs, u"1"_qs}));
        QCOMPARE(fleet.end(), 1);
        QCOMPARE(fleet.errors(), "brimlet-fleet: no request succeeded\n");
        QVERIFY(fleet.output().contains("| hosts | 2 |"));
    }

    void aSignalEndsItAtOnceWithWhatWasSeen_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }

    void aSignalEndsItAtOnceWithWhatWasSeen() {
        QFETCH(const int, signal);
        const ServiceProcess service;
        FleetProcess fleet(asking(service.port(), 2, {u"--seconds"_qs, u"3600"_qs}));
        QTRY_VERIFY_WITH_TIMEOUT(countByTarget(service.log())["GET /api/display"] >= 3, kPatience);
        QElapsedTimer timer;
        timer.start();
        fleet.send(signal);
        QCOMPARE(fleet.end(), 0);
        QVERIFY(timer.elapsed() < 5000);
        QVERIFY(fleet.output().contains("| hosts | 2 |"));
    }

    void hostsThatCannotAllHaveAConnectionAreNotStarted() {
        FleetProcess fleet(asking(1, 100, {u"--token"_qs, u"a"_qs}), 200);
        QCOMPARE(fleet.end(), 1);
        QCOMPARE(fleet.errors(),
                 "brimlet-fleet: 100 hosts can need 264 open files, and this process "
                 "may have 200 (ulimit -Hn)\n");
        QCOMPARE(fleet.output(), QByteArray());
    }

    void aWrongOptionIsNamedOnOneLine() {
        FleetProcess fleet({u"--hosts"_qs, u"none"_qs});
        QCOMPARE(fleet.end(), 2);
        QCOMPARE(fleet.errors(),
                 "brimlet-fleet: --hosts must be a number from 1 to 20000, not none "
                 "(--help lists the options)\n");
        FleetProcess unwritable(asking(1, 1, {u"--json"_qs, u"/nowhere/figures"_qs}));
        QCOMPARE(unwritable.end(), 2);
        QCOMPARE(unwritable.errors().count('\n'), 1);
    }
};

BRIMLET_TEST(TestFleetRun, QCoreApplication)
#include "tst_run.moc"
