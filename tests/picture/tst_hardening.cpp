#include "tests/picture/readimage.h"
#include "tests/support/goodfiles.h"
#include "tests/support/testprogram.h"

#include <QRandomGenerator>
#include <QTest>

using namespace brimlet;

namespace {

void addGoodFiles() {
    QTest::addColumn<QByteArray>("bytes");
    for (const auto& [name, bytes] : samples::goodFiles()) {
        QTest::newRow(name) << bytes;
    }
}

/// Where the part begins without which the first frame is whole: the end mark of a PNG, that of a
/// GIF and its further frames.
qsizetype needed(const QByteArray& bytes) {
    if (bytes.startsWith("GIF")) {
        // The frame's last block, which is empty.
        const qsizetype frame = bytes.indexOf(',');
        return bytes.indexOf(QByteArray("\0", 1), frame + 11) + 1;
    }
    return bytes.startsWith("\x89PNG") ? bytes.size() - 4 : bytes.size();
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

} // namespace

/// Broken files, read in this process.
class TestPictureHardening final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { preparePictureReading(); }

    void aFileCutBeforeItsFirstFrameEndsIsNoPicture_data() { addGoodFiles(); }
    void aFileCutBeforeItsFirstFrameEndsIsNoPicture() {
        QFETCH(QByteArray, bytes);
        const QByteArray whole = readPicture(bytes)->pixels;
        for (qsizetype size = 0; size < bytes.size(); ++size) {
            const auto picture = readPicture(bytes.first(size));
            if (picture) {
                QVERIFY2(size >= needed(bytes), qPrintable(QString::number(size)));
                QCOMPARE(picture->pixels, whole);
            }
        }
    }

    void randomChangesDoNoHarm_data() { addGoodFiles(); }
    void randomChangesDoNoHarm() {
        QFETCH(QByteArray, bytes);
        QRandomGenerator random(20240601);
        for (int i = 0; i < 600; ++i) {
            const auto picture = readPicture(mutated(bytes, random));
            QVERIFY(!picture || isProper(*picture));
        }
    }

    void emptyScansStillMakeAPicture_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("a scan without data") << samples::idleJpeg(0, false);
        QTest::newRow("many empty scans") << samples::idleJpeg(24, false);
        QTest::newRow("many with a restart at each block") << samples::idleJpeg(6, false, 1);
        QTest::newRow("many that refine all") << samples::idleJpeg(3, true);
    }
    void emptyScansStillMakeAPicture() {
        QFETCH(QByteArray, bytes);
        const auto picture = readImage(bytes);
        QVERIFY(picture);
        QImage grey(128, 128, QImage::Format_ARGB32_Premultiplied);
        grey.fill(qRgb(128, 128, 128));
        QCOMPARE(*picture, grey);
    }

    void aClaimedGibibyteIsNoPicture() {
        const QByteArray bytes = samples::pngOutline(1, 1).first(33) +
                                 QByteArray("\x40\0\0\0sPLT", 8) + QByteArray(16, 'x');
        QCOMPARE(bytes.size(), 57);
        QVERIFY(!readPicture(bytes));
    }
};

BRIMLET_TEST(TestPictureHardening, brimlet::NoApplication)
#include "tst_hardening.moc"
