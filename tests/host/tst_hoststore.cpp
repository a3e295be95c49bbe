#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QString kHeartbeat = QStringLiteral("POST /api/host/heartbeat");
const QString kEstimate = QStringLiteral("GET /api/host/me");
const QString kDisplay = QStringLiteral("GET /api/display");

/// A store with a token, running timers and its first requests sent.
std::shared_ptr<HostStore> makeStartedStore(HostFixture& host) {
    host.keepToken("t");
    host.http.answer(QStringLiteral("/api/display"), 200, "{}");
    auto store = host.makeStore();
    store->startTimers();
    return store;
}

} // namespace

class TestHostStore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aNewStoreHasItsInitialState() {
        HostFixture host;
        host.bundle.bundlePath = QStringLiteral("/home/somebody/Downloads");
        const auto store = host.makeStore();
        QCOMPARE(store->token(), QString());
        QVERIFY(!store->pausedUntil());
        QCOMPARE(store->assignment(), initialAssignment(false));
        QCOMPARE(store->statusLine(), QStringLiteral("Loading the live placement…"));
        QVERIFY(store->hasNotch());
        QVERIFY(!store->screenAsleep());
        QVERIFY(!store->isPaused());
        QVERIFY(!store->adsVisible());
        QVERIFY(!store->runtimeStarted);
        QVERIFY(host.http.requests().empty());
        QCOMPARE(host.clock.runningTimers(), 0);
    }

    void theInitialAssignmentSaysWhereTheProgramRuns_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("fromApplications");
        QTest::newRow("the folder") << QStringLiteral("/Applications/Brimlet.app") << true;
        QTest::newRow("a folder inside")
            << QStringLiteral("/Applications/Tools/Brimlet.app") << true;
        QTest::newRow("the folder itself") << QStringLiteral("/Applications") << false;
        QTest::newRow("other letter case") << QStringLiteral("/applications/Brimlet.app") << false;
        QTest::newRow("a user's own folder")
            << QStringLiteral("/Users/a/Applications/Brimlet.app") << false;
        QTest::newRow("a longer name") << QStringLiteral("/ApplicationsX/Brimlet.app") << false;
        QTest::newRow("empty") << QString() << false;
    }
    void theInitialAssignmentSaysWhereTheProgramRuns() {
        QFETCH(QString, path);
        HostFixture host;
        host.bundle.bundlePath = path;
        QTEST(host.makeStore()->assignment().fromApplications, "fromApplications");
    }

    void theNotchIsTestedOnceAtCreation() {
        HostFixture host;
        const auto store = host.makeStore();
        host.screens.set({}, {});
        QVERIFY(store->hasNotch());
        const auto later = host.makeStore();
        QVERIFY(!later->hasNotch());
        host.screens.set({notchedScreen(1)}, {1});
        QVERIFY(!later->hasNotch());
    }

    void withTwoScreensTheBuiltInSecondOnesStripsAreUsed() {
        HostFixture host;
        Screen external;
        external.number = 3;
        external.frame = {0, 0, 2560, 1440};
        host.screens.set({external, notchedScreen(1)}, {1});
        QVERIFY(host.makeStore()->hasNotch());
    }

    void fieldsAnnounceBeforeTheyChange() {
        HostFixture host;
        const auto store = host.makeStore();
        QStringList linesSeen;
        QObject::connect(store.get(), &HostStore::objectWillChange,
                         [&] { linesSeen << store->statusLine(); });
        store->pause24h();
        // Two announcements, of the pause and of the line, both before the line changed.
        QCOMPARE(linesSeen, (QStringList{QStringLiteral("Loading the live placement…"),
                                         QStringLiteral("Loading the live placement…")}));
        QCOMPARE(store->statusLine(),
                 QStringLiteral("Paused 24h. You may drop out of this week's split."));
    }

    void theTokenAnnouncesBeforeItChanges() {
        QStringList tokensSeen; // outlives the requests that end with the fixture
        HostFixture host;
        host.keepToken("old");
        const auto store = host.makeStore();
        QObject::connect(store.get(), &HostStore::objectWillChange,
                         [&] { tokensSeen << store->token(); });
        store->saveToken(QStringLiteral("new"));
        QCOMPARE(tokensSeen, QStringList{QStringLiteral("old")});
        QCOMPARE(store->token(), QStringLiteral("new"));
    }

    void theScreensSleepAnnouncesBeforeItChanges() {
        QList<bool> seen; // outlives the requests that end with the fixture
        HostFixture host;
        const auto store = host.makeStore();
        store->watchScreens();
        QObject::connect(store.get(), &HostStore::objectWillChange,
                         [&] { seen << store->screenAsleep(); });
        host.workspace.screensDidSleep();
        QCOMPARE(seen, QList<bool>{false});
        QVERIFY(store->screenAsleep());
        host.workspace.screensDidWake();
        QCOMPARE(seen, (QList<bool>{false, true}));
    }

    void pausedUntilEqualToNowIsNotPaused() {
        HostFixture host;
        const auto store = host.makeStore();
        store->pause24h();
        QVERIFY(store->isPaused());
        host.clock.jump(24h - 1s);
        QVERIFY(store->isPaused());
        host.clock.jump(1s);
        QCOMPARE(host.clock.now(), *store->pausedUntil());
        QVERIFY(!store->isPaused());
    }

    void aPastPauseNoLongerCountsButIsKept() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        store->pause24h();
        QVERIFY(!store->adsVisible());
        host.clock.jump(25h);
        QVERIFY(store->adsVisible());
        QVERIFY(store->pausedUntil());
    }

    void thePauseFollowsTheWallClock() {
        HostFixture host;
        const auto store = host.makeStore();
        store->pause24h();
        host.clock.jump(-10h * 24);
        QVERIFY(store->isPaused());
        host.clock.jump(400h * 24);
        QVERIFY(!store->isPaused());
    }

    void aRelaunchDuringAPauseIsNotPaused() {
        HostFixture host;
        host.makeStore()->pause24h();
        QVERIFY(!host.makeStore()->isPaused());
    }

    void theClockIsReadOnlyWithANotch() {
        HostFixture host;
        host.screens.set({}, {});
        const auto store = host.makeStore();
        store->pause24h();
        host.clock.readings = 0;
        QVERIFY(!store->adsVisible());
        QCOMPARE(host.clock.readings, 0);
    }

    void onlyALiveWeekShowsAds_data() {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("visible");
        const QByteArray bothSlots = R"("creatives":[{"slotId":"left","brandName":"A"},
                                     {"slotId":"right","brandName":"B"}])";
        QTest::newRow("live, both slots")
            << QByteArray("{\"weekStatus\":\"live\"," + bothSlots + "}") << true;
        QTest::newRow("live, both slots empty") << QByteArray(R"({"weekStatus":"live"})") << true;
        QTest::newRow("live but hidden by the service, both slots")
            << QByteArray("{\"weekStatus\":\"live\",\"forceHide\":true," + bothSlots + "}")
            << false;
        QTest::newRow("Live") << QByteArray(R"({"weekStatus":"Live"})") << false;
        QTest::newRow("after a byte-order mark")
            << QByteArray(R"({"weekStatus":"\ufefflive"})") << false;
        QTest::newRow("trailing blank") << QByteArray(R"({"weekStatus":"live "})") << false;
        QTest::newRow("unfilled") << QByteArray("{}") << false;
    }
    void onlyALiveWeekShowsAds() {
        QFETCH(QByteArray, reply);
        HostFixture host;
        host.http.answer(QStringLiteral("/api/display"), 200, reply);
        const auto store = host.makeStore();
        startTask(store->refreshDisplay());
        QTEST(store->adsVisible(), "visible");
    }

    void screensAsleepThenALiveReplyStaysHiddenUntilTheWake() {
        HostFixture host;
        const auto store = host.makeStore();
        store->watchScreens();
        host.workspace.screensDidSleep();
        host.http.answer(QStringLiteral("/api/display"), 200, R"({"weekStatus":"live"})");
        startTask(store->refreshDisplay());
        QVERIFY(!store->adsVisible());
        host.workspace.screensDidWake();
        QVERIFY(store->adsVisible());
    }

    void sleepAndWakeRenderAndThenSendAHeartbeatEach() {
        HostFixture host;
        host.keepToken("t");
        const auto store = makeLiveStore(host);
        host.http.clear();
        store->watchScreens();
        QStringList events;
        QObject::connect(store.get(), &HostStore::overlayNeedsRender, [&] {
            events << (store->adsVisible() ? QStringLiteral("shown") : QStringLiteral("hidden"));
            events << QString::number(host.http.requests().size());
        });
        host.workspace.screensDidSleep();
        QVERIFY(store->screenAsleep());
        host.workspace.screensDidSleep();
        host.workspace.screensDidWake();
        QVERIFY(!store->screenAsleep());
        const QStringList expected{QStringLiteral("hidden"), QStringLiteral("0"),
                                   QStringLiteral("hidden"), QStringLiteral("1"),
                                   QStringLiteral("shown"),  QStringLiteral("2")};
        QCOMPARE(events, expected);
        QCOMPARE(host.http.log(), (QStringList{kHeartbeat, kHeartbeat, kHeartbeat}));
        QVERIFY(host.http.requests().at(1).body->contains("\"slotsVisible\":[]"));
        QVERIFY(host.http.requests().at(2).body->contains("\"slotsVisible\":[\"left\",\"right\"]"));
    }

    void aSleepDelaysTheSuspendUntilItsHeartbeatHasEnded() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        store->watchScreens();
        host.workspace.screensDidSleep();
        QVERIFY(host.workspace.isSuspendDelayed());
        host.http.resolve(0, HttpReply{200, "{}"});
        QVERIFY(!host.workspace.isSuspendDelayed());
        host.workspace.screensDidWake();
        QVERIFY(!host.workspace.isSuspendDelayed());
    }

    void withNothingToSendASleepDelaysNoSuspend() {
        HostFixture host;
        const auto store = host.makeStore();
        store->watchScreens();
        host.workspace.screensDidSleep();
        QVERIFY(!host.workspace.isSuspendDelayed());
    }

    void theObserversDoNotKeepTheStore() {
        HostFixture host;
        host.keepToken("t");
        auto store = host.makeStore();
        store->watchScreens();
        const std::weak_ptr<HostStore> weak = store;
        store.reset();
        QVERIFY(weak.expired());
        host.workspace.screensDidSleep();
        QVERIFY(host.http.requests().empty());
    }

    void theTimersKeepTheStore() {
        HostFixture host;
        auto store = host.makeStore();
        store->startTimers();
        const std::weak_ptr<HostStore> weak = store;
        store.reset();
        QVERIFY(!weak.expired());
    }

    void startingSendsTheDisplayRefreshAndThenTheHeartbeat() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        store->startTimers();
        QCOMPARE(host.http.log(), QStringList{kDisplay});
        host.http.resolve(0, HttpReply{200, "{}"});
        QCOMPARE(host.http.log(), (QStringList{kDisplay, kHeartbeat}));
    }

    void theFirstHeartbeatAlsoFollowsAFailedDisplayRefresh() {
        HostFixture host;
        host.keepToken("t");
        host.http.hang(QStringLiteral("/api/display"));
        const auto store = host.makeStore();
        store->startTimers();
        host.clock.advance(59s);
        QVERIFY(!host.http.log().contains(kHeartbeat));
        host.clock.advance(1s);
        QCOMPARE(host.http.log().count(kHeartbeat), 1);
    }

    void neitherTimerFiresOnCreation() {
        HostFixture host;
        const auto store = makeStartedStore(host);
        host.http.clear();
        host.clock.advance(2999ms);
        QVERIFY(host.http.requests().empty());
        host.clock.advance(1ms);
        QCOMPARE(host.http.log(), QStringList{kEstimate});
        host.clock.advance(897s - 1ms);
        QCOMPARE(host.http.log().count(kHeartbeat), 0);
        host.clock.advance(1ms);
        QCOMPARE(host.http.log().count(kHeartbeat), 1);
        QCOMPARE(host.http.log().count(kEstimate), 300);
    }

    void startingAgainIsSafeWhenOnlyTheTimersHoldTheStore() {
        HostFixture host;
        auto store = host.makeStore();
        store->startTimers();
        HostStore* const held = store.get();
        store.reset();
        held->startTimers();
        QCOMPARE(host.clock.runningTimers(), 2);
    }

    void startingTheTimersASecondTimeLeavesOnePair() {
        HostFixture host;
        const auto store = makeStartedStore(host);
        host.clock.advance(1s);
        store->startTimers();
        QCOMPARE(host.clock.runningTimers(), 2);
        host.http.clear();
        host.clock.advance(900s);
        QCOMPARE(host.http.log().count(kHeartbeat), 1);
        QCOMPARE(host.http.log().count(kEstimate), 300);
    }

    void aJumpOfTheWallClockDoesNotChangeTheTicks() {
        HostFixture host;
        const auto store = makeStartedStore(host);
        host.http.clear();
        host.clock.jump(24h * 400);
        host.clock.advance(6s);
        host.clock.jump(-24h * 410);
        host.clock.advance(6s);
        QCOMPARE(host.http.log().count(kEstimate), 4);
    }

    void aTickNeverWaitsForThePreviousOne() {
        HostFixture host;
        host.keepToken("t");
        host.http.hang(QStringLiteral("/api/host/me"));
        const auto store = host.makeStore();
        store->startTimers();
        host.clock.advance(30s);
        QCOMPARE(host.http.log().count(kEstimate), 10);
    }

    void aRenderRequestWithoutAnOverlayDoesNothing() {
        HostFixture host;
        const auto store = makeLiveStore(host);
        store->pause24h();
        QVERIFY(!store->adsVisible());
    }
};

BRIMLET_TEST(TestHostStore, QCoreApplication)
#include "tst_hoststore.moc"
