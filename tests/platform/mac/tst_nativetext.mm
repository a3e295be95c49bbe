#include "tests/support/testprogram.h"

#import "platform/mac/nativetext.h"

#include <QTest>

using namespace brimlet;

class TestNativeText final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void conversionsPreserveTexts_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("plain") << QStringLiteral("https://example.org/a%20b");
        QTest::newRow("outside the first plane") << QStringLiteral("T\u00f6ken \u20ac \U0001f4bb");
        QTest::newRow("a NUL inside") << QStringLiteral("a\0b");
    }
    void conversionsPreserveTexts() {
        QFETCH(QString, text);
        @autoreleasepool {
            QCOMPARE(fromNative(toNative(text)), text);
        }
    }

    void nilIsEmpty() { QCOMPARE(fromNative(nil), QString()); }
};

BRIMLET_TEST(TestNativeText, brimlet::NoApplication)
#include "tst_nativetext.moc"
