#include "tests/picture/readimage.h"
#include "tests/support/goodfiles.h"
#include "tests/support/testprogram.h"

#include <QTest>
#include <QTransform>

using namespace brimlet;

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

class TestPictureReading final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aWebPFileOfFewBytesIsShownIfItIsWhole() {
        QImage pixel(1, 1, QImage::Format_ARGB32);
        pixel.fill(Qt::red);
        const QByteArray whole = samples::webp(pixel, true);
        QVERIFY2(whole.size() < 40, QByteArray::number(whole.size()).constData());
        QVERIFY(readPicture(whole));
        for (qsizetype size = 0; size < whole.size(); ++size) {
            QVERIFY2(!readPicture(whole.first(size)), QByteArray::number(size).constData());
        }
    }

    void initTestCase() {
        preparePictureReading();
        rehearsePictureReading();
    }

    void everyKindShowsItsFirstFrame_data() { addGoodFiles(); }
    void everyKindShowsItsFirstFrame() {
        QFETCH(QByteArray, bytes);
        const std::optional<QImage> picture = readImage(bytes);
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
        const std::optional<QImage> picture = readImage(bytes);
        QVERIFY(picture);
        QVERIFY(isNear(picture->pixel(20, 15), qRgb(100, 100, 100)));
    }

    void cmykIsConvertedToRgb() {
        // Inverted: no cyan, all magenta and yellow, no black make red.
        const std::optional<QImage> picture = readImage(samples::inkJpeg({255, 0, 0, 255}));
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
            const std::optional<QImage> decoded = readImage(bytes);
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
                readImage(samples::turnedJpeg(samples::jpeg(stored), orientation));
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
        const std::optional<QImage> picture = readImage(bytes);
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
            const std::optional<QImage> picture = readImage(bytes);
            QVERIFY(picture);
            QVERIFY(isNear(picture->pixel(64, 0), qRgba(0, 0, 128, 128))); // premultiplied
        }
    }

    void aFrameIsDrawnAtItsPlace() {
        const QImage frame = samples::quadrants(QSize(200, 100));
        const std::optional<QImage> picture = readImage(
            samples::animatedWebP(QSize(400, 400), {{.place = {200, 300}, .picture = frame}}));
        QVERIFY(picture);
        QCOMPARE(picture->size(), QSize(128, 128));
        QVERIFY(showsQuadrants(picture->copy(64, 96, 64, 32)));
        QCOMPARE(picture->pixel(32, 112), 0U);
        QCOMPARE(picture->pixel(96, 32), 0U);
    }

    void otherBytesAreNoPicture_data() {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray png = samples::png(samples::quadrants(kSize));
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("text") << QByteArray("<!DOCTYPE html>");
        QTest::newRow("an SVG") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg'/>");
        QTest::newRow("a BMP") << QByteArray("BM") + QByteArray(100, '\0');
        QTest::newRow("a PNG after a blank") << ' ' + png;
        QTest::newRow("another RIFF") << QByteArray("RIFF\4\0\0\0WAVE", 12);
        for (const char* signature : {"\x89PNG\r\n\x1a\n", "\xff\xd8\xff", "GIF89a"}) {
            QTest::addRow("only a signature, %d", signature[1]) << QByteArray(signature);
        }
        QTest::newRow("only a signature, WebP") << QByteArray("RIFF\4\0\0\0WEBP", 12);
    }
    void otherBytesAreNoPicture() {
        QFETCH(QByteArray, bytes);
        QVERIFY(!readImage(bytes));
    }

    void lengthAndSidesHaveLimits_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isRead");
        constexpr qsizetype limit = qsizetype{4} * 1024 * 1024;
        for (const auto& [name, bytes] : samples::goodFiles()) {
            QTest::addRow("%s of 4 MiB", name) << bytes.leftJustified(limit, ' ') << true;
            QTest::addRow("%s above 4 MiB", name) << bytes.leftJustified(limit + 1, ' ') << false;
        }
        for (const int side : {4096, 4097, 20'000}) {
            for (const QSize size : {QSize(side, 2), QSize(2, side)}) {
                const QImage picture = samples::quadrants(size);
                const auto row = [&](const char* format, const QByteArray& bytes) {
                    QTest::addRow("%s %dx%d", format, size.width(), size.height())
                        << bytes << (side <= 4096);
                };
                row("PNG", samples::png(picture));
                row("JPEG", samples::jpeg(picture));
                row("GIF", samples::gif(picture));
                if (side < 16'384) {
                    row("WebP", samples::webp(picture, true));
                }
            }
        }
        QTest::newRow("enormous PNG") << samples::pngOutline(0x7fffffff, 0x7fffffff) << false;
        QTest::newRow("negative PNG") << samples::pngOutline(0xffffffff, 1) << false;
        QTest::newRow("GIF frame beside its screen, which stays empty")
            << samples::gifOutline(QSize(9, 9), QRect(60'000, 60'000, 9, 9)) << true;
    }
    void lengthAndSidesHaveLimits() {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isRead);
        QCOMPARE(readImage(bytes).has_value(), isRead);
    }
};

BRIMLET_TEST(TestPictureReading, brimlet::NoApplication)
#include "tst_reading.moc"
