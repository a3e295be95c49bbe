#include "platform/linux/qtscreens.h"

#include <QProcess>
#include <QTest>

using namespace brimlet;

namespace {

void xrandr(const QStringList& arguments) {
    QCOMPARE(QProcess::execute(QStringLiteral("xrandr"), arguments), 0);
}

} // namespace

/// Against a real X server whose monitors come and go.
class TestQtScreens final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void monitorsComeGoAndMove() {
        QtScreens screens;
        int changes = 0;
        screens.observeChanges([&changes] { ++changes; });

        // The session's one monitor is named as a laptop's own panel.
        QCOMPARE(screens.list().size(), std::size_t{1});
        QCOMPARE(screens.list().at(0).frame, (Rect{0, 0, 1512, 982}));
        QCOMPARE(screens.list().at(0).number.value_or(0), 1U);
        QVERIFY(screens.isBuiltIn(1));
        QVERIFY(!screens.isBuiltIn(0));
        QVERIFY(!screens.isBuiltIn(2));
        QCOMPARE(changes, 0);

        xrandr({QStringLiteral("--setmonitor"), QStringLiteral("HDMI-1"),
                QStringLiteral("800/200x600/150+1512+100"), QStringLiteral("none")});
        QTRY_COMPARE(screens.list().size(), std::size_t{2});
        QTRY_VERIFY(changes > 0);
        // 100 pixels below the laptop's top edge: its lower edge is at 982 - 700.
        QCOMPARE(screens.list().at(1).frame, (Rect{1512, 282, 800, 600}));
        QVERIFY(screens.isBuiltIn(1));
        QVERIFY(!screens.isBuiltIn(2));

        const int before = changes;
        xrandr({QStringLiteral("--delmonitor"), QStringLiteral("HDMI-1")});
        QTRY_COMPARE(screens.list().size(), std::size_t{1});
        QTRY_VERIFY(changes > before);
    }

    void theFirstScreenIsThePrimaryOne() {
        QCOMPARE(QtScreens::primaryGeometry(), QRectF(0, 0, 1512, 982));
    }
};

QTEST_MAIN(TestQtScreens)
#include "tst_qtscreens.moc"
