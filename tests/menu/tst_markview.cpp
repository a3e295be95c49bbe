#include "menu/markview.h"
#include "tests/support/imagefixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

struct MarkFixture final : ImageFixture {
    MarkFixture() { mark.setParent(&window); }

    /// A brand with a picture, or without one.
    static SlotCreative creative(const char* picture = nullptr) {
        SlotCreative creative;
        creative.brandName = QStringLiteral("Acme");
        if (picture != nullptr) {
            creative.assetURL = url(picture);
        }
        return creative;
    }
    /// On black, at four pixels per point.
    [[nodiscard]] QImage picture() {
        QImage image(mark.size() * 4, QImage::Format_RGB32);
        image.setDevicePixelRatio(4);
        image.fill(Qt::black);
        mark.render(&image, {}, {}, QWidget::DrawChildren);
        return image;
    }
    [[nodiscard]] QRgb middle() { return picture().pixel(44, 44); }

    FakeReduceMotion reduceMotion;
    QWidget window;
    MarkView& mark = *new MarkView(CreativeEnvironment{images, clock, reduceMotion});
};

/// How many pixels have the colour.
int countOf(const QImage& image, QRgb color) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixel(x, y) == color ? 1 : 0;
        }
    }
    return count;
}

constexpr QRgb kRed = 0xFFFF0000;
constexpr QRgb kAccent = qRgb(61, 107, 255);

} // namespace

class TestMarkView final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itLoadsOnceAlsoWhileHidden() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.mark.setCreative(f.creative("a.png"));
        QCOMPARE(f.http.requests().size(), std::size_t{1});
        f.window.show();
        QCOMPARE(f.middle(), kRed);
        QCOMPARE(f.http.requests().size(), std::size_t{1});
    }

    void aCreativeReplacedWhileHiddenLeavesNoPicture() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.mark.setCreative(f.creative("a.png"));
        f.window.show();
        f.window.hide();
        f.mark.setCreative(f.creative("b.png"));
        f.window.show();
        QVERIFY(f.middle() != kRed);
    }

    void aPictureThatLoadedWhileHiddenIsShownAtOnce() {
        MarkFixture f;
        f.serve("a.png", Qt::red, 2s);
        f.mark.setCreative(f.creative("a.png"));
        f.window.show();
        QVERIFY(f.middle() != kRed);
        f.window.hide();
        f.clock.advance(2s);
        f.window.show();
        QCOMPARE(f.middle(), kRed);
    }

    void thePictureIsEighteenPointsOnTwentyTwo() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.mark.setCreative(f.creative("a.png"));
        f.window.show();
        QCOMPARE(f.mark.size(), QSize(22, 22));
        const QImage picture = f.picture();
        // Two points of the square, the picture, two points of the square.
        int first = -1;
        int last = -1;
        for (int x = 0; x < 88; ++x) {
            if (picture.pixel(x, 44) == kRed) {
                first = first < 0 ? x : first;
                last = x;
            }
        }
        QCOMPARE(first, 8);
        QCOMPARE(last, 79);
        QCOMPARE(picture.pixel(3, 44), kAccent);
        QCOMPARE(picture.pixel(84, 44), kAccent);
    }

    void withoutAPictureTheLetterIsShown() {
        MarkFixture f;
        f.mark.setCreative(f.creative());
        f.window.show();
        QVERIFY(f.http.requests().empty());
        const QImage picture = f.picture();
        QVERIFY(countOf(picture, 0xFFFFFFFF) > 50);
        QCOMPARE(picture.pixel(3, 44), kAccent);
    }

    void withoutACreativeOnlyTheSquareIsShown() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.mark.setCreative(f.creative("a.png"));
        f.window.show();
        f.mark.setCreative(std::nullopt);
        const QImage picture = f.picture();
        QVERIFY(qAbs(qRed(picture.pixel(44, 44)) - 20) <= 1); // white at 0.08
        QCOMPARE(picture.pixel(3, 44), picture.pixel(44, 44));
        QCOMPARE(countOf(picture, kAccent) + countOf(picture, kRed), 0);
        // It forgets the picture too.
        f.mark.setCreative(f.creative());
        QVERIFY(f.middle() != kRed);
    }

    void itsCornersHaveARadiusOfSix() {
        MarkFixture f;
        f.mark.setCreative(std::nullopt);
        f.window.show();
        const QImage picture = f.picture();
        int free = 0;
        while (qRed(picture.pixel(free, free)) < 10) {
            ++free;
        }
        // 0.29 of six points is seven pixels.
        QVERIFY2(free >= 6 && free <= 8, qPrintable(QString::number(free)));
    }
};

BRIMLET_TEST(TestMarkView, QApplication)
#include "tst_markview.moc"
