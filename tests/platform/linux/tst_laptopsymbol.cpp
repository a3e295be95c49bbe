#include "platform/linux/laptopsymbol.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace brimlet;

namespace {

QImage picture(int side) {
    return laptopSymbol()
        .pixmap(QSize(side, side))
        .toImage()
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// Relative luminance as WCAG 2 defines it, 0 to 1.
double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// The contrast ratio as WCAG 2 defines it, from 1 (equal) to 21 (black and white).
double contrast(const QColor& one, const QColor& other) {
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

class TestLaptopSymbol final : public QObject {
    Q_OBJECT

    static void sizes() {
        QTest::addColumn<int>("side");
        for (const int side : {16, 22, 24, 32, 44, 48}) {
            QTest::addRow("%d", side) << side;
        }
    }

private Q_SLOTS:
    void nothingIsCutOffAtAnEdge_data() { sizes(); }
    void nothingIsCutOffAtAnEdge() {
        QFETCH(int, side);
        // Anything painted beyond the edge is visible in a larger image around it.
        QImage wide(3 * side, 3 * side, QImage::Format_ARGB32_Premultiplied);
        wide.fill(Qt::transparent);
        QPainter painter(&wide);
        laptopSymbol().paint(&painter, QRect(side, side, side, side));
        painter.end();
        const QImage inside = wide.copy(side, side, side, side);
        QCOMPARE(inside, picture(side));
        for (int y = 0; y < wide.height(); ++y) {
            for (int x = 0; x < wide.width(); ++x) {
                if (!QRect(side, side, side, side).contains(x, y)) {
                    QVERIFY2(wide.pixelColor(x, y).alpha() == 0,
                             qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
                }
            }
        }
        // The laptop spans the whole width.
        bool isLeftUsed = false;
        bool isRightUsed = false;
        for (int y = 0; y < side; ++y) {
            isLeftUsed |= inside.pixelColor(side / 16, y).alpha() > 0;
            isRightUsed |= inside.pixelColor(side - 1 - side / 16, y).alpha() > 0;
        }
        QVERIFY(isLeftUsed && isRightUsed);
    }

    void itCanBeSeenOnAnyBar_data() {
        QTest::addColumn<int>("side");
        QTest::addColumn<QColor>("background");
        for (const int side : {16, 22, 24, 32, 44, 48}) {
            for (const auto* const background :
                 {"#000000", "#202020", "#3daee9", "#c8c8c8", "#dddddd", "#ffffff"}) {
                QTest::addRow("%d on %s", side, background)
                    << side << QColor(QLatin1StringView(background));
            }
        }
    }
    void itCanBeSeenOnAnyBar() {
        QFETCH(int, side);
        QFETCH(QColor, background);
        QImage shown(side, side, QImage::Format_RGB32);
        shown.fill(background);
        QPainter painter(&shown);
        laptopSymbol().paint(&painter, QRect(0, 0, side, side));
        painter.end();
        int distinct = 0;
        double highest = 1;
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                const double itsContrast = contrast(shown.pixelColor(x, y), background);
                highest = std::max(highest, itsContrast);
                distinct += itsContrast >= 1.5 ? 1 : 0;
            }
        }
        // The outline of the lid and the base cover a sixth of the picture.
        const QByteArray seen = QByteArray::number(100.0 * distinct / (side * side)) +
                                "% differ, contrast " + QByteArray::number(highest);
        qInfo("%s", seen.constData());
        QVERIFY2(distinct >= side * side / 6, seen.constData());
        QVERIFY2(highest >= 2, seen.constData());
    }

    void anOblongPlaceShowsItInTheMiddle() {
        QImage oblong(60, 24, QImage::Format_ARGB32_Premultiplied);
        oblong.fill(Qt::transparent);
        QPainter painter(&oblong);
        laptopSymbol().paint(&painter, oblong.rect());
        painter.end();
        QCOMPARE(oblong.copy(18, 0, 24, 24), picture(24));
    }

    void theNameIsGivenOnlyWhereTheIconIsInstalled() {
        const QTemporaryDir data;
        QVERIFY(qputenv("XDG_DATA_HOME", QFile::encodeName(data.filePath(QStringLiteral("none")))));
        QVERIFY(qputenv("XDG_DATA_DIRS", QFile::encodeName(data.path())));
        QCOMPARE(laptopSymbol().name(), QString());
        const QString folder = data.filePath(QStringLiteral("icons/hicolor/symbolic/apps"));
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(QFile::copy(sourcePath(u"packaging/icons/app.brimlet.host-symbolic.svg"),
                            folder + QStringLiteral("/app.brimlet.host-symbolic.svg")));
        QCOMPARE(laptopSymbol().name(), QStringLiteral("app.brimlet.host-symbolic"));
        // Trays that ignore the name still get a picture.
        QVERIFY(!laptopSymbol().pixmap(22, 22).isNull());
        QVERIFY(laptopSymbol().availableSizes().contains(QSize(22, 22)));
    }
};

BRIMLET_TEST(TestLaptopSymbol, QApplication)
#include "tst_laptopsymbol.moc"
