#include "overlay/pilltexts.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

class TestPillTexts final : public QObject {
    Q_OBJECT

    static SlotCreative creative(const QString& brand, const QString& tagline,
                                 const QString& link = {}) {
        SlotCreative creative;
        creative.brandName = brand;
        creative.tagline = tagline;
        creative.brandURL = Url::fromString(link);
        return creative;
    }

private Q_SLOTS:
    void theTooltipIsTheHostAsAddressesWriteIt_data() {
        QTest::addColumn<QString>("link");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const char16_t* link, const char16_t* text) {
            QTest::newRow(name) << QString::fromUtf16(link) << QString::fromUtf16(text);
        };
        row("plain", u"https://brand.test/page?x=1#y", u"brand.test");
        row("with user and port", u"https://safe.test@brand.test:8443/", u"brand.test");
        row("letter case stays", u"https://Brand.TEST/", u"Brand.TEST");
        row("this machine", u"http://127.0.0.1:8791/brands/a", u"127.0.0.1");
        row("IPv6", u"http://[::1]:80/", u"::1");
        row("Cyrillic look-alike", u"https://\u0440\u0430ypal.test/", u"xn--ypal-43d9g.test");
        row("umlaut", u"https://b\u00fccher.test/", u"xn--bcher-kva.test");
        row("no host", u"https:///page", u"Acme");
        row("no address", u"", u"Acme");
    }
    void theTooltipIsTheHostAsAddressesWriteIt() {
        QFETCH(QString, link);
        QTEST(toolTipOf(creative(QStringLiteral("Acme"), {}, link)), "text");
    }

    void aShortTooltipIsOneLineOfAtMost120Units_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        const QString longest(120, u'x');
        QTest::newRow("a host") << QStringLiteral("brand.test") << QStringLiteral("brand.test");
        QTest::newRow("markup stays") << QStringLiteral("<b>A</b>") << QStringLiteral("<b>A</b>");
        QTest::newRow("line break") << QStringLiteral("a\nb") << QStringLiteral("a b");
        QTest::newRow("at the limit") << longest << longest;
        QTest::newRow("longer") << longest + u'y' << longest + QChar(0x2026);
        QTest::newRow("nothing") << QString() << QString();
    }
    void aShortTooltipIsOneLineOfAtMost120Units() {
        QFETCH(QString, text);
        QTEST(shortToolTip(text), "shown");
    }

    void aTooltipShowsTextAsWritten_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("inside");
        QTest::newRow("markup") << QStringLiteral("<b>A</b> & <img src='file:///etc/passwd'>")
                                << QStringLiteral(
                                       "&lt;b&gt;A&lt;/b&gt; &amp; &lt;img src='file:///etc/passwd'"
                                       "&gt;");
        QTest::newRow("line break") << QStringLiteral("a\nb") << QStringLiteral("a b");
        const QString flag = QStringLiteral("\U0001F1EA\U0001F1FA");
        QTest::newRow("cut between characters")
            << QString(118, u'x') + flag + u'y' << QString(118, u'x') + QChar(0x2026);
        QTest::newRow("long") << QString(500, u'x') << QString(120, u'x') + QChar(0x2026);
    }
    void aTooltipShowsTextAsWritten() {
        QFETCH(QString, text);
        QFETCH(QString, inside);
        const QString toolTip = asPlainToolTip(text);
        QVERIFY(toolTip.startsWith(u'<'));
        QVERIFY(toolTip.contains(u'>' + inside + u'<'));
    }

    void anEmptyTextIsNoTooltip() { QCOMPARE(asPlainToolTip({}), QString()); }

    void theAccessibleNameIsBrandAndTagline_data() {
        QTest::addColumn<QString>("brand");
        QTest::addColumn<QString>("tagline");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const char* brand, const char* tagline,
                            const char* text) {
            QTest::newRow(name) << QString::fromUtf8(brand) << QString::fromUtf8(tagline)
                                << QString::fromUtf8(text);
        };
        row("both", " Acme", "Fresh\nevery day ", "Acme, Fresh every day");
        row("no tagline", "Acme", " ", "Acme");
        row("no brand", "", "Fresh", "Fresh");
        row("the same", "Acme", " Acme ", "Acme");
        row("neither", "", "", "");
    }
    void theAccessibleNameIsBrandAndTagline() {
        QFETCH(QString, brand);
        QFETCH(QString, tagline);
        QTEST(spokenTextOf(creative(brand, tagline)), "text");
    }

    void withoutTextTheAccessibleNameIsTheHost() {
        QCOMPARE(spokenTextOf(
                     creative({}, QStringLiteral(" "), QStringLiteral("https://brand.test/page"))),
                 QStringLiteral("brand.test"));
    }
};

BRIMLET_TEST(TestPillTexts, brimlet::NoApplication)
#include "tst_pilltexts.moc"
