#include "creative/textline.h"
#include "tests/overlay/paintedview.h"
#include "tests/support/clearlook.h"
#include "tests/support/referencepictures.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QDir>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

constexpr const char* kLeft = "{\"slotId\":\"left\",\"brandName\":\"Quiet "
                              "Bicycle\",\"tagline\":\"Home before the bell rings\","
                              "\"assetUrl\":\"https://brand.test/picture.png\"}";
constexpr const char* kRight =
    "{\"slotId\":\"right\",\"brandName\":\"Palindrome\",\"tagline\":\"Never odd\","
    "\"assetUrl\":\"https://brand.test/picture.png\"}";
constexpr const char* kLeftWithoutText =
    "{\"slotId\":\"left\",\"assetUrl\":\"https://brand.test/picture.png\"}";
constexpr const char* kRightWithoutText =
    "{\"slotId\":\"right\",\"assetUrl\":\"https://brand.test/picture.png\"}";
constexpr const char* kLeftWithoutPicture = "{\"slotId\":\"left\",\"brandName\":\"Quiet Bicycle\","
                                            "\"assetUrl\":\"https://brand.test/none.png\"}";
constexpr const char* kRightWithoutPicture = "{\"slotId\":\"right\",\"brandName\":\"Palindrome\"}";

QByteArray list(std::initializer_list<const char*> creatives) {
    QByteArrayList all;
    for (const char* creative : creatives) {
        all << creative;
    }
    return '[' + all.join(',') + ']';
}

/// Four colours, so that a rotated picture looks different.
QImage fourColours() {
    QImage image(64, 64, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter painter(&image);
    painter.fillRect(32, 0, 32, 32, Qt::green);
    painter.fillRect(0, 32, 32, 32, Qt::blue);
    painter.fillRect(32, 32, 32, 32, Qt::yellow);
    return image;
}

/// The picture with the content of the box shifted.
QImage withMoved(const QImage& picture, const QRect& box, const QPoint& by) {
    QImage moved = picture;
    moved.setDevicePixelRatio(1);
    QImage piece = picture.copy(box);
    piece.setDevicePixelRatio(1);
    QPainter(&moved).drawImage(box.topLeft() + by, piece);
    return moved;
}

/// The font of the reference pictures, with fixed hinting whatever the desktop prefers.
QFont inter(QFont::HintingPreference hinting) {
    QFont font(QStringLiteral("Inter"));
    font.setHintingPreference(hinting);
    return font;
}

constexpr QColor kBackground(160, 160, 160);
constexpr QColor kCapsule(0, 0, 0, 245);

/// A box in points, each edge at the nearest pixel.
QRect onScreen(const QRect& points, double ratio) {
    const QPoint topLeft(qRound(points.x() * ratio), qRound(points.y() * ratio));
    const QPoint end(qRound((points.x() + points.width()) * ratio),
                     qRound((points.y() + points.height()) * ratio));
    return {topLeft, end - QPoint(1, 1)};
}

/// The part of the picture, at one pixel per point.
QImage pixelsOf(const QImage& picture, const QRect& box) {
    QImage part = picture.copy(box);
    part.setDevicePixelRatio(1);
    return part;
}

} // namespace

/// Compares what the overlay paints with reference pictures that were checked by eye. With
/// BRIMLET_UPDATE_REFERENCES=1 this test replaces them; check new ones before committing them.
class TestReference final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(QFontDatabase::hasFamily(QStringLiteral("Inter")),
                 "The font of the reference pictures is missing: script/bootstrap test");
        // Before the first use of the overlay's fonts, which are made once.
        QGuiApplication::setFont(inter(QFont::PreferVerticalHinting));
    }

    void looksLikeItsReference_data() {
        QTest::addColumn<QByteArray>("creatives");
        QTest::addColumn<bool>("isScrolling");
        QTest::addColumn<double>("ratio");
        QTest::addColumn<QString>("file");
        const auto atEachScale = [](const char* name, const QByteArray& creatives,
                                    bool isScrolling = false) {
            for (const double ratio : {1.0, 1.5, 2.0}) {
                const QString file =
                    QStringLiteral("%1-%2x.png").arg(QLatin1StringView(name)).arg(ratio);
                QTest::newRow(qPrintable(file)) << creatives << isScrolling << ratio << file;
            }
        };
        atEachScale("both", list({kLeft, kRight}));
        atEachScale("one-slot", list({kRight}));
        atEachScale("compact", list({kLeftWithoutText, kRightWithoutText}));
        atEachScale("fallback", list({kLeftWithoutPicture, kRightWithoutPicture}));
        atEachScale("scroll", list({kLeft, kRight}), true);
    }
    void looksLikeItsReference() {
        QFETCH(QByteArray, creatives);
        QFETCH(bool, isScrolling);
        QFETCH(double, ratio);
        QFETCH(QString, file);
        PaintedView view(creatives, fourColours());
        if (isScrolling) {
            (void)view.picture(ratio); // sets the scale
            view.advance(16s + 1600ms);
            view.advance(1800ms);
        }
        const QImage actual = view.pictureOver(kBackground, ratio);

        const QDir folder = referenceFolder();
        const QString path = folder.filePath(file);
        if (qEnvironmentVariable("BRIMLET_UPDATE_REFERENCES") == QLatin1StringView("1")) {
            QVERIFY(QDir().mkpath(folder.path()));
            QVERIFY(actual.save(path));
        }
        const QImage reference = QImage(path).convertToFormat(actual.format());
        QVERIFY2(!reference.isNull(), qPrintable(path));
        if (!looksTheSame(actual, reference)) {
            keep(actual, reference, file);
        }
        QCOMPARE(actual.size(), reference.size());
        QCOMPARE_LE(clearDifference(actual, reference), kTolerance);
    }

    void theLineIsWhiteInSemiboldTwelve_data() { addScales(); }
    void theLineIsWhiteInSemiboldTwelve() {
        QFETCH(double, ratio);
        PaintedView view(list({kLeft, kRight}), fourColours());
        QFont font = inter(QFont::PreferVerticalHinting);
        font.setPixelSize(12);
        font.setWeight(QFont::DemiBold);
        const QRect line = onScreen(QRect(8 + 28, 3, 73, 20), ratio);
        const QImage expected = TextLine(QStringLiteral("Quiet Bicycle"), font)
                                    .picture(Qt::white, kCapsule, ratio, 0, line.size());
        QCOMPARE(pixelsOf(view.picture(ratio), line), expected);
    }

    void theFallbackIsWhiteInSemiboldEleven_data() { addScales(); }
    void theFallbackIsWhiteInSemiboldEleven() {
        QFETCH(double, ratio);
        PaintedView view(list({kLeftWithoutPicture, kRightWithoutPicture}), fourColours());
        QFont font = inter(QFont::PreferVerticalHinting);
        font.setPixelSize(11);
        font.setWeight(QFont::DemiBold);
        const QRect mark = onScreen(QRect(8 + 7, 5, 16, 16), ratio);
        QImage expected(mark.size(), QImage::Format_ARGB32_Premultiplied);
        expected.fill(kCapsule);
        QPainter painter(&expected);
        painter.scale(ratio, ratio);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QRectF(0, 0, 16, 16), Qt::AlignCenter, QStringLiteral("Q"));
        painter.end();
        QCOMPARE(pixelsOf(view.picture(ratio), mark), expected);
    }

    void aShiftByOnePixelIsADifference_data() { addScales(); }
    void aShiftByOnePixelIsADifference() {
        QFETCH(double, ratio);
        PaintedView view(list({kLeft, kRight}), fourColours());
        const QImage picture = view.pictureOver(kBackground, ratio);
        const auto onScreen = [&](const QRectF& points) {
            return QRectF(points.topLeft() * ratio, points.size() * ratio).toRect();
        };
        const QRect mark = onScreen({14, 4, 18, 18});
        const QRect line = onScreen({36, 4, 73, 18});
        for (const QPoint& by : {QPoint(1, 0), QPoint(0, 1), QPoint(-1, 0), QPoint(0, -1)}) {
            QVERIFY(!looksTheSame(picture, withMoved(picture, picture.rect(), by)));
            QVERIFY(!looksTheSame(picture, withMoved(picture, mark, by)));
            QVERIFY(!looksTheSame(picture, withMoved(picture, line, by)));
        }
        QVERIFY(looksTheSame(picture, withMoved(picture, picture.rect(), {})));
    }

    void aDifferentSmoothingOfLettersIsNoDifference_data() { addScales(); }
    void aDifferentSmoothingOfLettersIsNoDifference() {
        QFETCH(double, ratio);
        if (ratio == 1 && referenceFolder().dirName() == QStringLiteral("inter-4")) {
            QSKIP("at this size hinting changes more of the letters of Inter since 4.0");
        }
        const auto picture = [&](QFont::HintingPreference hinting) {
            QFont font = inter(hinting);
            font.setPixelSize(12);
            font.setWeight(QFont::DemiBold);
            return TextLine(QStringLiteral("Quiet Bicycle, Palindrome"), font)
                .picture(Qt::white, Qt::black, ratio, 0, PaintedView::size * ratio);
        };
        QVERIFY(
            looksTheSame(picture(QFont::PreferNoHinting), picture(QFont::PreferVerticalHinting)));
    }

private:
    /// Saves the picture and its difference beside the test program, and prints the paths.
    static void keep(const QImage& actual, const QImage& reference, const QString& file) {
        QImage difference = actual;
        difference.setDevicePixelRatio(1);
        QPainter painter(&difference);
        painter.setCompositionMode(QPainter::CompositionMode_Difference);
        painter.drawImage(0, 0, reference);
        painter.end();
        const QDir folder(QCoreApplication::applicationDirPath());
        const QString actualPath = folder.filePath(QStringLiteral("actual-") + file);
        const QString differencePath = folder.filePath(QStringLiteral("difference-") + file);
        QVERIFY(actual.save(actualPath));
        QVERIFY(difference.save(differencePath));
        qInfo("seen: %s\ndifference: %s", qPrintable(actualPath), qPrintable(differencePath));
    }
};

BRIMLET_TEST(TestReference, QApplication)
#include "tst_reference.moc"
