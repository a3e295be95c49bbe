#include "menu/livedot.h"
#include "menu/markview.h"
#include "menu/menutext.h"
#include "menu/statuscard.h"
#include "tests/menu/shownmenu.h"
#include "tests/support/testprogram.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QPalette>

using namespace brimlet;

namespace {

constexpr int kBackground = 18;
constexpr int kCard = 26;
/// The outline over a card.
constexpr int kOutline = 44;
/// The field's own.
constexpr int kFieldOutline = 122;

bool isAbout(int a, int b) {
    return qAbs(a - b) <= 3;
}

/// The box around all pixels in `box` that are brighter than the background.
QRect inkOf(const QImage& picture, const QRect& box, int background) {
    QRect ink;
    for (int y = box.top(); y <= box.bottom(); ++y) {
        for (int x = box.left(); x <= box.right(); ++x) {
            if (qGray(picture.pixel(x, y)) > background + 20) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

QRect scaled(const QRect& box, double scale) {
    return {QPoint(qRound(box.left() * scale), qRound(box.top() * scale)),
            QPoint(qRound((box.right() + 1) * scale) - 1, qRound((box.bottom() + 1) * scale) - 1)};
}

/// The level of the brightest pixel in the box; -1 if it is not grey.
int brightestOf(const QImage& picture, const QRect& box) {
    QColor brightest(Qt::black);
    for (int y = box.top(); y <= box.bottom(); ++y) {
        for (int x = box.left(); x <= box.right(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            brightest = color.red() > brightest.red() ? color : brightest;
        }
    }
    const bool isGrey =
        isAbout(brightest.red(), brightest.green()) && isAbout(brightest.red(), brightest.blue());
    return isGrey ? brightest.red() : -1;
}

/// The distance along each axis, in points, from the top left corner diagonally to the shape in the
/// box: 0.29 r for a corner with radius r. -1 if there is no shape.
double cornerOf(const QImage& picture, const QRect& box, int scale, int background) {
    const QPoint corner = box.topLeft() * scale;
    for (int i = 0; i < box.height() * scale; ++i) {
        if (picture.pixelColor(corner + QPoint(i, i)).blue() > background + 3) {
            return double(i) / scale;
        }
    }
    return -1;
}

} // namespace

/// The menu's measures and colours in its pixels.
class TestMenuLook final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachTextHasItsFontColourAndPlace_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("weight");
        QTest::addColumn<int>("brightness");
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("gap");
        QTest::addColumn<QString>("above");
        auto row = [above = QString()](const char* text, int size, int weight, int brightness,
                                       int x, int gap) mutable {
            const QString it = QString::fromUtf8(text);
            QTest::newRow(text) << it << size << weight << brightness << x << gap << above;
            above = it;
        };
        // White, white at 0.55 and at 0.42 over the background; 122 is 0.42 over a card.
        row("Brimlet", 15, 600, 255, 16, 16);
        row("€12.34", 44, 700, 255, 16, 14);
        row("You'll earn €12.34 this week", 11, 400, 148, 16, 6);
        row("Estimate, not a guarantee", 11, 400, 118, 16, 6);
        row("Notched MacBooks only.", 11, 400, 148, 16, 14);
        row("Drag this app into Applications. Time only counts from there, so a copy in "
            "Downloads cannot farm the pool.",
            11, 400, 148, 16, 14);
        row("Ad status", 11, 500, 122, 26, 24);
        row("Quiet Bicycle", 12, 600, 255, 56, 8);
        row("Left panel", 11, 400, 122, 56, 1);
        row("Palindrome", 12, 600, 255, 56, 8);
        row("Right panel", 11, 400, 122, 56, 1);
        row("Loading the live placement…", 11, 400, 148, 16, 24);
        row("Recorded 0/4 live windows today · 0 live days this week", 11, 400, 118, 16, 14);
        row("Split with 42 live hosts", 11, 400, 118, 16, 14);
        row("Banked €15.00. Cash-out at €15 via Stripe or PayPal.", 11, 400, 148, 16, 14);
        row("Be kind.", 11, 400, 148, 16, 14);
    }
    void eachTextHasItsFontColourAndPlace() {
        QFETCH(QString, text);
        QFETCH(QString, above);
        ShownMenu menu;
        menu.openWithEverything();
        const QLabel* const label = menu.named<QLabel>(text);
        QVERIFY2(label != nullptr && label->isVisible(), qPrintable(menu.texts().join(u'\n')));
        const QRect place = menu.place(*label);
        QTEST(label->font().pixelSize(), "size");
        QTEST(int(label->font().weight()), "weight");
        QTEST(place.x(), "x");
        const QLabel* const before = menu.named<QLabel>(above);
        QTEST(place.y() - (before == nullptr ? 0 : menu.place(*before).bottom() + 1), "gap");
        const QImage picture = menu.picture(4);
        const int background = place.x() == 16 ? kBackground : kCard;
        QFETCH(int, brightness);
        const int brightest = brightestOf(picture, scaled(place, 4));
        QVERIFY2(isAbout(brightest, brightness), qPrintable(QString::number(brightest)));
        // It begins at the left, apart from the first letter's bearing.
        const QRect ink = inkOf(picture, scaled(place, 4), background);
        const double free = ink.left() / 4.0 - place.x();
        QVERIFY2(free >= 0 && free < (place.height() > 40 ? 4 : 2),
                 qPrintable(QString::number(free)));
    }

    void theBackgroundIsNearlyBlack() {
        ShownMenu menu;
        menu.show();
        QCOMPARE(menu.view().palette().color(QPalette::Window).rgb(), qRgb(18, 18, 18));
        QCOMPARE(menu.view().width(), 320);
        QCOMPARE(menu.picture(1).pixelColor(1, 1).rgb(), qRgb(18, 18, 18));
    }

    void theTitleEndsWithTheDot() {
        ShownMenu menu;
        menu.show();
        const auto dots = menu.view().findChildren<LiveDot*>();
        const QRect title = menu.place(*menu.named<QLabel>(QStringLiteral("Brimlet")));
        int inTitle = 0;
        for (const LiveDot* const dot : dots) {
            const QRect place = menu.place(*dot);
            if (place.y() < title.bottom()) {
                ++inTitle;
                QCOMPARE(place.right() + 1, 304);
                QCOMPARE(dot->font().pixelSize(), 12);
                QVERIFY(qAbs(place.center().y() - title.center().y()) <= 1);
            } else if (dot->isVisible()) {
                QCOMPARE(place.right() + 1, 294);
                QCOMPARE(dot->font().pixelSize(), 11);
            }
        }
        QCOMPARE(inTitle, 1);
    }

    void theCardIsARoundedRectangleWithAnOutline() {
        ShownMenu menu;
        menu.show();
        const QRect card = menu.place(*menu.view().findChild<StatusCard*>());
        QCOMPARE(card.x(), 16);
        QCOMPARE(card.width(), 288);
        const QImage picture = menu.picture(4);
        const double corner = cornerOf(picture, card, 4, kBackground);
        QVERIFY2(corner > 3.5 && corner < 4.8, qPrintable(QString::number(corner)));
        const int middle = card.center().y() * 4;
        const auto at = [&](int pixel) { return picture.pixelColor(64 + pixel, middle).red(); };
        QVERIFY(isAbout(at(-1), kBackground));
        QVERIFY2(isAbout(at(0), kOutline) && isAbout(at(3), kOutline),
                 qPrintable(QString::number(at(0))));
        QVERIFY(isAbout(at(5), kCard));
        // The card ends ten points below the last label.
        const QRect label = menu.place(*menu.named<QLabel>(QStringLiteral("Right panel")));
        QCOMPARE(card.bottom() - label.bottom(), 10);
    }

    void aRowsMarkIsOnItsSquare_data() {
        QTest::addColumn<bool>("isFilled");
        QTest::addColumn<QColor>("square");
        QTest::newRow("a brand") << true << QColor(61, 107, 255);
        QTest::newRow("no brand") << false << QColor(kOutline, kOutline, kOutline);
    }
    void aRowsMarkIsOnItsSquare() {
        QFETCH(bool, isFilled);
        QFETCH(QColor, square);
        ShownMenu menu;
        if (!isFilled) {
            menu.reply(
                ShownMenu::with(ShownMenu::liveWeek(), "creatives", QJsonValue(QJsonArray())));
        }
        menu.show();
        const MarkView* mark = nullptr;
        for (const MarkView* const each : menu.view().findChildren<MarkView*>()) {
            mark = each->isVisible() && mark == nullptr ? each : mark;
        }
        QVERIFY(mark != nullptr);
        const QRect place = menu.place(*mark);
        QCOMPARE(place.size(), QSize(22, 22));
        QCOMPARE(place.x(), 26);
        const QImage picture = menu.picture(4);
        const QColor color = picture.pixelColor((place.x() + 1) * 4, place.center().y() * 4);
        QVERIFY2(isAbout(color.red(), square.red()) && isAbout(color.green(), square.green()) &&
                     isAbout(color.blue(), square.blue()),
                 qPrintable(color.name()));
        const double corner = cornerOf(picture, place, 4, kCard);
        QVERIFY2(corner > 1.2 && corner < 2.3, qPrintable(QString::number(corner)));
        const QString name =
            isFilled ? QStringLiteral("Left panel") : QStringLiteral("No brand this week");
        QCOMPARE(menu.place(*menu.named<QLabel>(name)).x(), 56);
        QCOMPARE(menu.view().findChildren<LiveDot*>().size(), 4);
    }

    void theRowWithoutABrandHasItsFontsAndColours() {
        ShownMenu menu;
        menu.reply(ShownMenu::with(ShownMenu::liveWeek(), "creatives", QJsonValue(QJsonArray())));
        menu.show();
        struct Line {
            const char* text;
            int size;
            int weight;
            int brightness;
        };
        const QImage picture = menu.picture(4);
        int bottom = menu.place(*menu.named<QLabel>(QStringLiteral("Ad status"))).bottom() - 7;
        for (const Line& line :
             {Line{"Unfilled", 12, 600, 255}, Line{"No brand this week", 11, 400, 122}}) {
            const MenuText* label = nullptr;
            for (const auto* const each : menu.view().findChildren<MenuText*>()) {
                const bool isIt = each->accessibleName() == QString::fromLatin1(line.text);
                label = isIt && each->isVisible() ? each : label;
            }
            QVERIFY(label != nullptr);
            QCOMPARE(label->font().pixelSize(), line.size);
            QCOMPARE(int(label->font().weight()), line.weight);
            const QRect place = menu.place(*label);
            QCOMPARE(place.x(), 56);
            QVERIFY2(place.y() > bottom, line.text); // one over the other
            bottom = place.bottom();
            const int brightest = brightestOf(picture, scaled(place, 4));
            QVERIFY2(isAbout(brightest, line.brightness), qPrintable(QString::number(brightest)));
        }
        for (const auto* const dot :
             menu.view().findChild<StatusCard*>()->findChildren<LiveDot*>()) {
            QVERIFY(!dot->isVisible());
        }
    }

    void theFieldHasItsPaddingCornersAndOutline() {
        ShownMenu menu;
        menu.hasToken = false;
        menu.show();
        const auto* const field = menu.named<QLineEdit>(QStringLiteral("Host token"));
        const QRect place = menu.place(*field);
        const int line = menu.named<QLabel>(QStringLiteral("Estimate, not a guarantee"))->height();
        QCOMPARE(field->placeholderText(), QStringLiteral("Host token"));
        QCOMPARE(field->font().pixelSize(), 11);
        QCOMPARE(field->font().weight(), QFont::Normal);
        QCOMPARE(place.x(), 16);
        QCOMPARE(place.width(), 288);
        QCOMPARE(place.height(), line + 16);
        const QImage picture = menu.picture(8);
        const QRect inside = scaled(place.adjusted(3, 3, -3, -3), 8);
        const int brightest = brightestOf(picture, inside);
        QVERIFY2(isAbout(brightest, 152), qPrintable(QString::number(brightest))); // dim
        const double free = inkOf(picture, inside, kFieldOutline).left() / 8.0 - place.x();
        QVERIFY2(free >= 10 && free < 12, qPrintable(QString::number(free)));
        const double corner = cornerOf(picture, place, 8, kBackground);
        QVERIFY2(corner > 2.4 && corner < 3.5, qPrintable(QString::number(corner)));
        const int middle = place.center().y() * 8;
        QVERIFY(isAbout(picture.pixelColor(16 * 8 + 3, middle).red(), kFieldOutline));
        QVERIFY(isAbout(picture.pixelColor(16 * 8 + 11, middle).red(), kCard));
    }

    void aHiddenTokenIsDimmerThanOneThatIsRead() {
        ShownMenu menu;
        menu.show();
        auto* const field = menu.named<QLineEdit>(QStringLiteral("Host token"));
        const QRect inside = scaled(menu.place(*field).adjusted(3, 3, -3, -3), 8);
        QVERIFY(QTest::qWaitForWindowActive(menu.view().window()));
        menu.named<QAbstractButton>(QStringLiteral("Quit"))->setFocus();
        QVERIFY(isAbout(brightestOf(menu.picture(8), inside), 152));
        field->setFocus();
        QVERIFY(isAbout(brightestOf(menu.picture(8), inside), 255));
    }

    void fromRightToLeftItIsMirrored() {
        ShownMenu menu;
        menu.openWithEverything();
        menu.view().setLayoutDirection(Qt::RightToLeft);
        QTRY_VERIFY(menu.view().findChild<LiveDot*>()->x() == 16);
        const QImage picture = menu.picture(4);
        for (const char* text : {"Brimlet", "€12.34", "Estimate, not a guarantee", "Ad status",
                                 "Notched MacBooks only.", "Be kind."}) {
            const auto* const label = menu.named<QLabel>(QString::fromUtf8(text));
            QVERIFY2(label != nullptr, text);
            const QRect place = menu.place(*label);
            const QRect ink = inkOf(picture, scaled(place, 4), kCard);
            QVERIFY2(place.right() - ink.right() / 4.0 < 4,
                     text); // letters have a side of their own
        }
        for (const auto* const mark : menu.view().findChildren<MarkView*>()) {
            if (mark->isVisible()) {
                QCOMPARE(menu.place(*mark).right(), 320 - 26 - 1);
            }
        }
        const auto* const dot = menu.view().findChild<LiveDot*>();
        const QRect place = menu.place(*dot);
        const QRect ink = inkOf(picture, scaled(place, 4), kBackground);
        QCOMPARE(ink.right() / 4, place.right()); // the dot, to the right of its word
        QVERIFY(inkOf(picture, scaled(place.adjusted(0, 0, -8, 0), 4), kBackground).width() > 80);
    }

    void buttonsFillTheWidth_data() {
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("weight");
        QTest::addColumn<QString>("above");
        const QString agree = QStringLiteral("I agree · not a guarantee");
        const QString field = QStringLiteral("Host token");
        const QString save = QStringLiteral("Save token");
        const QString pause = QStringLiteral("Pause ads 24h");
        QTest::newRow("agree") << agree << 600 << QStringLiteral("Host agreement");
        QTest::newRow("field") << field << 400 << agree;
        QTest::newRow("save") << save << 600 << field;
        QTest::newRow("pause") << pause << 500 << save;
        QTest::newRow("quit") << QStringLiteral("Quit") << 500 << pause;
    }
    void buttonsFillTheWidth() {
        QFETCH(QString, label);
        QFETCH(QString, above);
        ShownMenu menu;
        menu.openWithEverything();
        const auto* const control = menu.named<QWidget>(label);
        const QRect place = menu.place(*control);
        QCOMPARE(place.x(), 16);
        QCOMPARE(place.width(), 288);
        QTEST(int(control->font().weight()), "weight");
        QCOMPARE(place.y() - menu.place(*menu.named<QWidget>(above)).bottom() - 1, 14);
        if (qobject_cast<const QAbstractButton*>(control) != nullptr) {
            QCOMPARE(control->font().pixelSize(), 13);
            const QRect inside = scaled(place.adjusted(20, 5, -20, -5), 4);
            QVERIFY(isAbout(brightestOf(menu.picture(4), inside), 255));
        }
    }

    void nothingIsClippedAtAnyScale_data() {
        QTest::addColumn<double>("scale");
        QTest::newRow("1") << 1.0;
        QTest::newRow("1.5") << 1.5;
        QTest::newRow("2") << 2.0;
    }
    void nothingIsClippedAtAnyScale() {
        QFETCH(double, scale);
        ShownMenu menu;
        menu.openWithEverything();
        const QImage picture = menu.picture(scale);
        for (const QLabel* const label : menu.view().findChildren<QLabel*>()) {
            if (!label->isVisible()) {
                continue;
            }
            const QRect place = menu.place(*label);
            const QRect box = scaled(place, scale) & picture.rect();
            const int background = picture.pixelColor(box.topLeft() - QPoint(1, 1)).red();
            const QRect ink = inkOf(picture, box, background);
            // Its pixels take as much room as those of the same text in a large picture.
            if (place.height() >= 2 * QFontMetricsF(label->font()).height()) {
                continue; // wrapped
            }
            QImage roomy(QSize(400, 100) * scale, QImage::Format_RGB32);
            roomy.setDevicePixelRatio(scale);
            roomy.fill(Qt::black);
            QPainter painter(&roomy);
            painter.setPen(Qt::white);
            painter.setFont(label->font());
            painter.drawText(QPointF(20, 60), label->accessibleName());
            painter.end();
            const QRect wanted = inkOf(roomy, roomy.rect(), 0);
            QVERIFY2(ink.height() >= wanted.height() - 1, qPrintable(label->accessibleName()));
            if (label->font().pixelSize() != 44) { // the amount's letters are closer together
                QVERIFY2(ink.width() >= wanted.width() - 1, qPrintable(label->accessibleName()));
            }
        }
    }

    void textsOfSeveralLinesHaveTheirHeight() {
        ShownMenu menu;
        menu.openWithEverything();
        menu.week().estimatedCents = 123'456'789'012'345;
        // Two lines in the row, which is narrower than the menu.
        menu.week().left = ShownMenu::slot(QStringLiteral("A brand with a rather long name"));
        menu.view().hide();
        menu.open();
        for (const QString& text :
             {QStringLiteral("€1234567890123.45"),
              QStringLiteral("A brand with a rather long name"),
              QStringLiteral("Drag this app into Applications. Time only counts from there, so a "
                             "copy in Downloads cannot farm the pool.")}) {
            const auto* const label = menu.named<QLabel>(text);
            QVERIFY2(label != nullptr, qPrintable(text));
            QCOMPARE(label->height(), label->heightForWidth(label->width()));
            QVERIFY(label->height() > 1.5 * QFontMetricsF(label->font()).height());
        }
    }

    void aBrandOfAnyLengthHasTwoLinesAtMost() {
        const QString brand = QStringLiteral("Wide ").repeated(500).trimmed();
        ShownMenu menu;
        menu.reply(ShownMenu::with(
            ShownMenu::liveWeek(), "creatives",
            QJsonArray{ShownMenu::creative("left", brand), ShownMenu::creative("right", "R")}));
        menu.show();
        const int line = menu.named<QLabel>(QStringLiteral("R"))->height();
        int names = 0;
        for (const QLabel* const label : menu.view().findChildren<QLabel*>()) {
            if (label->accessibleName().startsWith(QStringLiteral("Wide"))) {
                ++names;
                QCOMPARE(label->height(), 2 * line);
                QVERIFY(menu.place(*label).right() < 294);
            }
        }
        QCOMPARE(names, 1);
    }
};

BRIMLET_TEST(TestMenuLook, QApplication)
#include "tst_menulook.moc"
