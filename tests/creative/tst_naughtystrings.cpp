#include "creative/carradioline.h"
#include "creative/creativeimagecache.h"
#include "creative/creativemark.h"
#include "creative/notchfont.h"
#include "creative/textline.h"
#include "tests/support/fakehttpclient.h"
#include "tests/support/fakes.h"
#include "tests/support/hostiletexts.h"
#include "tests/support/readingdecoder.h"
#include "tests/support/testprogram.h"

#include <QGuiApplication>
#include <QPainter>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

const QColor kBackground(90, 90, 90);

/// Whether everything outside the box is background.
bool isCleanAround(const QImage& image, const QRect& box) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (!box.contains(x, y) && image.pixelColor(x, y) != kBackground) {
                return false;
            }
        }
    }
    return true;
}

bool hasInk(const QImage& image) {
    return !isCleanAround(image, QRect());
}

} // namespace

/// Texts that break layouts, as brand and as tagline.
class TestNaughtyStrings final : public QObject {
    Q_OBJECT

    FakeReduceMotion m_reduceMotion;
    FakeClock m_clock;
    FakeHttpClient m_http{m_clock};
    FakeCachesFolder m_caches;
    ReadingDecoder m_decoder;
    CreativeImageCache m_images{{m_http, m_decoder, m_caches}, 1};

    template <typename Part>
    static QImage drawn(Part&& paint, const QRect& box) {
        QImage image(120, 60, QImage::Format_RGB32);
        image.fill(kBackground);
        QPainter painter(&image);
        paint(painter, box);
        return image;
    }

    void check(const QString& text) {
        const QString tagline = text + QStringLiteral(" and more");
        constexpr QRect kLine(20, 20, 73, 20);
        CarRadioLine line({NotchFont::pill(), Qt::white, Qt::black, 16, 1.6, 22, 1.4}, m_clock,
                          m_reduceMotion);
        line.setContainerWidth(kLine.width());
        line.setTexts(text, tagline);
        line.appear();
        const auto paintLine = [&](QPainter& painter, const QRect& box) {
            line.paint(painter, box);
        };
        QVERIFY(isCleanAround(drawn(paintLine, kLine), kLine));
        m_clock.advance(19s);
        QVERIFY(isCleanAround(drawn(paintLine, kLine), kLine));
        // Only the start of a text is laid out and measured.
        const double width = TextLine(tagline, NotchFont::pill()).width();
        QVERIFY(width >= 0 && width < 100'000);

        constexpr QRect kMark(20, 20, 16, 16);
        CreativeMark mark(m_images);
        mark.setCreative(std::nullopt, text);
        QVERIFY(isCleanAround(
            drawn([&](QPainter& painter, const QRect& box) { mark.paint(painter, box, 1); }, kMark),
            kMark));
    }

private Q_SLOTS:
    void noTextLeavesItsBox_data() { addHostileTexts(); }
    void noTextLeavesItsBox() {
        QFETCH(QString, text);
        check(text);
    }

    void theWholeCollectionStaysInItsBox() {
        checkNaughtyStrings([this](const QString& text) { check(text); });
    }

    void markupIsShownAsTyped() {
        const auto pictureOf = [this](const QString& text) {
            CarRadioLine line({NotchFont::pill(), Qt::white, Qt::black, 16, 1.6, 22, 1.4}, m_clock,
                              m_reduceMotion);
            line.setTexts(text, QString());
            return drawn([&](QPainter& painter, const QRect& box) { line.paint(painter, box); },
                         {0, 20, 120, 20});
        };
        QVERIFY(hasInk(pictureOf(QStringLiteral("<b>B</b>"))));
        QVERIFY(pictureOf(QStringLiteral("<b>B</b>")) != pictureOf(QStringLiteral("B")));
        QVERIFY(pictureOf(QStringLiteral("R&D")) != pictureOf(QStringLiteral("RD")));
        QVERIFY(pictureOf(QStringLiteral("R&amp;D")) != pictureOf(QStringLiteral("R&D")));
        QCOMPARE(pictureOf(QStringLiteral("a\nb")), pictureOf(QStringLiteral("a b")));
        QCOMPARE(pictureOf(QStringLiteral("a\u2028b")), pictureOf(QStringLiteral("a b")));
    }
};

BRIMLET_TEST(TestNaughtyStrings, QGuiApplication)
#include "tst_naughtystrings.moc"
