#include "creative/images/imagevalidation.h"

#include "creative/images/imagesanitising.h"
#include "tests/support/samplepictures.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

const QSize kSize(40, 30);

/// In the GIFs made here: the bytes up to the end of the colour table, and the repetition block.
constexpr qsizetype kGifHeader = 13 + 3 * 128;
constexpr qsizetype kGifRepeat = 19;

} // namespace

class TestImageValidation final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void formatsAreRecognisedByTheirFirstBytes_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<ImageFormat>("format");
        const QImage picture = samples::quadrants(kSize);
        QTest::newRow("PNG") << samples::png(picture) << ImageFormat::Png;
        QTest::newRow("JPEG") << samples::jpeg(picture) << ImageFormat::Jpeg;
        QTest::newRow("progressive JPEG") << samples::jpeg(picture, true) << ImageFormat::Jpeg;
        QTest::newRow("GIF") << samples::gif(picture) << ImageFormat::Gif;
        QTest::newRow("GIF of 1987")
            << samples::gif(picture).replace(4, 1, "7") << ImageFormat::Gif;
        QTest::newRow("lossy WebP") << samples::webp(picture, false) << ImageFormat::WebP;
        QTest::newRow("lossless WebP") << samples::webp(picture, true) << ImageFormat::WebP;
        QTest::newRow("animated WebP")
            << samples::animatedWebP(kSize, {{.place = {}, .picture = picture}})
            << ImageFormat::WebP;
    }
    void formatsAreRecognisedByTheirFirstBytes() {
        QFETCH(QByteArray, bytes);
        QFETCH(ImageFormat, format);
        const ImageFacts expected{.format = format, .width = 40, .height = 30};
        QCOMPARE(inspectImage(bytes), std::optional(expected));
    }

    void otherBytesAreNoPicture_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("one byte") << QByteArray("\xff");
        QTest::newRow("SVG") << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\"/>");
        QTest::newRow("HTML") << QByteArray("<!DOCTYPE html><title>Sign in</title>");
        QTest::newRow("BMP") << QByteArray("BM") + QByteArray(100, '\0');
        QTest::newRow("icon") << QByteArray("\0\0\1\0\1\0", 6) + QByteArray(100, '\0');
        QTest::newRow("TIFF") << QByteArray("II*\0", 4) + QByteArray(100, '\0');
        QTest::newRow("X pixmap") << QByteArray("/* XPM */ static char *x[] = {\"1 1 1 1\"};");
        QTest::newRow("sound in the container of WebP") << QByteArray("RIFF\4\0\0\0WAVE", 12);
        QTest::newRow("a byte before the signature")
            << ' ' + samples::png(samples::quadrants(kSize));
        for (const char* signature : {"\x89PNG\r\n\x1a\n", "\xff\xd8\xff", "GIF89a"}) {
            QTest::addRow("only a signature, %d", signature[1]) << QByteArray(signature);
        }
        QTest::newRow("only a signature, WebP") << QByteArray("RIFF\4\0\0\0WEBP", 12);
    }
    void otherBytesAreNoPicture() {
        QFETCH(QByteArray, bytes);
        QVERIFY(!inspectImage(bytes));
    }

    void onlyThePictureReachesADecoder_data() {
        QTest::addColumn<QByteArray>("bare");
        QTest::addColumn<QByteArray>("laden");
        const QImage picture = samples::quadrants(kSize);
        const QByteArray secret(1000, 's');

        const QByteArray png = samples::pngOutline(9, 9);
        QTest::newRow("PNG with text, profile and an empty piece")
            << png
            << png.first(33) + samples::pngChunk("iTXt", secret) +
                   samples::pngChunk("iCCP", secret) + samples::pngChunk("IDAT", {}) +
                   png.sliced(33) + "more";
        const QByteArray jpeg = "\xff\xd8" + samples::jpegFrame('\xc0', 9, 9) +
                                samples::jpegScan("\1\2\3") + "\xff\xd9";
        QTest::newRow("JPEG with comment, profile, preview and more")
            << jpeg
            << jpeg.first(2) + samples::jpegSegment('\xfe', secret) +
                   samples::jpegSegment('\xe2', "ICC_PROFILE" + secret) +
                   samples::jpegSegment('\xe1', "http://ns.adobe.com/xap" + secret) +
                   jpeg.sliced(2) + "more";
        QImage second(picture.size(), QImage::Format_RGB32);
        second.fill(Qt::black);
        const QByteArray gif = samples::gif(picture);
        const QByteArray bareGif = gif.first(kGifHeader) + gif.sliced(kGifHeader + kGifRepeat);
        QTest::newRow("GIF with comment and frames")
            << bareGif
            << gif.first(gif.size() - 1) + "!\xfe\4text" + QByteArray(1, '\0') +
                   samples::gif(second).sliced(kGifHeader + kGifRepeat);
        const QByteArray pixels = samples::webpOutline(kSize, true);
        QTest::newRow("WebP with profile and frames")
            << samples::webpFile(pixels)
            << samples::webpFile(
                   samples::webpCanvas(kSize, 0x2c) + samples::webpChunk("ICCP", secret) + pixels +
                   samples::webpChunk("EXIF", secret) + samples::webpChunk("XMP ", secret));
    }
    void onlyThePictureReachesADecoder() {
        QFETCH(QByteArray, bare);
        QFETCH(QByteArray, laden);
        const std::optional<SanitisedImage> expected = sanitiseImage(bare);
        const std::optional<SanitisedImage> image = sanitiseImage(laden);
        QVERIFY(expected && image);
        QCOMPARE(image->facts, expected->facts);
        QCOMPARE(image->body, expected->body);
    }

    void aFrameIsFoundOnItsCanvas() {
        const std::optional<SanitisedImage> image = sanitiseImage(samples::animatedWebP(
            QSize(40, 30), {{.place = {10, 4}, .picture = samples::quadrants(QSize(20, 16))}}));
        QVERIFY(image);
        QCOMPARE(image->frame, QRect(10, 4, 20, 16));
        QCOMPARE(image->facts.width, 40);
        QCOMPARE(image->facts.height, 30);
    }
};

BRIMLET_TEST(TestImageValidation, brimlet::NoApplication)
#include "tst_validation.moc"
