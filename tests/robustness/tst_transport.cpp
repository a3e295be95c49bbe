#include "tests/robustness/survival.h"
#include "tests/support/emulated.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QProcess>

using namespace brimlet;

namespace {

const int kPatience = 20'000 * slowness(); // milliseconds

const QByteArray kHead = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n";

/// 512 MiB of zeros, compressed to half a mebibyte.
QByteArray bomb() {
    QProcess gzip;
    gzip.start(QStringLiteral("sh"),
               {QStringLiteral("-c"), QStringLiteral("head -c 536870912 /dev/zero | gzip -1")});
    gzip.waitForFinished(kPatience);
    return gzip.readAllStandardOutput();
}

} // namespace

/// Connections that hang, drip, flood and break.
class TestTransport final : public QObject {
    Q_OBJECT

    std::unique_ptr<WatchedProgram> m_watched;

    static void addRow(const char* name, const QJsonArray& steps,
                       Outcome outcome = Outcome::TransferFailed) {
        QTest::newRow(name) << Fault{WatchedProgram::everywhere(steps), outcome};
    }

private Q_SLOTS:
    void initTestCase() {
        m_watched = std::make_unique<WatchedProgram>();
        begin(*m_watched);
    }
    void cleanupTestCase() { m_watched.reset(); }

    void itSurvives_data() {
        using namespace faults;
        QTest::addColumn<Fault>("fault");
        const QByteArray whole = m_watched->otherBody();
        const QByteArray length = "Content-Length: " + QByteArray::number(whole.size()) + "\r\n";

        addRow("1: no answer", {});
        addRow("1: a head dripped byte by byte", {drip(kHead + length + "\r\n", 50, true)});
        addRow("1: a body dripped byte by byte",
               {send(kHead + "Content-Length: 100000\r\n\r\n"), drip(" ", 50, true)});
        addRow("1: endless header lines, slowly", {send(kHead), drip("X: y\r\n", 10, true)});
        addRow("1: 100 Continue without end", {drip("HTTP/1.1 100 Continue\r\n\r\n", 5, true)});

        addRow("2: a body without end", {send(kHead + "\r\n"), flood(QByteArray(65536, ' '))});
        addRow(
            "2: a body of the announced length, which is far too long",
            {send(kHead + "Content-Length: 1099511627776\r\n\r\n"), flood(QByteArray(65536, ' '))});
        addRow("2: a head without end", {send(kHead), flood("X-Padding: pppppppppppppppp\r\n")});
        addRow("2: a header line without end",
               {send(kHead + "X-Padding: "), flood(QByteArray(65536, 'p'))});
        addRow("2: a chunk extension without end",
               {send(kHead + "Transfer-Encoding: chunked\r\n\r\n1;x="),
                flood(QByteArray(65536, 'e'))});
        addRow("2: 103 Early Hints without end",
               {flood("HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n")});
        const QByteArray packed = bomb();
        QVERIFY(packed.size() > 100'000);
        addRow("2: a compressed body that unpacks to 512 MiB",
               {reply(200, packed, "Content-Encoding: gzip\r\n")});
        const qsizetype most = qsizetype{1024} * 1024;
        addRow("2: a body of 1 MiB, which is allowed", {reply(200, whole.leftJustified(most, ' '))},
               Outcome::Applied);
        addRow("2: a body one byte longer", {reply(200, whole.leftJustified(most + 1, ' '))});

        QTest::newRow("3: nothing listens")
            << Fault{{}, Outcome::TransferFailed, QStringLiteral("http://127.0.0.1:1")};
        QTest::newRow("3: no route")
            << Fault{{}, Outcome::TransferFailed, QStringLiteral("http://255.255.255.255")};
        QTest::newRow("3: closed on accepting")
            << Fault{{{QStringLiteral("greeting"), QJsonArray{cut()}}}};
        QTest::newRow("3: reset on accepting")
            << Fault{{{QStringLiteral("greeting"), QJsonArray{reset()}}}};
        addRow("3: closed when the request comes", {cut()});
        addRow("3: reset when the request comes", {reset()});
        addRow("3: closed in the head", {send(kHead), cut()});
        addRow("3: closed in the body", {send(kHead + length + "\r\n" + whole.chopped(1)), cut()});
        addRow("3: reset in the body", {send(kHead + length + "\r\n" + whole.chopped(1)), reset()});
        addRow("3: chunks without the last one",
               {send(kHead + "Transfer-Encoding: chunked\r\n\r\n" +
                     QByteArray::number(whole.size(), 16) + "\r\n" + whole + "\r\n"),
                cut()});
        addRow("3: each connection is closed after its reply", {reply(200, whole), cut()},
               Outcome::Applied);
        QTest::newRow("4: connections are not accepted")
            << Fault{{{QStringLiteral("isAccepting"), false}}};
    }
    void itSurvives() {
        QFETCH(Fault, fault);
        survive(*m_watched, fault);
    }

    // Case 1
    void aSilentServiceTimesOutAfterSixtySeconds() {
        constexpr int kMinute = 60'000 / WatchedProgram::kSpeed;
        WatchedProgram& watched = *m_watched;
        watched.follow(WatchedProgram::everywhere({}));
        QElapsedTimer since;
        since.start();
        watched.askAll();
        QVERIFY(watched.reaches(QStringLiteral("Could not load the live placement. Will retry.")));
        QVERIFY2(since.elapsed() >= kMinute, qPrintable(QString::number(since.elapsed())));
        QVERIFY2(since.elapsed() <= 2 * kMinute, qPrintable(QString::number(since.elapsed())));
        watched.behave();
        QVERIFY(watched.reaches(WatchedProgram::goodStatus()));
    }

    // Case 4
    void droppedPacketsDelayABoundedNumberOfRequests() {
        constexpr int kTwoMinutes = 120'000 / WatchedProgram::kSpeed;
        constexpr int kMostOutstanding = 60 / 3;
        WatchedProgram& watched = *m_watched;
        const QString before = watched.content();
        watched.service().stop();
        QElapsedTimer since;
        since.start();
        qsizetype most = 0;
        QTRY_VERIFY_WITH_TIMEOUT(
            (most = std::max(most, watched.connections()), since.hasExpired(kTwoMinutes)),
            kPatience);
        // And up to five that were kept from before.
        QVERIFY2(most <= kMostOutstanding + 5, qPrintable(QString::number(most)));
        QVERIFY2(most >= kMostOutstanding / 2, qPrintable(QString::number(most)));
        QCOMPARE(watched.content(), before);
        watched.service().resume();
        // The next tick succeeds.
        watched.follow(WatchedProgram::everywhere({faults::reply(200, watched.otherBody())}));
        QVERIFY(watched.reaches(WatchedProgram::otherStatus()));
        watched.behave();
        QVERIFY(watched.reaches(WatchedProgram::goodStatus()));
        QTRY_COMPARE_WITH_TIMEOUT(watched.complaint(), QString(), kPatience);
    }
};

BRIMLET_TEST(TestTransport, QCoreApplication)
#include "tst_transport.moc"
