#include "platform/mac/rules/macoverlaywindow.h"
#include "tests/platform/mac/fakepanels.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainterPath>
#include <QTest>

using namespace brimlet;

namespace {

constexpr Rect kFrame{544, 942, 424, 40};
constexpr QRect kLeft{20, 4, 90, 24};
constexpr QRect kRight{314, 4, 90, 24};

QPainterPath outlines(const QList<QRect>& boxes) {
    QPainterPath path;
    for (const QRect& box : boxes) {
        path.addRoundedRect(box, 12, 12);
    }
    return path;
}

/// Counts its releases of the left button.
class Capsule final : public QWidget {
public:
    Capsule(QWidget* parent, const QRect& place)
        : QWidget(parent) {
        setGeometry(place);
    }
    int clicks = 0;

protected:
    void mousePressEvent(QMouseEvent* event) override { event->accept(); }
    void mouseReleaseEvent(QMouseEvent* event) override {
        clicks += event->button() == Qt::LeftButton ? 1 : 0;
    }
};

/// An overlay with two capsules, shown.
struct Overlay final {
    Overlay() {
        window.setRegions(outlines({kLeft, kRight}), {});
        window.setFrame(kFrame);
        window.orderFrontRegardless();
        window.setIgnoresMouseEvents(false);
    }
    [[nodiscard]] const FakePanels::Panel& painting() const { return *panels.all.at(0); }
    [[nodiscard]] const FakePanels::Panel& left() const { return *panels.all.at(1); }
    [[nodiscard]] const FakePanels::Panel& right() const { return *panels.all.at(2); }

    FakePanels panels;
    QWidget* content = new QWidget;
    Capsule* capsule = new Capsule(content, kLeft);
    MacOverlayWindow window{panels, std::unique_ptr<QWidget>(content),
                            [](QPoint where) { return QString::number(where.x()); }};
};

} // namespace

class TestOverlayPanels final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPanelLiesOverEachCapsuleAndNowhereElse() {
        const Overlay overlay;
        QCOMPARE(overlay.panels.all.size(), 3U);
        QCOMPARE(overlay.painting().frame, kFrame);
        QVERIFY(!overlay.painting().isClickPanel);
        QCOMPARE(overlay.left().frame, (Rect{564, 954, 90, 24}));
        QCOMPARE(overlay.right().frame, (Rect{858, 954, 90, 24}));
        QVERIFY(overlay.left().isShown && overlay.right().isShown);
        QVERIFY(overlay.window.takesClickAt({564, 960}));
        QVERIFY(!overlay.window.takesClickAt({756, 960}));
    }

    void capsulesTakeTheMouseExactlyWhileTheOverlayIsShownAndDoesNotIgnoreIt_data() {
        QTest::addColumn<bool>("isShown");
        QTest::addColumn<bool>("ignores");
        QTest::addColumn<bool>("takes");
        QTest::newRow("shown") << true << false << true;
        QTest::newRow("shown, ignoring the mouse") << true << true << false;
        QTest::newRow("hidden") << false << false << false;
        QTest::newRow("hidden, ignoring the mouse") << false << true << false;
    }
    void capsulesTakeTheMouseExactlyWhileTheOverlayIsShownAndDoesNotIgnoreIt() {
        QFETCH(bool, isShown);
        QFETCH(bool, ignores);
        QFETCH(bool, takes);
        Overlay overlay;
        overlay.window.setIgnoresMouseEvents(ignores);
        if (!isShown) {
            overlay.window.orderOut();
        }
        QCOMPARE(overlay.left().isShown, takes);
        QCOMPARE(overlay.right().isShown, takes);
        QCOMPARE(overlay.painting().isShown, isShown);
        QVERIFY(overlay.window.facts().ignoresMouseEvents);
    }

    void panelsFollowTheirCapsules() {
        Overlay overlay;
        overlay.window.setRegions(outlines({kLeft.translated(10, 2), kRight}), {});
        QCOMPARE(overlay.left().frame, (Rect{574, 952, 90, 24}));
        overlay.window.setFrame({0, 100, 424, 40});
        QCOMPARE(overlay.left().frame, (Rect{30, 110, 90, 24}));
        QCOMPARE(overlay.right().frame, (Rect{314, 112, 90, 24}));
    }

    void aCapsuleThatCanNoLongerBeClickedHasNoPanel() {
        Overlay overlay;
        overlay.window.setRegions(outlines({kRight}), {});
        QCOMPARE(overlay.left().frame, (Rect{858, 954, 90, 24}));
        QVERIFY(overlay.left().isShown);
        QVERIFY(!overlay.right().isShown);
        overlay.window.setRegions({}, {});
        QVERIFY(!overlay.left().isShown);
        overlay.window.setRegions(outlines({kLeft, kRight}), {});
        QVERIFY(overlay.left().isShown && overlay.right().isShown);
        QCOMPARE(overlay.panels.all.size(), 3U);
    }

    void aFrameInsideAPointBecomesWhole() {
        Overlay overlay;
        overlay.window.setFrame({543.75, 941.5, 424.5, 40.5});
        QCOMPARE(overlay.painting().frame, (Rect{543, 941, 426, 41}));
        QCOMPARE(overlay.content->size(), QSize(426, 41));
        QCOMPARE(overlay.left().frame, (Rect{563, 954, 90, 24}));
    }

    void showingItAgainInItsPlaceOnlyRaisesItsPanels() {
        Overlay overlay;
        const int before = overlay.painting().requests;
        const int beforeLeft = overlay.left().requests;
        overlay.window.setFrame(kFrame);
        overlay.window.orderFrontRegardless();
        overlay.window.setIgnoresMouseEvents(false);
        QCOMPARE(overlay.painting().requests, before + 1);
        QCOMPARE(overlay.left().requests, beforeLeft + 2); // placed where it is, and raised
    }

    void aClickReachesTheWidgetThere() {
        const Overlay overlay;
        QVERIFY(overlay.left().mouse != nullptr);
        overlay.left().mouse->press({600, 960});
        overlay.left().mouse->release({601, 960});
        QCOMPARE(overlay.capsule->clicks, 1);
    }

    void thePointingHandAppearsWithTheCapsuleAndGoesWithIt() {
        Overlay overlay;
        QVERIFY(overlay.panels.hands.empty());
        overlay.window.orderOut();
        overlay.panels.pointer = {600, 960};
        overlay.window.orderFrontRegardless();
        QCOMPARE(overlay.panels.hands, std::vector<bool>{true});
        QCOMPARE(overlay.left().mouse->toolTip(), QStringLiteral("64"));
        overlay.window.setIgnoresMouseEvents(true);
        QCOMPARE(overlay.panels.hands, (std::vector<bool>{true, false}));
        QCOMPARE(overlay.left().mouse->toolTip(), QString());
    }

    void aPointerOnAWindowThatCoversTheCapsuleIsOutside() {
        Overlay overlay;
        overlay.panels.pointer = {600, 960};
        overlay.panels.isCovered = true;
        overlay.window.orderFrontRegardless();
        QVERIFY(overlay.panels.hands.empty());
        overlay.panels.isCovered = false;
        overlay.window.orderFrontRegardless();
        QCOMPARE(overlay.panels.hands, std::vector<bool>{true});
    }

    void theContentIsShownAndHiddenWithIt() {
        Overlay overlay;
        QVERIFY(overlay.content->isVisible());
        overlay.window.orderOut();
        QVERIFY(!overlay.content->isVisible());
    }

    void itsPanelsAreGoneWithIt() {
        FakePanels panels;
        {
            MacOverlayWindow window(panels, std::make_unique<QWidget>(), {});
            window.setRegions(outlines({kLeft}), {});
            window.orderFrontRegardless();
        }
        for (const auto& panel : panels.all) {
            QVERIFY(!panel->isShown);
            QVERIFY(panel->mouse == nullptr);
        }
    }
};

BRIMLET_TEST(TestOverlayPanels, QApplication)
#include "tst_overlaypanels.moc"
