#include "tests/app/waylandscreen.h"
#include "tests/support/testprogram.h"
#include "tests/support/wayland/panel.h"

#include <csignal>
#include <optional>

using namespace brimlet;
using namespace brimlet::WaylandScreen;

/// Outputs of a Wayland desktop that come, go and change while the program runs.
class TestWaylandOutputs final : public QObject {
    Q_OBJECT

    PlacementProcess m_service;
    std::optional<Program> m_program;

    /// Whether the capsules are on the screen at that scale, each pixel in its place.
    [[nodiscard]] static bool areShown(double scale) {
        // In front of a bright panel, which a change of the outputs may have closed.
        const desktop::Panel panel(60, kBackground, desktop::Panel::Space::Shared);
        return QTest::qWaitFor([scale] { return looksLikeTheReference(scale); }, kPatience);
    }

private Q_SLOTS:
    void initTestCase() {
        if (!desktop::canTakePictures()) {
            QSKIP("this compositor gives no pictures of its screen");
        }
        m_service.setScenario({{QStringLiteral("creatives"), referenceCreatives()}});
        m_program.emplace(m_service);
        QVERIFY(areShown(scale()));
    }
    void cleanup() { QCOMPARE(m_program->protocolErrors(), QByteArrayList()); }

    void theyAreSharpAtEachScale() {
        for (const double scale : {1.0, 1.5, 2.0}) {
            desktop::setScale(0, scale);
            // In sway a surface has twice its points in pixels at a scale of 1.5, and is shrunk.
            if (scale != 1.5 || desktop::is("kwin")) {
                QVERIFY2(areShown(scale), qPrintable(QString::number(scale)));
            }
        }
        desktop::setScale(0, scale());
        QVERIFY(areShown(scale()));
    }

    void theyStayWhenAnotherOutputGoes() {
        desktop::setOn(1, false);
        QVERIFY(areShown(scale()));
        desktop::setOn(1, true);
        QVERIFY(areShown(scale()));
    }

    void theyReturnFromARotation() {
        desktop::setRotated(0, true);
        desktop::setRotated(0, false);
        QVERIFY(areShown(scale()));
    }

    // The last: sway 1.10 without a screen leaves such an output dark.
    void theyReturnWithTheirOutput() {
        for (int i = 0; i < 3; ++i) {
            desktop::setOn(0, false);
            desktop::setOn(0, true);
            if (desktop::picture({0, 0, 8, 8}).isNull()) {
                QSKIP("this compositor shows nothing on an output without a screen that was off");
            }
            QVERIFY(areShown(scale()));
        }
    }

    void cleanupTestCase() {
        if (!m_program) {
            return; // skipped
        }
        QCOMPARE((*m_program)->endBySignal(SIGTERM), 0);
        QCOMPARE(m_program->protocolErrors(), QByteArrayList());
    }
};

BRIMLET_TEST(TestWaylandOutputs, QCoreApplication)
#include "tst_waylandoutputs.moc"
