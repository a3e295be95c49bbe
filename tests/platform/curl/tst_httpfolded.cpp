#include "platform/curl/curlhttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/rawserver.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Header lines that begin with a blank, the obsolete way to continue the line before. libcurl 7.88
/// looks for that line even in the freed memory of an earlier request.
class TestHttpFolded final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void aFoldedHeaderLineIsHarmless_data() {
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<bool>("isContinuation");
        QTest::newRow("after the status")
            << QByteArray("HTTP/1.1 200 OK\r\n folded: y\r\n") << false;
        QTest::newRow("a tab after the status")
            << QByteArray("HTTP/1.1 200 OK\r\n\tfolded: y\r\n") << false;
        QTest::newRow("after an interim reply")
            << QByteArray("HTTP/1.1 103 Early Hints\r\n\r\nHTTP/1.1 200 OK\r\n folded: y\r\n")
            << false;
        QTest::newRow("after a header")
            << QByteArray("HTTP/1.1 200 OK\r\nX-A: b\r\n folded: y\r\n") << true;
    }
    void aFoldedHeaderLineIsHarmless() {
        QFETCH(QByteArray, head);
        QFETCH(bool, isContinuation);
        const HttpResult good = HttpReply{200, "x"};
        // Without a line before it libcurl 7.88 refuses it, and 8.14 ignores the blank.
        const QList<HttpResult> harmless =
            isContinuation ? QList<HttpResult>{good} : QList<HttpResult>{good, HttpError::Broken};
        RawServer server;
        CurlHttpClient client;
        for (int round = 0; round < 5; ++round) {
            HttpRequest request = requestTo(server.url(u"/"_s));
            request.timeout = 5s;
            server.answer({}, rawReply(200, "x"));
            QVERIFY(fetch(client, request) == good);
            QVERIFY(fetch(client, request) == good);
            server.answerAndCut({}, head + "Content-Length: 1\r\n\r\nx");
            QVERIFY(harmless.contains(fetch(client, request)));
        }
    }
};

BRIMLET_TEST(TestHttpFolded, QCoreApplication)
#include "tst_httpfolded.moc"
