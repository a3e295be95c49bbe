#include "platform/mac/macbundle.h"

#include <QDir>
#include <QTest>

using namespace brimlet;

/// A bare executable, as tests are.
class TestMacBundle final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itsPathIsTheExecutablesFolder() {
        QCOMPARE(QDir(MacBundle().path()).canonicalPath(),
                 QDir(QCoreApplication::applicationDirPath()).canonicalPath());
    }

    void itGoesByTheBundlesIdentifier() {
        QCOMPARE(MacBundle().identifier(), QStringLiteral("app.brimlet.host"));
    }

    void aMissingKeyHasNoValue() {
        QVERIFY(!MacBundle().infoDictionaryValue(QStringLiteral("BrimletNoSuchKey")).isValid());
    }
};

QTEST_GUILESS_MAIN(TestMacBundle)
#include "tst_macbundle.moc"
