#include "platform/linux/buscall.h"
#include "tests/support/emulated.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QTest>

using namespace brimlet;

using Outcome = BusReply::Outcome;

namespace {

const QString kBus = QStringLiteral("org.freedesktop.DBus");
const QString kBusPath = QStringLiteral("/org/freedesktop/DBus");

QDBusMessage busMethod(const char* name) {
    return QDBusMessage::createMethodCall(kBus, kBusPath, kBus, QString::fromLatin1(name));
}

} // namespace

/// In a desktop whose keyring owns its name and answers nothing.
class TestBusCall final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatCameOfTheCall_data() {
        QTest::addColumn<QString>("bus");
        QTest::addColumn<QDBusMessage>("call");
        QTest::addColumn<Outcome>("outcome");
        const QString session = QDBusConnection::sessionBus().name();
        QTest::newRow("answered") << session << busMethod("GetId") << Outcome::Answered;
        QTest::newRow("refused") << session << busMethod("NoSuchMethod") << Outcome::Refused;
        QTest::newRow("no such service")
            << session
            << propertyQuery(QStringLiteral("org.example.Absent"), QStringLiteral("/"),
                             QStringLiteral("org.example.Absent"), QStringLiteral("P"))
            << Outcome::NoService;
        QTest::newRow("no such connection")
            << session
            << propertyQuery(QStringLiteral(":1.4711"), QStringLiteral("/"),
                             QStringLiteral("org.example.Absent"), QStringLiteral("P"))
            << Outcome::NoService;
        QTest::newRow("no bus") << QStringLiteral("a bus that is not connected")
                                << busMethod("GetId") << Outcome::NoBus;
    }
    void whatCameOfTheCall() {
        QFETCH(const QString, bus);
        QFETCH(const QDBusMessage, call);
        QFETCH(const Outcome, outcome);
        const BusReply reply = callBus(QDBusConnection(bus), call);
        QCOMPARE(reply.outcome, outcome);
        QCOMPARE(reply.value.isValid(), outcome == Outcome::Answered);
    }

    void aServiceThatHangsEndsTheWait() {
        QElapsedTimer timer;
        timer.start();
        const BusReply reply =
            callBus(QDBusConnection::sessionBus(),
                    QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.secrets"),
                                                   QStringLiteral("/org/freedesktop/secrets"),
                                                   QStringLiteral("org.freedesktop.DBus.Peer"),
                                                   QStringLiteral("Ping")),
                    std::chrono::milliseconds(200));
        QCOMPARE(reply.outcome, Outcome::NoAnswer);
        QVERIFY2(timer.elapsed() < 1000 * slowness(),
                 QByteArray::number(timer.elapsed()).constData());
    }

    void aPropertyIsTakenOutOfItsVariant() {
        const BusReply reply =
            callBus(QDBusConnection::sessionBus(),
                    propertyQuery(kBus, kBusPath, kBus, QStringLiteral("Interfaces")));
        QCOMPARE(reply.outcome, Outcome::Answered);
        QVERIFY(reply.value.canConvert<QStringList>());
        QVERIFY(
            reply.value.toStringList().contains(QStringLiteral("org.freedesktop.DBus.Monitoring")));
    }
};

BRIMLET_TEST(TestBusCall, QCoreApplication)
#include "tst_buscall.moc"
