#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QTest>

#include <utility>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
// Of the 14-inch machine, in points.
constexpr double kScreenWidth = 1512;
constexpr double kCentre = kScreenWidth / 2;

/// X server pixels per point.
double scale() {
    bool isSet = false;
    const double factor = qEnvironmentVariable("QT_SCALE_FACTOR").toDouble(&isSet);
    return isSet ? factor : 1;
}

/// Where a capsule begins, and where it ends, in pixels of the screen.
using Span = std::pair<int, int>;

Span spanOf(const QRect& box) {
    return {box.x(), box.x() + box.width()};
}

/// The 14-inch machine with a notch of this width.
QJsonObject machineWith(double notchWidth, const PlacementProcess& service) {
    const double strip = (kScreenWidth - notchWidth) / 2;
    return {{QStringLiteral("drawNotch"), false},
            {QStringLiteral("reduceMotion"), true},
            {QStringLiteral("infoDictionary"),
             QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
            {QStringLiteral("displays"),
             QJsonArray{QJsonObject{
                 {QStringLiteral("number"), 1},
                 {QStringLiteral("builtIn"), true},
                 {QStringLiteral("frame"), QJsonArray{0, 0, kScreenWidth, 982}},
                 {QStringLiteral("auxiliaryTopLeftArea"), QJsonArray{0, 950, strip, 32}},
                 {QStringLiteral("auxiliaryTopRightArea"),
                  QJsonArray{kScreenWidth - strip, 950, strip, 32}}}}}};
}

} // namespace

/// The capsules' distance from a notch whose edges are between two points or pixels.
class TestExactNotch final : public QObject {
    Q_OBJECT

    XServer m_x;

    /// On either side of the middle, what the capsules' middle row covers, from the first to the
    /// last pixel darker than the desktop.
    [[nodiscard]] QList<Span> painted() const {
        const QImage row =
            m_x.picture({0, qRound(13 * scale()), qRound(kScreenWidth * scale()), 1});
        QRect left;
        QRect right;
        for (int x = 0; x < row.width(); ++x) {
            if (row.pixelColor(x, 0).lightness() < 60) {
                (x < row.width() / 2 ? left : right) |= QRect(x, 0, 1, 1);
            }
        }
        return {spanOf(left), spanOf(right)};
    }
    /// What takes clicks on either side of the middle.
    [[nodiscard]] QList<Span> clickable(xcb_window_t window) const {
        const int origin = m_x.geometry(window).x();
        QRect left;
        QRect right;
        for (const QRect& part : m_x.inputShape(window)) {
            const QRect onScreen = part.translated(origin, 0);
            (onScreen.x() < kCentre * scale() ? left : right) |= onScreen;
        }
        return {spanOf(left), spanOf(right)};
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void theCapsulesAreSixPointsFromTheNotch_data() {
        QTest::addColumn<double>("notchWidth");
        for (const double width : {184.0, 184.25, 184.5, 184.7, 185.0}) {
            QTest::addRow("%g", width) << width;
        }
    }
    void theCapsulesAreSixPointsFromTheNotch() {
        QFETCH(const double, notchWidth);
        const PlacementProcess service;
        SimulatorProcess program(machineWith(notchWidth, service));
        QTRY_VERIFY_WITH_TIMEOUT(painted().first() != spanOf({}), kPatience);
        const xcb_window_t window = *m_x.windowNamed("Brimlet");
        QTRY_VERIFY_WITH_TIMEOUT(!m_x.inputShape(window).empty(), kPatience);

        // Relative to the window, which is at a whole point that Qt rounds to a whole pixel.
        const int origin = m_x.geometry(window).x();
        const int left = qRound(origin / scale());
        const auto at = [&](double x) { return origin + qRound((x - left) * scale()); };
        const double inner = notchWidth / 2 + 6;
        const QList<Span> expected{{at(kCentre - inner - 108), at(kCentre - inner)},
                                   {at(kCentre + inner), at(kCentre + inner + 108)}};
        QCOMPARE(painted(), expected);
        QCOMPARE(clickable(window), expected);
    }

    void theConsolesPicturesShowThem() {
        const PlacementProcess service;
        SimulatorProcess program(machineWith(184, service));
        QTRY_VERIFY_WITH_TIMEOUT(painted().first() != spanOf({}), kPatience);
        const QTemporaryDir folder;
        QVERIFY(program.ask("pictures " + QFile::encodeName(folder.path()))
                    .value(QStringLiteral("ok"))
                    .toBool());
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files),
                 QStringList{QStringLiteral("X11OverlayWindow.png")});
        const QImage overlay(folder.filePath(QStringLiteral("X11OverlayWindow.png")));
        QCOMPARE(overlay.size(), m_x.geometry(*m_x.windowNamed("Brimlet")).size());
        const int middle = qRound(13 * scale());
        QCOMPARE(qAlpha(overlay.pixel(overlay.width() / 2, middle)), 0); // the notch
        QVERIFY(qAlpha(overlay.pixel(qRound(12 * scale()), middle)) > 200);
        QVERIFY(program.ask("pictures /nowhere").contains(QStringLiteral("error")));
    }
};

BRIMLET_TEST(TestExactNotch, QCoreApplication)
#include "tst_exactnotch.moc"
