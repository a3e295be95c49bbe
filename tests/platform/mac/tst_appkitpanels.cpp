#include "platform/mac/appkitpanels.h"
#include "platform/mac/rules/macoverlaywindow.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QPainterPath>
#include <QTest>

using namespace brimlet;

/// Shows transparent panels for a moment on the desktop of the user who runs the test.
class TestAppKitPanels final : public QObject {
    Q_OBJECT

    const AppKitPanels m_panels;

    [[nodiscard]] static QString faults(const MacOverlayWindow& window) {
        QStringList lines;
        if (window.facts() != PanelFacts{}) {
            lines << panelReport(window.facts());
        }
        for (const PanelFacts& facts : window.clickFacts()) {
            if (facts != kClickPanelFacts) {
                lines << panelReport(facts, kClickPanelFacts);
            }
        }
        return lines.join(u'\n');
    }

private Q_SLOTS:
    void thePanelsKeepTheirProperties() {
        MacOverlayWindow window(m_panels, std::make_unique<QWidget>(),
                                [](QPoint /*where*/) { return QString(); });
        QPainterPath boxes;
        boxes.addRect(20, 4, 90, 24);
        boxes.addRect(314, 4, 90, 24);
        window.setRegions(boxes, boxes);
        QCOMPARE(window.clickFacts().size(), 2U);
        QCOMPARE(faults(window), QString());
        window.setFrame({100, 100, 424, 40});
        window.orderFrontRegardless();
        window.setIgnoresMouseEvents(false);
        QCOMPARE(faults(window), QString());
        window.setIgnoresMouseEvents(true);
        window.orderOut();
        QCOMPARE(faults(window), QString());
        window.orderFrontRegardless();
        QCOMPARE(faults(window), QString());
    }
};

BRIMLET_TEST(TestAppKitPanels, QApplication)
#include "tst_appkitpanels.moc"
