#include "platform/mac/macbundle.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QTest>

using namespace brimlet;

/// Tests are bare executables, outside any bundle.
class TestMacBundle final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itsPathIsTheExecutablesFolder() {
        QCOMPARE(QDir(MacBundle().path()).canonicalPath(),
                 QDir(QCoreApplication::applicationDirPath()).canonicalPath());
    }

    void itHasTheIdentifierOfTheBundledProgram() {
        QCOMPARE(MacBundle().identifier(), QStringLiteral("app.brimlet.host"));
    }

    void aMissingKeyHasNoValue() {
        QVERIFY(!MacBundle().infoDictionaryValue(QStringLiteral("BrimletNoSuchKey")).isValid());
    }
};

BRIMLET_TEST(TestMacBundle, QCoreApplication)
#include "tst_macbundle.moc"
