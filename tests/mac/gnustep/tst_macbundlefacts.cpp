#include "platform/mac/macbundle.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

/// With the list of properties that lies beside the test program.
class TestMacBundleFacts final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aValueIsReadByItsType_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("text") << "BrimletText" << QVariant(QStringLiteral("T\u00f6ken \u20ac"));
        QTest::newRow("empty text") << "BrimletEmpty" << QVariant(QString());
        QTest::newRow("whole number") << "BrimletNumber" << QVariant(8791.0);
        QTest::newRow("fraction") << "BrimletFraction" << QVariant(0.5);
        QTest::newRow("list") << "BrimletList" << QVariant(QVariantMap());
        QTest::newRow("missing") << "BrimletMissing" << QVariant();
    }
    void aValueIsReadByItsType() {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        const QVariant found = MacBundle().infoDictionaryValue(key);
        QCOMPARE(found.metaType(), value.metaType());
        QCOMPARE(found, value);
    }
};

BRIMLET_TEST(TestMacBundleFacts, QCoreApplication)
#include "tst_macbundlefacts.moc"
