#include "platform/mac/macoverlaywindow.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QTest>

using namespace brimlet;

/// Shows a transparent panel for a moment on the desktop of the user who runs the test.
class TestMacOverlayWindow final : public QObject {
    Q_OBJECT

    [[nodiscard]] static QString faults(const MacOverlayWindow& window) {
        return window.facts() == PanelFacts{} ? QString() : panelReport(window.facts()).join(u'\n');
    }

private Q_SLOTS:
    void thePanelKeepsItsProperties() {
        MacOverlayWindow window(std::make_unique<QWidget>(),
                                [](QPoint /*where*/) { return QString(); });
        QCOMPARE(faults(window), QString());
        window.setFrame({100, 100, 400, 46});
        window.orderFrontRegardless();
        QCOMPARE(faults(window), QString());
        window.orderOut();
        QCOMPARE(faults(window), QString());
        window.orderFrontRegardless();
        QCOMPARE(faults(window), QString());
    }
};

BRIMLET_TEST(TestMacOverlayWindow, QApplication)
#include "tst_macoverlaywindow.moc"
