#include "tests/picture/readimage.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace brimlet;

class TestPictureCorpora final : public QObject {
    Q_OBJECT

    static void addFiles(const QStringList& folders) {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("name");
        for (const QString& folder : folders) {
            for (const QFileInfo& info : QDir(samplePath({}) + folder).entryInfoList(QDir::Files)) {
                QFile file(info.filePath());
                QVERIFY(file.open(QIODevice::ReadOnly));
                QTest::newRow(qPrintable(info.fileName())) << file.readAll() << info.fileName();
            }
        }
    }

private Q_SLOTS:
    void initTestCase() {
        if (!QDir(samplePath({})).exists()) {
            QSKIP("the folder of sample files BRIMLET_CORPORA is absent");
        }
        preparePictureReading();
    }

    void validPicturesAreShown_data() { addFiles({QStringLiteral("png/pngsuite")}); }
    void validPicturesAreShown() {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, name);
        // The suite names its broken files with an x.
        QCOMPARE(readPicture(bytes).has_value(), !name.startsWith(QLatin1Char('x')));
    }

    void fuzzedPicturesDoNoHarm_data() {
        addFiles({QStringLiteral("png/libpng"), QStringLiteral("jpeg"), QStringLiteral("gif")});
    }
    void fuzzedPicturesDoNoHarm() {
        QFETCH(QByteArray, bytes);
        const auto picture = readPicture(bytes);
        QVERIFY(!picture || isProper(*picture));
    }
};

BRIMLET_TEST(TestPictureCorpora, brimlet::NoApplication)
#include "tst_corpora.moc"
