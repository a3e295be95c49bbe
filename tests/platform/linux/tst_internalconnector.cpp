#include "platform/linux/qtscreens.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

class TestInternalConnector final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void laptopPanelsAreKnownByTheirConnector_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isInternal");
        const auto row = [](const char* name, bool isInternal) {
            QTest::newRow(name) << QString::fromLatin1(name) << isInternal;
        };
        row("eDP-1", true);
        row("eDP1", true);
        row("LVDS-1", true);
        row("DSI-1", true);
        row("DP-1", false);
        row("HDMI-A-1", false);
        row("XWAYLAND0", false);
        row("screen", false);
        row("xeDP-1", false);
    }
    void laptopPanelsAreKnownByTheirConnector() {
        QFETCH(QString, name);
        QTEST(isInternalConnector(name), "isInternal");
    }
};

BRIMLET_TEST(TestInternalConnector, brimlet::NoApplication)
#include "tst_internalconnector.moc"
