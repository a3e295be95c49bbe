#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/processfacts.h"
#include "tests/support/sanitized.h"
#include "tests/support/sessionfolders.h"
#include "tests/support/stubbus.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <QUuid>

#include <array>
#include <csignal>
#include <optional>

using namespace brimlet;

Q_DECLARE_METATYPE(std::optional<brimlet::StubBus::Kind>)

namespace {

const int kPatience = 20'000 * slowness();
/// The longest time from the start of the process to its first answer, in milliseconds.
const qint64 kStart = slowness() * (kIsSanitized ? 4000 : 2000);
/// The longest time from SIGTERM to the end, in milliseconds.
constexpr qint64 kEnd = kIsSanitized ? 3000 : 1000;

const QString kSession = QStringLiteral("DBUS_SESSION_BUS_ADDRESS");
const QString kSystem = QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS");
const QString kDisplay = QStringLiteral("GET /api/display");
const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");

/// A process with a faulty secret service.
class FaultySecretService final {
public:
    explicit FaultySecretService(const QString& kind) {
        m_process.start(sourcePath(u"tests/support/session/secret-service"), {kind});
        m_process.waitForReadyRead(kPatience);
    }
    ~FaultySecretService() {
        m_process.kill();
        m_process.waitForFinished();
    }
    FaultySecretService(const FaultySecretService&) = delete;
    FaultySecretService& operator=(const FaultySecretService&) = delete;

    [[nodiscard]] bool isOver() {
        m_process.waitForFinished(0);
        return m_process.state() == QProcess::NotRunning;
    }
    [[nodiscard]] QByteArray output() {
        m_process.waitForReadyRead(0);
        m_output += m_process.readAllStandardOutput();
        return m_output;
    }

private:
    QProcess m_process;
    QByteArray m_output;
};

QString keyring() {
    return qEnvironmentVariable("BRIMLET_SESSION_KEYRING", QStringLiteral("unlocked"));
}

} // namespace

/// Case 34, the program without an answering bus or keyring, and case 35, the search for the token.
class TestSecrets final : public QObject {
    Q_OBJECT

    std::optional<QTemporaryDir> m_folder;
    std::optional<PlacementProcess> m_service;
    const QString m_canary = QUuid::createUuid().toString(QUuid::WithoutBraces);

    [[nodiscard]] QJsonObject machine(int speed = 1) const {
        return {{QStringLiteral("infoDictionary"),
                 QJsonObject{{QStringLiteral("BrimletAPIURL"), m_service->root()}}},
                {QStringLiteral("secretStore"), QStringLiteral("system")},
                {QStringLiteral("speed"), speed}};
    }
    [[nodiscard]] qsizetype count(const QString& request) const {
        return m_service->requestLines().count(request);
    }
    void compareTokenIsNowhere() const {
        QCOMPARE(filesHolding(m_canary).join(u'\n'), QString());
        QCOMPARE(processfacts::processesKnowing(m_canary.toUtf8()).join(u'\n'), QString());
    }
    /// Checks that a start, saving a token and the end do not wait for a service that does not
    /// answer.
    void runOnce(const EnvironmentChanges& environment) {
        const qsizetype displays = count(kDisplay);
        const qsizetype heartbeats = count(kHeartbeat);
        QElapsedTimer time;
        time.start();
        SimulatorProcess program(machine(), environment);
        const QJsonObject state = program.state();
        const qint64 start = time.elapsed();
        QCOMPARE(state.value(QStringLiteral("hasToken")).toBool(true), false);
        QTRY_VERIFY_WITH_TIMEOUT(count(kDisplay) > displays, kPatience);
        qInfo("first answer after %lld ms", static_cast<long long>(start));
        QVERIFY2(start < kStart, QByteArray::number(start).constData());
        time.restart();
        (void)program.ask("save-token " + m_canary.toUtf8());
        QCOMPARE(program.state().value(QStringLiteral("hasToken")).toBool(), true);
        QVERIFY2(time.elapsed() < 500 * slowness(), QByteArray::number(time.elapsed()).constData());
        QTRY_VERIFY_WITH_TIMEOUT(count(kHeartbeat) > heartbeats, kPatience);
        compareTokenIsNowhere();
        time.restart();
        QCOMPARE(program.endBySignal(SIGTERM), 0); // waits for the token to be saved
        QVERIFY2(time.elapsed() < kEnd * slowness(),
                 QByteArray::number(time.elapsed()).constData());
        QCOMPARE(program.complaints(), QByteArray());
        compareTokenIsNowhere();
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(qEnvironmentVariable("HOME").contains(u"/brimlet-session."),
                 "this test needs script/desktop-session");
        m_folder.emplace();
        m_service.emplace();
        QDir(m_folder->path()).mkdir(QStringLiteral("temporary"));
        qputenv("TMPDIR", QFile::encodeName(m_folder->filePath(QStringLiteral("temporary"))));
        m_service->setScenario({{QStringLiteral("tokens"), QJsonArray{m_canary}}});
        // A first run loads programs and files into the page cache.
        (void)SimulatorProcess(machine(), {{kSession, QStringLiteral("unix:path=/nowhere/bus")}})
            .state();
    }

    void theSessionsKeyringDelaysNothing() {
        if (keyring() == u"unlocked") {
            QSKIP("this keyring answers: see the other variants");
        }
        runOnce({});
    }

    void aFaultySecretServiceDelaysNothing_data() {
        QTest::addColumn<QString>("kind");
        for (const char* const kind : {"silent", "dying", "dismissing"}) {
            QTest::newRow(kind) << QString::fromLatin1(kind);
        }
    }
    void aFaultySecretServiceDelaysNothing() {
        QFETCH(QString, kind);
        if (keyring() != u"none") {
            QSKIP("a real keyring has the name: see the variant without one");
        }
        FaultySecretService secrets(kind);
        runOnce({});
        QCOMPARE(secrets.isOver(), kind == u"dying");
        QCOMPARE(secrets.output().contains("dismissed\n"), kind == u"dismissing");
    }

    void aBusThatDoesNotAnswerDelaysNothing_data() {
        QTest::addColumn<QString>("variable");
        QTest::addColumn<std::optional<StubBus::Kind>>("kind");
        using Kind = StubBus::Kind;
        const std::array kinds{
            std::pair{"none", std::optional<Kind>()},
            std::pair{"nobody listens", std::optional(Kind::Nobody)},
            std::pair{"lets nobody in", std::optional(Kind::Full)},
            std::pair{"lets in and says nothing", std::optional(Kind::Silent)},
            std::pair{"falls silent after the greeting", std::optional(Kind::Mute)},
            std::pair{"closes at once", std::optional(Kind::ClosesAtOnce)},
            std::pair{"closes after the greeting", std::optional(Kind::ClosesLater)},
        };
        for (const auto& [name, kind] : kinds) {
            QTest::addRow("session bus: %s", name) << kSession << kind;
            QTest::addRow("system bus: %s", name) << kSystem << kind;
        }
    }
    void aBusThatDoesNotAnswerDelaysNothing() {
        QFETCH(QString, variable);
        QFETCH(std::optional<StubBus::Kind>, kind);
        if (keyring() != u"none") {
            QSKIP("buses are tried where there is no secret to be found");
        }
        std::optional<StubBus> bus;
        if (kind) {
            bus.emplace(*kind);
        }
        runOnce({{variable, bus ? bus->address() : QStringLiteral("unix:path=/nowhere/bus")}});
    }

    void withoutBusAddressesItRuns() {
        if (keyring() != u"none") {
            QSKIP("buses are tried where there is no secret to be found");
        }
        runOnce(
            {{kSession, {}}, {kSystem, {}}, {QStringLiteral("XDG_RUNTIME_DIR"), m_folder->path()}});
    }

    void aSecondStartAndQuitWorkWithoutABus() {
        if (keyring() != u"none") {
            QSKIP("buses are tried where there is no secret to be found");
        }
        const StubBus bus(StubBus::Kind::Silent);
        SimulatorProcess program(machine(), {{kSession, bus.address()}});
        QCOMPARE(program.state().value(QStringLiteral("isMenuOpen")).toBool(true), false);
        const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
        QElapsedTimer time;
        time.start();
        const int second = program.startAgain();
        QProcess quit;
        quit.start(programPath(u"brimlet"), {QStringLiteral("--quit")});
        const bool isOver = quit.waitForFinished(kPatience);
        const qint64 taken = time.elapsed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", before);
        QCOMPARE(second, 0);
        QVERIFY(isOver);
        QCOMPARE(quit.exitCode(), 1); // brimlet itself does not run
        QVERIFY2(taken < 2 * kStart, QByteArray::number(taken).constData());
        QTRY_VERIFY_WITH_TIMEOUT(program.state().value(QStringLiteral("isMenuOpen")).toBool(),
                                 kPatience);
    }

    void aSavedTokenIsFoundNowhere() {
        if (keyring() != u"unlocked") {
            QSKIP("there is no keyring that keeps it");
        }
        const PlacementProcess other;
        const auto everywhere = [](const QJsonObject& change) {
            QJsonObject endpoints;
            for (const char* const path :
                 {"/api/display", "/api/host/heartbeat", "/api/host/me", "/api/host/agree"}) {
                endpoints.insert(QString::fromLatin1(path), change);
            }
            return endpoints;
        };
        constexpr int kSpeed = 100;
        {
            SimulatorProcess program(machine(kSpeed));
            (void)program.ask("save-token " + m_canary.toUtf8());
            (void)program.ask("agree");
            QTRY_VERIFY_WITH_TIMEOUT(
                program.statusLine().startsWith(QStringLiteral("Ads on. This week")), kPatience);
            const QJsonObject toOther{
                {QStringLiteral("status"), 302},
                {QStringLiteral("headers"),
                 QJsonObject{
                     {QStringLiteral("Location"), other.root() + QStringLiteral("/api/host/me")}}}};
            for (const QJsonObject& change :
                 {toOther, QJsonObject{{QStringLiteral("status"), 401}},
                  QJsonObject{{QStringLiteral("fault"), QStringLiteral("cut")}},
                  QJsonObject{{QStringLiteral("fault"), QStringLiteral("garbage")}}}) {
                const qsizetype before = m_service->requests().size();
                m_service->setScenario({{QStringLiteral("tokens"), QJsonArray{m_canary}},
                                        {QStringLiteral("endpoints"), everywhere(change)}});
                QTRY_VERIFY_WITH_TIMEOUT(m_service->requests().size() > before + 10, kPatience);
            }
            compareTokenIsNowhere();
            QVERIFY(!program.answers().contains(m_canary.toUtf8()));
            QCOMPARE(program.complaints(), QByteArray());
            program.kill();
        }
        QVERIFY(other.requests().isEmpty());
        m_service->setScenario({{QStringLiteral("tokens"), QJsonArray{m_canary}}});
        SimulatorProcess program(machine(kSpeed));
        QCOMPARE(program.state().value(QStringLiteral("hasToken")).toBool(), true);
        (void)program.ask("pause");
        (void)program.ask("open");
        QTRY_VERIFY_WITH_TIMEOUT(program.state().value(QStringLiteral("isMenuOpen")).toBool(),
                                 kPatience);
        compareTokenIsNowhere();
        QCOMPARE(program.endBySignal(SIGTERM), 0);
        QVERIFY(!program.answers().contains(m_canary.toUtf8()));
        QCOMPARE(program.complaints(), QByteArray());
        compareTokenIsNowhere();
    }
};

BRIMLET_TEST(TestSecrets, QCoreApplication)
#include "tst_secrets.moc"
