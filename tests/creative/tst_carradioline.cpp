#include "creative/carradioline.h"
#include "creative/textline.h"
#include "tests/support/drawnimages.h"
#include "tests/support/fakeclock.h"
#include "tests/support/fakes.h"
#include "tests/support/testprogram.h"

#include <QPainter>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QString kBrand = QStringLiteral("Acme");
const QString kTagline = QStringLiteral("Fresh every day, and twice on Sundays");

QFont testFont() {
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(12);
    return font;
}

CarRadioStyle style() {
    return {testFont(), Qt::white, Qt::black, 16, 1.6, 22, 1.4};
}

double widthOf(const QString& text) {
    return TextLine(text, testFont()).width();
}

/// A line on screen whose tagline is wider than it by so many points.
struct LineFixture final {
    explicit LineFixture(double overflow, const QString& brand = kBrand,
                         const QString& tagline = kTagline) {
        line->setTexts(brand, tagline);
        setWidth(widthOf(tagline.trimmed()) - overflow);
        line->appear();
    }

    void setWidth(double points) {
        width = points;
        line->setContainerWidth(points);
    }
    /// Which text is visible, and its offset in pixels.
    [[nodiscard]] QString state() const {
        return (line->showingTagline() ? QStringLiteral("tagline %1") : QStringLiteral("brand %1"))
            .arg(line->offsetOnScreen());
    }
    /// The line as a pill paints it, at one pixel per point.
    [[nodiscard]] QImage picture() const {
        QImage image(qFloor(width), 20, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        line->paint(painter, image.rect());
        return image;
    }
    /// The image from which the line is painted.
    [[nodiscard]] QImage source() const {
        DrawnImages device;
        QPainter painter(&device);
        line->paint(painter, QRect(0, 0, qFloor(width), 20));
        return device.take().at(0);
    }

    double width = 0; ///< Points.
    FakeReduceMotion reduceMotion;
    FakeClock clock;
    std::unique_ptr<CarRadioLine> line =
        std::make_unique<CarRadioLine>(style(), clock, reduceMotion);
};

/// Each tick and the end of each sleep come 100 ms late.
class LateClock final : public Clock {
public:
    [[nodiscard]] TimePoint now() const override { return m_clock.now(); }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return m_clock.uptime(); }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::nanoseconds interval,
                                                         std::function<void()> tick) override {
        auto timer = std::make_unique<LateTimer>();
        scheduleTick(timer->isAlive, uptime() + interval, interval, std::move(tick));
        return timer;
    }
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds duration,
                                      std::stop_token stop) override {
        return m_clock.sleep(duration + 100ms, std::move(stop));
    }
    void advance(std::chrono::nanoseconds duration) { m_clock.advance(duration); }

private:
    struct LateTimer final : RepeatingTimer {
        std::shared_ptr<bool> isAlive = std::make_shared<bool>();
    };
    void scheduleTick(const std::weak_ptr<bool>& isAlive, std::chrono::nanoseconds due,
                      std::chrono::nanoseconds interval, const std::function<void()>& tick) {
        m_clock.after(due + 100ms - uptime(), [=, this] {
            if (!isAlive.expired()) {
                scheduleTick(isAlive, due + ((uptime() - due) / interval + 1) * interval, interval,
                             tick);
                tick();
            }
        });
    }

    FakeClock m_clock;
};

const QString kAtBrand = QStringLiteral("brand 0");
const QString kAtTagline = QStringLiteral("tagline 0");

} // namespace

class TestCarRadioLine final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anOverflowingTaglineFollowsItsTimeline() {
        LineFixture f(60);
        // Brand 16 s, hold 1.6 s, scroll 60 / 22 s and rest 1.4 s, back at the start 0.35 s.
        const auto scroll = sleepLength(60.0 / 22 + 1.4);
        for (int round = 0; round < 3; ++round) {
            QCOMPARE(f.state(), kAtBrand);
            QCOMPARE(f.line->line(), kBrand);
            f.clock.advance(16s - 1ns);
            QCOMPARE(f.state(), kAtBrand);
            f.clock.advance(1ns);
            QCOMPARE(f.state(), kAtTagline);
            QCOMPARE(f.line->line(), kTagline);
            f.clock.advance(1600ms - 1ns);
            QCOMPARE(f.state(), kAtTagline);
            f.clock.advance(1ns);
            QCOMPARE(f.state(), kAtTagline);
            f.clock.advance(1s);
            QCOMPARE(f.state(), QStringLiteral("tagline -22"));
            f.clock.advance(sleepLength(60.0 / 22) - 1s + 1ns);
            QCOMPARE(f.state(), QStringLiteral("tagline -60"));
            f.clock.advance(scroll - sleepLength(60.0 / 22) - 2ns);
            QCOMPARE(f.state(), QStringLiteral("tagline -60"));
            f.clock.advance(1ns);
            QCOMPARE(f.state(), kAtTagline);
            f.clock.advance(350ms - 1ns);
            QCOMPARE(f.state(), kAtTagline);
            f.clock.advance(1ns);
        }
        QCOMPARE(f.state(), kAtBrand);
    }

    void aFittingTaglineIsShownFor4400Milliseconds_data() {
        QTest::addColumn<double>("overflow");
        QTest::newRow("much narrower") << -50.0;
        QTest::newRow("as wide") << 0.0;
        QTest::newRow("one point wider") << 1.0;
    }
    void aFittingTaglineIsShownFor4400Milliseconds() {
        QFETCH(double, overflow);
        LineFixture f(overflow);
        for (int round = 0; round < 2; ++round) {
            f.clock.advance(16s);
            QCOMPARE(f.state(), kAtTagline);
            f.clock.advance(1600ms + 2800ms - 1ns);
            QCOMPARE(f.state(), kAtTagline);
            f.clock.advance(1ns);
            QCOMPARE(f.state(), kAtBrand);
        }
    }

    void anOverflowOfOneAndAHalfPointsScrolls() {
        LineFixture f(1.5);
        f.clock.advance(17600ms + sleepLength(1.5 / 22));
        QCOMPARE(f.line->offsetOnScreen(), -2); // the nearest whole pixel
    }

    void scrollingMovesByWholePixels_data() {
        QTest::addColumn<double>("scale");
        QTest::addColumn<int>("pixels");
        QTest::newRow("1") << 1.0 << 60;
        QTest::newRow("1.25") << 1.25 << 75;
        QTest::newRow("1.5") << 1.5 << 90;
        QTest::newRow("2") << 2.0 << 120;
    }
    void scrollingMovesByWholePixels() {
        QFETCH(double, scale);
        QFETCH(int, pixels);
        LineFixture f(60);
        f.line->setDevicePixelRatio(scale);
        f.clock.advance(17600ms);
        QList<int> offsets;
        connect(f.line.get(), &CarRadioLine::moved, f.line.get(),
                [&] { offsets << f.line->offsetOnScreen(); });
        f.clock.advance(sleepLength(60.0 / 22) + 1s);
        // One wake-up per pixel, none left out and none repeated.
        QList<int> expected;
        for (int pixel = 1; pixel <= pixels; ++pixel) {
            expected << -pixel;
        }
        QCOMPARE(offsets, expected);
        QCOMPARE(f.clock.runningTimers(), 0);
    }

    void aLongScrollMissesNoPixelAlthoughItsTimesAreRounded() {
        FakeClock clock;
        int step = 0;
        int missed = 0;
        PixelScroll scroll(clock, [&] { missed += scroll.pixels() != ++step; });
        scroll.start(9000, 22);
        clock.advance(sleepLength(9000.0 / 22) + 1s);
        QCOMPARE(step, 9000);
        QCOMPARE(missed, 0);
    }

    void aLateWakeUpTakesALargerStep() {
        LateClock clock;
        QList<int> places;
        PixelScroll scroll(clock, [&] { places << scroll.pixels(); });
        scroll.start(22, 22);
        clock.advance(3s);
        // A pixel takes 45 ms, and each wake-up is 100 ms late.
        QCOMPARE(places, (QList<int>{3, 6, 9, 12, 15, 18, 21, 22}));
    }

    void aScrollThatCaughtUpDoesNotMoveAgain() {
        LateClock clock;
        QList<int> places;
        PixelScroll scroll(clock, [&] { places << scroll.pixels(); });
        QVERIFY(!scroll.catchUp()); // nothing moves yet
        scroll.start(1, 22);
        clock.advance(40ms);
        QVERIFY(!scroll.catchUp());
        clock.advance(20ms); // the pixel was due at 45 and comes at 145
        QVERIFY(scroll.catchUp());
        QCOMPARE(scroll.pixels(), 1);
        QVERIFY(!scroll.catchUp());
        clock.advance(1s);
        QCOMPARE(places, QList<int>());
    }

    void aChangeOfScaleWhileScrollingKeepsThePosition() {
        LineFixture f(60);
        f.clock.advance(17600ms + 1s);
        QCOMPARE(f.line->offsetOnScreen(), -22);
        f.line->setDevicePixelRatio(2);
        QCOMPARE(f.line->offsetOnScreen(), -44);
        f.clock.advance(sleepLength(60.0 / 22) - 1s + 1ms);
        QCOMPARE(f.line->offsetOnScreen(), -120);
    }

    void aChangeOfScaleAtTheEndGoesToTheNewEnd() {
        LineFixture f(60.4);
        f.clock.advance(17600ms + sleepLength(60.4 / 22) + 1ms);
        QCOMPARE(f.line->offsetOnScreen(), -60);
        QCOMPARE(f.clock.runningTimers(), 0);
        f.line->setDevicePixelRatio(2);
        QCOMPARE(f.line->offsetOnScreen(), -121);
        QCOMPARE(f.clock.runningTimers(), 0);
    }

    void aScrollMayBeDestroyedByItsStep() {
        FakeClock clock;
        std::unique_ptr<PixelScroll> scroll;
        int steps = 0;
        scroll = std::make_unique<PixelScroll>(clock, [&] {
            ++steps;
            scroll.reset();
        });
        scroll->start(22, 22);
        clock.advance(1s);
        QCOMPARE(steps, 1);
        QCOMPARE(clock.runningTimers(), 0);
    }

    void nothingWakesWhileItRests() {
        LineFixture f(60);
        const QSignalSpy changed(f.line.get(), &CarRadioLine::changed);
        QCOMPARE(f.clock.runningSleeps(), 1);
        QCOMPARE(f.clock.runningTimers(), 0);
        f.clock.advance(15s);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(f.clock.runningSleeps(), 1);
        f.clock.advance(1s);
        QCOMPARE(changed.count(), 1); // the tagline came
        f.clock.advance(1500ms);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(f.clock.runningSleeps(), 1);
    }

    void underReduceMotionOnlyTheBrandIsShown_data() {
        QTest::addColumn<QString>("brand");
        QTest::addColumn<QString>("line");
        QTest::newRow("trimmed brand") << QStringLiteral(" Acme ") << QStringLiteral("Acme");
        QTest::newRow("raw tagline") << QStringLiteral("  ") << kTagline + u' ';
    }
    void underReduceMotionOnlyTheBrandIsShown() {
        QFETCH(QString, brand);
        LineFixture f(60, brand, kTagline + u' ');
        f.reduceMotion.set(true);
        QCOMPARE(f.clock.runningSleeps(), 0);
        const QSignalSpy changed(f.line.get(), &CarRadioLine::changed);
        f.clock.advance(1h);
        QTEST(f.line->line(), "line");
        QCOMPARE(changed.count(), 0);
    }

    void reduceMotionStopsAScrollAndItsEndRestartsTheLoop() {
        LineFixture f(60);
        f.clock.advance(18s);
        QVERIFY(f.line->offsetOnScreen() < 0);
        f.reduceMotion.set(true);
        QCOMPARE(f.state(), kAtBrand);
        QCOMPARE(f.line->offsetOnScreen(), 0);
        QCOMPARE(f.clock.runningSleeps(), 0);
        f.clock.advance(5s);
        f.reduceMotion.set(false);
        f.clock.advance(16s - 1ns);
        QCOMPARE(f.state(), kAtBrand);
        f.clock.advance(1ns);
        QCOMPARE(f.state(), kAtTagline);
    }

    void withNothingToAlternateTheLoopEnds_data() {
        QTest::addColumn<QString>("brand");
        QTest::addColumn<QString>("tagline");
        QTest::addColumn<QString>("line");
        const QString hello = QStringLiteral("Hello");
        QTest::newRow("blank brand") << QStringLiteral("  ") << hello << hello;
        QTest::newRow("the same text") << hello << QStringLiteral(" Hello ") << hello;
        QTest::newRow("no tagline") << hello << QString() << hello;
        QTest::newRow("blank tagline") << hello << QStringLiteral(" \n") << hello;
        QTest::newRow("no text") << QString() << QString() << QString();
    }
    void withNothingToAlternateTheLoopEnds() {
        QFETCH(QString, brand);
        QFETCH(QString, tagline);
        LineFixture f(0, brand, tagline);
        QCOMPARE(f.clock.runningSleeps(), 0);
        f.clock.advance(1h);
        QTEST(f.line->line(), "line");
        QCOMPARE(f.state(), kAtBrand);
    }

    void withABlankBrandUntrimmedAndTrimmedTaglineAlternate() {
        LineFixture f(0, QStringLiteral("  "), QStringLiteral(" Hello "));
        QCOMPARE(f.line->line(), QStringLiteral(" Hello "));
        f.clock.advance(16s);
        QCOMPARE(f.line->line(), QStringLiteral("Hello"));
        f.clock.advance(4400ms);
        QCOMPARE(f.line->line(), QStringLiteral(" Hello "));
    }

    void aNewTextWhileScrollingRestartsTheLoop_data() {
        QTest::addColumn<QString>("brand");
        QTest::addColumn<QString>("tagline");
        QTest::newRow("tagline") << kBrand << QStringLiteral("Another one that is wide enough too");
        QTest::newRow("brand") << QStringLiteral("Emca") << kTagline;
    }
    void aNewTextWhileScrollingRestartsTheLoop() {
        QFETCH(QString, brand);
        QFETCH(QString, tagline);
        LineFixture f(60);
        f.clock.advance(18s);
        QVERIFY(f.line->offsetOnScreen() < 0);
        f.line->setTexts(brand, tagline);
        QCOMPARE(f.state(), kAtBrand);
        QCOMPARE(f.line->offsetOnScreen(), 0);
        QCOMPARE(f.line->line(), brand);
        f.clock.advance(16s - 1ns);
        QCOMPARE(f.state(), kAtBrand);
        f.clock.advance(1ns);
        QCOMPARE(f.line->line(), tagline);
    }

    void settingTheSameValuesAgainChangesNothing() {
        LineFixture f(60);
        f.clock.advance(18s);
        const int offset = f.line->offsetOnScreen();
        const QSignalSpy changed(f.line.get(), &CarRadioLine::changed);
        f.line->setTexts(kBrand, kTagline);
        f.line->setContainerWidth(f.width);
        f.line->setDevicePixelRatio(1);
        f.line->appear();
        QCOMPARE(changed.count(), 0);
        QCOMPARE(f.line->offsetOnScreen(), offset);
    }

    void aWidthWithinTheSamePointDoesNotRestart() {
        LineFixture f(60);
        f.line->setContainerWidth(180.2);
        f.clock.advance(10s);
        f.line->setContainerWidth(180.9);
        f.clock.advance(6s);
        QCOMPARE(f.state(), kAtTagline); // the loop was not restarted
        f.line->setContainerWidth(181.1);
        QCOMPARE(f.state(), kAtBrand);
        f.clock.advance(16s - 1ns);
        QCOMPARE(f.state(), kAtBrand);
    }

    void theOverflowIsReadWhenTheScrollBegins() {
        LineFixture f(60.25);
        f.line->setDevicePixelRatio(100);
        f.clock.advance(17s);
        f.setWidth((f.width + std::ceil(f.width)) / 2);
        QCOMPARE(f.state(), kAtTagline); // the same whole point, so the loop goes on
        f.clock.advance(600ms + 3s);
        QCOMPARE(f.line->offsetOnScreen(), qRound(100 * (f.width - widthOf(kTagline))));
    }

    void theFirstWidthRestartsTheLoop() {
        FakeReduceMotion reduceMotion;
        FakeClock clock;
        CarRadioLine line(style(), clock, reduceMotion);
        line.setTexts(kBrand, kTagline);
        line.appear();
        clock.advance(5s);
        line.setContainerWidth(73);
        clock.advance(11s);
        QVERIFY(!line.showingTagline());
        clock.advance(5s);
        QVERIFY(line.showingTagline());
        QCOMPARE(clock.runningSleeps(), 1);
    }

    void blanksAroundTheTaglineAddNothingToItsWidth() {
        LineFixture f(60, kBrand, QStringLiteral("  %1 ").arg(kTagline));
        f.clock.advance(17600ms + 4s);
        QCOMPARE(f.line->offsetOnScreen(), -60);
    }

    // One row for each place where the loop checks for cancellation.
    void aCancelledLoopChangesNothingMore_data() {
        QTest::addColumn<double>("overflow");
        QTest::addColumn<int>("milliseconds");
        QTest::newRow("at the brand") << 60.0 << 5'000;
        QTest::newRow("before scrolling") << 60.0 << 17'000;
        QTest::newRow("scrolling") << 60.0 << 19'000;
        QTest::newRow("after scrolling") << 60.0 << 21'000;
        QTest::newRow("back at the start") << 60.0 << 21'900;
        QTest::newRow("at a tagline that fits") << 0.0 << 19'000;
        QTest::newRow("in the second round") << 0.0 << 30'000;
    }
    void aCancelledLoopChangesNothingMore() {
        QFETCH(double, overflow);
        QFETCH(int, milliseconds);
        LineFixture f(overflow);
        f.clock.advance(std::chrono::milliseconds(milliseconds));
        const bool showedTagline = f.line->showingTagline();
        f.line->disappear();
        QCOMPARE(f.line->showingTagline(), showedTagline);
        const QString state = f.state();
        const QSignalSpy changed(f.line.get(), &CarRadioLine::changed);
        QCOMPARE(f.clock.runningSleeps(), 0);
        QCOMPARE(f.clock.runningTimers(), 0);
        f.clock.advance(1h);
        QCOMPARE(f.state(), state);
        QCOMPARE(changed.count(), 0);
        // Back on screen it begins with the brand.
        f.line->appear();
        QCOMPARE(f.state(), kAtBrand);
        f.clock.advance(16s);
        QCOMPARE(f.state(), kAtTagline);
    }

    void aDestroyedLineLeavesNoTask_data() { aCancelledLoopChangesNothingMore_data(); }
    void aDestroyedLineLeavesNoTask() {
        QFETCH(double, overflow);
        QFETCH(int, milliseconds);
        LineFixture f(overflow);
        f.clock.advance(std::chrono::milliseconds(milliseconds));
        f.line.reset();
        QCOMPARE(f.clock.runningSleeps(), 0);
        QCOMPARE(f.clock.runningTimers(), 0);
        f.clock.advance(1h);
        f.reduceMotion.set(true);
    }

    void offScreenNothingRuns() {
        FakeReduceMotion reduceMotion;
        FakeClock clock;
        CarRadioLine line(style(), clock, reduceMotion);
        line.setTexts(kBrand, kTagline);
        line.setContainerWidth(73);
        reduceMotion.set(true);
        reduceMotion.set(false);
        QCOMPARE(clock.runningSleeps(), 0);
        clock.advance(1h);
        QCOMPARE(line.line(), kBrand);
    }

    void aSpeedOfZeroEndsTheProgram() {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--zero-speed")});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        QVERIFY(program.readAllStandardError().contains("out of range"));
    }

    void aTextIsDrawnOnceHoweverOftenItIsPainted() {
        LineFixture f(60);
        const qint64 brand = f.source().cacheKey();
        QCOMPARE(f.source().cacheKey(), brand);
        f.clock.advance(17600ms);
        const QImage start = f.picture();
        const qint64 tagline = f.source().cacheKey();
        QVERIFY(tagline != brand);
        for (int step = 0; step < 60; ++step) {
            f.clock.advance(sleepLength(1 / 22.0) + 1ns);
            QCOMPARE(f.source().cacheKey(), tagline);
        }
        QCOMPARE(f.line->offsetOnScreen(), -60);
        f.clock.advance(1400ms);
        QCOMPARE(f.line->offsetOnScreen(), 0);
        QCOMPARE(f.picture(), start);
        QCOMPARE(f.source().cacheKey(), tagline);
    }

    void aScrolledTextIsTheSameTextMoved() {
        LineFixture f(60);
        f.clock.advance(17600ms);
        const QImage start = f.picture();
        f.clock.advance(1s);
        const QImage scrolled = f.picture();
        QCOMPARE(f.line->offsetOnScreen(), -22);
        QVERIFY(start != scrolled);
        QCOMPARE(scrolled.copy(0, 0, scrolled.width() - 22, 20),
                 start.copy(22, 0, start.width() - 22, 20));
    }

    void theEndOfTheTaglineComesIntoView() {
        LineFixture f(60);
        f.clock.advance(17600ms + sleepLength(60.0 / 22));
        // The last letter is at the line's right end.
        const QImage end = f.picture();
        const TextLine text(kTagline, testFont());
        QImage last = text.picture(Qt::white, Qt::black, 1, qRound(text.width()) - 20, {20, 20});
        QImage expected(20, 20, QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter(&expected).drawImage(0, 0, last);
        int different = 0;
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 19; ++x) {
                different += end.pixel(end.width() - 20 + x, y) != expected.pixel(x, y) &&
                             end.pixel(end.width() - 19 + x, y) != expected.pixel(x, y);
            }
        }
        QCOMPARE(different, 0);
    }

    void aVeryLongTextIsDrawnInPieces() {
        LineFixture f(60, kBrand, QString(1'000'000, u'W'));
        QVERIFY(widthOf(QString(1'000'000, u'W')) > 5'000);
        f.setWidth(73);
        f.clock.advance(17600ms);
        QSet<qint64> pieces;
        int widest = 0;
        for (int i = 0; i < 40; ++i) {
            const QImage image = f.picture();
            QVERIFY(image != QImage(image.size(), image.format()));
            const QImage piece = f.source();
            pieces << piece.cacheKey();
            widest = qMax(widest, piece.width());
            f.clock.advance(10s);
        }
        QVERIFY(pieces.size() > 2 && pieces.size() < 10);
        QCOMPARE(widest, 2048);
    }

    void eachTextIsRenderedOnce() {
        LineFixture f(60);
        const qint64 brand = f.source().cacheKey();
        f.clock.advance(16s);
        QVERIFY(f.line->showingTagline());
        const qint64 tagline = f.source().cacheKey();
        QVERIFY(tagline != brand);
        while (f.line->showingTagline()) {
            f.clock.advance(100ms);
        }
        QCOMPARE(f.source().cacheKey(), brand);
        f.clock.advance(16s);
        QCOMPARE(f.source().cacheKey(), tagline);
        f.line->setTexts(kBrand, QStringLiteral("Another tagline, which is too wide as well"));
        while (!f.line->showingTagline()) {
            f.clock.advance(100ms);
        }
        QVERIFY(f.source().cacheKey() != tagline);
    }

    void textsOfEveryScriptBeginAtTheLeft_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("Latin") << QStringLiteral("Fresh");
        QTest::newRow("Hebrew") << QStringLiteral("\u05E9\u05DC\u05D5\u05DD");
        QTest::newRow("Arabic") << QStringLiteral("\u0645\u0631\u062D\u0628\u0627");
        QTest::newRow("emoji") << QStringLiteral("\U0001F375\U0001F375");
        QTest::newRow("overridden") << QStringLiteral("\u202Eabc");
        QTest::newRow("markup") << QStringLiteral("<b>bold</b>");
    }
    void textsOfEveryScriptBeginAtTheLeft() {
        QFETCH(QString, text);
        LineFixture f(0, text, QString());
        f.setWidth(200);
        const QImage image = f.picture();
        int first = image.width();
        int last = -1;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y).lightness() > 40) {
                    first = qMin(first, x);
                    last = qMax(last, x);
                }
            }
        }
        QVERIFY2(first <= 4, qPrintable(QString::number(first)));
        QVERIFY(last <= widthOf(text) + 2);
    }
};

/// What ends the program.
static int scrollWithoutSpeed(int argc, char* argv[]) {
    const QGuiApplication application(argc, argv);
    FakeReduceMotion reduceMotion;
    FakeClock clock;
    CarRadioStyle still = style();
    still.pointsPerSecond = 0;
    CarRadioLine line(still, clock, reduceMotion);
    line.setTexts(kBrand, kTagline);
    line.setContainerWidth(73);
    line.appear();
    clock.advance(1h);
    return 0;
}

BRIMLET_TEST(TestCarRadioLine, QGuiApplication)
BRIMLET_TEST_CHILD("--zero-speed", scrollWithoutSpeed)

#include "tst_carradioline.moc"
