#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QSignalSpy>
#include <QTest>

using namespace brimlet;

namespace {

const QString kMe = QStringLiteral("/api/host/me");

const QByteArray kFullReply = R"({
    "creatives":[{"slotId":"right","brandName":"R"},{"slotId":"left","brandName":"L"}],
    "weekStatus":"live","estimatedCents":1234,"pendingStipendCents":1500,"liveHostCount":3,
    "liveDaysThisWeek":2,"liveBucketsToday":1,"liveBucketsNeeded":6,"forceHide":true,
    "agreed":true,"fromApplications":false,"agreementText":"terms"})";

void receive(HostFixture& host, HostStore& store, const QByteArray& body) {
    host.http.answer(kMe, 200, body);
    startTask(store.refreshEstimate());
}

} // namespace

class TestHostReply final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutATokenThePublicPlacementIsRequested() {
        HostFixture host;
        const auto store = host.makeStore();
        startTask(store->refreshEstimate());
        QCOMPARE(host.http.log(), QStringList{QStringLiteral("GET /api/display")});
    }

    void withATokenTheHostsFiguresAreRequested() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        startTask(store->refreshEstimate());
        QCOMPARE(host.http.log(), QStringList{QStringLiteral("GET /api/host/me")});
    }

    void everyFieldIsApplied() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        receive(host, *store, kFullReply);
        Assignment expected;
        expected.weekStatus = QStringLiteral("live");
        expected.estimatedCents = 1234;
        expected.pendingStipendCents = 1500;
        expected.liveHostCount = 3;
        expected.liveDaysThisWeek = 2;
        expected.liveBucketsToday = 1;
        expected.liveBucketsNeeded = 6;
        expected.forceHide = true;
        expected.agreed = true;
        expected.fromApplications = false;
        expected.agreementText = QStringLiteral("terms");
        expected.left = SlotCreative{QStringLiteral("left"), QStringLiteral("L"), {}, {}, {}};
        expected.right = SlotCreative{QStringLiteral("right"), QStringLiteral("R"), {}, {}, {}};
        QCOMPARE(store->assignment(), expected);
    }

    void anEmptyReplyTakesTheDefaultsAndKeepsTheAgreementText() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        receive(host, *store, kFullReply);
        receive(host, *store, "{}");
        Assignment expected = initialAssignment(true);
        expected.agreementText = QStringLiteral("terms");
        QCOMPARE(store->assignment(), expected);
        QCOMPARE(store->assignment().liveBucketsNeeded, 4);
    }

    void aMissingFromApplicationsIsDeterminedLocally_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("expected");
        QTest::newRow("in the folder") << QStringLiteral("/Applications/Brimlet.app") << true;
        QTest::newRow("outside it") << QStringLiteral("/opt/Brimlet.app") << false;
    }
    void aMissingFromApplicationsIsDeterminedLocally() {
        QFETCH(QString, path);
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        host.bundle.bundlePath = path;
        receive(host, *store, "{}");
        QTEST(store->assignment().fromApplications, "expected");
    }

    void repliesWithoutCreativesClearBothSlots_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("an empty list") << QByteArray(R"({"creatives":[]})");
        QTest::newRow("no list") << QByteArray("{}");
        QTest::newRow("a map") << QByteArray(R"({"creatives":{"left":{"slotId":"left"}}})");
        QTest::newRow("one element is no object")
            << QByteArray(R"({"creatives":[{"slotId":"left"},{"slotId":"right"},1]})");
    }
    void repliesWithoutCreativesClearBothSlots() {
        QFETCH(QByteArray, reply);
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        receive(host, *store, kFullReply);
        receive(host, *store, reply);
        QVERIFY(!store->assignment().left);
        QVERIFY(!store->assignment().right);
    }

    void aReplyWithoutTheRightCreativeClearsItAndRenders() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        receive(host, *store, kFullReply);
        int renders = 0;
        QObject::connect(store.get(), &HostStore::overlayNeedsRender, [&] {
            ++renders;
            QVERIFY(!store->assignment().right);
            QVERIFY(store->assignment().left);
        });
        receive(host, *store, R"({"creatives":[{"slotId":"left"}]})");
        QCOMPARE(renders, 1);
    }

    void eachFieldIsASeparateChange() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        const QSignalSpy changes(store.get(), &HostStore::objectWillChange);
        receive(host, *store, kFullReply);
        QCOMPARE(changes.count(), 14); // thirteen fields and the status line
        receive(host, *store, kFullReply);
        QCOMPARE(changes.count(), 28);
    }

    void fieldsAreWrittenInOrder() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        std::vector<Assignment> seen;
        QObject::connect(store.get(), &HostStore::objectWillChange,
                         [&] { seen.push_back(store->assignment()); });
        receive(host, *store, kFullReply);
        QCOMPARE(seen.size(), std::size_t{14});
        const auto firstSeen = [&](auto isWritten) {
            return std::find_if(seen.begin(), seen.end(), isWritten) - seen.begin();
        };
        using A = const Assignment&;
        QCOMPARE(firstSeen([](A a) { return a.weekStatus == u"live"; }), 1);
        QCOMPARE(firstSeen([](A a) { return a.estimatedCents == 1234; }), 2);
        QCOMPARE(firstSeen([](A a) { return a.pendingStipendCents == 1500; }), 3);
        QCOMPARE(firstSeen([](A a) { return a.liveHostCount == 3; }), 4);
        QCOMPARE(firstSeen([](A a) { return a.liveDaysThisWeek == 2; }), 5);
        QCOMPARE(firstSeen([](A a) { return a.liveBucketsToday == 1; }), 6);
        QCOMPARE(firstSeen([](A a) { return a.liveBucketsNeeded == 6; }), 7);
        QCOMPARE(firstSeen([](A a) { return a.forceHide; }), 8);
        QCOMPARE(firstSeen([](A a) { return a.agreed; }), 9);
        QCOMPARE(firstSeen([](A a) { return !a.fromApplications; }), 10);
        QCOMPARE(firstSeen([](A a) { return a.agreementText == u"terms"; }), 11);
        QCOMPARE(firstSeen([](A a) { return a.left.has_value(); }), 12);
        QCOMPARE(firstSeen([](A a) { return a.right.has_value(); }), 13);
    }

    void anAgreedHostWithVisibleAdsSeesTheEstimate() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        receive(host, *store, R"({"weekStatus":"live","agreed":true,"estimatedCents":1234})");
        QVERIFY(store->adsVisible());
        QCOMPARE(store->statusLine(), QStringLiteral("Ads on. This week ~€12.34 estimate."));
    }

    void theSameReplyWhilePausedSaysAdsOff() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        store->pause24h();
        receive(host, *store, R"({"weekStatus":"live","agreed":true,"estimatedCents":1234})");
        QCOMPARE(store->statusLine(), QStringLiteral("Ads off. This week ~€12.34 estimate."));
    }

    void aReplyWithoutAgreedAsksForTheSignatureAgain() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        receive(host, *store, R"({"agreed":true})");
        receive(host, *store, "{}");
        QCOMPARE(store->statusLine(),
                 QStringLiteral("Sign the host agreement. Pay is an estimate, not a guarantee."));
    }

    void outsideApplicationsTheLineSaysToMoveWhateverTheReplySays() {
        HostFixture host;
        host.keepToken("t");
        host.bundle.bundlePath = QStringLiteral("/home/a/brimlet");
        const auto store = host.makeStore();
        receive(host, *store, R"({"agreed":true,"fromApplications":true})");
        QVERIFY(store->assignment().fromApplications);
        QCOMPARE(
            store->statusLine(),
            QStringLiteral("Drag Brimlet into Applications. Live time only counts from there."));
    }

    void figuresSurviveADisplayReply() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        receive(host, *store, kFullReply);
        host.http.answer(QStringLiteral("/api/display"), 200, "{}");
        startTask(store->refreshDisplay());
        QCOMPARE(store->assignment().estimatedCents, 1234);
        QCOMPARE(store->assignment().weekStatus, QStringLiteral("unfilled"));
    }
};

BRIMLET_TEST(TestHostReply, QCoreApplication)
#include "tst_hostreply.moc"
