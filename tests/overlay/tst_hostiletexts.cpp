#include "creative/creativeimagecache.h"
#include "creative/marqueetext.h"
#include "overlay/notchpill.h"
#include "overlay/overlayview.h"
#include "tests/support/hostfixture.h"
#include "tests/support/hostiletexts.h"
#include "tests/support/testprogram.h"

#include <QAccessible>
#include <QApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

/// Two capsules over a store whose week is written by hand, since no reply holds lone surrogates.
struct TextFixture final {
    TextFixture() {
        caches.folder = folder.path();
        week().weekStatus = QStringLiteral("live");
        view.resize(428, 40);
        view.show();
    }

    [[nodiscard]] Assignment& week() { return const_cast<Assignment&>(store->assignment()); }
    /// On the left brand and tagline over a host, on the right a brand whose link names none.
    void show(const QString& text) {
        week().left = SlotCreative{QStringLiteral("left"), text, text + QStringLiteral(" and more"),
                                   std::nullopt, Url::fromString(u"https://brand.test/")};
        week().right = SlotCreative{
            QStringLiteral("right"), text, {}, std::nullopt, Url::fromString(u"https:///page")};
        runtime.apply(*store, 184, 32);
        QCoreApplication::sendPostedEvents();
    }
    [[nodiscard]] const NotchPill& left() const { return *view.findChildren<NotchPill*>().at(0); }
    [[nodiscard]] const NotchPill& right() const { return *view.findChildren<NotchPill*>().at(1); }
    [[nodiscard]] QString heard(QAccessible::Text kind, int index) {
        return QAccessible::queryAccessibleInterface(&view)->child(index)->text(kind);
    }
    [[nodiscard]] QImage picture() {
        QImage picture(view.size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        view.render(&picture, {}, {}, QWidget::DrawChildren);
        return picture;
    }

    QTemporaryDir folder;
    FakeCachesFolder caches;
    FakeReduceMotion reduceMotion;
    HostFixture host;
    CreativeImageCache images{{host.http, caches}, 1};
    std::shared_ptr<HostStore> store = host.makeStore();
    OverlayRuntime runtime{host.workspace};
    OverlayView view{runtime, {images, host.clock, reduceMotion}};
};

/// Whether nothing is painted beside the capsules.
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

/// Whether it holds no break and no other control character.
bool isOneLine(const QString& text) {
    return std::none_of(text.begin(), text.end(), [](QChar c) {
        return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
               c == QChar::ParagraphSeparator;
    });
}

/// The text that a tooltip's frame holds; null if that is not its only markup.
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
    return inside.replace(u"&lt;"_qs, u"<"_qs)
        .replace(u"&gt;"_qs, u">"_qs)
        .replace(u"&quot;"_qs, u"\""_qs)
        .replace(u"&amp;"_qs, u"&"_qs);
}

} // namespace

/// Texts of strangers in the capsules, their tooltips and what is said of them.
class TestHostileTexts final : public QObject {
    Q_OBJECT

    static void check(TextFixture& f, const QString& text) {
        f.show(text);
        const QRect left = f.left().geometry();
        const QRect right = f.right().geometry();
        QVERIFY(left.width() <= 108 && right.width() <= 108);
        QVERIFY(left.right() < right.left());
        QVERIFY(isCleanAround(f.picture(), left, right));
        f.host.clock.advance(19s);
        QVERIFY(isCleanAround(f.picture(), left, right));

        // No more than the start of a text is ever laid out, measured or said.
        QVERIFY(f.left().line().taglineWidth() < 100'000);
        for (int i = 0; i < 2; ++i) {
            const QString said = f.heard(QAccessible::Name, i);
            QVERIFY(isOneLine(said));
            QVERIFY(said.size() <= 2 * 1024 + 2);
        }
        QCOMPARE(f.heard(QAccessible::Description, 0), QStringLiteral("brand.test"));
        const QString destination = f.heard(QAccessible::Description, 1);
        QVERIFY(isOneLine(destination));
        QVERIFY(destination.size() <= 1024);
        QCOMPARE(insideToolTip(f.left().toolTip()), QStringLiteral("brand.test"));
        if (text.isEmpty()) {
            QCOMPARE(f.right().toolTip(), QString());
            return;
        }
        const QString line = singleLine(text);
        QString shown = singleLine(line, 120);
        shown += shown.size() < line.size() ? u"\u2026"_qs : QString();
        QVERIFY(isOneLine(shown));
        QCOMPARE(insideToolTip(f.right().toolTip()), shown);
    }

private Q_SLOTS:
    void noTextLeavesItsBox_data() { addHostileTexts(); }
    void noTextLeavesItsBox() {
        QFETCH(QString, text);
        TextFixture f;
        check(f, text);
    }

    void theWholeCollectionStaysInItsBox() {
        const QByteArrayList texts = naughtyStrings();
        if (texts.isEmpty()) {
            QSKIP("there is no collection of texts at BRIMLET_CORPORA");
        }
        QVERIFY(texts.size() > 100);
        TextFixture f;
        for (const QByteArray& text : texts) {
            check(f, QString::fromUtf8(text));
            if (QTest::currentTestFailed()) {
                qInfo("it was %s", text.constData());
                return;
            }
        }
    }

    void aLookAlikeIsShownForWhatItIs_data() {
        QTest::addColumn<QString>("link");
        QTest::addColumn<QString>("host");
        QTest::newRow("Cyrillic") << u"https://\u0430pple.test/"_qs << u"xn--pple-43d.test"_qs;
        QTest::newRow("Greek") << u"https://g\u03BF\u03BFgle.test/"_qs << u"xn--ggle-0nda.test"_qs;
        QTest::newRow("in part") << u"https://brand.test.\u0435vil.test/"_qs
                                 << u"brand.test.xn--vil-qdd.test"_qs;
        QTest::newRow("full width") << u"https://\uFF42rand.test/"_qs << u"%EF%BD%82rand.test"_qs;
        QTest::newRow("encoded") << u"https://%D0%B0pple.test/"_qs << u"%D0%B0pple.test"_qs;
        QTest::newRow("a mark within")
            << u"https://br\u0301and.test/"_qs << u"xn--band-q4a.test"_qs;
    }
    void aLookAlikeIsShownForWhatItIs() {
        QFETCH(QString, link);
        QFETCH(QString, host);
        TextFixture f;
        f.week().left =
            SlotCreative{QStringLiteral("left"), {}, {}, std::nullopt, Url::fromString(link)};
        f.week().right = SlotCreative{
            QStringLiteral("right"), u"Brand"_qs, {}, std::nullopt, Url::fromString(link)};
        f.runtime.apply(*f.store, 184, 32);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(insideToolTip(f.left().toolTip()), host);
        QCOMPARE(insideToolTip(f.right().toolTip()), host);
        QCOMPARE(f.heard(QAccessible::Name, 0), host); // there is nothing else to say
        QCOMPARE(f.heard(QAccessible::Description, 0), host);
        QCOMPARE(f.heard(QAccessible::Description, 1), host);
        for (const QChar c : host) {
            QVERIFY(c.unicode() < 0x7F);
        }
    }
};

BRIMLET_TEST(TestHostileTexts, QApplication)
#include "tst_hostiletexts.moc"
