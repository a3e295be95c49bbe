#include "tests/app/privacydocument.h"
#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/processfacts.h"
#include "tests/support/sanitized.h"
#include "tests/support/sessionfolders.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUuid>

#include <algorithm>
#include <csignal>
#include <optional>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
/// A poll every 20 milliseconds, a heartbeat every 6 seconds.
constexpr int kSpeed = 150;
// In points of the 14-inch machine's screen, whose panel begins at 542.
constexpr QPoint kLeftCapsule(542 + 8 + 54, 13);
const QString kDisplay = QStringLiteral("GET /api/display");
const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");
const QString kEstimate = QStringLiteral("GET /api/host/me");
const QString kAgreement = QStringLiteral("POST /api/host/agree");
const QString kLeftPicture = QStringLiteral("/assets/quiet-bicycle.png");
const QString kRightPicture = QStringLiteral("/assets/palindrome-tea.png");
// Product and simulator use lock files of different names.
const QString kLock = QStringLiteral("app.brimlet.host.lock");
const QString kSimulatorsLock = QStringLiteral("app.brimlet.host.Simulator.lock");
const QString kCreatives = QStringLiteral("$XDG_CACHE_HOME/Brimlet/creatives");

QString textOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// A list as a failed comparison should print it.
QString lines(const QStringList& list) {
    return list.join(u'\n');
}

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.waitForFinished();
    return process.readAll();
}

/// The attributes of every secret item of that service, each "name=value".
QSet<QString> secretAttributes() {
    const QString found = QString::fromUtf8(
        outputOf(QStringLiteral("secret-tool"),
                 {QStringLiteral("search"), QStringLiteral("--all"), QStringLiteral("service"),
                  QStringLiteral("app.brimlet.host")}));
    QSet<QString> attributes;
    for (const QString& line : found.split(u'\n')) {
        const QString name = line.section(QStringLiteral(" = "), 0, 0);
        const QString value = line.section(QStringLiteral(" = "), 1);
        if (name == u"schema") {
            attributes << QStringLiteral("xdg:schema=") + value;
        } else if (name.startsWith(QStringLiteral("attribute."))) {
            attributes << name.section(u'.', 1) + u'=' + value;
        }
    }
    return attributes;
}

QJsonObject creative(const char* slot, const char* name) {
    const QString brand = QString::fromLatin1(name);
    return {{QStringLiteral("slotId"), QString::fromLatin1(slot)},
            {QStringLiteral("brandName"), brand},
            {QStringLiteral("assetUrl"), QStringLiteral("/assets/%1.png").arg(brand)},
            {QStringLiteral("brandUrl"), QStringLiteral("/brands/%1").arg(brand)}};
}

/// Polls the console until a key of the state has that value.
bool becomes(SimulatorProcess& program, const char* key, bool value) {
    return QTest::qWaitFor(
        [&] { return program.state().value(QString::fromLatin1(key)).toBool() == value; },
        kPatience);
}

} // namespace

/// Compares PRIVACY.md with what the real program does in several runs, in a desktop with a real
/// secret service, file system and HTTP service.
class TestPrivacy final : public QObject {
    Q_OBJECT

    XServer m_x;
    std::optional<QTemporaryDir> m_folder;
    std::optional<PlacementProcess> m_service;
    QTimer m_watch;
    QString m_text;
    PrivacyDocument m_document;
    const QString m_token = QUuid::createUuid().toString(QUuid::WithoutBraces);

    // What the runs showed.
    SeenTraffic m_seen;
    qsizetype m_samples = 0;
    QSet<QString> m_peers;
    QSet<QString> m_writtenFiles; ///< Including those that existed only for a moment.
    QMap<QString, QString> m_keptBefore;
    QStringList m_files;
    QSet<QString> m_attributes;
    QSet<QString> m_attributesAfter;
    QStringList m_processesKnowingTheToken;
    QStringList m_filesHoldingTheToken;
    bool m_hasEndedOrderly = true;

    [[nodiscard]] QString openedFile() const {
        return m_folder->filePath(QStringLiteral("opened"));
    }
    [[nodiscard]] QString authority() const { return m_service->root().section(u'/', 2); }
    [[nodiscard]] qsizetype count(const QString& request) const {
        return m_service->requestLines().count(request);
    }
    void say(const QStringList& sides) {
        QJsonArray creatives;
        for (const QString& slot : sides) {
            creatives << (slot == u"left" ? creative("left", "quiet-bicycle")
                                          : creative("right", "palindrome-tea"));
        }
        m_service->setScenario({{QStringLiteral("tokens"), QJsonArray{m_token}},
                                {QStringLiteral("creatives"), creatives}});
    }
    [[nodiscard]] QJsonObject machine() const {
        return {{QStringLiteral("infoDictionary"),
                 QJsonObject{{QStringLiteral("BrimletAPIURL"), m_service->root()}}},
                {QStringLiteral("secretStore"), QStringLiteral("system")},
                {QStringLiteral("speed"), kSpeed}};
    }
    /// Records the program's current connections and the files it has open for writing.
    void sample() {
        const qint64 program = processfacts::childOf(QStringLiteral("brimlet-simulator"));
        if (program > 0) {
            ++m_samples;
            m_peers += processfacts::peers(program);
            for (const QString& path : processfacts::filesBeingWritten(program)) {
                const QString file = named(path);
                if (kIsSanitized && file.startsWith(u"$TMPDIR/tsan.")) {
                    continue; // the thread sanitizer's own, at the start
                }
                // A temporary file has no name until it is renamed.
                if (!file.startsWith(kCreatives + QStringLiteral("/#")) ||
                    !file.endsWith(QStringLiteral(" (deleted)"))) {
                    m_writtenFiles << file;
                }
            }
        }
    }
    void searchForTheToken() {
        m_processesKnowingTheToken += processfacts::processesKnowing(m_token.toUtf8());
        m_filesHoldingTheToken += filesHolding(m_token);
    }
    void end(SimulatorProcess& program) {
        m_hasEndedOrderly = program.endBySignal(SIGTERM) == 0 && m_hasEndedOrderly;
    }

    /// Without a token: the public placement, two pictures, a click.
    void watchAds() {
        say({QStringLiteral("left")});
        SimulatorProcess program(machine());
        QTRY_VERIFY_WITH_TIMEOUT(
            m_service->requestLines().contains(QStringLiteral("GET ") + kLeftPicture), kPatience);
        const QString creatives = unnamed(kCreatives);
        QTRY_COMPARE_WITH_TIMEOUT(QDir(creatives).entryList(QDir::Files).size(), 1, kPatience);
        const FolderWatch watch(creatives);
        say({QStringLiteral("left"), QStringLiteral("right")});
        QTRY_COMPARE_WITH_TIMEOUT(QDir(creatives).entryList(QDir::Files).size(), 2, kPatience);
        for (const QString& name : watch.names()) {
            m_writtenFiles << kCreatives + u'/' + name;
        }
        QTRY_VERIFY_WITH_TIMEOUT(m_x.pixel({555, 13}).lightness() < 40, kPatience);
        QProcess::execute(QStringLiteral("xdotool"),
                          {QStringLiteral("mousemove"), QString::number(kLeftCapsule.x()),
                           QString::number(kLeftCapsule.y()), QStringLiteral("click"),
                           QStringLiteral("1")});
        QTRY_VERIFY_WITH_TIMEOUT(!textOf(openedFile()).isEmpty(), kPatience);
        end(program);
    }
    /// A token is saved, the agreement signed; the screens sleep and wake, the copy moves.
    void join() {
        SimulatorProcess program(machine());
        QVERIFY(becomes(program, "adsVisible", true));
        (void)program.ask("save-token " + m_token.toUtf8());
        QTRY_VERIFY_WITH_TIMEOUT(count(kEstimate) > 0, kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(!secretAttributes().isEmpty(), kPatience);
        m_attributes = secretAttributes();
        searchForTheToken();
        (void)program.ask("agree");
        QTRY_VERIFY_WITH_TIMEOUT(count(kAgreement) == 1, kPatience);
        program.edit({{QStringLiteral("bundlePath"), QStringLiteral("/home/somebody/Brimlet")},
                      {QStringLiteral("screensAsleep"), true}});
        QVERIFY(becomes(program, "screenAsleep", true));
        program.edit({{QStringLiteral("screensAsleep"), false}});
        QVERIFY(becomes(program, "screenAsleep", false));
        // One for the token, one for the sleep, one for the waking, and one by the clock alone.
        QTRY_VERIFY_WITH_TIMEOUT(count(kHeartbeat) >= 4, kPatience);
        (void)program.ask("quit");
        searchForTheToken();
    }
    /// The token is found again, the host pauses and then leaves.
    void leave() {
        const qsizetype heartbeats = count(kHeartbeat);
        SimulatorProcess program(machine());
        QTRY_VERIFY_WITH_TIMEOUT(count(kHeartbeat) > heartbeats, kPatience);
        (void)program.ask("pause");
        QTRY_VERIFY_WITH_TIMEOUT(count(kHeartbeat) > heartbeats + 1, kPatience);
        searchForTheToken();
        (void)program.ask("save-token  ");
        QTRY_VERIFY_WITH_TIMEOUT(secretAttributes().isEmpty(), kPatience);
        const qsizetype displays = count(kDisplay);
        QTRY_VERIFY_WITH_TIMEOUT(count(kDisplay) > displays + 3, kPatience);
        end(program);
    }
    /// No bus, so no secret store either.
    void startWithoutABus() {
        const QByteArray bus = qgetenv("DBUS_SESSION_BUS_ADDRESS");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        const qsizetype displays = count(kDisplay);
        SimulatorProcess program(machine());
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus);
        QTRY_VERIFY_WITH_TIMEOUT(count(kDisplay) > displays + 3, kPatience);
        // The machine file is written by the test.
        for (const QString& path : newlyKept()) {
            if (!path.startsWith(u"$TMPDIR/")) {
                m_writtenFiles << path;
            }
        }
        end(program);
    }
    /// What was created or changed since before the first run.
    [[nodiscard]] QStringList newlyKept() const {
        QStringList paths;
        const QMap<QString, QString> now = kept();
        for (auto entry = now.begin(); entry != now.end(); ++entry) {
            if (m_keptBefore.value(entry.key()) != entry.value()) {
                paths << entry.key();
            }
        }
        return withoutParents(paths);
    }
    /// Without the folders of other entries.
    [[nodiscard]] static QStringList withoutParents(const QStringList& paths) {
        QStringList leaves;
        for (const QString& path : paths) {
            if (std::none_of(paths.cbegin(), paths.cend(), [&path](const QString& other) {
                    return other.startsWith(path + u'/');
                })) {
                leaves << path;
            }
        }
        return leaves;
    }
    /// All differences between a document and the runs.
    [[nodiscard]] QStringList differences(const PrivacyDocument& document) const {
        return deviations(document, m_seen) + fileDeviations(document, m_files) +
               attributeDeviations(document, m_attributes);
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_x.isConnected() && qEnvironmentVariable("HOME").contains(u"/brimlet-session."),
                 "this test needs script/desktop-session, and removes what it finds");
        m_folder.emplace();
        m_service.emplace();
        QDir(m_folder->path()).mkdir(QStringLiteral("temporary"));
        qputenv("TMPDIR", QFile::encodeName(m_folder->filePath(QStringLiteral("temporary"))));
        m_text = textOf(sourcePath(u"PRIVACY.md"));
        m_document = readPrivacyDocument(m_text);
        QCOMPARE(QProcess::execute(sourcePath(u"tests/support/session/recording-browser"),
                                   {openedFile()}),
                 0);
        m_keptBefore = kept();
        connect(&m_watch, &QTimer::timeout, this, &TestPrivacy::sample);
        m_watch.start(25);
        for (const auto phase : {&TestPrivacy::watchAds, &TestPrivacy::join, &TestPrivacy::leave,
                                 &TestPrivacy::startWithoutABus}) {
            (this->*phase)();
            if (QTest::currentTestFailed()) {
                return;
            }
        }
        m_watch.stop();
        m_files = newlyKept() + m_writtenFiles.values();
        m_files.replaceInStrings(kSimulatorsLock, kLock);
        m_attributesAfter = secretAttributes();
        m_filesHoldingTheToken += filesHolding(m_token);
        m_seen = {m_service->requests(), authority(), {kLeftPicture, kRightPicture}};
    }

    void theDocumentHasItsTables() {
        QCOMPARE(m_document.keys(),
                 (QStringList{QStringLiteral("attribute"), QStringLiteral("field"),
                              QStringLiteral("file"), QStringLiteral("header"),
                              QStringLiteral("request")}));
    }

    void theRequestsAreExactlyTheDocumentedOnes() {
        QCOMPARE(lines(deviations(m_document, m_seen)), QString());
    }

    void theFilesAreExactlyTheDocumentedOnes() {
        QCOMPARE(lines(fileDeviations(m_document, m_files)), QString());
    }

    void theSecretItemIsExactlyTheDocumentedOne() {
        QCOMPARE(lines(attributeDeviations(m_document, m_attributes)), QString());
        QCOMPARE(m_attributesAfter, QSet<QString>());
    }

    void theOnlyConnectionsAreToTheService() {
        QVERIFY(m_samples >= 20);
        QCOMPARE(m_peers, QSet<QString>{authority()});
    }

    void theTokenIsInNoFileCommandLineOrEnvironment() {
        QCOMPARE(lines(m_filesHoldingTheToken), QString());
        QCOMPARE(lines(m_processesKnowingTheToken), QString());
    }

    void theSearchForTheTokenFindsOne() {
        QFile file(m_folder->filePath(QStringLiteral("temporary/token")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(m_token.toUtf8()) > 0);
        file.close();
        QCOMPARE(filesHolding(m_token), QStringList{file.fileName()});
        QVERIFY(file.remove());
        QProcess other;
        other.start(QStringLiteral("sleep"), {QStringLiteral("60"), QStringLiteral("0")});
        QVERIFY(other.waitForStarted());
        const QByteArray arguments("sleep\00060\0000\0", 11);
        QTRY_VERIFY_WITH_TIMEOUT(processfacts::processesKnowing(arguments).contains(
                                     QStringLiteral("/proc/%1/cmdline").arg(other.processId())),
                                 kPatience);
        other.kill();
        QVERIFY(other.waitForFinished());
    }

    void aClickOpensTheBrandsAddressOnly() {
        QCOMPARE(textOf(openedFile()),
                 m_service->root() + QStringLiteral("/brands/quiet-bicycle\n"));
    }

    void everyRunEndsWithExitCodeZero() { QVERIFY(m_hasEndedOrderly); }

    void aMissingRowIsReported() {
        QCOMPARE(lines(differences(m_document)), QString());
        for (const QString& table : m_document.keys()) {
            for (qsizetype row = 0; row < m_document.value(table).size(); ++row) {
                PrivacyDocument document = m_document;
                const QStringList cells = document[table].takeAt(row).values();
                QVERIFY2(!differences(document).isEmpty(), qPrintable(cells.join(u'|')));
            }
        }
    }

    void anExtraRowIsReported_data() {
        QTest::addColumn<QString>("row");
        QTest::newRow("request") << QStringLiteral(
            "| request | method and address | body | credential |\n"
            "| news | `GET` `/api/news` | `none` | `none` |");
        QTest::newRow("header") << QStringLiteral("| header | value | in requests |\n"
                                                  "| Accept | `*/*` | picture |");
        QTest::newRow("field") << QStringLiteral("| field | values | in requests |\n"
                                                 "| paused | `null` | heartbeat |");
        QTest::newRow("file") << QStringLiteral("| file | when |\n"
                                                "| `$XDG_CONFIG_HOME/brimlet.conf` | always |");
        QTest::newRow("attribute") << QStringLiteral("| attribute | value |\n"
                                                     "| user | `somebody` |");
    }
    void anExtraRowIsReported() {
        QFETCH(QString, row);
        const PrivacyDocument more = readPrivacyDocument(row);
        PrivacyDocument document = m_document;
        document[more.firstKey()] += more.first();
        QVERIFY(!differences(document).isEmpty());
    }

    void anythingElseInARequestIsReported_data() {
        QTest::addColumn<QString>("request");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QJsonValue>("value");
        const auto header = [](const char* name, const char* value) {
            return QJsonValue(QJsonObject{{QString::fromLatin1(name), QString::fromLatin1(value)}});
        };
        const auto token = [](const char* scheme, const char* known) {
            return QJsonValue(QJsonObject{{QStringLiteral("scheme"), QString::fromLatin1(scheme)},
                                          {QStringLiteral("token"), QString::fromLatin1(known)}});
        };
        const QString picture = QStringLiteral("GET ") + kLeftPicture;
        const QString headers = QStringLiteral("headers");
        const QString authorization = QStringLiteral("authorization");
        const QString body = QStringLiteral("body");
        QTest::newRow("a cookie") << kDisplay << headers << header("cookie", "a=b");
        QTest::newRow("a language") << picture << headers << header("accept-language", "eo");
        QTest::newRow("a version") << kDisplay << headers << header("user-agent", "Brimlet/0.1.1");
        QTest::newRow("another host") << kDisplay << headers << header("host", "elsewhere.test");
        QTest::newRow("another kind")
            << kHeartbeat << headers << header("content-type", "text/plain");
        QTest::newRow("another length") << kHeartbeat << headers << header("content-length", "1");
        QTest::newRow("a token in public") << kDisplay << authorization << token("Bearer", "known");
        QTest::newRow("a token for a picture")
            << picture << authorization << token("Bearer", "known");
        QTest::newRow("no token") << kEstimate << authorization << QJsonValue();
        QTest::newRow("another token") << kEstimate << authorization << token("Bearer", "unknown");
        QTest::newRow("a password") << kEstimate << authorization << token("other", "unknown");
        QTest::newRow("a body") << kDisplay << body << QJsonValue(QStringLiteral("{}"));
        QTest::newRow("no JSON") << kAgreement << body << QJsonValue(QStringLiteral("yes"));
        QTest::newRow("a list") << kAgreement << body << QJsonValue(QStringLiteral("[]"));
        QTest::newRow("a field") << kAgreement << body
                                 << QJsonValue(QStringLiteral("{\"name\":\"somebody\"}"));
        QTest::newRow("a measure")
            << kHeartbeat << body << QJsonValue(QStringLiteral("{\"wakeMinutes\":3}"));
        QTest::newRow("no fields") << kHeartbeat << body << QJsonValue(QStringLiteral("{}"));
        QTest::newRow("a question")
            << kDisplay << QStringLiteral("query") << QJsonValue(QStringLiteral("id=1"));
        QTest::newRow("another picture")
            << picture << QStringLiteral("path") << QJsonValue(QStringLiteral("/assets/a.png"));
        QTest::newRow("another method")
            << kDisplay << QStringLiteral("method") << QJsonValue(QStringLiteral("HEAD"));
    }
    void anythingElseInARequestIsReported() {
        QFETCH(QString, request);
        QFETCH(QString, key);
        QFETCH(QJsonValue, value);
        const qsizetype index = m_service->requestLines().indexOf(request);
        QVERIFY(index >= 0);
        QJsonObject changed = m_seen.requests.at(index).toObject();
        if (key == u"headers") { // one more, or another in its place
            QJsonObject headers = changed.value(key).toObject();
            const QJsonObject more = value.toObject();
            headers.insert(more.begin().key(), more.begin().value());
            changed.insert(key, headers);
        } else {
            changed.insert(key, value);
        }
        SeenTraffic seen = m_seen;
        seen.requests.append(changed);
        QVERIFY(!deviations(m_document, seen).isEmpty());
    }

    void anotherFileIsReported() {
        for (const char* path : {"$XDG_CACHE_HOME/Brimlet/creatives/1.png", "$HOME/.brimlet",
                                 "$XDG_CACHE_HOME/Brimlet/creatives/1.abcdef.bak",
                                 "$XDG_RUNTIME_DIR/brimlet.pid", "/etc/brimlet"}) {
            const QStringList more = m_files + QStringList{QString::fromLatin1(path)};
            QVERIFY2(!fileDeviations(m_document, more).isEmpty(), path);
        }
    }

    void theDocumentsCommandsRemoveEverything() {
        QCOMPARE(outputOf(QStringLiteral("sh"),
                          {QStringLiteral("-c"),
                           QStringLiteral("printf token | secret-tool store --label=test service "
                                          "app.brimlet.host account host-token")}),
                 QByteArray());
        QVERIFY(!secretAttributes().isEmpty());
        QVERIFY(!newlyKept().isEmpty());
        QString commands = commandsIn(m_text, QStringLiteral("Remove it all"));
        commands.replace(kLock, kSimulatorsLock);
        QCOMPARE(outputOf(QStringLiteral("sh"), {QStringLiteral("-euc"), commands}), QByteArray());
        QCOMPARE(secretAttributes(), QSet<QString>());
        QCOMPARE(lines(newlyKept()), QString());
    }
};

BRIMLET_TEST(TestPrivacy, QCoreApplication)
#include "tst_privacy.moc"
