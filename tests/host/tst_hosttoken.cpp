#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QSignalSpy>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QString kService = QStringLiteral("app.brimlet.host");
const QString kAccount = QStringLiteral("host-token");

QByteArray bytes(const SecretResult& result) {
    const auto* const value = std::get_if<QByteArray>(&result);
    return value == nullptr ? QByteArray("(none)") : *value;
}

} // namespace

class TestHostToken final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStoredTokenIsReadAtCreation() {
        HostFixture host;
        host.keepToken("stored");
        QCOMPARE(host.makeStore()->token(), QStringLiteral("stored"));
    }

    void aTokenThatCannotBeReadIsEmpty_data() {
        QTest::addColumn<int>("error");
        QTest::newRow("not found") << int(SecretError::NotFound);
        QTest::newRow("locked") << int(SecretError::Locked);
        QTest::newRow("unavailable") << int(SecretError::Unavailable);
        QTest::newRow("timed out") << int(SecretError::TimedOut);
    }
    void aTokenThatCannotBeReadIsEmpty() {
        QFETCH(int, error);
        HostFixture host;
        host.keepToken("stored");
        host.secrets.failure = SecretError(error);
        QCOMPARE(host.makeStore()->token(), QString());
    }

    void aLateTokenIsPublishedAndTriedAsASavedOne() {
        QStringList tokensBefore; // outlives the requests that end with the fixture
        HostFixture host;
        host.keepToken("stored");
        host.secrets.failure = SecretError::TimedOut;
        host.http.answer(QStringLiteral("/api/display"), 200, "{}");
        const auto store = host.makeStore();
        store->startTimers();
        QVERIFY(!store->isTokenKnown());
        QCOMPARE(host.http.log(), QStringList{QStringLiteral("GET /api/display")});
        host.http.clear();
        QObject::connect(store.get(), &HostStore::objectWillChange,
                         [&] { tokensBefore += store->token(); });
        host.secrets.recover();
        QCOMPARE(tokensBefore.value(0), QString()); // announced before it changes
        QVERIFY(!tokensBefore.isEmpty());
        QCOMPARE(store->token(), QStringLiteral("stored"));
        QVERIFY(store->isTokenKnown());
        QCOMPARE(host.http.log(), (QStringList{QStringLiteral("GET /api/display"),
                                               QStringLiteral("POST /api/host/heartbeat")}));
    }

    void aTokenThatArrivesBeforeTheTimersIsInTheFirstRequests() {
        HostFixture host;
        host.keepToken("stored");
        host.secrets.failure = SecretError::Locked;
        host.http.answer(QStringLiteral("/api/display"), 200, "{}");
        const auto store = host.makeStore();
        host.secrets.recover();
        QCOMPARE(store->token(), QStringLiteral("stored"));
        QVERIFY(host.http.requests().empty());
        store->startTimers();
        QCOMPARE(host.http.log(), (QStringList{QStringLiteral("GET /api/display"),
                                               QStringLiteral("POST /api/host/heartbeat")}));
    }

    void aLateTokenDoesNotReplaceASavedOne() {
        HostFixture host;
        host.keepToken("stored");
        host.secrets.failure = SecretError::Locked;
        const auto store = host.makeStore();
        store->saveToken(QStringLiteral("saved"));
        QVERIFY(store->isTokenKnown());
        host.secrets.recover();
        QCOMPARE(store->token(), QStringLiteral("saved"));
    }

    void aStoreThatDeliversAfterASavedTokenAllTheSameChangesNothing() {
        HostFixture host;
        host.keepToken("stored");
        host.secrets.failure = SecretError::Locked;
        host.secrets.forgetsOnReplace = false;
        const auto store = host.makeStore();
        store->saveToken(QStringLiteral("saved"));
        host.secrets.recover();
        QCOMPARE(store->token(), QStringLiteral("saved"));
    }

    void whenThereTurnsOutToBeNoTokenNothingIsSent() {
        HostFixture host;
        host.secrets.failure = SecretError::Unavailable;
        const auto store = host.makeStore();
        store->startTimers();
        host.http.clear();
        QVERIFY(!store->isTokenKnown());
        host.secrets.recover();
        QVERIFY(store->isTokenKnown());
        QCOMPARE(store->token(), QString());
        QVERIFY(host.http.requests().empty());
    }

    void aLateAnswerForAStoreThatIsGoneDoesNothing() {
        HostFixture host;
        host.keepToken("stored");
        host.secrets.failure = SecretError::Locked;
        host.makeStore().reset();
        host.secrets.recover();
        QVERIFY(host.http.requests().empty());
    }

    void whetherTheTokenIsKnownFollowsFromTheRead_data() {
        QTest::addColumn<int>("error");
        QTest::addColumn<bool>("isKnown");
        QTest::newRow("not found") << int(SecretError::NotFound) << true;
        QTest::newRow("locked") << int(SecretError::Locked) << false;
        QTest::newRow("unavailable") << int(SecretError::Unavailable) << false;
        QTest::newRow("timed out") << int(SecretError::TimedOut) << false;
    }
    void whetherTheTokenIsKnownFollowsFromTheRead() {
        QFETCH(int, error);
        QFETCH(bool, isKnown);
        HostFixture host;
        host.secrets.failure = SecretError(error);
        QCOMPARE(host.makeStore()->isTokenKnown(), isKnown);
    }

    void aTokenThatIsNotUtf8IsEmpty_data() {
        QTest::addColumn<QByteArray>("stored");
        QTest::newRow("a lone byte") << QByteArray("abc\xff");
        QTest::newRow("cut off") << QByteArray("abc\xe2\x82");
        QTest::newRow("overlong") << QByteArray("\xc0\xaf");
        QTest::newRow("a surrogate") << QByteArray("\xed\xa0\x80");
    }
    void aTokenThatIsNotUtf8IsEmpty() {
        QFETCH(QByteArray, stored);
        HostFixture host;
        host.keepToken(stored);
        QCOMPARE(host.makeStore()->token(), QString());
    }

    void aTokenIsTrimmed_data() {
        QTest::addColumn<QString>("raw");
        QTest::addColumn<QString>("token");
        QTest::newRow("as it is") << QStringLiteral("abc") << QStringLiteral("abc");
        QTest::newRow("two leading blanks, a trailing blank and line break")
            << QStringLiteral("  abc \n") << QStringLiteral("abc");
        QTest::newRow("inner blanks stay")
            << QStringLiteral(" a b\tc ") << QStringLiteral("a b\tc");
        QTest::newRow("carriage return and tab")
            << QStringLiteral("\r\n\tabc\r\n") << QStringLiteral("abc");
        QTest::newRow("no-break and line separators")
            << QStringLiteral("\u00a0\u2028abc\u2029\u0085") << QStringLiteral("abc");
        QTest::newRow("a byte-order mark stays")
            << QStringLiteral("\ufeffabc") << QStringLiteral("\ufeffabc");
        QTest::newRow("zero-width spaces")
            << QStringLiteral("\u200b \u200babc\u200b\n\u200b") << QStringLiteral("abc");
        QTest::newRow("an inner zero-width space stays")
            << QStringLiteral("a\u200bc") << QStringLiteral("a\u200bc");
        QTest::newRow("not ASCII") << QStringLiteral(" tökén ") << QStringLiteral("tökén");
    }
    void aTokenIsTrimmed() {
        QFETCH(QString, raw);
        QFETCH(QString, token);
        HostFixture host;
        const auto store = host.makeStore();
        store->saveToken(raw);
        QCOMPARE(store->token(), token);
        QCOMPARE(bytes(host.keptToken()), token.toUtf8());
        QCOMPARE(host.makeStore()->token(), token);
    }

    void aBlankTextRemovesTheItem_data() {
        QTest::addColumn<QString>("raw");
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << QStringLiteral("   ");
        QTest::newRow("line breaks") << QStringLiteral("\n\r\n\t");
        QTest::newRow("zero-width spaces") << QStringLiteral("\u200b\u200b");
    }
    void aBlankTextRemovesTheItem() {
        QFETCH(QString, raw);
        HostFixture host;
        host.keepToken("stored");
        const auto store = host.makeStore();
        store->saveToken(raw);
        QCOMPARE(store->token(), QString());
        QCOMPARE(host.secrets.count(kService, kAccount), 0);
        QCOMPARE(host.makeStore()->token(), QString());
    }

    void savingTheSameTokenTwiceLeavesOneItem() {
        HostFixture host;
        const auto store = host.makeStore();
        store->saveToken(QStringLiteral("abc"));
        store->saveToken(QStringLiteral("abc"));
        QCOMPARE(host.secrets.count(kService, kAccount), 1);
        QCOMPARE(host.secrets.replacements, 2);
    }

    void memoryHoldsTheTokenWhenTheStoreFails() {
        HostFixture host;
        host.secrets.failure = SecretError::Unavailable;
        const auto store = host.makeStore();
        store->saveToken(QStringLiteral("abc"));
        QCOMPARE(store->token(), QStringLiteral("abc"));
        host.secrets.failure.reset();
        QCOMPARE(host.makeStore()->token(), QString());
    }

    void theTokenIsPublishedBeforeTheStoreIsWritten() {
        HostFixture host;
        const auto store = host.makeStore();
        QString tokenAtWrite;
        host.secrets.willWrite = [&] { tokenAtWrite = store->token(); };
        store->saveToken(QStringLiteral("abc"));
        QCOMPARE(tokenAtWrite, QStringLiteral("abc"));
    }

    void savingATokenSendsADisplayRequestAndThenAHeartbeat() {
        HostFixture host;
        host.http.answer(QStringLiteral("/api/display"), 200, "{}");
        const auto store = host.makeStore();
        store->saveToken(QStringLiteral("abc"));
        QCOMPARE(host.http.log(), (QStringList{QStringLiteral("GET /api/display"),
                                               QStringLiteral("POST /api/host/heartbeat")}));
        QCOMPARE(host.http.requests().at(1).headers.at(0).value, QByteArray("Bearer abc"));
    }

    void savingAnEmptyTokenSendsOnlyADisplayRequest() {
        HostFixture host;
        host.keepToken("stored");
        host.http.answer(QStringLiteral("/api/display"), 200, "{}");
        const auto store = host.makeStore();
        store->saveToken(QString());
        QCOMPARE(host.http.log(), QStringList{QStringLiteral("GET /api/display")});
    }

    void agreeingPostsAndChangesNothingByItself() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        const QSignalSpy changes(store.get(), &HostStore::objectWillChange);
        startTask(store->agree());
        QCOMPARE(host.http.log(), QStringList{QStringLiteral("POST /api/host/agree")});
        QCOMPARE(changes.count(), 0);
        host.http.resolve(0, HttpReply{200, R"({"agreed":true})"});
        QVERIFY(store->assignment().agreed);
    }

    void pausingLastsTwentyFourHoursFromTheClick() {
        HostFixture host;
        const auto store = host.makeStore();
        store->pause24h();
        QCOMPARE(*store->pausedUntil() - host.clock.now(),
                 Clock::TimePoint::duration(std::chrono::seconds(86400)));
    }

    void pausingTwiceAnHourApartEndsTwentyFourHoursAfterTheSecondClick() {
        HostFixture host;
        const auto store = host.makeStore();
        store->pause24h();
        host.clock.advance(1h);
        store->pause24h();
        host.clock.advance(24h - 1s);
        QVERIFY(store->isPaused());
        host.clock.advance(1s);
        QVERIFY(!store->isPaused());
    }

    void pausingRendersAndThenSendsAHeartbeat() {
        HostFixture host;
        host.keepToken("t");
        const auto store = makeLiveStore(host);
        host.http.clear();
        std::size_t requestsAtRender = 99;
        QObject::connect(store.get(), &HostStore::overlayNeedsRender, [&] {
            QVERIFY(!store->adsVisible());
            QCOMPARE(store->statusLine(),
                     QStringLiteral("Paused 24h. You may drop out of this week's split."));
            requestsAtRender = host.http.requests().size();
        });
        store->pause24h();
        QCOMPARE(requestsAtRender, std::size_t{0});
        QCOMPARE(host.http.log(), QStringList{QStringLiteral("POST /api/host/heartbeat")});
    }

    void pausingWhileTheScreensSleepStillSendsAHeartbeatAndSetsTheLine() {
        HostFixture host;
        host.keepToken("t");
        const auto store = host.makeStore();
        store->watchScreens();
        host.workspace.screensDidSleep();
        host.http.clear();
        store->pause24h();
        QCOMPARE(host.http.log().last(), QStringLiteral("POST /api/host/heartbeat"));
        QCOMPARE(store->statusLine(),
                 QStringLiteral("Paused 24h. You may drop out of this week's split."));
    }

    void withoutANotchTokenAndPauseAreStillKept() {
        HostFixture host;
        host.screens.set({}, {});
        const auto store = host.makeStore();
        store->saveToken(QStringLiteral("abc"));
        QCOMPARE(bytes(host.keptToken()), QByteArray("abc"));
        store->pause24h();
        QVERIFY(store->isPaused());
        QVERIFY(host.http.requests().empty());
        QCOMPARE(store->statusLine(), QStringLiteral("Notched MacBooks only."));
    }
};

BRIMLET_TEST(TestHostToken, QCoreApplication)
#include "tst_hosttoken.moc"
