#include "creative/images/imagedecoding.h"

#include "tests/support/goodfiles.h"
#include "tests/support/sanitized.h"
#include "tests/support/testprogram.h"

#include <QColorSpace>
#include <QTest>
#include <QTransform>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QSize kSize(40, 30);

void addGoodFiles() {
    QTest::addColumn<QByteArray>("bytes");
    for (const auto& [name, bytes] : samples::goodFiles()) {
        QTest::newRow(name) << bytes;
    }
}

bool isNear(QRgb one, QRgb other) {
    const auto differ = [](int a, int b) { return qAbs(a - b) > 12; };
    return !differ(qRed(one), qRed(other)) && !differ(qGreen(one), qGreen(other)) &&
           !differ(qBlue(one), qBlue(other)) && !differ(qAlpha(one), qAlpha(other));
}

/// True when the middle of each quadrant has the colour it should have.
bool showsQuadrants(const QImage& picture) {
    const QImage expected = samples::quadrants(picture.size());
    for (const int x : {picture.width() / 4, picture.width() * 3 / 4}) {
        for (const int y : {picture.height() / 4, picture.height() * 3 / 4}) {
            if (!isNear(picture.pixel(x, y), expected.pixel(x, y))) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

class TestImageDecoding final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKindShowsItsFirstFrame_data() { addGoodFiles(); }
    void everyKindShowsItsFirstFrame() {
        QFETCH(QByteArray, bytes);
        const std::optional<QImage> picture = decodeImage(bytes);
        QVERIFY(picture);
        QCOMPARE(picture->size(), kSize);
        QVERIFY(showsQuadrants(*picture));
    }

    void greyIsGrey_data() {
        QTest::addColumn<QByteArray>("bytes");
        QImage grey(kSize, QImage::Format_Grayscale8);
        grey.fill(QColor(100, 100, 100));
        QTest::newRow("PNG") << samples::png(grey);
        QTest::newRow("deep PNG") << samples::png(grey.convertToFormat(QImage::Format_Grayscale16));
        QTest::newRow("JPEG") << samples::jpeg(grey);
    }
    void greyIsGrey() {
        QFETCH(QByteArray, bytes);
        const std::optional<QImage> picture = decodeImage(bytes);
        QVERIFY(picture);
        QVERIFY(isNear(picture->pixel(20, 15), qRgb(100, 100, 100)));
    }

    void cmykIsConvertedToRgb() {
        // Inverted: no cyan, all magenta and yellow, no black make red.
        const std::optional<QImage> picture = decodeImage(samples::inkJpeg({255, 0, 0, 255}));
        QVERIFY(picture);
        QCOMPARE(picture->size(), QSize(8, 8));
        QVERIFY(isNear(picture->pixel(4, 4), qRgb(255, 0, 0)));
    }

    void picturesAreScaledDownAndNeverUp_data() {
        QTest::addColumn<QSize>("source");
        QTest::addColumn<QSize>("kept");
        QTest::newRow("one pixel") << QSize(1, 1) << QSize(1, 1);
        QTest::newRow("small") << QSize(100, 50) << QSize(100, 50);
        QTest::newRow("below the limit") << QSize(127, 127) << QSize(127, 127);
        QTest::newRow("at the limit") << QSize(128, 128) << QSize(128, 128);
        QTest::newRow("above the limit") << QSize(129, 129) << QSize(128, 128);
        QTest::newRow("wide") << QSize(300, 200) << QSize(128, 85);
        QTest::newRow("high") << QSize(200, 300) << QSize(85, 128);
        QTest::newRow("a row") << QSize(4096, 1) << QSize(128, 1);
        QTest::newRow("a column") << QSize(1, 4096) << QSize(1, 128);
        QTest::newRow("large, of odd sides") << QSize(1531, 1123) << QSize(128, 93);
        QTest::newRow("large, of even sides") << QSize(1536, 1120) << QSize(128, 93);
        QTest::newRow("far wider than high, of odd sides") << QSize(3624, 255) << QSize(128, 9);
    }
    void picturesAreScaledDownAndNeverUp() {
        QFETCH(QSize, source);
        QFETCH(QSize, kept);
        const QImage picture = samples::quadrants(source);
        const QByteArray files[] = {
            samples::png(picture),        samples::interlacedPng(picture),
            samples::jpeg(picture),       samples::jpeg(picture, true),
            samples::gif(picture),        samples::webp(picture, false),
            samples::webp(picture, true), samples::animatedWebP(source, {{{}, picture}})};
        for (const QByteArray& bytes : files) {
            // Under the thread sanitizer a large picture takes longer than the usual limit.
            const std::optional<QImage> decoded =
                kIsSanitized ? decodeImage(bytes, cpuDeadline(10s)) : decodeImage(bytes);
            QVERIFY(decoded);
            QCOMPARE(decoded->size(), kept);
            QVERIFY(qMin(source.width(), source.height()) < 16 || showsQuadrants(*decoded));
        }
    }

    void aTurnedPhotographComesUpright_data() {
        QTest::addColumn<char>("orientation");
        QTest::addColumn<QTransform>("turn");
        // How the camera turned the upright picture before it stored it.
        QTest::newRow("as it is") << '\1' << QTransform();
        QTest::newRow("mirrored") << '\2' << QTransform(-1, 0, 0, 1, 0, 0);
        QTest::newRow("upside down") << '\3' << QTransform(-1, 0, 0, -1, 0, 0);
        QTest::newRow("flipped") << '\4' << QTransform(1, 0, 0, -1, 0, 0);
        QTest::newRow("rows for columns") << '\5' << QTransform(0, 1, 1, 0, 0, 0);
        QTest::newRow("to the left") << '\6' << QTransform(0, -1, 1, 0, 0, 0);
        QTest::newRow("columns for rows") << '\7' << QTransform(0, -1, -1, 0, 0, 0);
        QTest::newRow("to the right") << '\x8' << QTransform(0, 1, -1, 0, 0, 0);
    }
    void aTurnedPhotographComesUpright() {
        QFETCH(char, orientation);
        QFETCH(QTransform, turn);
        for (const QSize upright : {QSize(64, 32), QSize(1600, 800)}) {
            const QImage stored = samples::quadrants(upright).transformed(turn);
            const std::optional<QImage> picture =
                decodeImage(samples::turnedJpeg(samples::jpeg(stored), orientation));
            QVERIFY(picture);
            QCOMPARE(picture->size(), upright.width() > 128 ? QSize(128, 64) : upright);
            QVERIFY(showsQuadrants(*picture));
        }
    }

    void transparencyIsKept_data() {
        QTest::addColumn<QByteArray>("bytes");
        QImage clear(300, 200, QImage::Format_ARGB32);
        clear.fill(Qt::transparent);
        QTest::newRow("PNG") << samples::png(clear);
        QTest::newRow("palette PNG")
            << samples::png(clear.convertToFormat(QImage::Format_Indexed8));
        QTest::newRow("GIF") << samples::gif(clear);
        QTest::newRow("lossy WebP") << samples::webp(clear, false);
        QTest::newRow("lossless WebP") << samples::webp(clear, true);
    }
    void transparencyIsKept() {
        QFETCH(QByteArray, bytes);
        const std::optional<QImage> picture = decodeImage(bytes);
        QVERIFY(picture);
        QImage clear(128, 85, QImage::Format_ARGB32_Premultiplied);
        clear.fill(Qt::transparent);
        QCOMPARE(*picture, clear);
    }

    void transparentPixelsAddNoColour() {
        // Columns of opaque blue and of a fully transparent red.
        QImage stripes(512, 4, QImage::Format_ARGB32);
        for (int x = 0; x < stripes.width(); ++x) {
            for (int y = 0; y < stripes.height(); ++y) {
                stripes.setPixel(x, y, x % 2 == 0 ? qRgba(0, 0, 255, 255) : qRgba(255, 0, 0, 0));
            }
        }
        for (const QByteArray& bytes : {samples::png(stripes), samples::interlacedPng(stripes),
                                        samples::webp(stripes, true)}) {
            const std::optional<QImage> picture = decodeImage(bytes);
            QVERIFY(picture);
            QVERIFY(isNear(picture->pixel(64, 0), qRgba(0, 0, 128, 128))); // premultiplied
        }
    }

    void aFrameIsDrawnAtItsPlace() {
        const QImage frame = samples::quadrants(QSize(200, 100));
        const std::optional<QImage> picture = decodeImage(
            samples::animatedWebP(QSize(400, 400), {{.place = {200, 300}, .picture = frame}}));
        QVERIFY(picture);
        QCOMPARE(picture->size(), QSize(128, 128));
        QVERIFY(showsQuadrants(picture->copy(64, 96, 64, 32)));
        QCOMPARE(picture->pixel(32, 112), 0U);
        QCOMPARE(picture->pixel(96, 32), 0U);
    }

    void aPictureHoldsNothingButPixels_data() { addGoodFiles(); }
    void aPictureHoldsNothingButPixels() {
        QFETCH(QByteArray, bytes);
        const std::optional<QImage> picture = decodeImage(bytes);
        QVERIFY(picture);
        QCOMPARE(picture->format(), QImage::Format_ARGB32_Premultiplied);
        QCOMPARE(picture->devicePixelRatio(), 1.0);
        QVERIFY(picture->textKeys().isEmpty());
        QVERIFY(!picture->colorSpace().isValid());
        QCOMPARE(picture->dotsPerMeterX(), QImage(1, 1, picture->format()).dotsPerMeterX());
        QCOMPARE(picture->offset(), QPoint());
    }
};

BRIMLET_TEST(TestImageDecoding, brimlet::NoApplication)
#include "tst_decoding.moc"
