#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QRegion>
#include <QTest>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

} // namespace

/// On a desktop that cannot blend windows the panel is cut to its capsules.
class TestWithoutCompositor final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePanelIsCutToItsCapsules() {
        const XServer x;
        QVERIFY2(x.isConnected(), "this test needs script/desktop-session");
        QCOMPARE(QProcess::execute(QStringLiteral("xsetroot"),
                                   {QStringLiteral("-solid"), QStringLiteral("#7a8ca3")}),
                 0);
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("drawNotch"), false},
             {QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(x.windowNamed("Brimlet"), kPatience);
        const xcb_window_t window = *x.windowNamed("Brimlet");
        const auto shape = [&] {
            QRegion region;
            for (const QRect& part : x.boundingShape(window)) {
                region += part;
            }
            return region;
        };
        QTRY_COMPARE_WITH_TIMEOUT(shape().boundingRect(), QRect(8, 1, 412, 24), kPatience);
        QVERIFY(shape().contains(QPoint(8 + 54, 13)));
        QVERIFY(!shape().contains(QPoint(214, 13)));
        QVERIFY(!shape().contains(QPoint(8, 1)));
        const QColor desktop(0x7a, 0x8c, 0xa3);
        QTRY_VERIFY_WITH_TIMEOUT(x.pixel({555, 13}).lightness() < 40, kPatience);
        QCOMPARE(x.pixel({542 + 214, 13}), desktop);
        QCOMPARE(x.pixel({543, 38}), desktop);
    }
};

BRIMLET_TEST(TestWithoutCompositor, QCoreApplication)
#include "tst_withoutcompositor.moc"
