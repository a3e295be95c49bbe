#include "creative/images/imagevalidation.h"
#include "tests/support/samplepictures.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

QByteArray jpegOf(const QByteArray& frame, const QByteArray& scans) {
    return "\xff\xd8" + frame + scans + "\xff\xd9";
}

QByteArray progressive(int width, int height) {
    return jpegOf(samples::jpegFrame('\xc2', width, height), samples::jpegScan("\1\2\3", 0, 0));
}

QByteArray baseline(int width, int height) {
    return jpegOf(samples::jpegFrame('\xc0', width, height), samples::jpegScan("\1\2\3"));
}

QByteArray still(QSize canvas, bool isLossless) {
    return samples::webpFile(samples::webpOutline(canvas, isLossless));
}

/// Lossy pixels with an alpha channel of so many bytes, packed or not.
QByteArray withAlpha(QSize canvas, bool isPacked, int length = 10) {
    return samples::webpFile(samples::webpCanvas(canvas, 0x10) +
                             samples::webpChunk("ALPH", QByteArray(1, isPacked ? '\1' : '\0') +
                                                            QByteArray(length - 1, 'x')) +
                             samples::webpOutline(canvas, false));
}

} // namespace

class TestImageLimits final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sidesAndMemoryHaveLimits_data();
    void sidesAndMemoryHaveLimits() {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isAccepted);
        QCOMPARE(inspectImage(bytes).has_value(), isAccepted);
    }

    void aBodyHasALimit_data() {
        QTest::addColumn<QByteArray>("bytes");
        const QImage picture = samples::quadrants(QSize(40, 30));
        QTest::newRow("PNG") << samples::png(picture);
        QTest::newRow("JPEG") << samples::jpeg(picture);
        QTest::newRow("GIF") << samples::gif(picture);
        QTest::newRow("WebP") << samples::webp(picture, true);
    }
    void aBodyHasALimit() {
        QFETCH(QByteArray, bytes);
        constexpr qsizetype limit = qsizetype{4} * 1024 * 1024;
        // Bytes after the end of a picture are ignored.
        QVERIFY(inspectImage(bytes.leftJustified(limit - 1, ' ')));
        QVERIFY(inspectImage(bytes.leftJustified(limit, ' ')));
        QVERIFY(!inspectImage(bytes.leftJustified(limit + 1, ' ')));
    }
};

void TestImageLimits::sidesAndMemoryHaveLimits_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isAccepted");
    for (const int side : {0, 1, 4095, 4096, 4097}) {
        const bool isAccepted = side >= 1 && side <= 4096;
        for (const QSize shape : {QSize(side, 1), QSize(1, side)}) {
            const auto row = [&shape, isAccepted](const char* format, const QByteArray& bytes) {
                QTest::addRow("%s %dx%d", format, shape.width(), shape.height())
                    << bytes << isAccepted;
            };
            row("PNG", samples::pngOutline(quint32(shape.width()), quint32(shape.height())));
            row("JPEG", baseline(shape.width(), shape.height()));
            row("lossy WebP", still(shape, false));
            if (side > 0) {
                row("GIF", samples::gifOutline(shape, QRect(0, 0, 1, 1)));
                row("lossless WebP", still(shape, true));
                row("WebP canvas", samples::webpFile(samples::webpCanvas(shape) +
                                                     samples::webpOutline(shape, false)));
            }
        }
    }
    QTest::newRow("enormous PNG") << samples::pngOutline(0x7fffffff, 0x7fffffff) << false;
    QTest::newRow("negative PNG") << samples::pngOutline(0xffffffff, 1) << false;

    QTest::newRow("PNG of 64 MiB") << samples::pngOutline(4096, 4096) << true;
    QTest::newRow("deep PNG below 64 MiB") << samples::pngOutline(4096, 2047, 16) << true;
    QTest::newRow("deep PNG of 64 MiB") << samples::pngOutline(4096, 2048, 16) << true;
    QTest::newRow("deep PNG above 64 MiB") << samples::pngOutline(4096, 2049, 16) << false;
    QTest::newRow("JPEG of 64 MiB") << baseline(4096, 4096) << true;
    // Three components of two bytes, in blocks: 512 blocks across, 341 rows of them fit.
    QTest::newRow("progressive JPEG below 64 MiB") << progressive(4096, 8 * 340) << true;
    QTest::newRow("progressive JPEG at 64 MiB") << progressive(4096, 8 * 341) << true;
    QTest::newRow("progressive JPEG above 64 MiB") << progressive(4096, 8 * 341 + 1) << false;
    QTest::newRow("GIF of 64 MiB")
        << samples::gifOutline(QSize(4096, 4096), QRect(0, 0, 4096, 4096)) << true;
    QTest::newRow("lossy WebP of 64 MiB") << still(QSize(4096, 4096), false) << true;
    QTest::newRow("lossless WebP below 64 MiB") << still(QSize(4096, 2729), true) << true;
    QTest::newRow("lossless WebP at 64 MiB") << still(QSize(4096, 2730), true) << true;
    QTest::newRow("lossless WebP above 64 MiB") << still(QSize(4096, 2731), true) << false;
    QTest::newRow("WebP with alpha below 64 MiB") << withAlpha(QSize(4096, 3275), false) << true;
    QTest::newRow("WebP with alpha at 64 MiB") << withAlpha(QSize(4096, 3276), false) << true;
    QTest::newRow("WebP with alpha above 64 MiB") << withAlpha(QSize(4096, 3277), false) << false;
    // 5 000 000 bytes of pixels leave room for the tables of 44 363 bytes.
    const QSize square(1000, 1000);
    QTest::newRow("packed alpha below 64 MiB") << withAlpha(square, true, 44362) << true;
    QTest::newRow("packed alpha at 64 MiB") << withAlpha(square, true, 44363) << true;
    QTest::newRow("packed alpha above 64 MiB") << withAlpha(square, true, 44364) << false;
    QTest::newRow("plain alpha of any length") << withAlpha(square, false, 44364) << true;
    QTest::newRow("packed alpha of few tiles") << withAlpha(QSize(400, 400), true, 90000) << true;

    QTest::newRow("GIF screen without size")
        << samples::gifOutline(QSize(0, 0), QRect(0, 0, 4096, 4096)) << true;
    QTest::newRow("GIF frame at the limit")
        << samples::gifOutline(QSize(9, 9), QRect(4000, 4000, 96, 96)) << true;
    QTest::newRow("GIF frame too far right")
        << samples::gifOutline(QSize(9, 9), QRect(4000, 0, 97, 1)) << false;
    QTest::newRow("GIF frame too far down")
        << samples::gifOutline(QSize(9, 9), QRect(0, 4000, 1, 97)) << false;
}

BRIMLET_TEST(TestImageLimits, brimlet::NoApplication)
#include "tst_limits.moc"
