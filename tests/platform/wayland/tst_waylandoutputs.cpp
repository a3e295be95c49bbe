#include "platform/wayland/waylandoutputs.h"
#include "tests/platform/wayland/waylandfixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QTest>

using namespace brimlet;

/// The compositor's outputs, and which of them the window is on.
class TestWaylandOutputs final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void geometryAndScale_data() {
        QTest::addColumn<StandInOutput>("output");
        QTest::addColumn<bool>("isDescribed");
        QTest::addColumn<QRect>("geometry");
        QTest::addColumn<double>("scale");
        const QRect whole(0, 0, 1512, 982);
        QTest::newRow("scale 1") << StandInOutput() << true << whole << 1.0;
        const StandInOutput doubled{.logical = whole, .mode = {3024, 1964}, .scale = 2};
        QTest::newRow("scale 2") << doubled << true << whole << 2.0;
        QTest::newRow("scale 2, not described") << doubled << false << whole << 2.0;
        // A fractional scale is told as the next whole one.
        const StandInOutput fractional{.logical = whole, .mode = {2268, 1473}, .scale = 2};
        QTest::newRow("scale 1.5") << fractional << true << whole << 1.5;
        const StandInOutput turned{
            .logical = {100, 50, 982, 1512}, .mode = {1512, 982}, .transform = 1};
        QTest::newRow("turned") << turned << true << QRect(100, 50, 982, 1512) << 1.0;
        QTest::newRow("turned, not described")
            << turned << false << QRect(100, 50, 982, 1512) << 1.0;
        const StandInOutput upsideDown{.transform = 2};
        QTest::newRow("upside down, not described") << upsideDown << false << whole << 1.0;
    }
    void geometryAndScale() {
        QFETCH(const StandInOutput, output);
        QFETCH(const bool, isDescribed);
        WaylandFixture f({.describesOutputs = isDescribed}, {output});
        QCOMPARE(f.connection.outputs().all().size(), std::size_t(1));
        const WaylandOutput& only = *f.connection.outputs().all().front();
        QCOMPARE(only.connector(), QStringLiteral("eDP-1"));
        QTEST(only.geometry(), "geometry");
        QTEST(only.exactScale(), "scale");
    }

    void anOutputThatGoesTakesTheWindowAlong() {
        const StandInOutput own;
        const StandInOutput other{.connector = QStringLiteral("DP-1"),
                                  .logical = {1512, 0, 1920, 1080},
                                  .mode = {1920, 1080}};
        WaylandFixture f({}, {own, other});
        QVERIFY(f.show());
        // Another one at the same place is none to show advertisements on.
        f.compositor.setOutputs({StandInOutput{.connector = QStringLiteral("HDMI-A-1")}});
        QTRY_COMPARE(f.connection.outputs().all().size(), std::size_t(1));
        f.window->orderFrontRegardless();
        QTRY_VERIFY_WITH_TIMEOUT(!f.compositor.isShown(), kPatience);
        QVERIFY(!f.left->isVisible());
        f.compositor.setOutputs({other, own});
        QTRY_COMPARE(f.connection.outputs().all().size(), std::size_t(2));
        QTRY_VERIFY(f.connection.outputs().named(own.connector) != nullptr);
        QVERIFY(f.show());
        QVERIFY(f.compositor.layer().contains(QStringLiteral(" on eDP-1 ")));
    }

    void aNewOutputIsReportedOnlyWithItsGeometry() {
        WaylandFixture f;
        QList<QRect> reported;
        QObject::connect(&f.connection.outputs(), &WaylandOutputs::changed, &f.connection, [&] {
            for (const auto& output : f.connection.outputs().all()) {
                reported << output->geometry();
            }
        });
        const QRect logical(0, 0, 1512, 982);
        f.compositor.setOutputs(
            {StandInOutput{.logical = logical, .mode = {2268, 1473}, .scale = 2}});
        QTRY_COMPARE(reported, QList<QRect>{logical});
    }

    void anotherScaleMakesAnotherSurface() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.compositor.setOutputs({StandInOutput{.mode = {3024, 1964}, .scale = 2}});
        QTRY_COMPARE(f.connection.outputs().all().size(), std::size_t(1));
        QTRY_COMPARE(f.connection.outputs().all().front()->exactScale(), 2.0);
        f.compositor.log.clear();
        QVERIFY(f.show());
        QVERIFY(f.sees(QStringLiteral("capsules: 0,0 856x80")));
    }

    void placesAreRelativeToTheirOutput() {
        const StandInOutput above{.connector = QStringLiteral("DP-1"),
                                  .logical = {0, 0, 1920, 1080},
                                  .mode = {1920, 1080}};
        const StandInOutput own{.logical = {200, 1080, 1512, 982}};
        WaylandFixture f({}, {above, own});
        // In global points, whose origin is the primary screen's bottom left; that one is said to
        // be 1512 by 982 here.
        f.window->setFrame({742, 982 - 1080 - 40, 428, 40});
        f.window->orderFrontRegardless();
        QTRY_VERIFY_WITH_TIMEOUT(f.compositor.isShown(), kPatience);
        QCOMPARE(f.compositor.layer(),
                 QStringLiteral("layer 3 on eDP-1 anchor 5 at 542,240 zone -1"));
    }
};

BRIMLET_TEST(TestWaylandOutputs, QApplication)
#include "tst_waylandoutputs.moc"
