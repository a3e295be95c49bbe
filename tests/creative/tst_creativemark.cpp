#include "creative/creativemark.h"
#include "creative/notchfont.h"
#include "tests/support/drawnimages.h"
#include "tests/support/imagefixture.h"
#include "tests/support/testprogram.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QString kBrand = QStringLiteral("Acme");

struct MarkFixture final : ImageFixture {
    /// A mark on screen with the picture of this name.
    void appearWith(const char* name) const {
        mark->setCreative(url(name), kBrand);
        mark->appear();
    }
    /// The colour in the picture's middle; invalid while there is none.
    [[nodiscard]] QColor shown() const {
        return mark->image() ? mark->image()->pixelColor(5, 5) : QColor();
    }
    /// The mark as a pill paints it, on a grey background with a margin of four pixels.
    [[nodiscard]] QImage picture(double scale = 1) const {
        const int side = qRound(16 * scale);
        QImage image(side + 8, side + 8, QImage::Format_RGB32);
        image.fill(Qt::gray);
        QPainter painter(&image);
        mark->paint(painter, {4, 4, side, side}, scale);
        return image;
    }
    /// The scaled image that is painted into a box of this side.
    [[nodiscard]] QImage scaled(int side) const {
        DrawnImages device;
        QPainter painter(&device);
        mark->paint(painter, {0, 0, side, side}, side / 16.0);
        return device.take().at(0);
    }

    std::unique_ptr<CreativeMark> mark = std::make_unique<CreativeMark>(images);
};

/// The box around everything that is not background.
QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::gray)) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

} // namespace

class TestCreativeMark final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itLoadsAtOnceAlsoOffScreen() {
        MarkFixture f;
        f.serve("a.png", Qt::red, 2s);
        f.mark->setCreative(f.url("a.png"), kBrand);
        QCOMPARE(f.http.requests().size(), std::size_t{1});
        const QSignalSpy changed(f.mark.get(), &CreativeMark::changed);
        f.clock.advance(2s);
        QCOMPARE(f.shown(), QColor(Qt::red));
        QCOMPARE(changed.count(), 1);
        f.mark->appear();
        QCOMPARE(f.shown(), QColor(Qt::red));
        QCOMPARE(f.http.requests().size(), std::size_t{1});
    }

    void withoutAnAddressTheFallbackStays() {
        MarkFixture f;
        f.mark->setCreative(std::nullopt, kBrand);
        f.mark->appear();
        QVERIFY(!f.mark->image());
        QVERIFY(f.http.requests().empty());
        QVERIFY(inkOf(f.picture()).isValid());
    }

    void theOldPictureStaysWhileTheNewOneLoads() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.serve("b.png", Qt::blue, 2s);
        f.appearWith("a.png");
        f.mark->setCreative(f.url("b.png"), kBrand);
        f.clock.advance(1999ms);
        QCOMPARE(f.shown(), QColor(Qt::red));
        f.clock.advance(1ms);
        QCOMPARE(f.shown(), QColor(Qt::blue));
    }

    void aFailedLoadReplacesThePictureByTheFallback() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.http.answer(QStringLiteral("b.png"), HttpReply{404, {}}, 2s);
        f.appearWith("a.png");
        f.mark->setCreative(f.url("b.png"), kBrand);
        QCOMPARE(f.shown(), QColor(Qt::red));
        f.clock.advance(2s);
        QVERIFY(!f.mark->image());
    }

    void aRefusedAddressShowsTheFallbackAtOnce() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.appearWith("a.png");
        f.mark->setCreative(Url::fromString(u"http://images.test/a.png"), kBrand);
        QVERIFY(!f.mark->image());
        QCOMPARE(f.http.requests().size(), std::size_t{1});
    }

    void aLateReplyNeverReplacesANewerOne() {
        MarkFixture f;
        f.serve("slow.png", Qt::red, 5s);
        f.serve("fast.png", Qt::blue, 1s);
        f.appearWith("slow.png");
        f.mark->setCreative(f.url("fast.png"), kBrand);
        f.clock.advance(1s);
        QCOMPARE(f.shown(), QColor(Qt::blue));
        f.clock.advance(10s);
        QCOMPARE(f.shown(), QColor(Qt::blue));
    }

    void aLateFailureNeverClearsANewerPicture() {
        MarkFixture f;
        f.http.hang(QStringLiteral("hung.png"));
        f.serve("fast.png", Qt::blue);
        f.appearWith("hung.png");
        f.mark->setCreative(f.url("fast.png"), kBrand);
        f.clock.advance(60s);
        QCOMPARE(f.shown(), QColor(Qt::blue));
    }

    void backAtTheFirstAddressItsFirstReplyCounts() {
        MarkFixture f;
        f.serve("a.png", Qt::red, 5s);
        f.serve("b.png", Qt::blue, 1s);
        f.appearWith("a.png");
        f.mark->setCreative(f.url("b.png"), kBrand);
        f.mark->setCreative(f.url("a.png"), kBrand);
        f.clock.advance(1s);
        QVERIFY(!f.mark->image());
        f.clock.advance(4s);
        QCOMPARE(f.shown(), QColor(Qt::red));
        QCOMPARE(f.http.requests().size(), std::size_t{2});
    }

    void aReplyWhileOffScreenIsShownAtTheReturn() {
        MarkFixture f;
        f.serve("a.png", Qt::red, 2s);
        f.appearWith("a.png");
        f.mark->disappear();
        f.clock.advance(2s);
        f.mark->appear();
        QCOMPARE(f.shown(), QColor(Qt::red));
        QCOMPARE(f.http.requests().size(), std::size_t{1});
    }

    void aPictureReplacedOffScreenIsNotShownAtTheReturn() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.serve("b.png", Qt::blue, 2s);
        f.appearWith("a.png");
        f.mark->disappear();
        f.mark->setCreative(f.url("b.png"), kBrand);
        f.mark->appear();
        QVERIFY(!f.mark->image());
        f.clock.advance(2s);
        QCOMPARE(f.shown(), QColor(Qt::blue));
        QCOMPARE(f.http.requests().size(), std::size_t{2});
    }

    void aPictureThatIsBeingReplacedLeavesWithTheMark() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.serve("b.png", Qt::blue, 2s);
        f.appearWith("a.png");
        f.mark->setCreative(f.url("b.png"), kBrand);
        QCOMPARE(f.shown(), QColor(Qt::red));
        f.mark->disappear();
        f.mark->appear();
        QVERIFY(!f.mark->image());
        f.clock.advance(2s);
        QCOMPARE(f.shown(), QColor(Qt::blue));
    }

    void anUnchangedPictureStaysOffScreen() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.appearWith("a.png");
        f.mark->disappear();
        f.mark->setCreative(f.url("a.png"), kBrand);
        QCOMPARE(f.shown(), QColor(Qt::red));
        f.mark->appear();
        QCOMPARE(f.shown(), QColor(Qt::red));
        QCOMPARE(f.http.requests().size(), std::size_t{1});
    }

    void aFailureOffScreenIsTriedAgainAtTheReturn() {
        MarkFixture f;
        f.http.answer(QStringLiteral("a.png"), 404, {});
        f.mark->setCreative(f.url("a.png"), kBrand);
        f.serve("a.png", Qt::red);
        QVERIFY(!f.mark->image());
        f.mark->appear();
        QCOMPARE(f.shown(), QColor(Qt::red));
        QCOMPARE(f.http.requests().size(), std::size_t{2});
    }

    void theSameCreativeAgainLoadsNothing() {
        MarkFixture f;
        f.http.answer(QStringLiteral("a.png"), 404, {});
        f.mark->appear();
        f.mark->setCreative(f.url("a.png"), kBrand);
        f.mark->setCreative(f.url("a.png"), kBrand);
        f.mark->setCreative(f.url("a.png"), QStringLiteral("Another brand"));
        f.mark->appear();
        QCOMPARE(f.http.requests().size(), std::size_t{1});
        f.mark->disappear();
        f.mark->appear();
        QCOMPARE(f.http.requests().size(), std::size_t{2}); // the retry
    }

    void aClearedMarkIsLikeANewOne() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.serve("b.png", Qt::blue, 1s);
        f.appearWith("a.png");
        f.mark->setCreative(f.url("b.png"), kBrand);
        f.mark->clear();
        QVERIFY(!f.mark->image());
        f.clock.advance(1s);
        QVERIFY(!f.mark->image());
    }

    void aDestroyedMarkIgnoresItsReply() {
        MarkFixture f;
        f.serve("a.png", Qt::red, 1s);
        f.appearWith("a.png");
        f.mark.reset();
        f.clock.advance(1s);
        QCOMPARE(f.http.requests().size(), std::size_t{1});
    }

    void aPictureIsScaledOncePerSize() {
        MarkFixture f;
        f.serve("a.png", Qt::red);
        f.serve("b.png", Qt::blue);
        f.appearWith("a.png");
        const QImage small = f.scaled(16);
        QCOMPARE(small.size(), QSize(16, 16));
        QCOMPARE(f.scaled(16).cacheKey(), small.cacheKey());
        const QImage large = f.scaled(32);
        QCOMPARE(large.size(), QSize(32, 32));
        QCOMPARE(f.scaled(32).cacheKey(), large.cacheKey());
        f.mark->setCreative(f.url("b.png"), kBrand);
        QVERIFY(f.scaled(32).cacheKey() != large.cacheKey());
    }

    void theWholePictureFitsTheSquare_data() {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<double>("scale");
        QTest::addColumn<QRect>("place");
        QTest::newRow("square") << QSize(64, 64) << 1.0 << QRect(4, 4, 16, 16);
        QTest::newRow("wide") << QSize(64, 32) << 1.0 << QRect(4, 8, 16, 8);
        QTest::newRow("tall") << QSize(32, 64) << 2.0 << QRect(12, 4, 16, 32);
        QTest::newRow("small ones grow") << QSize(4, 2) << 1.0 << QRect(4, 8, 16, 8);
        QTest::newRow("one pixel wide") << QSize(1, 4096) << 1.0 << QRect(11, 4, 1, 16);
        QTest::newRow("scale 1.5") << QSize(10, 10) << 1.5 << QRect(4, 4, 24, 24);
    }
    void theWholePictureFitsTheSquare() {
        QFETCH(QSize, size);
        QFETCH(double, scale);
        MarkFixture f;
        f.http.answer(QStringLiteral("a.png"), 200, pngOf(Qt::red, size));
        f.appearWith("a.png");
        QTEST(inkOf(f.picture(scale)), "place");
    }

    void theBackgroundShowsThroughTransparency() {
        MarkFixture f;
        f.http.answer(QStringLiteral("a.png"), 200, pngOf(QColor(255, 0, 0, 128)));
        f.appearWith("a.png");
        const QColor mixed = f.picture().pixelColor(12, 12);
        QVERIFY(qAbs(mixed.red() - (255 + 160) / 2) < 4);
        QVERIFY(qAbs(mixed.green() - 80) < 4);
    }

    void theFallbackIsWhiteAndCentred_data() {
        QTest::addColumn<QString>("brand");
        QTest::addColumn<double>("scale");
        QTest::newRow("letter") << QStringLiteral("H") << 1.0;
        QTest::newRow("letter, scale 1.5") << QStringLiteral("H") << 1.5;
        QTest::newRow("letter, scale 2") << QStringLiteral("Hello") << 2.0;
        QTest::newRow("ampersand") << QStringLiteral("&H") << 2.0;
    }
    void theFallbackIsWhiteAndCentred() {
        QFETCH(QString, brand);
        QFETCH(double, scale);
        MarkFixture f;
        f.mark->setCreative(std::nullopt, brand);
        const QImage image = f.picture(scale);
        const QRect ink = inkOf(image);
        QVERIFY(!ink.isEmpty());
        const double middle = 4 + 8 * scale;
        QVERIFY(qAbs(ink.x() + ink.width() / 2.0 - middle) <= 1.01 * scale);
        QVERIFY(qAbs(ink.y() + ink.height() / 2.0 - middle) <= 1.51 * scale);
        int brightest = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                brightest = qMax(brightest, image.pixelColor(x, y).lightness());
            }
        }
        QVERIFY(brightest > 220);
    }

    void theWholeFirstCharacterIsPainted_data() {
        QTest::addColumn<QString>("brand");
        QTest::addColumn<QString>("character");
        QTest::addColumn<QString>("itsStart");
        QTest::newRow("accent") << QStringLiteral(" o\u0308zil") << QStringLiteral("o\u0308")
                                << QStringLiteral("o");
        QTest::newRow("flag") << QStringLiteral("\U0001F1EA\U0001F1FA shop")
                              << QStringLiteral("\U0001F1EA\U0001F1FA")
                              << QStringLiteral("\U0001F1EA");
    }
    void theWholeFirstCharacterIsPainted() {
        QFETCH(QString, brand);
        QFETCH(QString, character);
        QFETCH(QString, itsStart);
        const auto drawn = [](const QString& text) {
            QImage image(40, 40, QImage::Format_RGB32);
            image.fill(Qt::gray);
            QPainter painter(&image);
            painter.setClipRect(4, 4, 32, 32);
            painter.translate(20, 20);
            painter.scale(2, 2);
            painter.setFont(NotchFont::fallbackMark());
            painter.setPen(Qt::white);
            painter.drawText(QRectF(-100, -100, 200, 200), Qt::AlignCenter, text);
            return image;
        };
        MarkFixture f;
        f.mark->setCreative(std::nullopt, brand);
        QCOMPARE(f.picture(2), drawn(character));
        QVERIFY(drawn(character) != drawn(itsStart));
    }

    void aFlagIsPaintedInItsColours() {
        MarkFixture f;
        f.mark->setCreative(std::nullopt, QStringLiteral("\U0001F1EA\U0001F1FA shop"));
        const QImage image = f.picture(2);
        int blue = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                blue += colour.blue() > colour.red() + 60 ? 1 : 0;
            }
        }
        QVERIFY2(blue > 50, "without a font of flags: script/bootstrap test");
    }

    void aPictureIsScaledSmoothly() {
        QImage board(64, 64, QImage::Format_RGB32);
        for (int y = 0; y < board.height(); ++y) {
            for (int x = 0; x < board.width(); ++x) {
                board.setPixelColor(x, y, (x + y) % 2 == 0 ? Qt::black : Qt::white);
            }
        }
        MarkFixture f;
        f.http.answer(QStringLiteral("a.png"), 200, pngOf(board));
        f.appearWith("a.png");
        const QImage small = f.scaled(16);
        for (int y = 0; y < small.height(); ++y) {
            for (int x = 0; x < small.width(); ++x) {
                QVERIFY(qAbs(small.pixelColor(x, y).lightness() - 127) <= 16);
            }
        }
    }

    void aBlankBrandShowsADot() {
        MarkFixture f;
        f.mark->setCreative(std::nullopt, QStringLiteral(" \n"));
        const QRect ink = inkOf(f.picture(2));
        QVERIFY(!ink.isEmpty());
        QVERIFY(ink.width() < 10 && ink.height() < 10);
    }

    void anotherBrandChangesOnlyTheFallback() {
        MarkFixture f;
        f.mark->setCreative(std::nullopt, kBrand);
        f.mark->appear();
        const QSignalSpy changed(f.mark.get(), &CreativeMark::changed);
        f.mark->setCreative(std::nullopt, QStringLiteral("Brand"));
        QCOMPARE(changed.count(), 1);
        f.serve("a.png", Qt::red);
        f.mark->setCreative(f.url("a.png"), QStringLiteral("Brand"));
        QCOMPARE(changed.count(), 2);
        f.mark->setCreative(f.url("a.png"), kBrand);
        QCOMPARE(changed.count(), 2); // the picture hides it
    }
};

BRIMLET_TEST(TestCreativeMark, QGuiApplication)
#include "tst_creativemark.moc"
