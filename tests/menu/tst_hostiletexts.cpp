#include "creative/marqueetext.h"
#include "menu/agreementtext.h"
#include "menu/menutext.h"
#include "menu/textlines.h"
#include "tests/menu/shownmenu.h"

#include <QDir>
#include <QFile>
#include <QScrollBar>

#include <limits>

using namespace brimlet;

namespace {

/// A menu with both slots filled and an agreement to sign, written by hand.
struct TextMenu final {
    TextMenu() {
        menu.week().weekStatus = QStringLiteral("live");
        menu.week().agreed = false;
        menu.week().left = ShownMenu::slot(QString());
        menu.week().right = ShownMenu::slot(QString());
    }

    HostMenuView& show(const QString& text) {
        Assignment& week = menu.week();
        week.left->brandName = text;
        week.left->tagline = text;
        week.right->brandName = text + QStringLiteral(" and more");
        week.agreementText = text;
        menu.view().hide();
        return menu.open();
    }
    [[nodiscard]] const AgreementText& agreement() {
        return *menu.view().findChild<AgreementText*>();
    }

    ShownMenu menu;
};

/// Everything that is shown on the menu itself, not what scrolls inside of the agreement.
QList<const QWidget*> shownParts(const HostMenuView& view, const AgreementText& agreement) {
    QList<const QWidget*> parts;
    for (const QWidget* const each : view.findChildren<QWidget*>()) {
        const bool isPart = each->children().isEmpty() || each == &agreement;
        if (isPart && each->isVisible() && !agreement.isAncestorOf(each)) {
            parts << each;
        }
    }
    return parts;
}

/// Whether the columns beside the content have the ground's colour all over.
bool isCleanAround(const QImage& picture) {
    const QRgb ground = picture.pixel(0, 0);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < 16; ++x) {
            if (picture.pixel(x, y) != ground || picture.pixel(319 - x, y) != ground) {
                return false;
            }
        }
    }
    return true;
}

bool isOneLine(const QString& text) {
    return std::none_of(text.begin(), text.end(), [](QChar c) {
        return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
               c == QChar::ParagraphSeparator;
    });
}

QImage painted(const QString& text) {
    QFont font;
    font.setPixelSize(11);
    MenuText label(font, Qt::white, text);
    label.resize(200, label.heightForWidth(200));
    QImage picture(label.size(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    label.render(&picture, {}, {}, QWidget::DrawChildren);
    return picture;
}

} // namespace

/// Texts of strangers in the rows of the menu and in the agreement.
class TestHostileTexts final : public QObject {
    Q_OBJECT

    static void check(TextMenu& f, const QString& text) {
        const HostMenuView& view = f.show(text);
        QCOMPARE(view.width(), 320);
        // Two lines of a name in either row, and an agreement of ninety points.
        const int line = lineHeight(f.menu.named<QLabel>(QStringLiteral("Left panel"))->font());
        QVERIFY2(view.height() < 560 + 12 * line, qPrintable(QString::number(view.height())));
        const auto parts = shownParts(view, f.agreement());
        QVERIFY(parts.size() > 15);
        for (qsizetype i = 0; i < parts.size(); ++i) {
            const QRect place = f.menu.place(*parts.at(i));
            QVERIFY(QRect(16, 16, 288, view.height() - 32).contains(place));
            for (qsizetype j = 0; j < i; ++j) {
                QVERIFY(!place.intersects(f.menu.place(*parts.at(j))));
            }
        }
        QVERIFY(isCleanAround(f.menu.picture(1)));

        const QString name = text.isEmpty() ? QStringLiteral("Brand") : singleLine(text);
        QVERIFY(isOneLine(name));
        const auto* const row = f.menu.named<QLabel>(name);
        QVERIFY(row != nullptr);
        QCOMPARE(row->textFormat(), Qt::PlainText);
        QVERIFY(row->height() <= 2 * lineHeight(row->font()));
        if (!text.isEmpty()) {
            // A screen reader has the agreement whole; laid out are its first lines, that is 300
            // and what is left of the piece that they end in.
            const auto* const wording = qobject_cast<const QLabel*>(f.agreement().widget());
            QCOMPARE(wording->accessibleName(), text);
            QCOMPARE(wording->textFormat(), Qt::PlainText);
            QVERIFY(f.agreement().height() <= 90);
            QVERIFY(wording->height() <= (300 + 2048) * lineHeight(wording->font()));
        }
    }

private Q_SLOTS:
    void noTextLeavesItsBox_data() {
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const QString& text) { QTest::newRow(name) << text; };
        row("nothing", {});
        row("markup", u"<h1>big</h1><img src='file:///etc/passwd'>"_qs);
        row("ampersand", u"R&D &amp; &lt;b&gt; &"_qs);
        row("places", u"%1 %2 %n %L1 %%1"_qs);
        row("tab and breaks", u"a\tb\nc\r\nd\u2028e\u2029f\vg\fh\u0085i"_qs);
        row("NUL", QString::fromUtf16(u"a\0b", 3));
        row("lone surrogates", QString(300, QChar(0xD800)));
        row("no characters", u"\uFFFE\uFFFF\uFEFF"_qs);
        row("right to left",
            u"\u0645\u0631\u062D\u0628\u0627 \u05E9\u05DC\u05D5\u05DD "_qs.repeated(50));
        row("overrides", u"\u202Eabc\u202C \u2066x\u2069 \u2067y"_qs);
        row("overrides without end", u"\u202E\u202D\u2067\u2068\u202B"_qs.repeated(200) + u'x');
        row("5 000 marks", u'a' + QString(5'000, QChar(0x0301)));
        row("5 000 joined", u"\U0001F468\u200D"_qs.repeated(5'000));
        row("a million letters", QString(1'000'000, u'W'));
        row("a million words", u"words "_qs.repeated(166'667));
        row("a million blanks", QString(1'000'000, u' '));
        row("a million breaks", QString(1'000'000, u'\n'));
        row("a million ampersands", QString(1'000'000, u'&'));
        row("a million marks", QString(1'000'000, QChar(0x0301)));
        row("a million Arabic letters", QString(1'000'000, QChar(0x0628)));
        row("as wide as a sentence", QString(100, QChar(0xFDFD)));
    }
    void noTextLeavesItsBox() {
        QFETCH(QString, text);
        TextMenu f;
        check(f, text);
    }

    void theWholeCollectionStaysInItsBox() {
        const QDir folder(QStringLiteral(BRIMLET_CORPORA "/strings"));
        TextMenu f;
        int texts = 0;
        for (const QString& name : folder.entryList(QDir::Files)) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            for (const QByteArray& line : file.readAll().split('\n')) {
                check(f, QString::fromUtf8(line));
                if (QTest::currentTestFailed()) {
                    qInfo("it was %s", line.constData());
                    return;
                }
                ++texts;
            }
        }
        if (texts == 0) {
            QSKIP("there is no collection of texts at BRIMLET_CORPORA");
        }
        QVERIFY(texts > 100);
    }

    void everyCharacterIsShownAsTyped() {
        QVERIFY(painted(u"<b>B</b>"_qs) != painted(u"B"_qs));
        QVERIFY(painted(u"R&D"_qs) != painted(u"RD"_qs));
        QVERIFY(painted(u"R&amp;D"_qs) != painted(u"R&D"_qs));
        QVERIFY(painted(u"R&&D"_qs) != painted(u"R&D"_qs));
        QVERIFY(painted(u"%1"_qs) != painted(u"1"_qs));
        QCOMPARE(painted(u"a\tb"_qs), painted(u"a b"_qs));
        QCOMPARE(painted(u"a\u2028b"_qs), painted(u"a\nb"_qs)); // a text of more lines
    }

    void theWeeksWordIsNeverShown() {
        ShownMenu menu;
        menu.reply(ShownMenu::with(ShownMenu::liveWeek(), "weekStatus", u"<b>live</b>\u2028"_qs));
        menu.show();
        QCOMPARE(menu.texts().filter(u"<b>"_qs), QStringList());
        QVERIFY(menu.texts().contains(QStringLiteral("Unfilled")));
    }

    void figuresOfAnySizeStayInTheirBox_data() {
        QTest::addColumn<qint64>("figure");
        QTest::newRow("the largest") << std::numeric_limits<qint64>::max();
        QTest::newRow("the smallest") << std::numeric_limits<qint64>::min();
        QTest::newRow("the largest of whole euros") << std::numeric_limits<qint64>::max() - 7;
    }
    void figuresOfAnySizeStayInTheirBox() {
        QFETCH(qint64, figure);
        ShownMenu menu;
        QJsonObject week = ShownMenu::with(ShownMenu::liveWeek(), "agreed", true);
        for (const char* key : {"estimatedCents", "pendingStipendCents", "liveHostCount",
                                "liveDaysThisWeek", "liveBucketsToday", "liveBucketsNeeded"}) {
            week[QString::fromLatin1(key)] = figure;
        }
        menu.reply(week);
        HostMenuView& view = menu.show();
        QCOMPARE(menu.store()->assignment().estimatedCents, figure);
        QVERIFY(menu.texts().contains(menu.store()->statusLine()));
        QVERIFY(menu.store()->statusLine().contains(u"92233720368547"));
        const auto& agreement = *view.findChild<AgreementText*>();
        for (const QWidget* const part : shownParts(view, agreement)) {
            QVERIFY(QRect(16, 16, 288, view.height() - 32).contains(menu.place(*part)));
        }
        QVERIFY(isCleanAround(menu.picture(1)));
    }
};

QTEST_MAIN(TestHostileTexts)
#include "tst_hostiletexts.moc"
