#include "tests/overlay/paintedview.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QTest>

#include <cmath>
#include <functional>

using namespace brimlet;

namespace {

constexpr int kGrey = 160;
constexpr const char* kTexts = "[{\"slotId\":\"left\",\"brandName\":\"HHHHHHHHHHHHHHHHHHHH\","
                               "\"assetUrl\":\"https://brand.test/picture.png\"},"
                               "{\"slotId\":\"right\",\"brandName\":\"H\","
                               "\"assetUrl\":\"https://brand.test/picture.png\"}]";
constexpr const char* kPicturesOnly =
    "[{\"slotId\":\"left\",\"assetUrl\":\"https://brand.test/picture.png\"},"
    "{\"slotId\":\"right\",\"assetUrl\":\"https://brand.test/picture.png\"}]";

/// A painted view and its pixels.
struct Fixture final {
    Fixture(double devicePixelRatio, const char* creatives)
        : ratio(devicePixelRatio)
        , view(creatives, red())
        , painted(view.picture(ratio))
        , overGrey(view.pictureOver(QColor(kGrey, kGrey, kGrey), ratio)) {}

    [[nodiscard]] static QImage red() {
        QImage image(64, 64, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image;
    }

    /// A rectangle in points with each edge at the nearest pixel.
    [[nodiscard]] QRect onScreen(const QRect& points) const {
        const auto edge = [this](int at) { return qRound(at * ratio); };
        const QPoint topLeft(edge(points.left()), edge(points.top()));
        return {topLeft, QSize(edge(points.left() + points.width()) - topLeft.x(),
                               edge(points.top() + points.height()) - topLeft.y())};
    }
    /// The smallest rectangle around the pixels in an area that meet the condition.
    [[nodiscard]] static QRect bounds(const QImage& image, const QRect& area,
                                      const std::function<bool(QRgb)>& condition) {
        QRect found;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                if (condition(image.pixel(x, y))) {
                    found |= QRect(x, y, 1, 1);
                }
            }
        }
        return found;
    }
    /// The smallest rectangle around everything painted in an area.
    [[nodiscard]] QRect paintedIn(const QRect& half) const {
        return bounds(painted, half, [](QRgb pixel) { return qAlpha(pixel) > 0; });
    }
    [[nodiscard]] QRect leftHalf() const { return {0, 0, painted.width() / 2, painted.height()}; }
    [[nodiscard]] QRect rightHalf() const {
        return {painted.width() / 2, 0, painted.width() / 2, painted.height()};
    }
    [[nodiscard]] int grey(const QPoint& pixel) const { return qGreen(overGrey.pixel(pixel)); }

    double ratio;
    PaintedView view;
    QImage painted;
    QImage overGrey;
};

/// A channel of black at 0.96 over the grey, under a line of white at `opacity`.
int underLine(double opacity) {
    return static_cast<int>(std::lround(255 * opacity + kGrey * (1 - 0.96) * (1 - opacity)));
}

constexpr QRect kLeftPill(8, 1, 108, 24);
constexpr QRect kRightPill(312, 1, 108, 24);

} // namespace

/// The position of each part to the pixel, independent of the font.
class TestPixels final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pillsOf108By24AreSixPointsBesideTheGap_data() { addScales(); }
    void pillsOf108By24AreSixPointsBesideTheGap() {
        QFETCH(double, ratio);
        const Fixture f(ratio, kTexts);
        const QRect left = f.paintedIn(f.leftHalf());
        const QRect right = f.paintedIn(f.rightHalf());
        QCOMPARE(left, f.onScreen(kLeftPill));
        QCOMPARE(right, f.onScreen(kRightPill));
        // Between them are the notch's width and two spacings, on either side eight points.
        QCOMPARE(right.left() - left.right() - 1, qRound((6 + 184 + 6) * ratio));
        QCOMPARE(left.left(), qRound(8 * ratio));
        QCOMPARE(f.painted.width() - right.right() - 1, qRound(8 * ratio));
    }

    void aPillWithoutTextIs36Wide_data() { addScales(); }
    void aPillWithoutTextIs36Wide() {
        QFETCH(double, ratio);
        const Fixture f(ratio, kPicturesOnly);
        QCOMPARE(f.paintedIn(f.leftHalf()), f.onScreen({80, 1, 36, 24}));
        QCOMPARE(f.paintedIn(f.rightHalf()), f.onScreen({312, 1, 36, 24}));
    }

    void onePointStaysFreeAboveInWholePixels() {
        // One and a half pixels are rounded to two.
        QCOMPARE(Fixture(1, kTexts).paintedIn({0, 0, 214, 40}).top(), 1);
        QCOMPARE(Fixture(1.5, kTexts).paintedIn({0, 0, 321, 60}).top(), 2);
        QCOMPARE(Fixture(2, kTexts).paintedIn({0, 0, 428, 80}).top(), 2);
    }

    void fractionalNotchesAreRoundedOnceToPixels_data() {
        QTest::addColumn<double>("notchWidth");
        QTest::addColumn<double>("ratio");
        for (const double width : {184.0, 184.25, 184.5, 184.7, 185.0}) {
            for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
                QTest::addRow("%g, scale %g", width, ratio) << width << ratio;
            }
        }
    }
    void fractionalNotchesAreRoundedOnceToPixels() {
        QFETCH(const double, notchWidth);
        QFETCH(const double, ratio);
        // The smallest window in whole points that has the panel's centre.
        const double windowWidth = 2 * std::ceil((notchWidth + 244) / 2);
        ShownOverlay overlay;
        overlay.host.http.answer(QStringLiteral("/picture.png"), 200, pngOf(Qt::red));
        overlay.view.resize(static_cast<int>(windowWidth), 40);
        overlay.fetch(QByteArray(R"({"weekStatus":"live","creatives":)") + kTexts + '}');
        overlay.render(notchWidth);
        const QImage painted = overlay.picture(ratio);
        const auto at = [&](double x) { return qRound(x * ratio); };
        const auto isPainted = [](QRgb pixel) { return qAlpha(pixel) > 0; };
        const auto isReddish = [](QRgb pixel) { return qRed(pixel) > qGreen(pixel) + 8; };
        const int middle = painted.width() / 2;
        const double left = (windowWidth - notchWidth) / 2 - 6 - 108;
        const double right = (windowWidth + notchWidth) / 2 + 6;
        const QRect leftHalf(0, 0, middle, painted.height());
        for (const auto& [x, half] :
             {std::pair(left, leftHalf), std::pair(right, leftHalf.translated(middle, 0))}) {
            const QRect pill = Fixture::bounds(painted, half, isPainted);
            QCOMPARE(pill.left(), at(x));
            QCOMPARE(pill.width(), qRound(108 * ratio));
            const QRect mark = Fixture::bounds(painted, half, isReddish);
            QCOMPARE(mark.left(), at(x + 7));
            QCOMPARE(mark.width(), qRound(16 * ratio));
        }
    }

    void everyPixelOfWholePointsIsPainted_data() { fractionalNotchesAreRoundedOnceToPixels_data(); }
    void everyPixelOfWholePointsIsPainted() {
        QFETCH(const double, notchWidth);
        QFETCH(const double, ratio);
        ShownOverlay overlay;
        overlay.view.resize(430, 40);
        overlay.fetch(QByteArray(R"({"weekStatus":"live","creatives":)") + kTexts + '}');
        overlay.render(notchWidth);
        const auto blank = [&] {
            QImage image(overlay.view.size() * ratio, QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(ratio);
            image.fill(Qt::red);
            return image;
        };
        const auto isRed = [](QRgb pixel) { return pixel == 0xffff0000; };
        const auto toPixels = [&](const QRect& points) {
            const QPoint topLeft(qRound(points.x() * ratio), qRound(points.y() * ratio));
            const QPoint end(qRound((points.x() + points.width()) * ratio),
                             qRound((points.y() + points.height()) * ratio));
            return QRect(topLeft, end - QPoint(1, 1));
        };
        for (NotchPill* const pill : {overlay.left(), overlay.right()}) {
            QImage whole = blank();
            pill->render(&whole, pill->pos(), {}, QWidget::DrawChildren);
            QCOMPARE(Fixture::bounds(whole, toPixels(pill->geometry()), isRed), QRect());
        }
    }

    void straightEdgesAreSharp_data() { addScales(); }
    void straightEdgesAreSharp() {
        QFETCH(double, ratio);
        const Fixture f(ratio, kTexts);
        const QRect pill = f.onScreen(kLeftPill);
        const int x = pill.center().x();
        const auto alpha = [&](int y) { return qAlpha(f.painted.pixel(x, y)); };
        QCOMPARE(alpha(pill.top() - 1), 0);
        QVERIFY(alpha(pill.top()) >= qRound(0.96 * 255));
        QVERIFY(alpha(pill.bottom()) >= qRound(0.96 * 255));
        QCOMPARE(alpha(pill.bottom() + 1), 0);
    }

    void cornersAreTransparent_data() { addScales(); }
    void cornersAreTransparent() {
        QFETCH(double, ratio);
        const Fixture f(ratio, kTexts);
        // Squares of three points, which a circle with a radius of twelve does not reach.
        const QSize square = f.onScreen({0, 0, 3, 3}).size() - QSize(1, 1);
        for (const QRect& points : {kLeftPill, kRightPill}) {
            const QRect pill = f.onScreen(points);
            QRect corner(pill.topLeft(), square);
            QCOMPARE(f.paintedIn(corner), QRect());
            corner.moveTopRight(pill.topRight());
            QCOMPARE(f.paintedIn(corner), QRect());
            corner.moveBottomRight(pill.bottomRight());
            QCOMPARE(f.paintedIn(corner), QRect());
            corner.moveBottomLeft(pill.bottomLeft());
            QCOMPARE(f.paintedIn(corner), QRect());
        }
    }

    void theBackgroundIsBlackAt96Percent_data() { addScales(); }
    void theBackgroundIsBlackAt96Percent() {
        QFETCH(double, ratio);
        const Fixture f(ratio, kTexts);
        // Before the mark, and after a short text.
        for (const QPoint& point : {QPoint(8 + 4, 13), QPoint(312 + 80, 13)}) {
            const QRgb pixel = f.overGrey.pixel(point * ratio);
            const int expected = underLine(0);
            QVERIFY(std::abs(qRed(pixel) - expected) <= 1);
            QVERIFY(std::abs(qGreen(pixel) - expected) <= 1);
            QVERIFY(std::abs(qBlue(pixel) - expected) <= 1);
        }
    }

    void theRimIsTheInnerHalfOfAThinWhiteLine_data() { addScales(); }
    void theRimIsTheInnerHalfOfAThinWhiteLine() {
        QFETCH(double, ratio);
        const Fixture f(ratio, kTexts);
        const QRect pill = f.onScreen(kLeftPill);
        const int x = pill.center().x();
        // A quarter point of the half-point line is inside and covers that share of one pixel row.
        const int rim = underLine(0.14 * 0.25 * ratio);
        const int background = underLine(0);
        for (const int y : {pill.top(), pill.bottom()}) {
            QVERIFY2(std::abs(f.grey({x, y}) - rim) <= 2,
                     qPrintable(QStringLiteral("%1, not %2").arg(f.grey({x, y})).arg(rim)));
        }
        QVERIFY(rim >= background + 8);
        QVERIFY(std::abs(f.grey({x, pill.top() + 1}) - background) <= 1);
        QVERIFY(std::abs(f.grey({x, pill.bottom() - 1}) - background) <= 1);
    }

    void theMarkFillsSixteenPointsSevenFromTheEnd_data() { addScales(); }
    void theMarkFillsSixteenPointsSevenFromTheEnd() {
        QFETCH(double, ratio);
        const Fixture f(ratio, kTexts);
        const auto isRed = [](QRgb pixel) { return pixel == 0xffff0000; };
        const auto isReddish = [](QRgb pixel) { return qRed(pixel) > qGreen(pixel) + 8; };
        const QRect left = f.onScreen({8 + 7, 1 + 4, 16, 16});
        QCOMPARE(Fixture::bounds(f.painted, f.leftHalf(), isRed), left);
        // It has no soft edges either.
        QCOMPARE(Fixture::bounds(f.painted, f.leftHalf(), isReddish), left);
        QCOMPARE(Fixture::bounds(f.painted, f.rightHalf(), isReddish),
                 f.onScreen({312 + 7, 1 + 4, 16, 16}));
    }

    void theTextFillsTheRestBesideTheMark_data() { addScales(); }
    void theTextFillsTheRestBesideTheMark() {
        QFETCH(double, ratio);
        const Fixture f(ratio, kTexts);
        const auto isText = [](QRgb pixel) { return qGreen(pixel) > 64; };
        const QRect line = f.onScreen({8 + 7 + 16 + 5, 1, 108 - 7 - 16 - 5 - 7, 24});
        const QRect text = Fixture::bounds(f.painted, f.leftHalf(), isText);
        QVERIFY(line.contains(text));
        // A letter has a bearing of its own.
        QVERIFY(text.left() - line.left() <= 2.5 * ratio);
        // Vertically centred, apart from the font's own proportions.
        QVERIFY(std::abs(text.center().y() - line.center().y()) <= 1.5 * ratio);
        // A text that is too wide is cut off at the line's end, so letters reach it.
        QVERIFY(line.right() - text.right() <= 6 * ratio);
    }
};

BRIMLET_TEST(TestPixels, QApplication)
#include "tst_pixels.moc"
