#include "creative/images/imagevalidation.h"
#include "tests/support/samplepictures.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

QByteArray pngOf(const QByteArray& chunks) {
    return "\x89PNG\r\n\x1a\n" + chunks;
}

QByteArray jpegOf(const QByteArray& segments) {
    return "\xff\xd8" + segments + "\xff\xd9";
}

/// A progressive picture of 512 by 256 blocks in one component, scanned this often.
QByteArray scanned(int times, char precision, char restartInterval = 0) {
    return jpegOf(samples::jpegFrame('\xc2', 4096, 2048, 1) +
                  samples::jpegSegment('\xdd', QByteArray(1, '\0') + restartInterval) +
                  samples::jpegScan("\1", 1, 63, precision).repeated(times));
}

/// A progressive picture of this size in the ten scans that most encoders write, its colours at
/// half resolution.
QByteArray photograph(int width, int height) {
    QByteArray frame = samples::jpegFrame('\xc2', width, height);
    frame[11] = '\x22';
    return jpegOf(frame + samples::jpegScan("\1\2\3", 0, 0, 0x01) +
                  samples::jpegScan("\1", 1, 5, 0x02) + samples::jpegScan("\3", 1, 63, 0x01) +
                  samples::jpegScan("\2", 1, 63, 0x01) + samples::jpegScan("\1", 6, 63, 0x02) +
                  samples::jpegScan("\1", 1, 63, 0x21) + samples::jpegScan("\1\2\3", 0, 0, 0x10) +
                  samples::jpegScan("\3", 1, 63, 0x10) + samples::jpegScan("\2", 1, 63, 0x10) +
                  samples::jpegScan("\1", 1, 63, 0x10));
}

} // namespace

/// What validation refuses in each format, without decoding.
class TestImageSurfaces final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void brokenPngsAreRefused_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isAccepted");
        const QByteArray outline = samples::pngOutline(9, 9);
        const QByteArray header = outline.sliced(8, 25);
        const QByteArray pixels = samples::pngChunk("IDAT", "x");
        const QByteArray end = samples::pngChunk("IEND", {});
        const auto palette = [&](int size) {
            return pngOf(header + samples::pngChunk("PLTE", QByteArray(size, 'x')) + pixels + end);
        };
        const QByteArray claim("\x40\0\0\0sPLT", 8); // a gibibyte
        QTest::newRow("a chunk that claims a gibibyte")
            << pngOf(header + claim + QByteArray(16, 'x')) << false;
        QTest::newRow("no header") << pngOf(pixels + end) << false;
        QTest::newRow("a header too late")
            << pngOf(samples::pngChunk("tEXt", "x") + header + pixels + end) << false;
        QTest::newRow("two headers") << pngOf(header + header + pixels + end) << false;
        QTest::newRow("a longer header")
            << pngOf(samples::pngChunk("IHDR", outline.sliced(16, 13) + 'x') + pixels + end)
            << false;
        QTest::newRow("no pixels") << pngOf(header + end) << false;
        QTest::newRow("no end") << pngOf(header + pixels) << false;
        QTest::newRow("an end with something in it")
            << pngOf(header + pixels + samples::pngChunk("IEND", "x")) << false;
        QTest::newRow("an unknown chunk that must be known")
            << pngOf(header + samples::pngChunk("ABCD", "x") + pixels + end) << false;
        QTest::newRow("an unknown chunk that need not be")
            << pngOf(header + samples::pngChunk("aBCD", "x") + pixels + end) << true;
        QTest::newRow("256 colours") << palette(768) << true;
        QTest::newRow("257 colours") << palette(771) << false;
        QTest::newRow("a third of a colour") << palette(767) << false;
        QTest::newRow("no colours") << palette(0) << false;
        QTest::newRow("a palette too late")
            << pngOf(header + pixels + samples::pngChunk("PLTE", "rgb") + end) << false;
        QTest::newRow("257 transparencies")
            << pngOf(header + samples::pngChunk("tRNS", QByteArray(257, 'x')) + pixels + end)
            << false;
        QTest::newRow("a depth of its own") << samples::pngOutline(9, 9, 7, 0) << false;
        QTest::newRow("a depth of another kind") << samples::pngOutline(9, 9, 4, 6) << false;
        QTest::newRow("a deep palette") << samples::pngOutline(9, 9, 16, 3) << false;
        QTest::newRow("an unknown kind") << samples::pngOutline(9, 9, 8, 1) << false;
        QTest::newRow("one bit of grey") << samples::pngOutline(9, 9, 1, 0) << true;
    }
    void brokenPngsAreRefused() { check(); }

    void brokenJpegsAreRefused_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isAccepted");
        const QByteArray frame = samples::jpegFrame('\xc0', 9, 9);
        const QByteArray scan = samples::jpegScan("\1\2\3");
        const auto framed = [&scan](const QByteArray& other) { return jpegOf(other + scan); };
        QTest::newRow("baseline") << framed(frame) << true;
        QTest::newRow("extended") << framed(samples::jpegFrame('\xc1', 9, 9)) << true;
        for (const int code : {0xc3, 0xc5, 0xc6, 0xc7, 0xc9, 0xca, 0xcb, 0xcd, 0xce, 0xcf}) {
            QTest::addRow("coding %x", unsigned(code))
                << framed(samples::jpegFrame(char(code), 9, 9)) << false;
        }
        for (const int code : {0xc8, 0xcc, 0xdc, 0xde, 0xdf}) {
            QTest::addRow("marker %x", unsigned(code))
                << framed(frame + samples::jpegSegment(char(code), "xx")) << false;
        }
        QTest::newRow("one component") << framed(samples::jpegFrame('\xc0', 9, 9, 1)) << true;
        QTest::newRow("two") << framed(samples::jpegFrame('\xc0', 9, 9, 2)) << false;
        QTest::newRow("four") << framed(samples::jpegFrame('\xc0', 9, 9, 4)) << true;
        QTest::newRow("five") << framed(samples::jpegFrame('\xc0', 9, 9, 5)) << false;
        QTest::newRow("twelve bits")
            << framed(samples::jpegFrame('\xc0', 9, 9, 3, 0x11, 12)) << false;
        QTest::newRow("sampled 4 by 4")
            << framed(samples::jpegFrame('\xc0', 9, 9, 3, 0x44)) << true;
        QTest::newRow("sampled 5 by 1")
            << framed(samples::jpegFrame('\xc0', 9, 9, 3, 0x51)) << false;
        QTest::newRow("sampled 1 by 0")
            << framed(samples::jpegFrame('\xc0', 9, 9, 3, 0x10)) << false;
        QTest::newRow("two frames") << framed(frame + frame) << false;
        QTest::newRow("no frame") << framed({}) << false;
        QTest::newRow("no scan") << jpegOf(frame) << false;
        QTest::newRow("no end") << framed(frame).chopped(2) << false;
        QTest::newRow("a segment past the end") << jpegOf(frame + scan + "\xff\xdb\1") << false;
        QTest::newRow("a segment shorter than its length")
            << framed(frame + QByteArray("\xff\xdb\0\1", 4)) << false;
        QTest::newRow("63 scans") << jpegOf(frame + scan.repeated(63)) << true;
        QTest::newRow("64 scans") << jpegOf(frame + scan.repeated(64)) << true;
        QTest::newRow("65 scans") << jpegOf(frame + scan.repeated(65)) << false;
        // 131 072 blocks, for which 100 visits each are the limit: 24 for writing a block, eight
        // for a scan that refines, two for a restart.
        QTest::newRow("9 refining scans of a large picture") << scanned(9, 0x10) << true;
        QTest::newRow("10 refining scans of a large picture") << scanned(10, 0x10) << false;
        QTest::newRow("64 first scans of a large picture") << scanned(64, 0x01) << true;
        QTest::newRow("25 scans with a restart at each block") << scanned(25, 0x01, 1) << true;
        QTest::newRow("26 scans with a restart at each block") << scanned(26, 0x01, 1) << false;
        QTest::newRow("64 scans with a restart after 127 blocks") << scanned(64, 0x01, 127) << true;
        QTest::newRow("64 empty scans of the largest picture, a restart at each block")
            << samples::idleJpeg(64, false, 1) << false;
        QTest::newRow("4 scans that refine all of the largest picture")
            << samples::idleJpeg(4, true) << false;
        QTest::newRow("a restart interval of one byte")
            << framed(frame + samples::jpegSegment('\xdd', "x")) << false;
        QTest::newRow("a photograph of 12 megapixels") << photograph(4032, 3024) << true;
        QTest::newRow("a photograph of 16 megapixels") << photograph(4096, 4096) << false;
    }
    void brokenJpegsAreRefused() { check(); }

    void brokenGifsAreRefused_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isAccepted");
        const QSize screen(9, 9);
        const QRect all(QPoint(), screen);
        const QByteArray good = samples::gifOutline(screen, all);
        const qsizetype frameAt = 13 + 3 * 128 + 8; // after header, colours and transparency
        QTest::newRow("good") << good << true;
        QTest::newRow("no end") << good.chopped(1) << false;
        QTest::newRow("no frame") << good.first(frameAt) + ';' << false;
        QTest::newRow("no colours left") << good.first(13 + 3 * 127) << false;
        QTest::newRow("a block past the end") << good.chopped(4) + '\x09' + "x" << false;
        QTest::newRow("an unknown block")
            << good.first(frameAt) + '?' + good.sliced(frameAt) << false;
        QTest::newRow("an empty frame") << samples::gifOutline(screen, QRect(0, 0, 0, 9)) << false;
        QTest::newRow("codes of no bits") << samples::gifOutline(screen, all, 0) << false;
        QTest::newRow("codes of one bit") << samples::gifOutline(screen, all, 1) << true;
        QTest::newRow("codes of eight bits") << samples::gifOutline(screen, all, 8) << true;
        QTest::newRow("codes of nine bits") << samples::gifOutline(screen, all, 9) << false;
    }
    void brokenGifsAreRefused() { check(); }

    void brokenWebPsAreRefused_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isAccepted");
        const QSize size(9, 9);
        const QByteArray pixels = samples::webpOutline(size, false);
        const QByteArray good = samples::webpFile(pixels);
        const QByteArray moving = samples::webpCanvas(QSize(9, 9), 2);
        const auto frame = [](int x, int width) {
            return samples::webpChunk("ANMF", char(x / 2) + QByteArray(15, '\0') +
                                                  samples::webpOutline(QSize(width, 9), false));
        };
        QTest::newRow("good") << good << true;
        QTest::newRow("longer than its bytes") << good.chopped(1) << false;
        QTest::newRow("no chunks") << samples::webpFile({}) << false;
        QTest::newRow("an unknown chunk first")
            << samples::webpFile(samples::webpChunk("ABCD", "xx") + pixels) << false;
        QTest::newRow("a chunk past the end")
            << samples::webpFile(QByteArray(pixels).replace(4, 1, "\x7f")) << false;
        QTest::newRow("a canvas only") << samples::webpFile(samples::webpCanvas(size)) << false;
        QTest::newRow("a short canvas")
            << samples::webpFile(samples::webpChunk("VP8X", "xxxx") + pixels) << false;
        QTest::newRow("a canvas of another size")
            << samples::webpFile(samples::webpCanvas(QSize(9, 10)) + pixels) << false;
        QTest::newRow("not a key frame")
            << samples::webpFile(QByteArray(pixels).replace(8, 1, "\x31")) << false;
        QTest::newRow("a frame on its canvas") << samples::webpFile(moving + frame(2, 7)) << true;
        QTest::newRow("a frame off its canvas") << samples::webpFile(moving + frame(2, 8)) << false;
        QTest::newRow("an animation without frame") << samples::webpFile(moving + pixels) << false;
        QTest::newRow("a frame too short")
            << samples::webpFile(moving + samples::webpChunk("ANMF", "xx")) << false;
        QTest::newRow("a frame without pixels")
            << samples::webpFile(moving + samples::webpChunk("ANMF", QByteArray(16, '\0')))
            << false;
    }
    void brokenWebPsAreRefused() { check(); }

private:
    static void check() {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isAccepted);
        QCOMPARE(inspectImage(bytes).has_value(), isAccepted);
    }
};

BRIMLET_TEST(TestImageSurfaces, brimlet::NoApplication)
#include "tst_surfaces.moc"
