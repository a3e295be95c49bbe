#include "platform/qt/qtcachesfolder.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QTest>

using namespace brimlet;

class TestQtCachesFolder final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsTheUsersFolderForAllPrograms() {
        qunsetenv("XDG_CACHE_HOME");
        const QStringList known{QDir::homePath() + QStringLiteral("/.cache"),
                                QDir::homePath() + QStringLiteral("/Library/Caches")};
        const auto path = QtCachesFolder().path();
        QVERIFY(path);
        QVERIFY2(known.contains(*path), qPrintable(*path));
    }
};

BRIMLET_TEST(TestQtCachesFolder, QCoreApplication)
#include "tst_qtcachesfolder.moc"
