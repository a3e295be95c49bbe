#include "creative/images/imagedecoding.h"
#include "creative/images/imagevalidation.h"
#include "creative/images/pictureshrinker.h"
#include "tests/support/goodfiles.h"
#include "tests/support/memoryuse.h"
#include "tests/support/testprogram.h"

#include <QRandomGenerator>
#include <QTemporaryFile>
#include <QTest>

#include <unistd.h>

using namespace brimlet;

namespace {

constexpr qint64 kMebibyte = qint64{1024} * 1024;

void addGoodFiles() {
    QTest::addColumn<QByteArray>("bytes");
    for (const auto& [name, bytes] : samples::goodFiles()) {
        QTest::newRow(name) << bytes;
    }
}

QImage plainGrey(QSize size) {
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(qRgb(128, 128, 128));
    return picture;
}

/// True when the size is the kept size for these facts, upright or turned, and every pixel is
/// validly premultiplied.
bool isKept(const QImage& picture, const std::optional<ImageFacts>& facts) {
    const QSize size = facts ? keptSize(QSize(facts->width, facts->height)) : QSize();
    if (size.isEmpty() || (picture.size() != size && picture.size() != size.transposed())) {
        return false;
    }
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = reinterpret_cast<const QRgb*>(picture.constScanLine(y))[x];
            if (qMax(qRed(pixel), qMax(qGreen(pixel), qBlue(pixel))) > qAlpha(pixel)) {
                return false;
            }
        }
    }
    return true;
}

/// The bytes with one to eight changes: a byte, a bit, a piece taken out, doubled or overwritten.
QByteArray mutated(QByteArray bytes, QRandomGenerator& random) {
    const int changes = random.bounded(1, 9);
    for (int i = 0; i < changes && bytes.size() > 16; ++i) {
        const qsizetype at = random.bounded(int(bytes.size()));
        const qsizetype length = random.bounded(1, 17);
        switch (random.bounded(5)) {
        case 0:
            bytes[at] = static_cast<char>(random.bounded(256));
            break;
        case 1:
            bytes[at] = static_cast<char>(bytes[at] ^ 1 << random.bounded(8));
            break;
        case 2:
            bytes.remove(at, length);
            break;
        case 3:
            bytes.insert(at, bytes.mid(at, length));
            break;
        case 4:
            bytes.replace(at, length, QByteArray(length, random.bounded(2) ? '\xff' : '\0'));
            break;
        }
    }
    return bytes;
}

/// How often decoding checks its deadline; 0 when the bytes hold no picture.
int deadlineChecks(const QByteArray& bytes) {
    int checks = 0;
    const bool isDecoded = decodeImage(bytes, [&checks] {
                               ++checks;
                               return false;
                           }).has_value();
    return isDecoded ? checks : 0;
}

/// Decodes with a deadline that passes after so many checks.
std::optional<QImage> decodedWithin(int checks, const QByteArray& bytes) {
    return decodeImage(bytes, [&checks] { return checks-- <= 0; });
}

} // namespace

/// Decoding hostile bytes.
class TestImageHardening final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aCutFileHoldsNoPicture_data() { addGoodFiles(); }
    void aCutFileHoldsNoPicture() {
        QFETCH(QByteArray, bytes);
        for (qsizetype size = 0; size < bytes.size(); ++size) {
            QVERIFY2(!decodeImage(bytes.first(size)),
                     qPrintable(QStringLiteral("cut to %1 bytes").arg(size)));
        }
        QVERIFY(decodeImage(bytes));
    }

    void randomChangesDoNoHarm_data() { addGoodFiles(); }
    void randomChangesDoNoHarm() {
        QFETCH(QByteArray, bytes);
        constexpr quint32 seed = 20240601;
        qInfo("seed %u", seed);
        QRandomGenerator random(seed);
        const qint64 before = memoryInUse();
        const bool isMeasured = !isMemoryDistorted() && forgetPeak();
        for (int i = 0; i < 600; ++i) {
            const QByteArray other = mutated(bytes, random);
            const std::optional<QImage> picture = decodeImage(other);
            QVERIFY(!picture || isKept(*picture, inspectImage(other)));
        }
        QVERIFY(!isMeasured || memoryPeak() <= before + 80 * kMebibyte);
        QVERIFY(!isMeasured || memoryInUse() <= before + 8 * kMebibyte);
    }

    void aPassedDeadlineEndsDecoding_data() { addGoodFiles(); }
    void aPassedDeadlineEndsDecoding() {
        QFETCH(QByteArray, bytes);
        const int needed = deadlineChecks(bytes);
        QVERIFY(needed > 0);
        for (int checks = 0; checks < needed; ++checks) {
            QVERIFY(!decodedWithin(checks, bytes));
        }
        QVERIFY(decodedWithin(needed, bytes));
    }

    void largePicturesCheckTheirDeadlineOften_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("least");
        QRandomGenerator random(7);
        QImage noise(700, 500, QImage::Format_RGB32);
        random.fillRange(reinterpret_cast<quint32*>(noise.bits()), qsizetype{700} * 500);
        // Each row of a PNG, each kilobyte of what Qt decodes, each piece of a WebP.
        QTest::newRow("PNG") << samples::png(noise) << 500;
        QTest::newRow("interlaced PNG") << samples::interlacedPng(noise) << 900;
        QTest::newRow("JPEG") << samples::jpeg(noise) << 100;
        QTest::newRow("progressive JPEG") << samples::jpeg(noise, true) << 100;
        QTest::newRow("GIF") << samples::gif(samples::quadrants(noise.size())) << 100;
        QTest::newRow("lossy WebP") << samples::webp(noise, false) << 10;
        QTest::newRow("lossless WebP") << samples::webp(noise, true) << 30;
    }
    void largePicturesCheckTheirDeadlineOften() {
        QFETCH(QByteArray, bytes);
        QFETCH(int, least);
        const int needed = deadlineChecks(bytes);
        QVERIFY2(needed >= least, qPrintable(QString::number(needed)));
        for (const int checks : {0, 1, needed / 2, needed - 1}) {
            QVERIFY(!decodedWithin(checks, bytes));
        }
    }

    void endlessPixelsAreGivenUp() {
        // Some hundred million pixels for a picture of 256.
        const QByteArray bytes = samples::endlessGif(QSize(16, 16), 40'000);
        QVERIFY(inspectImage(bytes));
        QVERIFY(!decodedWithin(20, bytes));
    }

    void emptyScansStillMakeAPicture_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("a scan without data") << samples::idleJpeg(0, false);
        QTest::newRow("as many empty scans as are allowed") << samples::idleJpeg(24, false);
        QTest::newRow("as many with a restart at each block") << samples::idleJpeg(6, false, 1);
        QTest::newRow("as many that refine all") << samples::idleJpeg(3, true);
    }
    void emptyScansStillMakeAPicture() {
        QFETCH(QByteArray, bytes);
        QVERIFY(bytes.size() < 1200);
        const std::optional<QImage> picture = decodeImage(bytes, [] { return false; });
        QVERIFY(picture);
        QCOMPARE(*picture, plainGrey(picture->size()));
        QCOMPARE(picture->size(), QSize(128, 128));
    }

    void brokenPicturesPrintNothing() {
        QTemporaryFile file;
        QVERIFY(file.open());
        std::fflush(stderr);
        const int before = dup(STDERR_FILENO);
        QVERIFY(before >= 0 && dup2(file.handle(), STDERR_FILENO) >= 0);
        QRandomGenerator random(3);
        for (const auto& [name, bytes] : samples::goodFiles()) {
            for (int i = 0; i < 50; ++i) {
                Q_UNUSED(decodeImage(mutated(bytes, random)))
            }
        }
        std::fflush(stderr);
        dup2(before, STDERR_FILENO);
        close(before);
        QVERIFY(file.seek(0));
        QCOMPARE(file.readAll(), QByteArray());
    }
};

BRIMLET_TEST(TestImageHardening, brimlet::NoApplication)
#include "tst_hardening.moc"
