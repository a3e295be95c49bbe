#include "host/statusline.h"
#include "tests/support/hostfixture.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

using namespace brimlet;

namespace {

/// A request whose reply the store applies.
struct Endpoint final {
    const char* path;
    void (*request)(HostStore& store);
    QString failed;    ///< The line after a failed transfer; null where it does not change.
    QString notObject; ///< The line after valid JSON that is no object.
};

std::vector<Endpoint> endpoints() {
    using namespace statusline;
    return {{"/api/display", [](HostStore& store) { startTask(store.refreshDisplay()); },
             displayFailed(), displayFailed()},
            {"/api/host/me", [](HostStore& store) { startTask(store.refreshEstimate()); },
             QString(), tokenRejected()},
            {"/api/host/heartbeat",
             [](HostStore& store) {
                 startTask(store.ping(QStringLiteral("/api/host/heartbeat"), "POST"));
             },
             heartbeatFailed(), tokenRejected()},
            {"/api/host/agree", [](HostStore& store) { startTask(store.agree()); }, QString(),
             tokenRejected()}};
}

/// A store in a live week that gets a further reply from one endpoint.
struct LiveStore final {
    explicit LiveStore(Endpoint ownEndpoint)
        : endpoint(std::move(ownEndpoint)) {
        host.keepToken("t");
        store = host.makeStore();
        host.http.answer(QStringLiteral("/api/host/me"), 200,
                         R"({"weekStatus":"live","agreed":true,"estimatedCents":77,
                             "agreementText":"terms",
                             "creatives":[{"slotId":"left","brandName":"Old"}]})");
        startTask(store->refreshEstimate());
        before = store->assignment();
        lineBefore = store->statusLine();
    }

    void receive(const QByteArray& body) {
        host.http.answer(QString::fromLatin1(endpoint.path), 200, body);
        endpoint.request(*store);
    }
    /// True when the line says that the transfer failed, and nothing else changed.
    [[nodiscard]] bool isFailed() const {
        return store->assignment() == before &&
               store->statusLine() == (endpoint.failed.isNull() ? lineBefore : endpoint.failed);
    }
    [[nodiscard]] bool isNotAnObject() const {
        return store->assignment() == before && store->statusLine() == endpoint.notObject;
    }
    /// True after a reply without any known field: the week is unfilled, the slots are empty.
    [[nodiscard]] bool isEmptied() const {
        const Assignment& week = store->assignment();
        return week.weekStatus == u"unfilled" && !week.left && !week.right &&
               store->statusLine() != endpoint.failed && store->statusLine() != endpoint.notObject;
    }

    Endpoint endpoint;
    HostFixture host;
    std::shared_ptr<HostStore> store;
    Assignment before;
    QString lineBefore;
};

QByteArray nested(int depth) {
    return QByteArray(depth, '[') + QByteArray(depth, ']');
}

/// Different keys, just less than a mebibyte of them.
QByteArray manyKeys() {
    QByteArray keys;
    for (int i = 0; i < 90'000; ++i) {
        keys += '"' + QByteArray::number(i, 36) + "\":1,";
    }
    return keys;
}

} // namespace

/// Malformed and unusual JSON as the reply of each endpoint.
class TestHostileJson final : public QObject {
    Q_OBJECT

    static void addEndpoints() {
        QTest::addColumn<int>("endpoint");
        const auto all = endpoints();
        for (std::size_t i = 0; i < all.size(); ++i) {
            QTest::newRow(all.at(i).path) << static_cast<int>(i);
        }
    }
    static Endpoint fetchedEndpoint() {
        QFETCH(int, endpoint);
        return endpoints().at(static_cast<std::size_t>(endpoint));
    }

private Q_SLOTS:
    void theSampleFilesAreAppliedOrRejected_data() { addEndpoints(); }
    void theSampleFilesAreAppliedOrRejected() {
        const QDir folder(samplePath(u"json"));
        const QStringList names = folder.entryList({QStringLiteral("*.json")}, QDir::Files);
        if (names.isEmpty()) {
            QSKIP("no sample files: the folder BRIMLET_CORPORA/json is absent");
        }
        int applied = 0;
        int rejected = 0;
        for (const QString& name : names) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray body = file.readAll();
            LiveStore live(fetchedEndpoint());
            live.receive(body);
            if (name.startsWith(u"n_")) {
                QVERIFY2(live.isFailed(), qPrintable(name));
                ++rejected;
            } else if (name.startsWith(u"y_")) {
                // Qt's parser shows whether the top level is an object.
                const bool isObject = QJsonDocument::fromJson(body).isObject();
                QVERIFY2(isObject ? live.isEmptied() : live.isNotAnObject(), qPrintable(name));
                applied += isObject ? 1 : 0;
            } else {
                QVERIFY2(live.isFailed() || live.isNotAnObject() || live.isEmptied(),
                         qPrintable(name));
            }
        }
        QVERIFY(applied > 5);
        QVERIFY(rejected > 50);
    }

    void nothingOfATruncatedReplyIsApplied_data() { addEndpoints(); }
    void nothingOfATruncatedReplyIsApplied() {
        const QByteArray whole = R"({"weekStatus":"other","estimatedCents":5,"creatives":[]})";
        for (qsizetype size = 0; size < whole.size(); ++size) {
            LiveStore live(fetchedEndpoint());
            live.receive(whole.first(size));
            QVERIFY2(live.isFailed(), whole.first(size).constData());
        }
    }

    void invalidTextsAreFailedTransfers_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("a NUL after the end") << QByteArray("{}\0", 3);
        QTest::newRow("a NUL in a string") << QByteArray("{\"weekStatus\":\"a\0b\"}", 20);
        for (const char* lone :
             {"\\ud800", "\\udc00", "\\udc00\\ud800", "\\ud800x", "\\uD800\\n"}) {
            QTest::addRow("%s", lone) << "{\"weekStatus\":\"" + QByteArray(lone) + "\"}";
        }
        QTest::newRow("a surrogate in UTF-8") << QByteArray("{\"weekStatus\":\"\xed\xa0\x80\"}");
        QTest::newRow("a byte-order mark alone") << QByteArray("\xef\xbb\xbf");
        QTest::newRow("two byte-order marks") << QByteArray("\xef\xbb\xbf\xef\xbb\xbf{}");
        QTest::newRow("UTF-16") << QByteArray("\xff\xfe{\0}\0", 6);
        QTest::newRow("100 000 open lists") << QByteArray(100'000, '[');
        QTest::newRow("100 000 open objects") << QByteArray("{\"a\":").repeated(100'000);
        // Five megabytes, more than a reply may have.
        QTest::newRow("a million keys")
            << '{' + QByteArray("\"\":1,").repeated(1'000'000) + "\"a\":1}";
    }
    void invalidTextsAreFailedTransfers() {
        QFETCH(QByteArray, body);
        for (const Endpoint& endpoint : endpoints()) {
            LiveStore live(endpoint);
            live.receive(body);
            QVERIFY2(live.isFailed(), endpoint.path);
        }
    }

    void unusualObjectsAreApplied_data() {
        QTest::addColumn<QByteArray>("unusual"); // precedes the field that is checked
        QTest::newRow("an equal key") << QByteArray(R"("weekStatus":"first",)");
        QTest::newRow("an equal key of another type") << QByteArray(R"("weekStatus":[{}],)");
        QTest::newRow("an empty key") << QByteArray(R"("":"",)");
        QTest::newRow("a key with a NUL") << QByteArray(R"("weekStatus\u0000":"other",)");
        QTest::newRow("100 000 nested lists") << "\"x\":" + nested(100'000) + ',';
        QTest::newRow("100 000 lists as creatives") << "\"creatives\":" + nested(100'000) + ',';
        QTest::newRow("90 000 keys") << manyKeys();
        QTest::newRow("one key 150 000 times") << QByteArray("\"a\":1,").repeated(150'000);
        QTest::newRow("a number of 100 000 digits")
            << "\"estimatedCents\":" + QByteArray(100'000, '9') + ',';
    }
    void unusualObjectsAreApplied() {
        QFETCH(QByteArray, unusual);
        for (const Endpoint& endpoint : endpoints()) {
            LiveStore live(endpoint);
            live.receive('{' + unusual + "\"weekStatus\":\"last\"}");
            QCOMPARE(live.store->assignment().weekStatus, QStringLiteral("last"));
            QVERIFY(!live.store->assignment().left);
        }
    }

    void aByteOrderMarkIsSkipped() {
        for (const Endpoint& endpoint : endpoints()) {
            LiveStore live(endpoint);
            live.receive("\xef\xbb\xbf{\"weekStatus\":\"marked\"}");
            QCOMPARE(live.store->assignment().weekStatus, QStringLiteral("marked"));
        }
    }

    void ofTenThousandCreativesTheFirstOfEachSlotIsShown() {
        const QByteArray others = QByteArray(R"({"slotId":"top"},)").repeated(10'000);
        for (const Endpoint& endpoint : endpoints()) {
            LiveStore live(endpoint);
            live.receive("{\"creatives\":[" + others +
                         R"({"slotId":"right","brandName":"R"},{"slotId":"right"},)" +
                         R"({"slotId":"left","brandName":"L"})" + "]}");
            QCOMPARE(live.store->assignment().left->brandName, QStringLiteral("L"));
            QCOMPARE(live.store->assignment().right->brandName, QStringLiteral("R"));
        }
    }

    void anEscapedNulStaysInItsText() {
        for (const Endpoint& endpoint : endpoints()) {
            LiveStore live(endpoint);
            live.receive("{\"weekStatus\":\"live\\u0000\",\"creatives\":[{\"slotId\":\"left\","
                         "\"brandName\":\"a\\u0000b\","
                         "\"assetUrl\":\"https://a.test/\\u0000.png\"}]}");
            const Assignment& week = live.store->assignment();
            QCOMPARE(week.weekStatus.size(), 5);
            QVERIFY(!live.store->adsVisible()); // it is not "live"
            QCOMPARE(week.left->brandName, QStringView(u"a\0b", 3));
            QCOMPARE(week.left->assetURL->absoluteString(),
                     QStringLiteral("https://a.test/%00.png"));
        }
    }

    void aReplyIsReadUpToItsLimit() {
        constexpr qsizetype limit = qsizetype{1024} * 1024;
        for (const qsizetype size : {limit - 1, limit, limit + 1}) {
            for (const Endpoint& endpoint : endpoints()) {
                LiveStore live(endpoint);
                live.receive(QByteArray(R"({"weekStatus":"full"})").leftJustified(size, ' '));
                QCOMPARE(live.isFailed(), size > limit);
                QCOMPARE(live.store->assignment().weekStatus == u"full", size <= limit);
            }
        }
    }
};

BRIMLET_TEST(TestHostileJson, QCoreApplication)
#include "tst_hostilejson.moc"
