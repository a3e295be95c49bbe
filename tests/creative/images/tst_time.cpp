#include "creative/images/imagedecoding.h"
#include "creative/images/imagevalidation.h"
#include "tests/support/goodfiles.h"
#include "tests/support/memoryuse.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <chrono>
#include <ctime>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr Milliseconds kLimit = 250ms;
constexpr Milliseconds kOrdinaryLimit = 25ms;

Milliseconds threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

Milliseconds costOf(const auto& work) {
    const Milliseconds before = threadTime();
    work();
    return threadTime() - before;
}

/// Fills fresh memory and scales a picture down, as decoding the largest pictures does.
void referenceWork() {
    QImage picture(kImageSideLimit, kImageSideLimit, QImage::Format_ARGB32_Premultiplied);
    picture.fill(0xff336699);
    Q_UNUSED(picture.scaled(128, 128, Qt::IgnoreAspectRatio, Qt::SmoothTransformation))
}

/// What `referenceWork` costs on a quiet two-core machine.
constexpr Milliseconds kReferenceCost = 28ms;

/// How much slower than a quiet machine this one is at the moment; never below 1. Other programs
/// take caches and memory bandwidth, and a virtual machine can lose its processor unnoticed, so
/// CPU time alone says little.
double slowdown() {
    return std::max(1.0, costOf(referenceWork) / kReferenceCost);
}

/// The thread's CPU time for one decoding, as on a quiet machine. Repeated while it is above the
/// limit.
Milliseconds costOfDecoding(const QByteArray& bytes, Milliseconds limit) {
    Milliseconds least = Milliseconds::max();
    for (int attempt = 0; attempt < 5 && least > limit; ++attempt) {
        const double before = attempt == 0 ? 1 : slowdown();
        const Milliseconds cost = costOf([&] { Q_UNUSED(decodeImage(bytes)) });
        least = qMin(least, cost / before);
    }
    return least;
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Noise, which compresses worse than any photograph.
QImage noise(QSize size) {
    QRandomGenerator random(11);
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            picture.setPixel(x, y, 0xff000000 | random.generate());
        }
    }
    return picture;
}

/// A picture as services send one for a small mark.
QImage icon() {
    QImage picture = samples::quadrants(QSize(256, 256));
    for (int i = 0; i < 256; ++i) {
        picture.setPixel(i, (i * i) % 256, qRgb(i, 255 - i, i / 2));
    }
    return picture;
}

} // namespace

/// The CPU time of decoding is bounded.
class TestImageTime final : public QObject {
    Q_OBJECT

    static void check(const QByteArray& bytes, Milliseconds limit) {
        const Milliseconds cost = costOfDecoding(bytes, limit);
        QVERIFY2(cost <= limit, qPrintable(QStringLiteral("%1 ms").arg(cost.count())));
    }

private Q_SLOTS:
    void initTestCase() {
        if (isMemoryDistorted()) {
            QSKIP("a sanitizer makes everything slow");
        }
    }

    void anOrdinaryPictureTakes25MillisecondsAtMost_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("PNG") << samples::png(icon());
        QTest::newRow("interlaced PNG") << samples::interlacedPng(icon());
        QTest::newRow("JPEG") << samples::jpeg(icon());
        QTest::newRow("progressive JPEG") << samples::jpeg(icon(), true);
        QTest::newRow("GIF") << samples::gif(samples::quadrants(icon().size()));
        QTest::newRow("lossy WebP") << samples::webp(icon(), false);
        QTest::newRow("lossless WebP") << samples::webp(icon(), true);
        QTest::newRow("PNG of 512 by 512") << samples::png(samples::quadrants(QSize(512, 512)));
        QTest::newRow("rough JPEG of 512 by 512") << samples::jpeg(noise(QSize(512, 512)));
    }
    void anOrdinaryPictureTakes25MillisecondsAtMost() {
        QFETCH(QByteArray, bytes);
        QVERIFY(decodeImage(bytes));
        check(bytes, kOrdinaryLimit);
    }

    void aCostlyPictureTakes250MillisecondsAtMost_data() {
        QTest::addColumn<QByteArray>("bytes");
        const QImage rough = noise(QSize(1000, 1000));
        QTest::newRow("rough PNG") << samples::png(rough);
        QTest::newRow("rough interlaced PNG") << samples::interlacedPng(rough);
        QTest::newRow("rough JPEG") << samples::jpeg(rough);
        QTest::newRow("rough progressive JPEG") << samples::jpeg(rough, true);
        QTest::newRow("rough lossy WebP") << samples::webp(rough, false);
        QTest::newRow("rough lossless WebP") << samples::webp(rough, true);
        QTest::newRow("large PNG") << samples::png(samples::quadrants(QSize(4096, 4096)));
        QTest::newRow("large JPEG") << samples::jpeg(samples::quadrants(QSize(4096, 4096)));
        QTest::newRow("large GIF") << samples::plainGif(QSize(4096, 4096));
        QTest::newRow("idle scans") << samples::idleJpeg(24, false);
        QTest::newRow("idle restarts") << samples::idleJpeg(6, false, 1);
        QTest::newRow("idle refinements") << samples::idleJpeg(3, true);
        QTest::newRow("pixels without end") << samples::endlessGif(QSize(16, 16), 2'000'000);
    }
    void aCostlyPictureTakes250MillisecondsAtMost() {
        QFETCH(QByteArray, bytes);
        check(bytes, kLimit);
    }

    void sampleFilesTake250MillisecondsAtMost() {
        int files = 0;
        for (const char* name : {"png/pngsuite", "png/libpng", "jpeg", "gif"}) {
            const QDir folder(samplePath({}) + QLatin1StringView(name));
            for (const QFileInfo& file : folder.entryInfoList(QDir::Files)) {
                check(contents(file.filePath()), kLimit);
                if (QTest::currentTestFailed()) {
                    qInfo("it was %s", qPrintable(file.fileName()));
                    return;
                }
                ++files;
            }
        }
        if (files == 0) {
            QSKIP("the folder of sample files BRIMLET_CORPORA is absent");
        }
    }

    void changedFilesTake250MillisecondsAtMost_data() {
        QTest::addColumn<QByteArray>("bytes");
        for (const auto& [name, bytes] : samples::goodFiles()) {
            QTest::newRow(name) << bytes;
        }
    }
    void changedFilesTake250MillisecondsAtMost() {
        QFETCH(QByteArray, bytes);
        constexpr quint32 seed = 20240602;
        qInfo("seed %u", seed);
        QRandomGenerator random(seed);
        for (int i = 0; i < 600; ++i) {
            QByteArray other = bytes;
            for (int change = 0; change < 3; ++change) {
                other[random.bounded(int(other.size()))] = static_cast<char>(random.bounded(256));
            }
            check(other, kLimit);
            if (QTest::currentTestFailed()) {
                qInfo("it was change %d", i);
                return;
            }
        }
    }
};

BRIMLET_TEST(TestImageTime, brimlet::NoApplication)
#include "tst_time.moc"
