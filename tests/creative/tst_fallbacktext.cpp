#include "creative/fallbacktext.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

class TestFallbackText final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsTheFirstGraphemeCluster_data() {
        QTest::addColumn<QString>("brand");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const char16_t* brand, const char16_t* text) {
            QTest::newRow(name) << QString::fromUtf16(brand) << QString::fromUtf16(text);
        };
        row("plain", u"Acme", u"A");
        row("case unchanged", u"acme", u"a");
        row("leading blanks", u" \t\n\u00a0\u3000Acme", u"A");
        row("blanks only", u" \t \u2028", u"\u00b7");
        row("empty", u"", u"\u00b7");
        row("composed accent", u"\u00c9clair", u"\u00c9");
        row("accent written apart", u"E\u0301clair", u"E\u0301");
        row("two marks", u"a\u0323\u0302bc", u"a\u0323\u0302");
        row("flag", u"\U0001F1EA\U0001F1FA shop", u"\U0001F1EA\U0001F1FA");
        row("two flags", u"\U0001F1EA\U0001F1FA\U0001F1E9\U0001F1EA", u"\U0001F1EA\U0001F1FA");
        row("emoji", u"\U0001F375 tea", u"\U0001F375");
        row("family", u"\U0001F468\u200D\U0001F469\u200D\U0001F467 family",
            u"\U0001F468\u200D\U0001F469\u200D\U0001F467");
        row("skin tone", u"\U0001F44B\U0001F3FD hi", u"\U0001F44B\U0001F3FD");
        row("rainbow flag", u"\U0001F3F3\uFE0F\u200D\U0001F308!",
            u"\U0001F3F3\uFE0F\u200D\U0001F308");
        row("key cap", u"1\uFE0F\u20E3 best", u"1\uFE0F\u20E3");
        row("subdivision flag",
            u"\U0001F3F4\U000E0067\U000E0062\U000E0073\U000E0063\U000E0074\U000E007F tartan",
            u"\U0001F3F4\U000E0067\U000E0062\U000E0073\U000E0063\U000E0074\U000E007F");
        row("Hangul in letters", u"\u1112\u1161\u11AB\u1100", u"\u1112\u1161\u11AB");
        row("Devanagari vowel sign", u"\u0915\u093Fran", u"\u0915\u093F");
        row("right to left", u"\u05E9\u05DC\u05D5\u05DD", u"\u05E9");
        row("beyond the first plane", u"\U00020000\u6c34", u"\U00020000");
    }
    void itIsTheFirstGraphemeCluster() {
        QFETCH(QString, brand);
        QTEST(fallbackText(brand), "text");
    }

    void aVeryLongBrandIsCut() {
        QCOMPARE(fallbackText(QString(1'000'000, u'x')), QStringLiteral("x"));
        QCOMPARE(fallbackText(u'a' + QString(5'000, QChar(0x301))).size(), 1024);
    }
};

BRIMLET_TEST(TestFallbackText, brimlet::NoApplication)
#include "tst_fallbacktext.moc"
