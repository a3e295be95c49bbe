#include "creative/notchfont.h"
#include "tests/support/testprogram.h"

#include <QGuiApplication>
#include <QTest>

using namespace brimlet;

class TestNotchFont final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theThreeFontsUseTheSystemsFamily_data() {
        QTest::addColumn<QFont>("font");
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("weight");
        QTest::newRow("pill") << NotchFont::pill() << 12 << int(QFont::DemiBold);
        QTest::newRow("tagline") << NotchFont::tagline() << 11 << int(QFont::Normal);
        QTest::newRow("fallback mark") << NotchFont::fallbackMark() << 11 << int(QFont::DemiBold);
    }
    void theThreeFontsUseTheSystemsFamily() {
        QFETCH(QFont, font);
        QCOMPARE(font.family(), QGuiApplication::font().family());
        QTEST(font.pixelSize(), "size");
        QTEST(int(font.weight()), "weight");
    }

    void eachFontIsMadeOnce() {
        QCOMPARE(&NotchFont::pill(), &NotchFont::pill());
        QCOMPARE(&NotchFont::tagline(), &NotchFont::tagline());
        QCOMPARE(&NotchFont::fallbackMark(), &NotchFont::fallbackMark());
    }
};

BRIMLET_TEST(TestNotchFont, QGuiApplication)
#include "tst_notchfont.moc"
