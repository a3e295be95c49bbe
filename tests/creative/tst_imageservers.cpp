#include "creative/creativeimagecache.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/starttask.h"
#include "tests/support/fakes.h"
#include "tests/support/pngbytes.h"
#include "tests/support/rawserver.h"
#include "tests/support/readingdecoder.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;

namespace {

/// A cache over the real client and a server that sends any bytes.
struct ServedCache final {
    ServedCache() { caches.folder = home.path(); }

    /// Requests the picture and waits for the result.
    std::optional<QImage> ask(const QString& path) {
        auto answer = std::make_shared<std::optional<std::optional<QImage>>>();
        startTask(load(cache, server.url(path), answer));
        const bool isThere = QTest::qWaitFor([&] { return answer->has_value(); }, 20'000);
        return isThere ? **answer : std::nullopt;
    }
    [[nodiscard]] qsizetype files() const {
        const QDir folder(home.filePath(QStringLiteral("Brimlet/creatives")));
        return folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size();
    }

    static QCoro::Task<> load(CreativeImageCache& cache, Url url,
                              std::shared_ptr<std::optional<std::optional<QImage>>> answer) {
        std::optional<QImage> image = co_await cache.image(std::move(url));
        answer->emplace(std::move(image));
    }

    QTemporaryDir home;
    FakeCachesFolder caches;
    RawServer server;
    CurlHttpClient http;
    ReadingDecoder decoder;
    CreativeImageCache cache{{http, decoder, caches}, 1};
};

QByteArray withLength(qsizetype length, const QByteArray& body) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n" + body;
}

} // namespace

/// What servers may send in place of a picture, over a real connection.
class TestImageServers final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void otherRepliesLeaveNoFileAndAreRequestedAgain_data() {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray picture = pngOf(Qt::red);
        const QByteArray page = "<!DOCTYPE html><title>Sign in</title>";
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray asPng = "Content-Type: image/png\r\n";
        QTest::newRow("a page") << rawReply(200, page, "Content-Type: text/html\r\n");
        QTest::newRow("a page declared as a picture") << rawReply(200, page, asPng);
        QTest::newRow("a drawing declared as a picture")
            << rawReply(200, "<svg xmlns='http://www.w3.org/2000/svg'/>", asPng);
        QTest::newRow("nothing") << rawReply(200, {}, asPng);
        QTest::newRow("a page for 404") << rawReply(404, page);
        QTest::newRow("a picture for 404") << rawReply(404, picture, asPng);
        QTest::newRow("a picture for 304") << rawReply(304, {}, asPng);
        QTest::newRow("a length beyond the body") << withLength(picture.size() + 1, picture);
        QTest::newRow("a length short of the body") << withLength(picture.size() - 1, picture);
        QTest::newRow("a length short of nearly all") << withLength(8, picture);
        QTest::newRow("a negative length") << withLength(-1, picture);
        QTest::newRow("two lengths")
            << ok + "Content-Length: 5\r\nContent-Length: 6\r\n\r\n" + picture;
        QTest::newRow("a length beyond the limit")
            << withLength(qsizetype{4} * 1024 * 1024 + 1, picture);
        QTest::newRow("a body beyond the limit")
            << withLength(qsizetype{4} * 1024 * 1024 + 1,
                          picture.leftJustified(qsizetype{4} * 1024 * 1024 + 1, ' '));
        QTest::newRow("compressed without saying so")
            << rawReply(200, qCompress(picture).sliced(4), asPng);
    }
    void otherRepliesLeaveNoFileAndAreRequestedAgain() {
        QFETCH(QByteArray, bytes);
        ServedCache f;
        f.server.answerAndCut("/a.png", bytes);
        QVERIFY(!f.ask(QStringLiteral("/a.png")));
        QCOMPARE(f.files(), 0);
        f.server.answer("/a.png", rawReply(200, pngOf(Qt::red)));
        QVERIFY(f.ask(QStringLiteral("/a.png")));
        QCOMPARE(f.files(), 1);
        QCOMPARE(f.server.requests().size(), std::size_t{2});
    }

    void theDeclaredTypeOfAPictureIsIgnored_data() {
        QTest::addColumn<QByteArray>("headers");
        QTest::newRow("no type") << QByteArray();
        QTest::newRow("another picture's type") << QByteArray("Content-Type: image/jpeg\r\n");
        QTest::newRow("a page's type") << QByteArray("Content-Type: text/html\r\n");
        QTest::newRow("a drawing's type") << QByteArray("Content-Type: image/svg+xml\r\n");
        QTest::newRow("no type at all") << QByteArray("Content-Type: \xff\r\n");
    }
    void theDeclaredTypeOfAPictureIsIgnored() {
        QFETCH(QByteArray, headers);
        ServedCache f;
        f.server.answer("/a.svg", rawReply(200, pngOf(Qt::red), headers));
        const auto picture = f.ask(QStringLiteral("/a.svg"));
        QVERIFY(picture);
        QCOMPARE(picture->pixelColor(5, 5), QColor(Qt::red));
    }
};

BRIMLET_TEST(TestImageServers, QCoreApplication)
#include "tst_imageservers.moc"
