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
    void (*ask)(HostStore& store);
    QString failed;    ///< What a failed transfer says; null where the line stays as it was.
    QString notObject; ///< What valid JSON says that is no object.
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

/// A store in the middle of a live week, asked for more at one endpoint.
struct AskedStore final {
    explicit AskedStore(Endpoint asked)
        : endpoint(std::move(asked)) {
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
        endpoint.ask(*store);
    }
    /// Nothing is changed but the line, which says that the transfer failed.
    [[nodiscard]] bool isFailed() const {
        return store->assignment() == before &&
               store->statusLine() == (endpoint.failed.isNull() ? lineBefore : endpoint.failed);
    }
    [[nodiscard]] bool isNotAnObject() const {
        return store->assignment() == before && store->statusLine() == endpoint.notObject;
    }
    /// A reply without a single field that is known: the week is unfilled, the slots are empty.
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

/// So many keys, each another one, are just less than a mebibyte.
QByteArray manyKeys() {
    QByteArray keys;
    for (int i = 0; i < 90'000; ++i) {
        keys += '"' + QByteArray::number(i, 36) + "\":1,";
    }
    return keys;
}

} // namespace

/// Replies that parsers stumble over, at each endpoint of the store.
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
    void theSampleFilesAreAppliedOrRefused_data() { addEndpoints(); }
    void theSampleFilesAreAppliedOrRefused() {
        const QDir folder(samplePath(u"json"));
        const QStringList names = folder.entryList({QStringLiteral("*.json")}, QDir::Files);
        if (names.isEmpty()) {
            QSKIP("no sample files: the folder BRIMLET_CORPORA/json is absent");
        }
        int applied = 0;
        int refused = 0;
        for (const QString& name : names) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray body = file.readAll();
            AskedStore asked(fetchedEndpoint());
            asked.receive(body);
            if (name.startsWith(u"n_")) {
                QVERIFY2(asked.isFailed(), qPrintable(name));
                ++refused;
            } else if (name.startsWith(u"y_")) {
                // Another reader tells whether there is an object.
                const bool isObject = QJsonDocument::fromJson(body).isObject();
                QVERIFY2(isObject ? asked.isEmptied() : asked.isNotAnObject(), qPrintable(name));
                applied += isObject ? 1 : 0;
            } else {
                QVERIFY2(asked.isFailed() || asked.isNotAnObject() || asked.isEmptied(),
                         qPrintable(name));
            }
        }
        QVERIFY(applied > 5);
        QVERIFY(refused > 50);
    }

    void notEvenWhatStandsBeforeTheFaultIsApplied_data() { addEndpoints(); }
    void notEvenWhatStandsBeforeTheFaultIsApplied() {
        const QByteArray whole = R"({"weekStatus":"other","estimatedCents":5,"creatives":[]})";
        for (qsizetype size = 0; size < whole.size(); ++size) {
            AskedStore asked(fetchedEndpoint());
            asked.receive(whole.first(size));
            QVERIFY2(asked.isFailed(), whole.first(size).constData());
        }
    }

    void oddTextsAreFailedTransfers_data() {
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
        // Five megabytes are more than a reply may have.
        QTest::newRow("a million keys")
            << '{' + QByteArray("\"\":1,").repeated(1'000'000) + "\"a\":1}";
    }
    void oddTextsAreFailedTransfers() {
        QFETCH(QByteArray, body);
        for (const Endpoint& endpoint : endpoints()) {
            AskedStore asked(endpoint);
            asked.receive(body);
            QVERIFY2(asked.isFailed(), endpoint.path);
        }
    }

    void oddObjectsAreAppliedAllTheSame_data() {
        QTest::addColumn<QByteArray>("odd"); // what stands before the field that counts
        QTest::newRow("a doubled key") << QByteArray(R"("weekStatus":"first",)");
        QTest::newRow("a doubled key of another type") << QByteArray(R"("weekStatus":[{}],)");
        QTest::newRow("an empty key") << QByteArray(R"("":"",)");
        QTest::newRow("a key with a NUL") << QByteArray(R"("weekStatus\u0000":"other",)");
        QTest::newRow("100 000 lists in each other") << "\"x\":" + nested(100'000) + ',';
        QTest::newRow("100 000 lists as creatives") << "\"creatives\":" + nested(100'000) + ',';
        QTest::newRow("90 000 keys") << manyKeys();
        QTest::newRow("one key 150 000 times") << QByteArray("\"a\":1,").repeated(150'000);
        QTest::newRow("a number of 100 000 digits")
            << "\"estimatedCents\":" + QByteArray(100'000, '9') + ',';
    }
    void oddObjectsAreAppliedAllTheSame() {
        QFETCH(QByteArray, odd);
        for (const Endpoint& endpoint : endpoints()) {
            AskedStore asked(endpoint);
            asked.receive('{' + odd + "\"weekStatus\":\"last\"}");
            QCOMPARE(asked.store->assignment().weekStatus, QStringLiteral("last"));
            QVERIFY(!asked.store->assignment().left);
        }
    }

    void aByteOrderMarkIsPassedOver() {
        for (const Endpoint& endpoint : endpoints()) {
            AskedStore asked(endpoint);
            asked.receive("\xef\xbb\xbf{\"weekStatus\":\"marked\"}");
            QCOMPARE(asked.store->assignment().weekStatus, QStringLiteral("marked"));
        }
    }

    void ofTenThousandCreativesTheFirstOfEachSlotIsShown() {
        const QByteArray others = QByteArray(R"({"slotId":"top"},)").repeated(10'000);
        for (const Endpoint& endpoint : endpoints()) {
            AskedStore asked(endpoint);
            asked.receive("{\"creatives\":[" + others +
                          R"({"slotId":"right","brandName":"R"},{"slotId":"right"},)" +
                          R"({"slotId":"left","brandName":"L"})" + "]}");
            QCOMPARE(asked.store->assignment().left->brandName, QStringLiteral("L"));
            QCOMPARE(asked.store->assignment().right->brandName, QStringLiteral("R"));
        }
    }

    void anEscapedNulStaysInItsText() {
        for (const Endpoint& endpoint : endpoints()) {
            AskedStore asked(endpoint);
            asked.receive("{\"weekStatus\":\"live\\u0000\",\"creatives\":[{\"slotId\":\"left\","
                          "\"brandName\":\"a\\u0000b\","
                          "\"assetUrl\":\"https://a.test/\\u0000.png\"}]}");
            const Assignment& week = asked.store->assignment();
            QCOMPARE(week.weekStatus.size(), 5);
            QVERIFY(!asked.store->adsVisible()); // it is not "live"
            QCOMPARE(week.left->brandName, QStringView(u"a\0b", 3));
            QCOMPARE(week.left->assetURL->absoluteString(),
                     QStringLiteral("https://a.test/%00.png"));
        }
    }

    void aReplyIsReadUpToItsLimit() {
        constexpr qsizetype limit = qsizetype{1024} * 1024;
        for (const qsizetype size : {limit - 1, limit, limit + 1}) {
            for (const Endpoint& endpoint : endpoints()) {
                AskedStore asked(endpoint);
                asked.receive(QByteArray(R"({"weekStatus":"full"})").leftJustified(size, ' '));
                QCOMPARE(asked.isFailed(), size > limit);
                QCOMPARE(asked.store->assignment().weekStatus == u"full", size <= limit);
            }
        }
    }
};

BRIMLET_TEST(TestHostileJson, QCoreApplication)
#include "tst_hostilejson.moc"
