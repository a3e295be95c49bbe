#include "tests/robustness/survival.h"
#include "tests/support/emulated.h"
#include "tests/support/testprogram.h"

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace brimlet::faults;

namespace {

const int kPatience = 20'000 * slowness(); // milliseconds

const QByteArray kHead = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n";

} // namespace

/// Faulty replies, and replies that look valid.
class TestHttp final : public QObject {
    Q_OBJECT

    std::unique_ptr<WatchedProgram> m_watched;

    static void addRow(const QString& name, const QJsonArray& steps, Outcome outcome) {
        QTest::newRow(qPrintable(name)) << Fault{WatchedProgram::everywhere(steps), outcome};
    }

private Q_SLOTS:
    void initTestCase() {
        m_watched = std::make_unique<WatchedProgram>();
        begin(*m_watched);
    }
    void cleanupTestCase() { m_watched.reset(); }

    void itSurvives_data() {
        QTest::addColumn<Fault>("fault");
        const QByteArray other = m_watched->otherBody();
        const QByteArray length = "Content-Length: " + QByteArray::number(other.size()) + "\r\n";

        const auto interim = [](const QByteArray& status) {
            return send("HTTP/1.1 " + status + "\r\nLink: </s.css>; rel=preload\r\n\r\n");
        };
        addRow(QStringLiteral("8: 103 Early Hints and then the reply"),
               {interim("103 Early Hints"), reply(200, other)}, Outcome::Applied);
        addRow(QStringLiteral("8: 103 Early Hints long before the reply"),
               {interim("103 Early Hints"), wait(200), reply(200, other)}, Outcome::Applied);
        addRow(QStringLiteral("8: several interim replies and then the reply"),
               {interim("100 Continue"), interim("102 Processing"), interim("103 Early Hints"),
                reply(200, other)},
               Outcome::Applied);
        addRow(QStringLiteral("8: 103 Early Hints and then no reply"),
               {interim("103 Early Hints"), cut()}, Outcome::TransferFailed);

        for (const int status : {201, 204, 206, 304, 400, 401, 403, 404, 418, 429, 500, 503}) {
            const bool hasBody = status != 204 && status != 304;
            addRow(QStringLiteral("9: %1").arg(status),
                   {reply(status, hasBody ? other : QByteArray(), "Retry-After: 3600\r\n")},
                   Outcome::Rejected);
        }
        addRow(QStringLiteral("9: 500 with a body without end"),
               {send("HTTP/1.1 500 Oops\r\n\r\n"), flood(QByteArray(65536, ' '))},
               Outcome::Rejected);

        addRow(QStringLiteral("10: 401 that asks for a password"),
               {reply(401, other, "WWW-Authenticate: Basic realm=\"x\"\r\n")}, Outcome::Rejected);
        addRow(QStringLiteral("10: 401 that asks for a digest"),
               {reply(401, other, "WWW-Authenticate: Digest realm=\"x\", nonce=\"y\"\r\n")},
               Outcome::Rejected);
        addRow(QStringLiteral("10: 407"),
               {reply(407, other, "Proxy-Authenticate: Basic realm=\"x\"\r\n")}, Outcome::Rejected);

        const QByteArray page = "<!DOCTYPE html><title>Sign in</title>";
        addRow(QStringLiteral("11: a page to sign in"), {reply(200, page)},
               Outcome::TransferFailed);
        addRow(QStringLiteral("11: nothing"), {reply(200, {})}, Outcome::TransferFailed);
        addRow(QStringLiteral("11: white space"), {reply(200, " \r\n\t ")},
               Outcome::TransferFailed);
        addRow(QStringLiteral("11: JSON that was cut"), {reply(200, other.chopped(1))},
               Outcome::TransferFailed);
        for (const char* const json : {"[]", "3", "\"x\"", "null", "true"}) {
            addRow(QStringLiteral("11: ") + QLatin1StringView(json), {reply(200, json)},
                   Outcome::Rejected);
        }

        const auto lengths = [&](const QByteArray& lines) {
            return QJsonArray{send(kHead + lines + "\r\n" + other), cut()};
        };
        addRow(QStringLiteral("12: a negative length"), lengths("Content-Length: -1\r\n"),
               Outcome::TransferFailed);
        addRow(QStringLiteral("12: the same length twice"), lengths(length + length),
               Outcome::TransferFailed);
        addRow(QStringLiteral("12: two lengths"), lengths(length + "Content-Length: 2\r\n"),
               Outcome::TransferFailed);
        addRow(QStringLiteral("12: a length of words"), lengths("Content-Length: some\r\n"),
               Outcome::TransferFailed);
        addRow(QStringLiteral("12: a length beyond all numbers"),
               lengths("Content-Length: 99999999999999999999\r\n"), Outcome::TransferFailed);
        addRow(QStringLiteral("12: a body shorter than promised"),
               {send(kHead + "Content-Length: " + QByteArray::number(other.size() + 1) +
                     "\r\n\r\n" + other),
                cut()},
               Outcome::TransferFailed);
        addRow(QStringLiteral("12: a body longer than promised"),
               {reply(200, other), send("}"), cut()}, Outcome::TransferFailed);
        addRow(QStringLiteral("12: two replies to one request"),
               {send(rawReply(200, other) + rawReply(200, other)), cut()}, Outcome::TransferFailed);
        addRow(QStringLiteral("12: garbage"),
               {send(QByteArray("\0\1\2\xFF garbage\r\n\r\n", 16)), cut()},
               Outcome::TransferFailed);
        addRow(QStringLiteral("12: HTTP/0.9"), {send(other), cut()}, Outcome::TransferFailed);
        const auto chunks = [](const QByteArray& bytes) {
            return QJsonArray{send(kHead + "Transfer-Encoding: chunked\r\n\r\n" + bytes), cut()};
        };
        addRow(QStringLiteral("12: a chunk's size of letters"),
               chunks("zz\r\n" + other + "\r\n0\r\n\r\n"), Outcome::TransferFailed);
        addRow(QStringLiteral("12: a negative chunk"), chunks("-2\r\n{}\r\n0\r\n\r\n"),
               Outcome::TransferFailed);
        addRow(QStringLiteral("12: a chunk without its end"),
               chunks(QByteArray::number(other.size(), 16) + "\r\n" + other + "0\r\n\r\n"),
               Outcome::TransferFailed);
        addRow(QStringLiteral("12: a chunk beyond all numbers"),
               chunks("FFFFFFFFFFFFFFFFF\r\n" + other), Outcome::TransferFailed);
        addRow(QStringLiteral("12: chunks as they should be"),
               chunks(QByteArray::number(other.size(), 16) + ";a=b\r\n" + other +
                      "\r\n0\r\nX-Trailer: y\r\n\r\n"),
               Outcome::Applied);
    }
    void itSurvives() {
        QFETCH(Fault, fault);
        survive(*m_watched, fault);
    }

    // Case 10
    void noPasswordIsEverSent() {
        const QByteArray received = m_watched->service().received();
        QVERIFY(!received.contains("Authorization: Basic"));
        QVERIFY(!received.contains("Authorization: Digest"));
        QVERIFY(!received.contains("Proxy-Authorization"));
    }

    // Case 13
    void requestsHaveNoUnneededHeaders() {
        m_watched->follow(WatchedProgram::everywhere(
            {reply(200, m_watched->goodBody(),
                   "Set-Cookie: id=1; Max-Age=99999; Path=/\r\nAlt-Svc: h2=\":443\"\r\n"
                   "Set-Cookie2: id=2\r\nRefresh: 1\r\nLink: </next>; rel=prefetch\r\n")}));
        const qsizetype start = m_watched->service().received().size();
        m_watched->askAll();
        QTRY_VERIFY_WITH_TIMEOUT(m_watched->requests() > 10, kPatience);
        for (const RawRequest& request : m_watched->service().requests(start)) {
            QVERIFY2(request.lines().at(0).endsWith(" HTTP/1.1"), request.head);
            QCOMPARE(request.header("User-Agent"), "Brimlet/0.1.0");
            for (const char* const name : {"Cookie", "Accept", "Accept-Language", "Accept-Encoding",
                                           "Referer", "Upgrade", "HTTP2-Settings"}) {
                QVERIFY2(request.header(name).isNull(), request.head);
            }
        }
        m_watched->behave();
        QTRY_COMPARE_WITH_TIMEOUT(m_watched->complaint(), QString(), kPatience);
    }

    // Case 14
    void anUnchangedPollCostsNoBody() {
        const QString before = m_watched->content();
        qsizetype start = m_watched->service().received().size();
        m_watched->follow(
            WatchedProgram::everywhere({reply(200, m_watched->goodBody(), "ETag: \"a\"\r\n")}));
        const auto asksAgain = [&] {
            return m_watched->service().received().mid(start).contains("If-None-Match: \"a\"\r\n");
        };
        QTRY_VERIFY_WITH_TIMEOUT(asksAgain(), kPatience);

        const QJsonArray unchanged{send("HTTP/1.1 304 Not Modified\r\nETag: \"a\"\r\n\r\n")};
        QJsonObject script = WatchedProgram::everywhere({reply(200, m_watched->goodBody())});
        QJsonObject answers = script.value(u"answers"_s).toObject();
        answers[u"/api/host/me"_s] = unchanged;
        script[u"answers"_s] = answers;
        start = m_watched->service().received().size();
        m_watched->follow(script);
        QTRY_VERIFY_WITH_TIMEOUT(m_watched->requests() > 10, kPatience);
        QVERIFY(asksAgain());
        QCOMPARE(m_watched->program().statusLine(), WatchedProgram::goodStatus());
        QCOMPARE(m_watched->content(), before);

        // A 304 also restores the status line after the display's reply has changed it.
        start = m_watched->service().received().size();
        m_watched->askAll();
        QTRY_VERIFY_WITH_TIMEOUT(
            m_watched->service().received().mid(start).contains("GET /api/display"), kPatience);
        QVERIFY(m_watched->reaches(WatchedProgram::goodStatus()));
        m_watched->behave();
        QTRY_COMPARE_WITH_TIMEOUT(m_watched->complaint(), QString(), kPatience);
    }
};

BRIMLET_TEST(TestHttp, QCoreApplication)
#include "tst_http.moc"
