#include "creative/images/imagedecoding.h"
#include "creative/images/imagevalidation.h"
#include "tests/support/memoryuse.h"
#include "tests/support/samplepictures.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

constexpr qint64 kMebibyte = qint64{1024} * 1024;
const QSize kLargest(4096, 4096);

QImage plain(QSize size, QImage::Format format) {
    QImage picture(size, format);
    picture.fill(QColor(200, 100, 50));
    return picture;
}

} // namespace

class TestImageMemory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (isMemoryDistorted()) {
            QSKIP("the sanitizer has memory of its own");
        }
    }

    void theLargestPicturesStayWithinMemory_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("PNG") << samples::png(plain(kLargest, QImage::Format_ARGB32));
        QTest::newRow("PNG of one bit") << samples::png(plain(kLargest, QImage::Format_Mono));
        QTest::newRow("deep PNG") << samples::png(plain(QSize(4096, 2048), QImage::Format_RGBA64));
        QTest::newRow("JPEG") << samples::jpeg(plain(kLargest, QImage::Format_RGB32));
        QTest::newRow("JPEG of odd sides")
            << samples::jpeg(plain(QSize(4095, 4093), QImage::Format_RGB32));
        QTest::newRow("progressive JPEG")
            << samples::jpeg(plain(QSize(4096, 2720), QImage::Format_RGB32), true);
        QTest::newRow("GIF") << samples::plainGif(kLargest);
        QTest::newRow("lossy WebP") << samples::webp(plain(kLargest, QImage::Format_RGB32), false);
        QTest::newRow("lossless WebP")
            << samples::webp(plain(QSize(4096, 2730), QImage::Format_RGB32), true);
    }
    void theLargestPicturesStayWithinMemory() {
        QFETCH(QByteArray, bytes);
        QVERIFY(inspectImage(bytes));
        const qint64 before = memoryInUse();
        QVERIFY(forgetPeak());
        // Without a deadline: this test is about memory alone.
        const std::optional<QImage> picture = decodeImage(bytes, [] { return false; });
        QVERIFY(picture);
        QVERIFY2(memoryPeak() <= before + 80 * kMebibyte, qPrintable(growth(before)));
        QVERIFY2(memoryInUse() <= before + 8 * kMebibyte, qPrintable(growth(before)));
    }

    void aClaimedGibibyteCostsNothing() {
        const QByteArray outline = samples::pngOutline(1, 1);
        const QByteArray bytes =
            outline.first(33) + QByteArray("\x40\0\0\0sPLT", 8) + QByteArray(16, 'x');
        QCOMPARE(bytes.size(), 57);
        const qint64 before = memoryInUse();
        QVERIFY(forgetPeak());
        QVERIFY(!decodeImage(bytes));
        QVERIFY2(memoryPeak() <= before + kMebibyte, qPrintable(growth(before)));
    }

private:
    static QString growth(qint64 before) {
        return QStringLiteral("from %1 to %2, at most %3")
            .arg(before)
            .arg(memoryInUse())
            .arg(memoryPeak());
    }
};

BRIMLET_TEST(TestImageMemory, brimlet::NoApplication)
#include "tst_memory.moc"
