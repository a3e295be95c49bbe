#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QSignalSpy>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QString kDisplayPath = QStringLiteral("/api/display");
const QString kFailed = QStringLiteral("Could not load the live placement. Will retry.");
const QByteArray kBothSlots = R"({"weekStatus":"live","creatives":[
    {"slotId":"left","brandName":"L"},{"slotId":"right","brandName":"R"}]})";

} // namespace

class TestDisplayRefresh final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRequestHasNoTokenAndNoBody() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        const HttpRequest& request = host.http.requests().at(0);
        QCOMPARE(request.url.absoluteString(), QStringLiteral("http://127.0.0.1:8791/api/display"));
        QCOMPARE(request.method, QByteArray("GET"));
        QVERIFY(request.headers.empty());
        QVERIFY(!request.body);
        QCOMPARE(request.timeout, std::chrono::milliseconds(60s));
    }

    void redirectsLeadToTheOriginOrToAllowedLinks() {
        HostFixture host;
        host.bundle.info[QStringLiteral("BrimletAPIURL")] = QStringLiteral("http://10.0.0.1");
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        const HttpRequest& request = host.http.requests().at(0);
        QVERIFY(request.mayFollow(request.url, *Url::fromString(u"http://10.0.0.1/x")));
        QVERIFY(request.mayFollow(request.url, *Url::fromString(u"https://elsewhere.test/x")));
        QVERIFY(!request.mayFollow(request.url, *Url::fromString(u"http://elsewhere.test/x")));
        QVERIFY(!request.mayFollow(request.url, *Url::fromString(u"ftp://10.0.0.1/x")));
    }

    void anEmptyReplyClearsThePlacementAndKeepsTheFigures() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        host.http.answer(QStringLiteral("/api/host/me"), 200,
                         R"({"weekStatus":"live","estimatedCents":5,"forceHide":true,
                             "agreed":true,"agreementText":"terms",
                             "creatives":[{"slotId":"left"},{"slotId":"right"}]})");
        startTask(store->refreshEstimate());
        Assignment expected = store->assignment();
        QVERIFY(expected.left && expected.right && expected.forceHide);
        host.http.answer(kDisplayPath, 200, "{}");
        startTask(store->refreshDisplay());
        expected.weekStatus = QStringLiteral("unfilled");
        expected.forceHide = false;
        expected.left.reset();
        expected.right.reset();
        QCOMPARE(store->assignment(), expected);
        QCOMPARE(store->assignment().estimatedCents, 5);
    }

    void aReplyNeverChangesTheHostsOwnFields() {
        HostFixture host;
        host.http.answer(kDisplayPath, 200,
                         R"({"estimatedCents":9,"pendingStipendCents":9,"liveHostCount":9,
                             "liveDaysThisWeek":9,"liveBucketsToday":9,"liveBucketsNeeded":9,
                             "agreed":true,"agreementText":"x","fromApplications":false})");
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        QCOMPARE(store->assignment(), initialAssignment(true));
    }

    void fieldsAreWrittenOneByOneInOrder() {
        HostFixture host;
        host.http.answer(kDisplayPath, 200,
                         R"({"weekStatus":"live","forceHide":true,
                             "creatives":[{"slotId":"left"},{"slotId":"right"}]})");
        const auto store = host.makeStore();
        QStringList seen;
        QObject::connect(store.get(), &HostStore::objectWillChange, [&] {
            const Assignment& a = store->assignment();
            seen << QStringLiteral("%1 %2 %3 %4")
                        .arg(a.weekStatus)
                        .arg(a.forceHide)
                        .arg(a.left.has_value())
                        .arg(a.right.has_value());
        });
        startTask(store->refreshDisplay());
        QCOMPARE(seen, (QStringList{QStringLiteral("unfilled 0 0 0"), QStringLiteral("live 0 0 0"),
                                    QStringLiteral("live 1 0 0"), QStringLiteral("live 1 1 0"),
                                    QStringLiteral("live 1 1 1")}));
    }

    void everyFailureShowsTheSameTextAndKeepsTheCreatives_data() {
        QTest::addColumn<int>("status"); // 0: the transfer fails
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("transfer fails") << 0 << QByteArray();
        QTest::newRow("404") << 404 << QByteArray("{}");
        QTest::newRow("401") << 401 << QByteArray("{}");
        QTest::newRow("201") << 201 << QByteArray("{}");
        QTest::newRow("204") << 204 << QByteArray();
        QTest::newRow("302") << 302 << QByteArray();
        QTest::newRow("500") << 500 << QByteArray("{}");
        QTest::newRow("an array at the top") << 200 << QByteArray("[]");
        QTest::newRow("null") << 200 << QByteArray("null");
        QTest::newRow("a number") << 200 << QByteArray("3");
        QTest::newRow("no JSON") << 200 << QByteArray("<html>");
        QTest::newRow("empty") << 200 << QByteArray();
    }
    void everyFailureShowsTheSameTextAndKeepsTheCreatives() {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        HostFixture host;
        const auto store = host.makeStore();
        host.http.answer(kDisplayPath, 200, kBothSlots);
        startTask(store->refreshDisplay());
        const Assignment before = store->assignment();
        host.http.answer(kDisplayPath, status == 0 ? HttpResult(HttpError::TimedOut)
                                                   : HttpResult(HttpReply{status, body}));
        startTask(store->refreshDisplay());
        QCOMPARE(store->statusLine(), kFailed);
        QCOMPARE(store->assignment(), before);
        QVERIFY(store->assignment().left);
    }

    void ofOverlappingRepliesTheLastToArriveWins() {
        HostFixture host;
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        startTask(store->refreshDisplay());
        host.http.resolve(1, HttpReply{200, R"({"weekStatus":"second"})"});
        QCOMPARE(store->assignment().weekStatus, QStringLiteral("second"));
        host.http.resolve(0, HttpReply{200, R"({"weekStatus":"first"})"});
        QCOMPARE(store->assignment().weekStatus, QStringLiteral("first"));
    }

    void withoutATokenTheLineSaysToAddOne() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        QCOMPARE(store->statusLine(),
                 QStringLiteral("Ads on. Add your approved host token to qualify for payouts."));
    }

    void withATokenTheLineSaysThatEligibilityIsChecked() {
        HostFixture host;
        host.keepToken("t");
        const auto store = makeLiveStore(host);
        QCOMPARE(store->statusLine(), QStringLiteral("Ads on. Checking payout eligibility…"));
    }

    void withoutALiveWeekThereIsNoPlacement() {
        HostFixture host;
        host.http.answer(kDisplayPath, 200, "{}");
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        QCOMPARE(store->statusLine(), QStringLiteral("No live placement right now."));
    }

    void runningFromDownloadsWithAdsPausedStillSaysToMove() {
        HostFixture host;
        host.bundle.bundlePath = QStringLiteral("/Users/a/Downloads/Brimlet.app");
        const auto store = host.makeStore();
        store->pause24h();
        host.http.answer(kDisplayPath, 200, R"({"weekStatus":"live"})");
        startTask(store->refreshDisplay());
        QVERIFY(!store->adsVisible());
        QCOMPARE(
            store->statusLine(),
            QStringLiteral("Ads are on. Move Brimlet to Applications to qualify for payouts."));
    }

    void withoutANotchNoRequestIsMade() {
        HostFixture host;
        host.screens.set({}, {});
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        QVERIFY(host.http.requests().empty());
        QCOMPARE(store->statusLine(), QStringLiteral("Notched MacBooks only."));
    }

    void aRootThatDoesNotParseEndsSilently() {
        HostFixture host;
        host.bundle.info[QStringLiteral("BrimletAPIURL")] = QStringLiteral("http://[::1");
        const auto store = host.makeStore();
        const QSignalSpy changes(store.get(), &HostStore::objectWillChange);
        startTask(store->refreshDisplay());
        QVERIFY(host.http.requests().empty());
        QCOMPARE(changes.count(), 0);
    }

    void theRootIsReadAnewForEachRequest() {
        HostFixture host;
        const auto store = host.makeStore();
        for (const char* const root :
             {"http://a.test", "http://b.test", "http://[::1", "http://b.test", "http://a.test"}) {
            host.bundle.info[QStringLiteral("BrimletAPIURL")] = QString::fromLatin1(root);
            startTask(store->refreshDisplay());
        }
        QStringList addresses;
        for (const HttpRequest& request : host.http.requests()) {
            addresses << request.url.absoluteString();
        }
        QCOMPARE(addresses, (QStringList{QStringLiteral("http://a.test/api/display"),
                                         QStringLiteral("http://b.test/api/display"),
                                         QStringLiteral("http://b.test/api/display"),
                                         QStringLiteral("http://a.test/api/display")}));
    }

    void everyAppliedReplyRendersTheOverlayAfterTheStatusLine() {
        HostFixture host;
        host.http.answer(kDisplayPath, 200, kBothSlots);
        const auto store = host.makeStore();
        QStringList lines;
        QObject::connect(store.get(), &HostStore::overlayNeedsRender,
                         [&] { lines << store->statusLine(); });
        startTask(store->refreshDisplay());
        QCOMPARE(lines, QStringList{QStringLiteral(
                            "Ads on. Add your approved host token to qualify for payouts.")});
        host.http.answer(kDisplayPath, 404, "");
        startTask(store->refreshDisplay());
        QCOMPARE(lines.count(), 1);
    }
};

BRIMLET_TEST(TestDisplayRefresh, QCoreApplication)
#include "tst_displayrefresh.moc"
