#include "creative/creativeimagecache.h"
#include "platform/curl/curlhttpclient.h"
#include "tests/support/faultserverprocess.h"
#include "tests/support/hostfixture.h"
#include "tests/support/memoryuse.h"
#include "tests/support/pngbytes.h"
#include "tests/support/readingdecoder.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>
#include <QTestEventLoop>

#include <functional>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

/// The most memory above that after the warm-up.
constexpr qint64 kMostGrowth = qint64{256} * 1024;

const QByteArray kBody = R"({"weekStatus":"live","agreed":true,"estimatedCents":1234,
    "agreementText":"Be kind.","creatives":[
    {"slotId":"left","brandName":"Quiet Bicycle","copy":"Home before the bell"},
    {"slotId":"right","brandName":"Palindrome Tea","copy":"Never odd or even"}]})";

qsizetype descriptorCount() {
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
}

/// Sends requests to each endpoint in turn and, in each round, for a picture that is not cached.
QCoro::Task<> ask(std::shared_ptr<HostStore> store, ImagePorts images, Url pictureUrl,
                  FakeWorkspace* workspace, int count, std::function<void()> done) {
    for (int i = 0; i < count; ++i) {
        switch (i % 8) {
        case 0:
            co_await store->refreshDisplay();
            break;
        case 1:
            co_await store->agree();
            break;
        case 2: // also sends a heartbeat
            workspace->screensDidWake();
            co_await store->refreshEstimate();
            break;
        case 3: {
            CreativeImageCache cache(images, 1);
            (void)co_await cache.image(pictureUrl);
            break;
        }
        default:
            co_await store->refreshEstimate();
        }
    }
    done();
}

} // namespace

/// The core over weeks: thousands of replies, and a day of ticks.
class TestLongLife final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Case 41
    void thousandsOfFaultyRepliesLeaveNothingBehind() {
        bool isCountGiven = false;
        int replies = qEnvironmentVariableIntValue("BRIMLET_REPLIES", &isCountGiven);
        replies = isCountGiven ? replies : 20'000;
        const int warmUp = std::min(replies / 4, 10'000);
        bool isGiven = false;
        int seed = qEnvironmentVariableIntValue("BRIMLET_SEED", &isGiven);
        seed = isGiven ? seed : static_cast<int>(QRandomGenerator::global()->bounded(1'000'000));
        qInfo("BRIMLET_SEED=%d", seed);

        FaultServerProcess service;
        const auto script = [&](double share) {
            return QJsonObject{
                {QStringLiteral("answers"),
                 QJsonObject{{QStringLiteral("/picture"),
                              QJsonArray{faults::reply(200, pngOf(QColor(Qt::darkGreen)))}},
                             {QString(), QJsonArray{faults::reply(200, kBody)}}}},
                {QStringLiteral("random"),
                 QJsonObject{{QStringLiteral("seed"), seed}, {QStringLiteral("share"), share}}}};
        };
        HostFixture host;
        host.bundle.info.insert(QStringLiteral("BrimletAPIURL"), service.root());
        host.keepToken("demo-host-token");
        FakeCachesFolder unwritable;
        unwritable.folder = QStringLiteral("/proc/brimlet");
        ReadingDecoder decoder;
        CurlHttpClient http;
        HostPorts ports = host.ports();
        const auto store = HostStore::create(
            {ports.screens, ports.workspace, ports.secrets, http, ports.bundle, ports.clock});
        store->watchScreens();
        const Url pictureUrl = Url::fromString(service.root() + QStringLiteral("/picture")).value();
        const auto run = [&](double share, int count) {
            service.follow(script(share));
            // Not qWaitFor, which sleeps between its checks.
            QTestEventLoop loop;
            startTask(ask(store, {http, decoder, unwritable}, pictureUrl, &host.workspace, count,
                          [&loop] { loop.exitLoop(); }));
            loop.enterLoop(600);
            return !loop.timeout();
        };

        QVERIFY(run(0.5, warmUp));
        QVERIFY(run(0, 100));
        const qint64 memory = memoryInUse();
        const int threads = threadCount();
        const qsizetype descriptors = descriptorCount();
        QVERIFY(run(0.5, replies));
        QVERIFY(run(0, 100));
        QCOMPARE(store->statusLine(), QStringLiteral("Ads on. This week ~€12.34 estimate."));
        QCOMPARE(threadCount(), threads);
        // Up to four idle connections are kept, depending on the last faults.
        constexpr qsizetype kMostKept = 4;
        QVERIFY(qAbs(descriptorCount() - descriptors) <= kMostKept);
        qInfo("%lld KiB more memory", (memoryInUse() - memory) / 1024);
        if (!isMemoryDistorted()) {
            QVERIFY(memoryInUse() <= memory + kMostGrowth);
        }
    }

    // Case 42
    void aDayHasItsQueriesAndHeartbeatsAndNotOneMore() {
        HostFixture host;
        host.keepToken("demo-host-token");
        for (const char* const path : {"/api/display", "/api/host/me", "/api/host/heartbeat"}) {
            host.http.answer(QLatin1StringView(path), 200, kBody);
        }
        const auto store = host.makeStore();
        store->startTimers();
        host.clock.advance(24h);
        const QStringList log = host.http.log();
        QCOMPARE(log.count(QStringLiteral("GET /api/host/me")), 28'800);
        QCOMPARE(log.count(QStringLiteral("POST /api/host/heartbeat")), 96 + 1);
        QCOMPARE(log.count(QStringLiteral("GET /api/display")), 1);
    }
};

BRIMLET_TEST(TestLongLife, QCoreApplication)
#include "tst_longlife.moc"
