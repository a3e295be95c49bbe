#include "creative/notchfont.h"
#include "menu/amounttext.h"
#include "menu/focusmark.h"
#include "menu/hostbuttons.h"
#include "menu/hosttheme.h"
#include "menu/livedot.h"
#include "menu/menutext.h"
#include "menu/tabularfigures.h"
#include "menu/tokenfield.h"
#include "tests/support/paintcounter.h"
#include "tests/support/testprogram.h"

#include <QAbstractEventDispatcher>
#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QRawFont>
#include <QTest>

using namespace brimlet;

namespace {

/// The widget on the menu's background, or on another.
QImage pictureOf(QWidget& widget, double devicePixelRatio = 1,
                 const QColor& background = HostTheme::bg()) {
    QImage image(widget.size() * devicePixelRatio, QImage::Format_RGB32);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(background);
    widget.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

/// The result of drawing `top` over `background`.
QColor over(const QColor& top, const QColor& background) {
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(background);
    QPainter(&image).fillRect(image.rect(), top);
    return image.pixelColor(0, 0);
}

QColor withOpacity(QColor color, float opacity) {
    color.setAlphaF(opacity);
    return color;
}

bool isAbout(const QColor& a, const QColor& b) {
    return qAbs(a.red() - b.red()) <= 2 && qAbs(a.green() - b.green()) <= 2 &&
           qAbs(a.blue() - b.blue()) <= 2;
}

/// The first and the last column in this row that differ from the background.
std::pair<int, int> extent(const QImage& image, int row) {
    int first = -1;
    int last = -1;
    for (int x = 0; x < image.width(); ++x) {
        if (!isAbout(image.pixelColor(x, row), image.pixelColor(0, 0))) {
            first = first < 0 ? x : first;
            last = x;
        }
    }
    return {first, last};
}

/// Shows the button as wide as in the menu.
void show(HostButton& button) {
    button.setFixedSize(288, button.sizeHint().height());
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
}

/// The box of the label: its pixels are the brightest ones.
QRect labelIn(const QImage& picture) {
    QRect label;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y).red() > 160) {
                label |= QRect(x, y, 1, 1);
            }
        }
    }
    return label;
}

} // namespace

class TestControls final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theThemeHasItsColours_data() {
        QTest::addColumn<QColor>("color");
        QTest::addColumn<QColor>("wanted");
        QTest::newRow("bg") << HostTheme::bg() << QColor::fromRgbF(0.07F, 0.07F, 0.07F);
        QTest::newRow("card") << HostTheme::card() << QColor::fromRgbF(0.1F, 0.1F, 0.1F);
        QTest::newRow("line") << HostTheme::line() << QColor::fromRgbF(1, 1, 1, 0.08F);
        QTest::newRow("dim") << HostTheme::dim() << QColor::fromRgbF(1, 1, 1, 0.55F);
        QTest::newRow("faint") << HostTheme::faint() << QColor::fromRgbF(1, 1, 1, 0.42F);
        QTest::newRow("accent") << HostTheme::accent() << QColor::fromRgbF(0.24F, 0.42F, 1);
        QTest::newRow("live") << HostTheme::live() << QColor::fromRgbF(0.19F, 0.82F, 0.35F);
    }
    void theThemeHasItsColours() {
        QFETCH(QColor, color);
        QFETCH(QColor, wanted);
        QCOMPARE(color, wanted);
    }

    void theDotShowsItsState_data() {
        QTest::addColumn<bool>("live");
        QTest::addColumn<bool>("compact");
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("size");
        const QString live = QStringLiteral("Live");
        const QString unfilled = QStringLiteral("Unfilled");
        QTest::newRow("live") << true << false << live << 12;
        QTest::newRow("live, compact") << true << true << live << 11;
        QTest::newRow("unfilled") << false << false << unfilled << 12;
        QTest::newRow("unfilled, compact") << false << true << unfilled << 11;
    }
    void theDotShowsItsState() {
        QFETCH(bool, live);
        QFETCH(bool, compact);
        QFETCH(QString, word);
        QFETCH(int, size);
        LiveDot dot(live, compact);
        QCOMPARE(dot.accessibleName(), word);
        QCOMPARE(dot.font().pixelSize(), size);
        QCOMPARE(dot.font().weight(), QFont::Medium);
        dot.resize(dot.sizeHint());
        QCOMPARE(dot.width(), 7 + 5 + qCeil(QFontMetricsF(dot.font()).horizontalAdvance(word)));
        // A circle of seven points, vertically centred, then a gap of five points.
        const QImage picture = pictureOf(dot, 4);
        const QColor wanted = live ? HostTheme::live() : over(HostTheme::faint(), HostTheme::bg());
        QVERIFY(isAbout(picture.pixelColor(14, picture.height() / 2), wanted));
        const auto [first, last] =
            extent(picture.copy(0, 0, 4 * 12, picture.height()), picture.height() / 2);
        QVERIFY(first <= 1);
        QVERIFY(last == 27 || last == 28);
        // The word's pixels are mixtures of its colour and the background, up to its colour.
        const QColor wordColor = live ? HostTheme::live() : over(HostTheme::dim(), HostTheme::bg());
        QColor strongest = HostTheme::bg();
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 4 * 12; x < picture.width(); ++x) {
                const QColor color = picture.pixelColor(x, y);
                strongest = color.green() > strongest.green() ? color : strongest;
            }
        }
        QVERIFY2(isAbout(strongest, wordColor), qPrintable(strongest.name()));
    }

    void theDotDoesNotAnimate() {
        LiveDot dot(false, false);
        dot.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dot));
        const auto hasTimers = [&dot] {
            const auto* const loop = QAbstractEventDispatcher::instance();
            return !loop->registeredTimers(&dot).isEmpty() ||
                   !dot.findChildren<QObject*>(QString(), Qt::FindDirectChildrenOnly).isEmpty();
        };
        for (const bool live : {true, false}) {
            const PaintCounter counter(dot);
            dot.setLive(live);
            LiveDot other(live, false);
            dot.resize(dot.sizeHint());
            other.resize(dot.size());
            QCOMPARE(pictureOf(dot), pictureOf(other)); // at once
            QTRY_VERIFY(counter.paints > 0);
            QCoreApplication::processEvents();
            const int paints = counter.paints;
            QVERIFY(!hasTimers());
            QCoreApplication::processEvents();
            QCOMPARE(counter.paints, paints);
        }
    }

    void aDotThatIsNotLiveIsGreyWhiteWithADimSmallWord() {
        LiveDot dot(false, true);
        dot.resize(dot.sizeHint());
        const QImage picture = pictureOf(dot, 8);
        QVERIFY(isAbout(picture.pixelColor(28, picture.height() / 2),
                        over(HostTheme::faint(), HostTheme::bg())));
        // The brightest pixel of the word has its colour.
        int brightest = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 12 * 8; x < picture.width(); ++x) {
                brightest = qMax(brightest, picture.pixelColor(x, y).red());
            }
        }
        QVERIFY(qAbs(brightest - over(HostTheme::dim(), HostTheme::bg()).red()) <= 2);
        QCOMPARE(dot.font().pixelSize(), 11);
    }

    void aDotThatChangesLooksLikeItsNewState() {
        LiveDot dot(false, false);
        dot.setLive(true);
        QCOMPARE(dot.accessibleName(), QStringLiteral("Live"));
        LiveDot live(true, false);
        QCOMPARE(dot.sizeHint(), live.sizeHint());
        dot.resize(dot.sizeHint());
        live.resize(live.sizeHint());
        QCOMPARE(pictureOf(dot), pictureOf(live));
    }

    void buttonsAreCapsulesInTheirColours() {
        HostPrimaryButton primary(QStringLiteral("I"));
        HostGhostButton ghost(QStringLiteral("I"));
        QCOMPARE(primary.font().weight(), QFont::DemiBold);
        QCOMPARE(ghost.font().weight(), QFont::Medium);
        for (HostButton* const button : std::initializer_list<HostButton*>{&primary, &ghost}) {
            QCOMPARE(button->font().pixelSize(), 13);
            const int text = qCeil(QFontMetricsF(button->font()).lineSpacing());
            QCOMPARE(button->sizeHint().height(), text + 18);
            button->resize(288, button->sizeHint().height());
            const QImage picture = pictureOf(*button);
            QVERIFY(isAbout(picture.pixelColor(0, 0), HostTheme::bg()));
            QVERIFY(isAbout(picture.pixelColor(287, picture.height() - 1), HostTheme::bg()));
        }
        QVERIFY(isAbout(pictureOf(primary).pixelColor(40, 10), HostTheme::accent()));
        QVERIFY(isAbout(pictureOf(ghost).pixelColor(40, 10), HostTheme::card()));
        // The ghost's outline, one point wide.
        QVERIFY(isAbout(pictureOf(ghost).pixelColor(40, 0),
                        over(HostTheme::line(), HostTheme::card())));
        QVERIFY(isAbout(pictureOf(ghost).pixelColor(40, 1), HostTheme::card()));
    }

    void aPressedButtonIsFainterAndSmaller() {
        HostPrimaryButton primary(QStringLiteral("I"));
        HostGhostButton ghost(QStringLiteral("I"));
        show(primary);
        show(ghost);
        QTest::mousePress(&primary, Qt::LeftButton);
        QTest::mousePress(&ghost, Qt::LeftButton);
        const QColor background = Qt::black;
        const QImage picture = pictureOf(primary, 1, background);
        QVERIFY(isAbout(picture.pixelColor(40, 10),
                        over(withOpacity(HostTheme::accent(), 0.85F), background)));
        QVERIFY(isAbout(pictureOf(ghost, 1, background).pixelColor(40, 10),
                        over(withOpacity(HostTheme::card(), 0.7F), background)));
        // 0.96 of 288 points around the centre leave 5.76 points free at either end.
        const auto [first, last] = extent(picture, picture.height() / 2);
        QVERIFY2(qAbs(first - 6) <= 1 && qAbs(last - 281) <= 1,
                 qPrintable(QStringLiteral("%1 %2").arg(first).arg(last)));
        QTest::mouseRelease(&primary, Qt::LeftButton);
        QVERIFY(isAbout(pictureOf(primary, 1, background).pixelColor(40, 10), HostTheme::accent()));
        QCOMPARE(extent(pictureOf(primary, 1, background), picture.height() / 2).first, 0);
    }

    void thePressScalesTheLabelAndTheOutlineAboutTheCentre() {
        HostPrimaryButton primary(QStringLiteral("I agree · not a guarantee"));
        HostGhostButton ghost(QStringLiteral("I agree · not a guarantee"));
        const QColor background = Qt::black;
        for (HostButton* const button : std::initializer_list<HostButton*>{&primary, &ghost}) {
            show(*button);
            const QRect before = labelIn(pictureOf(*button, 8, background));
            QTest::mousePress(button, Qt::LeftButton);
            const QImage pressed = pictureOf(*button, 8, background);
            const QRect label = labelIn(pressed);
            QVERIFY(before.width() > 8 * 100);
            QVERIFY2(qAbs(label.width() - 0.96 * before.width()) <= 8,
                     qPrintable(QStringLiteral("%1 %2").arg(before.width()).arg(label.width())));
            QVERIFY(qAbs(label.height() - 0.96 * before.height()) <= 4);
            QVERIFY(qAbs(label.center().x() - before.center().x()) <= 4);
            QVERIFY(qAbs(label.center().y() - before.center().y()) <= 4);
            QTest::mouseRelease(button, Qt::LeftButton);
            QCOMPARE(labelIn(pictureOf(*button, 8, background)), before);
        }
        // The ghost's outline: 0.96 of a point wide, at the pressed capsule's edge.
        QTest::mousePress(&ghost, Qt::LeftButton);
        const QImage picture = pictureOf(ghost, 8, background);
        const int top = qRound(8 * ghost.height() * 0.02);
        const QColor fill = over(withOpacity(HostTheme::card(), 0.7F), background);
        QVERIFY(isAbout(picture.pixelColor(8 * 144, top - 3), background));
        QVERIFY(isAbout(picture.pixelColor(8 * 144, top + 4), over(HostTheme::line(), fill)));
        QVERIFY(isAbout(picture.pixelColor(8 * 144, top + 11), fill));
    }

    void buttonsSideBySideShareTheWidthEqually() {
        QWidget row;
        auto* const layout = new QHBoxLayout(&row);
        layout->setContentsMargins({});
        layout->setSpacing(8);
        auto* const primary = new HostPrimaryButton(QStringLiteral("A rather long label"));
        auto* const ghost = new HostGhostButton(QStringLiteral("Short"));
        layout->addWidget(primary);
        layout->addWidget(ghost);
        row.resize(408, 40);
        layout->activate();
        QCOMPARE(primary->width(), 200);
        QCOMPARE(ghost->width(), 200);
    }

    void theFocusIsVisible() {
        for (const bool isPrimary : {true, false}) {
            std::unique_ptr<HostButton> button;
            if (isPrimary) {
                button = std::make_unique<HostPrimaryButton>(QStringLiteral("I"));
            } else {
                button = std::make_unique<HostGhostButton>(QStringLiteral("I"));
            }
            button->resize(288, button->sizeHint().height());
            const QImage before = pictureOf(*button);
            button->show();
            QVERIFY(QTest::qWaitForWindowActive(button.get()));
            button->setFocus();
            QVERIFY(pictureOf(*button).pixelColor(40, 3).red() >
                    before.pixelColor(40, 3).red() + 100);
            QVERIFY(pictureOf(*button) != before);
        }
    }

    void onlyTheKeyboardsFocusIsMarked_data() {
        QTest::addColumn<Qt::FocusReason>("reason");
        QTest::addColumn<bool>("before");
        QTest::addColumn<bool>("isMarked");
        QTest::newRow("Tab") << Qt::TabFocusReason << false << true;
        QTest::newRow("Shift+Tab") << Qt::BacktabFocusReason << false << true;
        QTest::newRow("screen reader") << Qt::OtherFocusReason << false << true;
        QTest::newRow("click") << Qt::MouseFocusReason << true << false;
        QTest::newRow("back from a menu after a click") << Qt::PopupFocusReason << false << false;
        QTest::newRow("back from a menu after Tab") << Qt::PopupFocusReason << true << true;
        QTest::newRow("back from a window") << Qt::ActiveWindowFocusReason << false << false;
    }
    void onlyTheKeyboardsFocusIsMarked() {
        QFETCH(Qt::FocusReason, reason);
        QFETCH(bool, before);
        QFETCH(bool, isMarked);
        QCOMPARE(isFocusMarked(reason, before), isMarked);
        // So does a field, with its outline.
        TokenField field;
        field.resize(288, field.sizeHint().height());
        for (const Qt::FocusReason each :
             {before ? Qt::TabFocusReason : Qt::MouseFocusReason, reason}) {
            QFocusEvent event(QEvent::FocusIn, each);
            QApplication::sendEvent(&field, &event);
        }
        field.show();
        QVERIFY(QTest::qWaitForWindowActive(&field));
        field.setFocus(reason);
        QVERIFY(field.hasFocus());
        const QColor outline = pictureOf(field).pixelColor(100, 0);
        QCOMPARE(outline.blue() > outline.red() + 60, isMarked);
    }

    void figuresOfEqualWidthAreTheFontsOwn_data() {
        QTest::addColumn<QString>("family");
        QTest::addColumn<bool>("hasOthers");
        QTest::newRow("digits of different widths, and figures") << QStringLiteral("Inter") << true;
        QTest::newRow("digits of equal width") << QStringLiteral("DejaVu Sans") << false;
    }
    void figuresOfEqualWidthAreTheFontsOwn() {
        QFETCH(QString, family);
        QFETCH(bool, hasOthers);
        QFont font(family);
        if (!QFontInfo(font).exactMatch()) {
            QSKIP("this font is not installed");
        }
        font.setPixelSize(44);
        const auto widthOf = [](const QFont& of, char digit) {
            return QFontMetricsF(of).horizontalAdvance(QString(QLatin1Char(digit)));
        };
        QCOMPARE(widthOf(font, '1') < widthOf(font, '0'), hasOthers);
        preferTabularFigures(font);
        const QList<quint32> figures = tabularFigures(font);
        if (figures.isEmpty()) { // Qt shapes them itself, or they are the usual ones
            QCOMPARE(widthOf(font, '1'), widthOf(font, '0'));
            return;
        }
        QVERIFY(hasOthers);
        const QRawFont raw = QRawFont::fromFont(font);
        const auto advances = raw.advancesForGlyphIndexes(figures);
        QCOMPARE(advances.size(), 10);
        for (const QPointF& advance : advances) {
            QCOMPARE(advance, advances.first());
        }
        QVERIFY(figures.mid(1, 1) != raw.glyphIndexesForString(QStringLiteral("1")));
    }

    void theAmountsDigitsAreEquallyWide() {
        AmountText amount;
        QCOMPARE(amount.font().pixelSize(), 44);
        QCOMPARE(amount.font().weight(), QFont::Bold);
        const auto widthOf = [&amount](const char* text) {
            amount.setAmount(QString::fromUtf8(text));
            return amount.sizeHint().width();
        };
        QCOMPARE(widthOf("€11.11"), widthOf("€88.88"));
        QVERIFY(widthOf("€111.11") > widthOf("€11.11"));
        // Letters are 1.2 points closer than usual.
        const QFontMetricsF metrics(amount.font());
        double widestDigit = 0;
        for (char digit = '0'; digit <= '9'; ++digit) {
            widestDigit = qMax(widestDigit, metrics.horizontalAdvance(QLatin1Char(digit)));
        }
        const double euro = metrics.horizontalAdvance(QChar(0x20AC));
        QCOMPARE(widthOf("€15"), qCeil(euro + 2 * widestDigit - 3 * 1.2));
    }

    void anAmountWiderThanTheMenuContinuesOnTheNextLine() {
        AmountText amount;
        amount.setAmount(QStringLiteral("€12.34"));
        const int line = amount.heightForWidth(288);
        amount.setAmount(QStringLiteral("€92233720368547760.00"));
        const int height = amount.heightForWidth(288);
        QVERIFY(height >= 2 * line);
        QCOMPARE(height % line, 0);
        amount.resize(288, height);
        // Its last line is not empty, and nothing crosses the edge.
        const QImage picture = pictureOf(amount);
        QVERIFY(extent(picture, height - line / 2).first >= 0);
        for (int y = 0; y < height; ++y) {
            QVERIFY(extent(picture, y).second < 287);
        }
    }

    void theAmountHasOneAccessibleName() {
        AmountText amount;
        amount.setAmount(QStringLiteral("€12.34"));
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&amount);
        QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("€12.34"));
        QCOMPARE(accessible->role(), QAccessible::StaticText);
        QCOMPARE(accessible->childCount(), 0);
    }

    void buttonsAndDotsHaveAccessibleNameAndRole() {
        HostGhostButton quit(QStringLiteral("Quit"));
        QAccessibleInterface* const button = QAccessible::queryAccessibleInterface(&quit);
        QCOMPARE(button->role(), QAccessible::Button);
        QCOMPARE(button->text(QAccessible::Name), QStringLiteral("Quit"));
        QVERIFY(button->actionInterface()->actionNames().contains(
            QAccessibleActionInterface::pressAction()));
        LiveDot dot(true, false);
        QAccessibleInterface* const state = QAccessible::queryAccessibleInterface(&dot);
        QCOMPARE(state->role(), QAccessible::StaticText);
        QCOMPARE(state->text(QAccessible::Name), QStringLiteral("Live"));
    }

    void aTextLongerThanItsLinesEndsWithAnEllipsis() {
        MenuText text(systemFont(12, QFont::DemiBold), Qt::white,
                      QStringLiteral("some words ").repeated(100));
        const int line = MenuText(text.font(), Qt::white, QStringLiteral("A")).heightForWidth(200);
        text.setMaximumLines(2);
        QCOMPARE(text.heightForWidth(200), 2 * line);
        text.resize(200, 2 * line);
        const QImage cut = pictureOf(text);
        MenuText whole(text.font(), Qt::white, QStringLiteral("some words ").repeated(100));
        whole.resize(200, 2 * line);
        QVERIFY(cut != pictureOf(whole));
        QCOMPARE(cut.copy(0, 0, 200, line), pictureOf(whole).copy(0, 0, 200, line));
    }
};

BRIMLET_TEST(TestControls, QApplication)
#include "tst_controls.moc"
