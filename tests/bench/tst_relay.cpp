#include "bench/relay.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QTcpSocket>
#include <QTest>

using namespace brimlet;

namespace {

/// A program that asks by way of a relay, on one connection.
class Client final {
public:
    explicit Client(const Relay& relay) {
        const QString root = QString::fromStdString(relay.root());
        m_socket.connectToHost(QStringLiteral("127.0.0.1"),
                               root.section(QLatin1Char(':'), -1).toUShort());
    }

    [[nodiscard]] bool asks(const QByteArray& request, const QByteArray& expected) {
        m_received.clear();
        m_socket.write(request);
        return QTest::qWaitFor([&] {
            m_received += m_socket.readAll();
            return m_received == expected;
        });
    }
    [[nodiscard]] bool isClosed() {
        return QTest::qWaitFor(
            [this] { return m_socket.state() == QAbstractSocket::UnconnectedState; });
    }

private:
    QTcpSocket m_socket;
    QByteArray m_received;
};

const QByteArray kPoll("GET /api/display HTTP/1.1\r\nHost: x\r\n\r\n");
const QByteArray kPicture("GET /assets/tea.png HTTP/1.1\r\nHost: x\r\n\r\n");

} // namespace

class TestRelay final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pollsAreCountedWithEveryByteEachWay() {
        Client client(m_relay);
        QVERIFY(client.asks(kPoll, m_reply));
        QVERIFY(client.asks(kPoll, m_reply));
        const Traffic traffic = m_relay.traffic();
        QCOMPARE(traffic.polls, 2);
        QCOMPARE(traffic.pollBytesSent, 2 * kPoll.size());
        QCOMPARE(traffic.pollBytesReceived, 2 * m_reply.size());
        QCOMPARE(traffic.pollConnections, 1);
        QCOMPARE(traffic.otherRequests, 0);
    }

    void otherRequestsAreKeptApart() {
        const Traffic before = m_relay.traffic();
        Client client(m_relay);
        QVERIFY(client.asks(kPicture, m_reply));
        const Traffic traffic = m_relay.traffic() - before;
        QCOMPARE(traffic.otherRequests, 1);
        QCOMPARE(traffic.polls, 0);
        QCOMPARE(traffic.pollBytesReceived, 0);
        QCOMPARE(traffic.pollConnections, 0);
    }

    void theTimeOfAReplyIsThatOfItsLastBytes() {
        Client client(m_relay);
        const auto before = Relay::Clock::now();
        QVERIFY(client.asks(kPoll, m_reply));
        QVERIFY(m_relay.lastPollReply().has_value());
        QVERIFY(*m_relay.lastPollReply() >= before);
        QVERIFY(*m_relay.lastPollReply() <= Relay::Clock::now());
    }

    void whatTheServiceEndsEndsForTheProgram() {
        m_server.answerAndCut("/cut", m_reply);
        Client client(m_relay);
        QVERIFY(client.asks("GET /cut HTTP/1.1\r\n\r\n", m_reply));
        QVERIFY(client.isClosed());
    }

    void aShutRelayEndsAndRefusesConnections() {
        Relay relay(m_server.port());
        Client client(relay);
        QVERIFY(client.asks(kPoll, m_reply));
        relay.shut();
        QVERIFY(client.isClosed());
        Client late(relay);
        QVERIFY(late.isClosed());
    }

private:
    RawServer m_server;
    Relay m_relay{m_server.port()};
    QByteArray m_reply = rawReply(200, "{}");

public:
    TestRelay() { m_server.answer({}, m_reply); }
};

BRIMLET_TEST(TestRelay, QCoreApplication)
#include "tst_relay.moc"
