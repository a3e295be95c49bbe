#include "platform/mac/rules/templatesymbol.h"
#include "tests/support/testprogram.h"

#include <QGuiApplication>
#include <QTest>

using namespace brimlet;

class TestTemplateSymbol final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsAMask() { QVERIFY(templateSymbol().isMask()); }

    void itComesInTheSizesOfMenuBars() {
        QCOMPARE(templateSymbol().availableSizes(),
                 (QList{QSize(16, 16), QSize(18, 18), QSize(32, 32), QSize(36, 36)}));
    }

    void itsShapeIsABlackLaptopOnTransparency() {
        const QImage picture = templateSymbol().pixmap(QSize(32, 32)).toImage();
        QCOMPARE(picture.size(), QSize(32, 32));
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                QCOMPARE(picture.pixel(x, y) & 0xffffffU, 0U);
            }
        }
        QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);     // beside the lid
        QCOMPARE(picture.pixelColor(16, 14).alpha(), 0);   // the screen
        QCOMPARE(picture.pixelColor(16, 7).alpha(), 255);  // the notch
        QCOMPARE(picture.pixelColor(16, 25).alpha(), 255); // the base
    }
};

BRIMLET_TEST(TestTemplateSymbol, QGuiApplication)
#include "tst_templatesymbol.moc"
