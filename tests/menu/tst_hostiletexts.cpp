#include "creative/marqueetext.h"
#include "menu/agreementtext.h"
#include "menu/menutext.h"
#include "menu/textlines.h"
#include "tests/menu/shownmenu.h"
#include "tests/support/hostiletexts.h"
#include "tests/support/testprogram.h"

#include <QApplication>
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
    void noTextLeavesItsBox_data() { addHostileTexts(); }
    void noTextLeavesItsBox() {
        QFETCH(QString, text);
        TextMenu f;
        check(f, text);
    }

    void theWholeCollectionStaysInItsBox() {
        const QByteArrayList texts = naughtyStrings();
        if (texts.isEmpty()) {
            QSKIP("there is no collection of texts at BRIMLET_CORPORA");
        }
        QVERIFY(texts.size() > 100);
        TextMenu f;
        for (const QByteArray& text : texts) {
            check(f, QString::fromUtf8(text));
            if (QTest::currentTestFailed()) {
                qInfo("it was %s", text.constData());
                return;
            }
        }
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

BRIMLET_TEST(TestHostileTexts, QApplication)
#include "tst_hostiletexts.moc"
