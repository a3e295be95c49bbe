#include "tests/fuzz/imagecheck.h"
#include "tests/fuzz/replycheck.h"
#include "tests/fuzz/urlcheck.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace brimlet;

namespace {

const QString ownFiles = sourcePath(u"tests/fuzz/corpus/");
const QString sampleFiles = samplePath(u"");

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QFileInfoList filesIn(const QString& folder) {
    return QDir(folder).entryInfoList(QDir::Files);
}

void addRow(const QString& name, const QByteArray& bytes) {
    QTest::newRow(qPrintable(name)) << bytes;
}

void addOwnFiles(const QString& folder) {
    QTest::addColumn<QByteArray>("bytes");
    for (const QFileInfo& file : filesIn(ownFiles + folder)) {
        addRow(file.fileName(), contents(file.filePath()));
    }
}

} // namespace

/// The inputs that fuzzing kept, and collections of sample files where they are installed.
class TestCorpus final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void repliesAreReadAsQtReadsThem_data() {
        addOwnFiles(QStringLiteral("reply"));
        for (const QFileInfo& file : filesIn(sampleFiles + QStringLiteral("json"))) {
            for (const char endpoint : {'d', 'D', 'm', 'h'}) {
                addRow(QChar::fromLatin1(endpoint) + u' ' + file.fileName(),
                       endpoint + contents(file.filePath()));
            }
        }
    }
    void repliesAreReadAsQtReadsThem() {
        QFETCH(QByteArray, bytes);
        QCOMPARE(checkReply(bytes), QByteArray());
    }

    void addressesAreReadAlikeByAll_data() {
        addOwnFiles(QStringLiteral("url"));
        const QString samples = sampleFiles + QStringLiteral("url/urltestdata.json");
        int number = 0;
        for (const auto& entry : QJsonDocument::fromJson(contents(samples)).array()) {
            const auto text = [&entry](const char* key) {
                return entry[QLatin1StringView(key)].toString().toUtf8();
            };
            addRow(QString::number(number), text("input"));
            addRow(QString::number(number) + QStringLiteral(" from its base"),
                   text("base") + '\n' + text("input"));
            ++number;
        }
    }
    void addressesAreReadAlikeByAll() {
        QFETCH(QByteArray, bytes);
        QCOMPARE(checkUrl(bytes), QByteArray());
    }

    void picturesAreDecodedOrRefused_data() {
        addOwnFiles(QStringLiteral("image"));
        for (const char* const folder : {"png/pngsuite", "png/libpng", "jpeg", "gif"}) {
            for (const QFileInfo& file : filesIn(sampleFiles + QLatin1StringView(folder))) {
                addRow(QLatin1StringView(folder) + u'/' + file.fileName(),
                       contents(file.filePath()));
            }
        }
    }
    void picturesAreDecodedOrRefused() {
        QFETCH(QByteArray, bytes);
        QCOMPARE(checkImage(bytes), QByteArray());
    }
};

BRIMLET_TEST(TestCorpus, brimlet::NoApplication)
#include "tst_corpus.moc"
