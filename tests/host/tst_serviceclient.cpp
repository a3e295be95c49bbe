#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QSignalSpy>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QString kHeartbeatPath = QStringLiteral("/api/host/heartbeat");
const QString kEstimatePath = QStringLiteral("/api/host/me");
const QString kAgreePath = QStringLiteral("/api/host/agree");
const QString kLoading = QStringLiteral("Loading the live placement…");
const QString kRejected = QStringLiteral("Server rejected the host token.");
const QString kFailed = QStringLiteral("Heartbeat failed. Will retry.");

QByteArray headerOf(const HttpRequest& request, const QByteArray& name) {
    for (const HttpHeader& header : request.headers) {
        if (header.name == name) {
            return header.value;
        }
    }
    return {};
}

} // namespace

class TestServiceClient final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRootIsAStringOfTheInfoDictionaryOrTheDefault_data() {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("root");
        const auto standard = QStringLiteral("http://127.0.0.1:8791");
        QTest::newRow("missing") << QVariant() << standard;
        QTest::newRow("a number") << QVariant(8791) << standard;
        QTest::newRow("a boolean") << QVariant(true) << standard;
        QTest::newRow("a list") << QVariant(QStringList{standard}) << standard;
        const auto same = [](const char* name, const char* text) {
            const QString root = QString::fromUtf8(text);
            QTest::newRow(name) << QVariant(root) << root;
        };
        same("another service", "https://service.test");
        same("a trailing slash stays", "https://service.test/");
        same("blanks stay", " https://service.test ");
        same("empty stays empty", "");
    }
    void theRootIsAStringOfTheInfoDictionaryOrTheDefault() {
        QFETCH(QVariant, value);
        FakeBundle bundle;
        if (value.isValid()) {
            bundle.info[QStringLiteral("BrimletAPIURL")] = value;
        }
        QTEST(HostStore::apiRoot(bundle), "root");
    }

    void theRootIsReadForEachRequest() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        for (const char* root : {"http://localhost:1", "http://localhost:2"}) {
            host.bundle.info[QStringLiteral("BrimletAPIURL")] = QString::fromLatin1(root);
            startTask(store->ping(kEstimatePath, "GET"));
        }
        QCOMPARE(host.http.requests().at(0).url.absoluteString(),
                 QStringLiteral("http://localhost:1/api/host/me"));
        QCOMPARE(host.http.requests().at(1).url.absoluteString(),
                 QStringLiteral("http://localhost:2/api/host/me"));
    }

    void aRootEndingInASlashGivesTwoSlashes() {
        HostFixture host;
        host.keepToken("t");
        host.bundle.info[QStringLiteral("BrimletAPIURL")] = QStringLiteral("http://localhost:1/");
        const auto store = host.makeStore();
        startTask(store->ping(kHeartbeatPath, "POST"));
        QCOMPARE(host.http.requests().at(0).url.absoluteString(),
                 QStringLiteral("http://localhost:1//api/host/heartbeat"));
    }

    void aRootThatDoesNotParseEndsSilently() {
        HostFixture host;
        host.keepToken("t");
        host.bundle.info[QStringLiteral("BrimletAPIURL")] = QStringLiteral("http://a:port");
        const auto store = host.makeStore();
        const QSignalSpy changes(store.get(), &HostStore::objectWillChange);
        startTask(store->ping(kHeartbeatPath, "POST"));
        QVERIFY(host.http.requests().empty());
        QCOMPARE(changes.count(), 0);
    }

    void withAnEmptyTokenNothingIsSentAndNothingChanges() {
        HostFixture host;
        const auto store = host.makeStore();
        const QSignalSpy changes(store.get(), &HostStore::objectWillChange);
        startTask(store->ping(kHeartbeatPath, "POST"));
        QVERIFY(host.http.requests().empty());
        QCOMPARE(changes.count(), 0);
        QCOMPARE(store->statusLine(), kLoading);
    }

    void withoutANotchNothingIsSentEvenWithAToken() {
        HostFixture host;
        host.keepToken("t");
        host.screens.set({}, {});
        const auto store = host.makeStore();
        startTask(store->ping(kHeartbeatPath, "POST"));
        QVERIFY(host.http.requests().empty());
        QCOMPARE(store->statusLine(), QStringLiteral("Notched MacBooks only."));
    }

    void aGetCarriesTheTokenAndNothingElse() {
        HostFixture host;
        host.keepToken("secret token");
        const auto store = host.makeStore();
        startTask(store->ping(kEstimatePath, "GET"));
        const HttpRequest& request = host.http.requests().at(0);
        QCOMPARE(request.method, QByteArray("GET"));
        const std::vector<HttpHeader> expected{{"Authorization", "Bearer secret token"}};
        QVERIFY(request.headers == expected);
        QVERIFY(!request.body);
    }

    void aPostCarriesTokenContentTypeAndBody_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isHeartbeat");
        QTest::newRow("heartbeat") << kHeartbeatPath << true;
        QTest::newRow("any path ending in /heartbeat") << QStringLiteral("/x/heartbeat") << true;
        QTest::newRow("agreement") << kAgreePath << false;
        QTest::newRow("heartbeat in the middle") << QStringLiteral("/heartbeat/x") << false;
        QTest::newRow("ends in heartbeat without its slash")
            << QStringLiteral("/xheartbeat") << false;
    }
    void aPostCarriesTokenContentTypeAndBody() {
        QFETCH(QString, path);
        QFETCH(bool, isHeartbeat);
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        startTask(store->ping(path, "POST"));
        const HttpRequest& request = host.http.requests().at(0);
        const std::vector<HttpHeader> expected{{"Authorization", "Bearer t"},
                                               {"Content-Type", "application/json"}};
        QVERIFY(request.headers == expected);
        QVERIFY(request.body);
        if (isHeartbeat) {
            const auto json = parseJson(*request.body);
            QVERIFY(json);
            QCOMPARE(json->size(), std::size_t{5});
        } else {
            QCOMPARE(*request.body, QByteArray("{}"));
        }
    }

    void methodsAreCaseSensitive() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        startTask(store->ping(kHeartbeatPath, "post"));
        QVERIFY(!host.http.requests().at(0).body);
        QCOMPARE(headerOf(host.http.requests().at(0), "Content-Type"), QByteArray());
    }

    void whileAdsAreHiddenNoSlotIsVisible() {
        HostFixture host;
        host.keepToken("t");
        const auto store = makeLiveStore(host);
        startTask(store->ping(kHeartbeatPath, "POST"));
        store->pause24h();
        const auto& requests = host.http.requests();
        const auto shown = parseJson(*requests.at(1).body);
        QCOMPARE(shown->at("slotsVisible").dump(), std::string(R"(["left","right"])"));
        QCOMPARE(shown->at("paused").dump(), std::string("false"));
        const auto hidden = parseJson(*requests.at(2).body);
        QCOMPARE(hidden->at("slotsVisible").dump(), std::string("[]"));
        QCOMPARE(hidden->at("paused").dump(), std::string("true"));
    }

    void theHeartbeatSaysWhereTheProgramRunsNow() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        for (const bool inApplications : {false, true}) {
            host.bundle.bundlePath = inApplications ? QStringLiteral("/Applications/Brimlet.app")
                                                    : QStringLiteral("/home/a/brimlet");
            startTask(store->ping(kHeartbeatPath, "POST"));
            const auto body = parseJson(*host.http.requests().back().body);
            QCOMPARE(body->at("fromApplications").get<bool>(), inApplications);
        }
    }

    void everyKindOfFailedTransferHasTheSameEffect_data() {
        QTest::addColumn<int>("error");
        QTest::newRow("bad request") << int(HttpError::BadRequest);
        QTest::newRow("unreachable") << int(HttpError::Unreachable);
        QTest::newRow("broken") << int(HttpError::Broken);
        QTest::newRow("too large") << int(HttpError::TooLarge);
        QTest::newRow("timed out") << int(HttpError::TimedOut);
        QTest::newRow("cancelled") << int(HttpError::Cancelled);
    }
    void everyKindOfFailedTransferHasTheSameEffect() {
        QFETCH(int, error);
        HostFixture host;
        host.keepToken("t");
        host.http.answer(QStringLiteral("heartbeat"), HttpError(error));
        for (const auto& [path, line] : {std::pair(QStringLiteral("/xheartbeat"), kLoading),
                                         std::pair(QStringLiteral("/x/heartbeat"), kFailed)}) {
            const auto store = host.makeStore();
            startTask(store->ping(path, "POST"));
            QCOMPARE(store->statusLine(), line);
        }
    }

    void requestsHaveSixtySecondsAndStayAtTheirOrigin() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        startTask(store->ping(kHeartbeatPath, "POST"));
        const HttpRequest& request = host.http.requests().at(0);
        QCOMPARE(request.timeout, std::chrono::milliseconds(60s));
        QCOMPARE(request.lastStatusWithBody, 200);
        QVERIFY(request.mayFollow(request.url, *Url::fromString(u"http://127.0.0.1:8791/other")));
        QVERIFY(!request.mayFollow(request.url, *Url::fromString(u"http://127.0.0.1:8792/other")));
        QVERIFY(!request.mayFollow(request.url, *Url::fromString(u"https://elsewhere.test/")));
    }

    void theOutcomeDecidesTheStatusLine_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("status"); // 0: the transfer fails
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("line");
        const auto sign =
            QStringLiteral("Sign the host agreement. Pay is an estimate, not a guarantee.");
        const QByteArray none;
        for (const QString& path : {kHeartbeatPath, kEstimatePath, kAgreePath}) {
            const QByteArray p = path.toUtf8();
            const QString failed = path == kHeartbeatPath ? kFailed : kLoading;
            const auto row = [&](const char* what, int status, const QByteArray& body,
                                 const QString& line) {
                QTest::newRow((p + ' ' + what).constData()) << path << status << body << line;
            };
            row("transfer fails", 0, none, failed);
            row("200 object", 200, "{}", sign);
            row("200 no JSON", 200, "<html>", failed);
            row("200 cut JSON", 200, R"({"agreed":tr)", failed);
            row("200 empty", 200, none, failed);
            row("200 white space", 200, " \n", failed);
            row("200 array", 200, "[]", kRejected);
            row("200 number", 200, "3", kRejected);
            row("200 string", 200, "\"x\"", kRejected);
            row("200 null", 200, "null", kRejected);
            for (const int status : {100, 201, 202, 204, 206, 299, 301, 302, 304, 307,
                                     308, 400, 401, 403, 404, 418, 429, 500, 503, 599}) {
                row(QByteArray::number(status).constData(), status, "{}", kRejected);
            }
        }
    }
    void theOutcomeDecidesTheStatusLine() {
        QFETCH(QString, path);
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        HostFixture host;
        host.keepToken("t");
        host.http.answer(path, status == 0 ? HttpResult(HttpError::Broken)
                                           : HttpResult(HttpReply{status, body}));
        const auto store = host.makeStore();
        startTask(store->ping(path, path == kEstimatePath ? "GET" : "POST"));
        QTEST(store->statusLine(), "line");
    }

    void unauthorisedAndServerErrorGiveTheSameText() {
        for (const int status : {401, 500}) {
            HostFixture host;
            host.keepToken("t");
            host.http.answer(kHeartbeatPath, status, "{}");
            const auto store = host.makeStore();
            startTask(store->ping(kHeartbeatPath, "POST"));
            QCOMPARE(store->statusLine(), kRejected);
        }
    }

    void aFailedTransferOfAnotherEndpointAnnouncesTheUnchangedText_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isReply");
        QTest::newRow("earnings query, no reply") << kEstimatePath << false;
        QTest::newRow("earnings query, no JSON") << kEstimatePath << true;
        QTest::newRow("agreement, no reply") << kAgreePath << false;
        QTest::newRow("agreement, no JSON") << kAgreePath << true;
    }
    void aFailedTransferOfAnotherEndpointAnnouncesTheUnchangedText() {
        QFETCH(QString, path);
        QFETCH(bool, isReply);
        HostFixture host;
        host.keepToken("t");
        host.http.answer(path, isReply ? HttpResult(HttpReply{200, "<html>"})
                                       : HttpResult(HttpError::Unreachable));
        const auto store = host.makeStore();
        const QSignalSpy changes(store.get(), &HostStore::objectWillChange);
        startTask(store->ping(path, "POST"));
        QCOMPARE(changes.count(), 1);
        QCOMPARE(store->statusLine(), kLoading);
    }

    void aTimeoutOfTheEarningsQueryLeavesTheTextAndOneOfTheHeartbeatDoesNot() {
        HostFixture host;
        host.keepToken("t");
        host.http.hang(kHeartbeatPath);
        host.http.hang(kEstimatePath);
        const auto store = host.makeStore();
        startTask(store->ping(kEstimatePath, "GET"));
        host.clock.advance(60s);
        QCOMPARE(store->statusLine(), kLoading);
        startTask(store->ping(kHeartbeatPath, "POST"));
        host.clock.advance(59s);
        QCOMPARE(store->statusLine(), kLoading);
        host.clock.advance(1s);
        QCOMPARE(store->statusLine(), kFailed);
    }

    void ofOverlappingRepliesTheLastToArriveWins() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        startTask(store->ping(kEstimatePath, "GET"));
        startTask(store->ping(kEstimatePath, "GET"));
        host.http.resolve(1, HttpReply{200, R"({"estimatedCents":2})"});
        QCOMPARE(store->assignment().estimatedCents, 2);
        host.http.resolve(0, HttpReply{200, R"({"estimatedCents":1})"});
        QCOMPARE(store->assignment().estimatedCents, 1);
    }

    void aFailedRequestKeepsWhatWasShown() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        host.http.answer(kEstimatePath, 200,
                         R"({"estimatedCents":7,"creatives":[{"slotId":"left"}]})");
        startTask(store->ping(kEstimatePath, "GET"));
        host.http.answer(kEstimatePath, 503, "{}");
        startTask(store->ping(kEstimatePath, "GET"));
        QCOMPARE(store->assignment().estimatedCents, 7);
        QVERIFY(store->assignment().left);
    }

    void theStoreOutlivesItsRequests() {
        HostFixture host;
        host.keepToken("t");
        auto store = host.makeStore();
        startTask(store->ping(kEstimatePath, "GET"));
        const std::weak_ptr<HostStore> weak = store;
        store.reset();
        QVERIFY(!weak.expired());
        host.http.resolve(0, HttpReply{200, "{}"});
        QVERIFY(weak.expired());
    }
};

BRIMLET_TEST(TestServiceClient, QCoreApplication)
#include "tst_serviceclient.moc"
