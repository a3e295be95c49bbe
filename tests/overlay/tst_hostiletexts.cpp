#include "creative/marqueetext.h"
#include "tests/overlay/shownoverlay.h"
#include "tests/support/hostiletexts.h"
#include "tests/support/testprogram.h"

#include <QAccessible>
#include <QApplication>
#include <QPainter>
#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

SlotCreative slotWith(const QString& brand, const QString& tagline, const QString& link) {
    SlotCreative creative;
    creative.brandName = brand;
    creative.tagline = tagline;
    creative.brandURL = Url::fromString(link);
    return creative;
}

/// An overlay whose week is set directly, since no reply can contain lone surrogates.
struct TextOverlay final : ShownOverlay {
    void show(const SlotCreative& leftSlot, const SlotCreative& rightSlot) {
        week().weekStatus = QStringLiteral("live");
        week().left = leftSlot;
        week().right = rightSlot;
        render();
    }
    /// The text on the left with a tagline and a link to a host, on the right with a link without.
    void show(const QString& text) {
        show(slotWith(text, text + QStringLiteral(" and more"), u"https://brand.test/"_s),
             slotWith(text, {}, u"https:///page"_s));
    }
    [[nodiscard]] QString accessibleText(QAccessible::Text kind, int index) {
        return QAccessible::queryAccessibleInterface(&view)->child(index)->text(kind);
    }
};

/// Whether nothing is painted outside the capsules.
bool isCleanAround(const QImage& picture, const QRect& left, const QRect& right) {
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (!left.contains(x, y) && !right.contains(x, y) && qAlpha(picture.pixel(x, y)) != 0) {
                return false;
            }
        }
    }
    return true;
}

/// The text inside a tooltip's markup; null if there is any other markup.
QString insideToolTip(const QString& toolTip) {
    const QString start = QStringLiteral("<span style='white-space:pre'>");
    const QString end = QStringLiteral("</span>");
    if (!toolTip.startsWith(start) || !toolTip.endsWith(end)) {
        return {};
    }
    QString inside = toolTip.mid(start.size(), toolTip.size() - start.size() - end.size());
    if (inside.contains(u'<') || inside.contains(u'>')) {
        return {};
    }
    return inside.replace(u"&lt;"_s, u"<"_s)
        .replace(u"&gt;"_s, u">"_s)
        .replace(u"&quot;"_s, u"\""_s)
        .replace(u"&amp;"_s, u"&"_s);
}

} // namespace

/// Untrusted texts in the capsules, their tooltips and accessible texts.
class TestHostileTexts final : public QObject {
    Q_OBJECT

    static void check(TextOverlay& f, const QString& text) {
        f.show(text);
        const QRect left = f.left()->geometry();
        const QRect right = f.right()->geometry();
        QVERIFY(left.width() <= 108 && right.width() <= 108);
        QVERIFY(left.right() < right.left());
        QVERIFY(isCleanAround(f.picture(), left, right));
        f.host.clock.advance(19s);
        QVERIFY(isCleanAround(f.picture(), left, right));

        // Accessible texts contain only the start of a text.
        for (int i = 0; i < 2; ++i) {
            const QString name = f.accessibleText(QAccessible::Name, i);
            QVERIFY(isOneLine(name));
            QVERIFY(name.size() <= 2 * 1024 + 2);
        }
        QCOMPARE(f.accessibleText(QAccessible::Description, 0), QStringLiteral("brand.test"));
        const QString destination = f.accessibleText(QAccessible::Description, 1);
        QVERIFY(isOneLine(destination));
        QVERIFY(destination.size() <= 1024);
        QCOMPARE(insideToolTip(f.left()->toolTip()), QStringLiteral("brand.test"));
        if (text.isEmpty()) {
            QCOMPARE(f.right()->toolTip(), QString());
            return;
        }
        const QString line = singleLine(text);
        QString shown = singleLine(line, 120);
        shown += shown.size() < line.size() ? u"\u2026"_s : QString();
        QVERIFY(isOneLine(shown));
        QCOMPARE(insideToolTip(f.right()->toolTip()), shown);
    }

private Q_SLOTS:
    void noTextLeavesItsBox_data() { addHostileTexts(); }
    void noTextLeavesItsBox() {
        QFETCH(QString, text);
        TextOverlay f;
        check(f, text);
    }

    void theWholeCollectionStaysInItsBox() {
        TextOverlay f;
        checkNaughtyStrings([&f](const QString& text) { check(f, text); });
    }

    void aLookAlikeHostIsShownEncoded_data() {
        QTest::addColumn<QString>("link");
        QTest::addColumn<QString>("host");
        QTest::newRow("Cyrillic") << u"https://\u0430pple.test/"_s << u"xn--pple-43d.test"_s;
        QTest::newRow("Greek") << u"https://g\u03BF\u03BFgle.test/"_s << u"xn--ggle-0nda.test"_s;
        QTest::newRow("in part") << u"https://brand.test.\u0435vil.test/"_s
                                 << u"brand.test.xn--vil-qdd.test"_s;
        QTest::newRow("full width") << u"https://\uFF42rand.test/"_s << u"%EF%BD%82rand.test"_s;
        QTest::newRow("encoded") << u"https://%D0%B0pple.test/"_s << u"%D0%B0pple.test"_s;
        QTest::newRow("a mark within") << u"https://br\u0301and.test/"_s << u"xn--band-q4a.test"_s;
    }
    void aLookAlikeHostIsShownEncoded() {
        QFETCH(QString, link);
        QFETCH(QString, host);
        TextOverlay f;
        f.show(slotWith({}, {}, link), slotWith(u"Brand"_s, {}, link));
        QCOMPARE(insideToolTip(f.left()->toolTip()), host);
        QCOMPARE(insideToolTip(f.right()->toolTip()), host);
        QCOMPARE(f.accessibleText(QAccessible::Name, 0), host); // there is no other text
        QCOMPARE(f.accessibleText(QAccessible::Description, 0), host);
        QCOMPARE(f.accessibleText(QAccessible::Description, 1), host);
        for (const QChar c : host) {
            QVERIFY(c.unicode() < 0x7F);
        }
    }
};

BRIMLET_TEST(TestHostileTexts, QApplication)
#include "tst_hostiletexts.moc"
