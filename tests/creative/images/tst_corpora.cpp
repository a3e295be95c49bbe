#include "creative/images/imagedecoding.h"
#include "creative/images/imagevalidation.h"
#include "creative/images/pictureshrinker.h"
#include "tests/support/memoryuse.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace brimlet;

namespace {

constexpr qint64 kMebibyte = qint64{1024} * 1024;

/// True when the size is the kept size for these facts, upright or turned.
bool isKept(const QImage& picture, const std::optional<ImageFacts>& facts) {
    const QSize size = facts ? keptSize(QSize(facts->width, facts->height)) : QSize();
    return !size.isEmpty() && (picture.size() == size || picture.size() == size.transposed());
}

} // namespace

class TestImageCorpora final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (!QDir(samplePath({})).exists()) {
            QSKIP("the folder of sample files BRIMLET_CORPORA is absent");
        }
    }

    void validPicturesAreShown_data() { addFiles(QStringLiteral("png/pngsuite")); }
    void validPicturesAreShown() {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, name);
        // The suite names its broken files with an x.
        QCOMPARE(decodeImage(bytes).has_value(), !name.startsWith(QLatin1Char('x')));
    }

    void fuzzedPicturesDoNoHarm_data() {
        addFiles(QStringLiteral("png/libpng"));
        addFiles(QStringLiteral("jpeg"));
        addFiles(QStringLiteral("gif"));
    }
    void fuzzedPicturesDoNoHarm() {
        QFETCH(QByteArray, bytes);
        const std::optional<QImage> picture = decodeImage(bytes);
        QVERIFY(!picture || isKept(*picture, inspectImage(bytes)));
    }

    void memoryStaysBounded() {
        if (isMemoryDistorted()) {
            QSKIP("the sanitizer has memory of its own");
        }
        const qint64 before = memoryInUse();
        for (const QString& folder : {QStringLiteral("png/pngsuite"), QStringLiteral("png/libpng"),
                                      QStringLiteral("jpeg"), QStringLiteral("gif")}) {
            for (const QFileInfo& file : filesIn(folder)) {
                QVERIFY(forgetPeak());
                Q_UNUSED(decodeImage(contents(file)))
                QVERIFY2(memoryPeak() <= before + 80 * kMebibyte, qPrintable(file.fileName()));
                QVERIFY2(memoryInUse() <= before + 8 * kMebibyte, qPrintable(file.fileName()));
            }
        }
    }

private:
    static QFileInfoList filesIn(const QString& folder) {
        return QDir(samplePath({}) + folder).entryInfoList(QDir::Files);
    }
    static QByteArray contents(const QFileInfo& info) {
        QFile file(info.filePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void addFiles(const QString& folder) {
        static const auto columns = [] {
            QTest::addColumn<QByteArray>("bytes");
            QTest::addColumn<QString>("name");
        };
        columns();
        for (const QFileInfo& file : filesIn(folder)) {
            QTest::newRow(qPrintable(file.fileName())) << contents(file) << file.fileName();
        }
    }
};

BRIMLET_TEST(TestImageCorpora, brimlet::NoApplication)
#include "tst_corpora.moc"
