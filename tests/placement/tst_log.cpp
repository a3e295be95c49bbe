#include "tests/support/testprogram.h"
#include "tools/placement/requestlog.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest/QtTest>

#include <nlohmann/json.hpp>

using namespace brimlet::placement;
using nlohmann::json;

namespace {

const std::vector<std::string> tokens{"demo-host-token"};

Incoming heartbeat() {
    return {"POST", "/api/host/heartbeat", "Bearer demo-host-token", R"({"paused":false})"};
}

} // namespace

class LogTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineHoldsTheRequestAndItsOutcome();
    void missingValuesAreNull();
    void aTokenNeverAppears_data();
    void aTokenNeverAppears();
    void invalidUtf8StaysOnOneLine();
    void linesAreAppended();
};

void LogTest::aLineHoldsTheRequestAndItsOutcome() {
    using namespace std::chrono_literals;
    LogFacts facts;
    facts.time = std::chrono::sys_days{std::chrono::year{2024} / 2 / 5} + 9h + 8min + 7s + 6ms;
    facts.query = "a=1";
    facts.headers = {{"content-type", "application/json"}, {"user-agent", "Brimlet/0.1.0"}};
    facts.tokenKnown = true;
    facts.status = 200;
    facts.fault = Fault::Cut;
    const json line = json::parse(logLine(heartbeat(), facts, tokens), nullptr, false);
    const json expected = {
        {"time", "2024-02-05T09:08:07.006Z"},
        {"method", "POST"},
        {"path", "/api/host/heartbeat"},
        {"query", "a=1"},
        {"authorization", {{"scheme", "Bearer"}, {"token", "known"}}},
        {"content_type", "application/json"},
        {"user_agent", "Brimlet/0.1.0"},
        {"headers", {{"content-type", "application/json"}, {"user-agent", "Brimlet/0.1.0"}}},
        {"body", R"({"paused":false})"},
        {"status", 200},
        {"fault", "cut"}};
    QCOMPARE(QByteArray::fromStdString(line.dump()), QByteArray::fromStdString(expected.dump()));
}

void LogTest::missingValuesAreNull() {
    const json line =
        json::parse(logLine({"GET", "/api/display", {}, {}}, {}, tokens), nullptr, false);
    for (const char* key : {"authorization", "content_type", "user_agent", "status", "fault"}) {
        QVERIFY2(line.contains(key) && line[key].is_null(), key);
    }
    QVERIFY(!line.contains("query"));
}

void LogTest::aTokenNeverAppears_data() {
    QTest::addColumn<QByteArray>("authorization");
    QTest::addColumn<QByteArray>("canary");
    QTest::newRow("known") << QByteArray("Bearer demo-host-token") << QByteArray("demo-host-token");
    QTest::newRow("unknown") << QByteArray("Bearer canary-4711") << QByteArray("canary-4711");
    QTest::newRow("another scheme") << QByteArray("Basic canary-4711") << QByteArray("canary-4711");
    QTest::newRow("no scheme") << QByteArray("canary-4711") << QByteArray("canary-4711");
    QTest::newRow("quotes") << QByteArray("Bearer can\"ary") << QByteArray("can\\\"ary");
    QTest::newRow("known, not sent") << QByteArray() << QByteArray("demo-host-token");
}

void LogTest::aTokenNeverAppears() {
    QFETCH(QByteArray, authorization);
    QFETCH(QByteArray, canary);
    const std::string secret = authorization.isEmpty()
                                   ? "demo-host-token"
                                   : splitAuthorization(authorization.toStdString()).secret;
    Incoming request{"POST", "/api/host/me/" + secret, {}, "two times " + secret + secret};
    if (!authorization.isEmpty()) {
        request.authorization = authorization.toStdString();
    }
    LogFacts facts;
    facts.query = "token=" + secret;
    facts.headers = {{"cookie", "t=" + secret}, {"user-agent", secret}};
    const std::string line = logLine(request, facts, tokens);
    QVERIFY2(line.find(canary.toStdString()) == std::string::npos, line.c_str());
    QVERIFY(json::accept(line));
}

void LogTest::invalidUtf8StaysOnOneLine() {
    Incoming request = heartbeat();
    request.body = "\xff\n\r\x01";
    const std::string line = logLine(request, {}, tokens);
    QVERIFY(json::accept(line));
    QVERIFY(line.find('\n') == std::string::npos);
}

void LogTest::linesAreAppended() {
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("requests.log"));
    for (const char* line : {"one", "two"}) {
        RequestLog log;
        QVERIFY(log.open(name.toStdString()));
        log.append(line);
        QFile file(name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().endsWith(QByteArray(line) + '\n'));
    }
    RequestLog nowhere;
    QVERIFY(!nowhere.open(folder.filePath(QStringLiteral("no/such/folder")).toStdString()));
    nowhere.append("ignored");
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("one\ntwo\n"));
}

BRIMLET_TEST(LogTest, brimlet::NoApplication)
#include "tst_log.moc"
