#include "app/overlaychoice.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

Q_DECLARE_METATYPE(OverlayFacts)

/// Which window the overlay has.
class TestOverlayChoice final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void choice_data() {
        QTest::addColumn<OverlayFacts>("facts");
        QTest::addColumn<bool>("isNative");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char* reason, const OverlayFacts& facts, bool isNative = false) {
            QTest::newRow(reason) << facts << isNative << QString::fromLatin1(reason);
        };
        const OverlayFacts wayland{.hasXServer = true,
                                   .isWaylandDisplaySet = true,
                                   .isLibraryLoaded = true,
                                   .isConnected = true,
                                   .missingInterface = {}};
        row("Wayland, since the compositor offers zwlr_layer_shell_v1", wayland, true);
        OverlayFacts facts = wayland;
        facts.missingInterface = QStringLiteral("wl_shm");
        row("X11, since the Wayland compositor does not offer wl_shm", facts);
        facts.isConnected = false;
        row("X11, since the Wayland compositor does not answer", facts);
        facts.isLibraryLoaded = false;
        row("X11, since there is no libwayland-client 1.20 or later", facts);
        facts.isWaylandDisplaySet = false;
        row("X11, since WAYLAND_DISPLAY is not set", facts);
        facts.hasXServer = false;
        row("none, since there is no X server and WAYLAND_DISPLAY is not set", facts);
    }
    void choice() {
        QFETCH(const OverlayFacts, facts);
        const OverlayChoice choice = chooseOverlay(facts);
        QTEST(choice.isNative, "isNative");
        QTEST(choice.reason, "reason");
    }
};

BRIMLET_TEST(TestOverlayChoice, QCoreApplication)
#include "tst_overlaychoice.moc"
