#include "tests/placement/rawclient.h"
#include "tests/placement/serviceprocess.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QImage>
#include <QThread>
#include <QtTest/QtTest>

#include <nlohmann/json.hpp>

#include <csignal>

using namespace brimlet::placementtest;
using nlohmann::json;

namespace {

const QByteArray token = "demo-host-token";
const QByteArray beat =
    R"({"paused":false,"slotsVisible":["left","right"],"wakeMinutes":0,"appVersion":"0.1.0",)"
    R"("fromApplications":true})";

constexpr qsizetype bodyLimit = 65536;

json parsed(const QByteArray& text) {
    return json::parse(text.toStdString(), nullptr, false);
}

// A scenario with one rule, for the display endpoint.
QByteArray rule(const QByteArray& keys) {
    return R"({"endpoints": {"/api/display": {)" + keys + "}}}";
}

QList<QByteArray> lines(const QByteArray& text) {
    return text.trimmed().split('\n');
}

} // namespace

class ServiceTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itPrintsItsAddressAndPurpose();
    void everyEndpointAnswers();
    void picturesCanBeDecoded();
    void aConnectionIsKeptAcrossManyPolls();
    void anUnchangedPollIsShort();
    void requestsSentTogetherAreAnsweredInOrder();
    void onlyLoopbackIsListenedOn();
    void bodiesUpToTheLimitAreRead_data();
    void bodiesUpToTheLimitAreRead();
    void anUnexpectedBodyIsNotTakenForARequest();
    void invalidHttpIsRefused_data();
    void invalidHttpIsRefused();
    void aHungRequestDelaysNoOther();
    void hungRequestsEndWithTheirClients();
    void aClosedConnectionSendsNothing();
    void aCutReplyIsShorterThanItsLength();
    void garbageIsSentWithStatus200();
    void aDelayIsKept();
    void statusAndHeadersAreSent();
    void anEditTakesEffectAtTheNextRequest();
    void aBrokenEditKeepsThePreviousScenario();
    void everyRequestIsLogged();
    void theTokenIsNeverLogged();
    void itEndsWithinASecond_data();
    void itEndsWithinASecond();
    void misuseIsReportedOnOneLine_data();
    void misuseIsReportedOnOneLine();
    void aBrokenScenarioPreventsTheStart();
    void aPortInUseIsReportedOnOneLine();
    void helpAndVersionAreShown();
};

void ServiceTest::itPrintsItsAddressAndPurpose() {
    ServiceProcess service;
    QVERIFY2(service.port() != 0, service.errors().constData());
    QCOMPARE(service.output(),
             "Brimlet placement service, for trying and testing only\nListening on "
             "http://127.0.0.1:" +
                 QByteArray::number(service.port()) + "\n");
    QVERIFY(service.endWith(SIGTERM) >= 0);
    QCOMPARE(service.errors(), QByteArray());
}

void ServiceTest::everyEndpointAnswers() {
    ServiceProcess service;
    RawClient client(service.port());
    const RawReply display = client.ask("GET", "/api/display");
    QCOMPARE(display.status, 200);
    QVERIFY(display.head.startsWith("HTTP/1.1 200"));
    QCOMPARE(display.header("Content-Type"), QByteArray("application/json"));
    const QByteArray root = "http://127.0.0.1:" + QByteArray::number(service.port()) + "/";
    const json placement = parsed(display.body);
    for (const json& creative : placement["creatives"]) {
        QVERIFY(creative["assetUrl"].get<std::string>().starts_with(root.toStdString()));
    }
    QCOMPARE(client.ask("GET", "/api/host/me").status, 401);
    QVERIFY(parsed(client.ask("GET", "/api/host/me", token).body)["agreed"] == false);
    QVERIFY(parsed(client.ask("POST", "/api/host/agree", token, "{}").body)["agreed"] == true);
    const json figures = parsed(client.ask("POST", "/api/host/heartbeat", token, beat).body);
    QVERIFY(figures["liveBucketsToday"] == 1);
    QVERIFY(figures["liveHostCount"] == 42);
    QVERIFY(figures["estimatedCents"].get<int>() > 0);
    QCOMPARE(client.ask("GET", "/api/host/heartbeat", token).header("Allow"), QByteArray("POST"));
    QCOMPARE(client.ask("GET", "/nothing").status, 404);
    QVERIFY(client.isOpen());
}

void ServiceTest::picturesCanBeDecoded() {
    ServiceProcess service;
    RawClient client(service.port());
    for (const char* name : {"quiet-bicycle", "palindrome-tea"}) {
        const RawReply reply = client.ask("GET", "/assets/" + QByteArray(name) + ".png");
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.header("Content-Type"), QByteArray("image/png"));
        QImage picture;
        QVERIFY(picture.loadFromData(reply.body, "PNG"));
        QCOMPARE(picture.size(), QSize(256, 256));
        QImage blank(picture.size(), picture.format());
        blank.fill(picture.pixelColor(2, 2));
        QVERIFY(picture != blank);
        const RawReply page = client.ask("GET", "/brands/" + QByteArray(name));
        QCOMPARE(page.status, 200);
        QVERIFY(page.body.contains("<h1>"));
    }
}

void ServiceTest::aConnectionIsKeptAcrossManyPolls() {
    ServiceProcess service;
    RawClient client(service.port());
    QElapsedTimer timer;
    timer.start();
    for (int poll = 0; poll < 500; ++poll) {
        QCOMPARE(client.ask("GET", "/api/host/me", token).status, 200);
    }
    // With the 40 ms by which TCP delays small packets by default, they would take 20 seconds.
    QVERIFY2(timer.elapsed() < 15'000, QByteArray::number(timer.elapsed()).constData());
    QVERIFY(client.isOpen());
}

void ServiceTest::anUnchangedPollIsShort() {
    ServiceProcess service;
    RawClient client(service.port());
    const RawReply whole = client.ask("GET", "/api/display");
    QCOMPARE(whole.status, 200);
    const QByteArray request = RawClient::request("GET", "/api/display");
    const QByteArray question = "If-None-Match: " + whole.header("ETag") + "\r\n\r\n";
    for (int i = 0; i < 3; ++i) {
        client.send(request.chopped(2) + question);
        const RawReply same = client.receive(false);
        QCOMPARE(same.status, 304);
        QCOMPARE(same.header("Content-Length"), QByteArray::number(whole.body.size()));
        QVERIFY2(same.head.size() <= 250, same.head.constData());
        QVERIFY(same.body.isEmpty());
    }
    QCOMPARE(client.ask("GET", "/api/display").body, whole.body);
}

void ServiceTest::requestsSentTogetherAreAnsweredInOrder() {
    ServiceProcess service;
    RawClient client(service.port());
    client.send(RawClient::request("GET", "/api/display") + RawClient::request("GET", "/no") +
                RawClient::request("POST", "/api/host/agree", token, "{}"));
    QCOMPARE(client.receive().status, 200);
    QCOMPARE(client.receive().status, 404);
    QVERIFY(parsed(client.receive().body)["agreed"] == true);
}

void ServiceTest::onlyLoopbackIsListenedOn() {
    ServiceProcess service;
    QVERIFY(RawClient(service.port()).isOpen());
    QVERIFY(!RawClient(service.port(), QStringLiteral("127.0.0.2")).isOpen());
}

void ServiceTest::bodiesUpToTheLimitAreRead_data() {
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<bool>("chunked");
    QTest::addColumn<int>("status");
    for (const bool chunked : {false, true}) {
        const char* how = chunked ? "in chunks" : "announced";
        QTest::addRow("just below, %s", how) << bodyLimit - 1 << chunked << 200;
        QTest::addRow("at, %s", how) << bodyLimit << chunked << 200;
        QTest::addRow("just above, %s", how) << bodyLimit + 1 << chunked << 413;
        QTest::addRow("far above, %s", how) << 40 * bodyLimit << chunked << 413;
    }
}

void ServiceTest::bodiesUpToTheLimitAreRead() {
    QFETCH(qsizetype, size);
    QFETCH(bool, chunked);
    QFETCH(int, status);
    ServiceProcess service;
    RawClient client(service.port());
    const QByteArray body = beat + QByteArray(size - beat.size(), ' ');
    QByteArray bytes = RawClient::request("POST", "/api/host/heartbeat", token, body);
    if (chunked) {
        bytes = RawClient::request("POST", "/api/host/heartbeat", token).chopped(2) +
                "Transfer-Encoding: chunked\r\n\r\n" + QByteArray::number(size, 16) + "\r\n" +
                body + "\r\n0\r\n\r\n";
    }
    client.send(bytes);
    const RawReply reply = client.receive();
    QCOMPARE(reply.status, status);
    QCOMPARE(parsed(reply.body).contains("error"), status != 200);
    QCOMPARE(service.log().count('\n'), 1);
    QCOMPARE(parsed(service.log())["status"].get<int>(), status);
    QCOMPARE(RawClient(service.port()).ask("GET", "/api/display").status, 200);
}

void ServiceTest::anUnexpectedBodyIsNotTakenForARequest() {
    ServiceProcess service;
    RawClient client(service.port());
    const RawReply reply = client.ask("GET", "/api/display", {}, "GET /no HTTP/1.1\r\n\r\n");
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.header("Connection"), QByteArray("close"));
    QVERIFY(client.isClosedByService());
    QCOMPARE(service.log().count('\n'), 1);
}

void ServiceTest::invalidHttpIsRefused_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    QTest::newRow("words") << QByteArray("hello there\r\nAuthorization: Bearer secret-1\r\n\r\n")
                           << 400;
    QTest::newRow("unknown method") << QByteArray("BREW / HTTP/1.1\r\nHost: a\r\n\r\n") << 400;
    QTest::newRow("long address") << "GET /" + QByteArray(9000, 'a') +
                                         " HTTP/1.1\r\nHost: a\r\n\r\n"
                                  << 414;
    QTest::newRow("endless headers")
        << "GET / HTTP/1.1\r\n" +
               QByteArray("X: ").append(QByteArray(8000, 'x')).append("\r\n").repeated(30)
        << 413;
}

void ServiceTest::invalidHttpIsRefused() {
    QFETCH(QByteArray, bytes);
    QFETCH(int, status);
    ServiceProcess service;
    RawClient client(service.port());
    client.send(bytes);
    const RawReply reply = client.receive();
    QCOMPARE(reply.status, status);
    QVERIFY(parsed(reply.body)["error"].is_string());
    QVERIFY(client.isClosedByService());
    QCOMPARE(service.log().count('\n'), 1);
    QVERIFY(!service.log().contains("secret-1"));
}

void ServiceTest::aHungRequestDelaysNoOther() {
    ServiceProcess service(rule(R"("fault": "hang")"));
    QVERIFY2(service.port() != 0, service.errors().constData());
    RawClient hung(service.port());
    hung.send(RawClient::request("GET", "/api/display"));
    QTRY_VERIFY(service.log().contains("\"hang\""));
    QVERIFY(parsed(service.log())["status"].is_null());
    QCOMPARE(RawClient(service.port()).ask("GET", "/api/host/me", token).status, 200);
    QVERIFY(!hung.receivesWithin(300));
}

void ServiceTest::hungRequestsEndWithTheirClients() {
    ServiceProcess service(rule(R"("fault": "hang")"));
    constexpr int clients = 80; // more than the service has threads
    for (int count = 0; count < clients; ++count) {
        RawClient hung(service.port());
        hung.send(RawClient::request("GET", "/api/display"));
        // QTRY_COMPARE would sleep for 50 ms each time.
        while (service.log().count('\n') <= count) {
            QVERIFY(hung.isOpen());
            QThread::msleep(1);
        }
    }
    QCOMPARE(RawClient(service.port()).ask("GET", "/api/host/me", token).status, 200);
}

void ServiceTest::aClosedConnectionSendsNothing() {
    ServiceProcess service(rule(R"("fault": "close")"));
    RawClient client(service.port());
    const RawReply reply = client.ask("GET", "/api/display");
    QCOMPARE(reply.status, 0);
    QVERIFY(reply.head.isEmpty());
    QVERIFY(client.isClosedByService());
}

void ServiceTest::aCutReplyIsShorterThanItsLength() {
    ServiceProcess service(rule(R"("fault": "cut")"));
    RawClient client(service.port());
    const RawReply reply = client.ask("GET", "/api/display");
    QCOMPARE(reply.status, 200);
    QVERIFY(reply.cut);
    QVERIFY(reply.header("Content-Length").toLongLong() > reply.body.size());
    QVERIFY(parsed(reply.body).is_object());
    QVERIFY(client.isClosedByService());
}

void ServiceTest::garbageIsSentWithStatus200() {
    ServiceProcess service(rule(R"("fault": "garbage")"));
    RawClient client(service.port());
    const RawReply reply = client.ask("GET", "/api/display");
    QCOMPARE(reply.status, 200);
    QVERIFY(!reply.cut);
    QVERIFY(!reply.body.isEmpty());
    QVERIFY(parsed(reply.body).is_discarded());
    QCOMPARE(client.ask("GET", "/api/host/me", token).status, 200);
}

void ServiceTest::aDelayIsKept() {
    ServiceProcess service(rule(R"("delayMs": 400)"));
    RawClient client(service.port());
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(client.ask("GET", "/api/display").status, 200);
    QVERIFY(timer.elapsed() >= 400);
}

void ServiceTest::statusAndHeadersAreSent() {
    ServiceProcess service(
        rule(R"("status": 418, "headers": {"X-Pot": "short", "Content-Type": "text/x-tea"},
                "text": "stout")"));
    RawClient client(service.port());
    const RawReply reply = client.ask("GET", "/api/display");
    QCOMPARE(reply.status, 418);
    QCOMPARE(reply.header("X-Pot"), QByteArray("short"));
    QCOMPARE(reply.head.toLower().count("content-type"), 1);
    QCOMPARE(reply.header("Content-Type"), QByteArray("text/x-tea"));
    QCOMPARE(reply.body, QByteArray("stout"));
    const RawReply head = client.ask("HEAD", "/api/host/me");
    QCOMPARE(head.status, 401);
}

void ServiceTest::anEditTakesEffectAtTheNextRequest() {
    ServiceProcess service(rule(R"("status": 501)"));
    RawClient client(service.port());
    for (const int status : {501, 502, 503, 200}) {
        QVERIFY(service.edit(rule("\"status\": " + QByteArray::number(status))));
        QCOMPARE(client.ask("GET", "/api/display").status, status);
    }
}

void ServiceTest::aBrokenEditKeepsThePreviousScenario() {
    ServiceProcess service(rule(R"("status": 501)"));
    RawClient client(service.port());
    QCOMPARE(client.ask("GET", "/api/display").status, 501);
    QVERIFY(service.edit(rule(R"("stauts": 502)")));
    QCOMPARE(client.ask("GET", "/api/display").status, 501);
    QCOMPARE(client.ask("GET", "/api/display").status, 501);
    QTRY_COMPARE(service.errors().count('\n'), 1);
    QVERIFY2(service.errors().contains(R"(unknown key "stauts")"), service.errors().constData());
    QVERIFY(service.edit(rule(R"("status": 503)")));
    QCOMPARE(client.ask("GET", "/api/display").status, 503);
}

void ServiceTest::everyRequestIsLogged() {
    ServiceProcess service;
    RawClient client(service.port());
    QCOMPARE(client.ask("GET", "/api/display?a=1").status, 200);
    QCOMPARE(client.ask("POST", "/api/host/heartbeat", token, beat).status, 200);
    QCOMPARE(client.ask("GET", "//api/host/me", "some-other-token").status, 404);
    const QList<QByteArray> log = lines(service.log());
    QCOMPARE(log.size(), 3);
    const json display = parsed(log[0]);
    QVERIFY(display["method"] == "GET");
    QVERIFY(display["path"] == "/api/display");
    QVERIFY(display["query"] == "a=1");
    QVERIFY(display["authorization"].is_null());
    QVERIFY(display["content_type"].is_null());
    QVERIFY(display["user_agent"] == "test/1");
    QVERIFY(display["headers"] == (json{{"host", "127.0.0.1"}, {"user-agent", "test/1"}}));
    QVERIFY(display["status"] == 200);
    const json heartbeat = parsed(log[1]);
    QVERIFY(heartbeat["authorization"] == (json{{"scheme", "Bearer"}, {"token", "known"}}));
    QVERIFY(heartbeat["content_type"] == "application/json");
    QCOMPARE(QByteArray::fromStdString(heartbeat["body"].get<std::string>()), beat);
    const json stray = parsed(log[2]);
    QVERIFY(stray["path"] == "//api/host/me");
    QVERIFY(stray["authorization"] == (json{{"scheme", "Bearer"}, {"token", "unknown"}}));
    QVERIFY(stray["status"] == 404);
}

void ServiceTest::theTokenIsNeverLogged() {
    ServiceProcess service(R"({"tokens": ["canary-known"]})");
    for (const QByteArray& canary : {QByteArray("canary-known"), QByteArray("canary-unknown")}) {
        RawClient client(service.port());
        QVERIFY(client.ask("POST", "/api/host/heartbeat", canary, beat).status != 0);
        QVERIFY(client.ask("POST", "/api/host/agree?" + canary, canary, canary).status != 0);
        QVERIFY(client.ask("GET", "/assets/" + canary + ".png", canary).status != 0);
    }
    QCOMPARE(service.log().count('\n'), 6);
    QVERIFY2(!service.log().contains("canary"), service.log().constData());
}

void ServiceTest::itEndsWithinASecond_data() {
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void ServiceTest::itEndsWithinASecond() {
    QFETCH(int, signal);
    ServiceProcess service(R"({"endpoints": {"/api/display": {"fault": "hang"},
                                             "/api/host/me": {"delayMs": 600000}}})");
    RawClient idle(service.port());
    QCOMPARE(idle.ask("GET", "/brands/quiet-bicycle").status, 200);
    RawClient hung(service.port());
    hung.send(RawClient::request("GET", "/api/display"));
    RawClient delayed(service.port());
    delayed.send(RawClient::request("GET", "/api/host/me", token));
    RawClient halfway(service.port());
    halfway.send("GET /api/dis");
    QTRY_COMPARE(service.log().count('\n'), 3);
    const qint64 elapsed = service.endWith(signal);
    QVERIFY2(elapsed >= 0 && elapsed < 1000, QByteArray::number(elapsed).constData());
    QCOMPARE(service.process().exitStatus(), QProcess::NormalExit);
    QCOMPARE(service.process().exitCode(), 0);
    QCOMPARE(service.errors(), QByteArray());
}

void ServiceTest::misuseIsReportedOnOneLine_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("words");
    QTest::addColumn<int>("exitCode");
    const auto row = [](const char* name, const QStringList& arguments, const char* words,
                        int code) {
        QTest::newRow(name) << arguments << QByteArray(words) << code;
    };
    row("unknown option", {QStringLiteral("--prot")}, "unknown option --prot", 2);
    row("bad port", {QStringLiteral("--port"), QStringLiteral("x")}, "--port must be", 2);
    row("no scenario", {QStringLiteral("--scenario"), QStringLiteral("/no/such/file")},
        "/no/such/file", 2);
    row("no log", {QStringLiteral("--port=0"), QStringLiteral("--log=/no/such/file")},
        "log /no/such/file: No such file or directory", 1);
}

void ServiceTest::misuseIsReportedOnOneLine() {
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, words);
    QFETCH(int, exitCode);
    const ServiceProcess::Outcome outcome = ServiceProcess::run(arguments);
    QCOMPARE(outcome.exitCode, exitCode);
    QCOMPARE(outcome.output, QByteArray());
    QVERIFY2(outcome.errors.contains(words), outcome.errors.constData());
    QCOMPARE(outcome.errors.count('\n'), 1);
}

void ServiceTest::aBrokenScenarioPreventsTheStart() {
    ServiceProcess spoilt("{]");
    QCOMPARE(spoilt.port(), 0);
    QTRY_COMPARE(spoilt.process().state(), QProcess::NotRunning);
    QCOMPARE(spoilt.process().exitCode(), 2);
    QVERIFY(spoilt.errors().contains("not valid JSON at line 1, column 2"));
}

void ServiceTest::aPortInUseIsReportedOnOneLine() {
    const ServiceProcess first;
    const QString port = QString::number(first.port());
    const ServiceProcess::Outcome second = ServiceProcess::run({QStringLiteral("--port"), port});
    QCOMPARE(second.exitCode, 1);
    QCOMPARE(second.errors, "brimlet-placement: cannot listen on 127.0.0.1:" + port.toLatin1() +
                                ": Address already in use\n");
}

void ServiceTest::helpAndVersionAreShown() {
    const ServiceProcess::Outcome help = ServiceProcess::run({QStringLiteral("--help")});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.output.contains("--scenario FILE"));
    const ServiceProcess::Outcome version = ServiceProcess::run({QStringLiteral("--version")});
    QCOMPARE(version.exitCode, 0);
    QVERIFY(version.output.startsWith("brimlet-placement "));
}

BRIMLET_TEST(ServiceTest, QCoreApplication)
#include "tst_service.moc"
