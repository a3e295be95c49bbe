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
using namespace Qt::StringLiterals;

namespace {

/// A menu with both slots filled and an agreement to sign. Its week is set directly, since no reply
/// can contain lone surrogates.
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

/// The visible parts of the menu, without those inside the agreement.
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

/// Whether the margins beside the content have the background's colour.
bool isCleanAround(const QImage& picture) {
    const QRgb background = picture.pixel(0, 0);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < 16; ++x) {
            if (picture.pixel(x, y) != background || picture.pixel(319 - x, y) != background) {
                return false;
            }
        }
    }
    return true;
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

/// Untrusted texts in the menu's rows and in the agreement.
class TestHostileTexts final : public QObject {
    Q_OBJECT

    static void check(TextMenu& f, const QString& text) {
        const HostMenuView& view = f.show(text);
        QCOMPARE(view.width(), 320);
        // Names of two lines in both rows, and an agreement of ninety points.
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
        QVERIFY(row->height() <= 2 * lineHeight(row->font()));
        if (!text.isEmpty()) {
            // The accessible name of the agreement is the whole text. Of its lines the first 300
            // are laid out, and those of the piece of 2,048 characters in which the 300th is.
            const QWidget& agreement = *f.agreement().widget();
            QCOMPARE(agreement.accessibleName(), text);
            QVERIFY(f.agreement().height() <= 90);
            QVERIFY(agreement.height() <= (300 + 2048) * lineHeight(agreement.font()));
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
        TextMenu f;
        checkNaughtyStrings([&f](const QString& text) { check(f, text); });
    }

    void everyCharacterIsShownAsTyped() {
        QVERIFY(painted(u"<b>B</b>"_s) != painted(u"B"_s));
        QVERIFY(painted(u"R&D"_s) != painted(u"RD"_s));
        QVERIFY(painted(u"R&amp;D"_s) != painted(u"R&D"_s));
        QVERIFY(painted(u"R&&D"_s) != painted(u"R&D"_s));
        QVERIFY(painted(u"%1"_s) != painted(u"1"_s));
        QCOMPARE(painted(u"a\tb"_s), painted(u"a b"_s));
        QCOMPARE(painted(u"a\u2028b"_s), painted(u"a\nb"_s)); // the text may have several lines
    }

    void theWeeksStatusIsNeverShown() {
        ShownMenu menu;
        menu.reply(ShownMenu::with(ShownMenu::liveWeek(), "weekStatus", u"<b>live</b>\u2028"_s));
        menu.show();
        QCOMPARE(menu.texts().filter(u"<b>"_s), QStringList());
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
