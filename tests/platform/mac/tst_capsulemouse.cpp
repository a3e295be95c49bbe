#include "platform/mac/rules/capsuleboxes.h"
#include "platform/mac/rules/capsulemouse.h"
#include "platform/mac/rules/mouseforwarder.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QTest>

#include <optional>

using namespace brimlet;

Q_DECLARE_METATYPE(Rect)
Q_DECLARE_METATYPE(std::optional<QPointF>)

namespace {

/// Records its mouse events.
class Recorder final : public QWidget {
public:
    Recorder(QWidget* parent, const QRect& place)
        : QWidget(parent) {
        setGeometry(place);
    }

    QStringList events;

protected:
    void enterEvent(QEnterEvent* event) override {
        const QPoint where = event->position().toPoint();
        events << QStringLiteral("in %1,%2").arg(where.x()).arg(where.y());
    }
    void leaveEvent(QEvent* /*event*/) override { events << QStringLiteral("out"); }
    void mousePressEvent(QMouseEvent* event) override { record("down", *event); }
    void mouseReleaseEvent(QMouseEvent* event) override { record("up", *event); }

private:
    void record(const char* what, const QMouseEvent& event) {
        events << QStringLiteral("%1 %2,%3")
                      .arg(QLatin1StringView(what))
                      .arg(event.position().x())
                      .arg(event.position().y());
    }
};

const std::vector<QRect> kCapsules{QRect(0, 0, 80, 24), QRect(120, 0, 80, 24)};

constexpr Rect kFrame{656, 942, 200, 40};

/// Two widgets side by side, with a forwarder, and a mouse whose boxes are the widgets'.
struct Capsules final {
    Capsules() {
        content.resize(200, 40);
        mouse.setFrame(kFrame);
        mouse.setBoxes(kCapsules);
    }
    [[nodiscard]] static QPointF global(QPointF inContent) {
        return {kFrame.minX() + inContent.x(), kFrame.maxY() - inContent.y()};
    }

    QWidget content;
    Recorder left{&content, kCapsules.front()};
    Recorder right{&content, kCapsules.back()};
    MouseForwarder forwarder{content};
    QList<bool> hands; ///< What was shown, false for the arrow.
    CapsuleMouse mouse{
        content, [this](bool isHand) { hands << isHand; },
        [](QPoint where) { return QStringLiteral("tip at %1,%2").arg(where.x()).arg(where.y()); }};
};

} // namespace

class TestCapsuleMouse final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void partsSideBySideGetABoxEach() {
        const QRegion left = QRegion(QRect(10, 4, 100, 24), QRegion::Ellipse);
        const QRegion right = QRegion(QRect(320, 4, 36, 24), QRegion::Ellipse);
        const auto boxes = capsuleBoxes(right + left);
        QCOMPARE(boxes.size(), 2U);
        QCOMPARE(boxes.front(), left.boundingRect());
        QCOMPARE(boxes.back(), right.boundingRect());
    }

    void onePartGetsOneBox() {
        QCOMPARE(capsuleBoxes(QRect(1, 2, 3, 4)), std::vector<QRect>{QRect(1, 2, 3, 4)});
    }

    void partsAboveOneAnotherShareABox() {
        QRegion region(QRect(0, 0, 10, 5));
        region += QRect(8, 20, 10, 5);
        QCOMPARE(capsuleBoxes(region), std::vector<QRect>{QRect(0, 0, 18, 25)});
    }

    void boxesAreOrderedFromLeftToRight() {
        const QRect left(10, 8, 100, 20);
        const QRect right(320, 4, 36, 20);
        const QRegion region = QRegion(right) + left;
        QCOMPARE(*region.begin(), QRect(320, 4, 36, 4));
        QCOMPARE(capsuleBoxes(region), (std::vector<QRect>{left, right}));
    }

    void anEmptyRegionHasNoBox() { QVERIFY(capsuleBoxes({}).empty()); }

    void theWidgetUnderThePointerIsEnteredAndLeft() {
        Capsules capsules;
        capsules.forwarder.enter({130, 10});
        QCOMPARE(capsules.right.events, QStringList{QStringLiteral("in 10,10")});
        QVERIFY(capsules.left.events.isEmpty());
        QVERIFY(capsules.right.underMouse());

        capsules.forwarder.leave();
        capsules.forwarder.leave();
        QCOMPARE(capsules.right.events,
                 (QStringList{QStringLiteral("in 10,10"), QStringLiteral("out")}));
        QVERIFY(!capsules.right.underMouse());
    }

    void enteringAnotherWidgetLeavesTheFirst() {
        Capsules capsules;
        capsules.forwarder.enter({40, 12});
        capsules.forwarder.enter({160, 12});
        QCOMPARE(capsules.left.events,
                 (QStringList{QStringLiteral("in 40,12"), QStringLiteral("out")}));
        QCOMPARE(capsules.right.events, QStringList{QStringLiteral("in 40,12")});
    }

    void movingInsideAWidgetSendsNothing() {
        Capsules capsules;
        capsules.forwarder.enter({40, 12});
        capsules.forwarder.enter({41, 12});
        QCOMPARE(capsules.left.events, QStringList{QStringLiteral("in 40,12")});
    }

    void aWidgetThatWasHiddenIsStillLeft() {
        Capsules capsules;
        capsules.content.show();
        capsules.forwarder.enter({40, 12});
        capsules.content.hide();
        capsules.forwarder.leave();
        QCOMPARE(capsules.left.events.last(), QStringLiteral("out"));
        QVERIFY(!capsules.left.underMouse());
    }

    void aPositionWithoutAWidgetEntersNothing() {
        Capsules capsules;
        capsules.forwarder.enter({100, 12});
        capsules.forwarder.leave();
        QVERIFY(capsules.left.events.isEmpty());
        QVERIFY(capsules.right.events.isEmpty());
    }

    void aDeletedWidgetIsForgotten() {
        Capsules capsules;
        {
            const Recorder between(&capsules.content, {90, 0, 20, 24});
            capsules.forwarder.enter({100, 12});
            QVERIFY(between.underMouse());
        }
        {
            const Recorder next(&capsules.content, {90, 0, 20, 24});
            capsules.forwarder.enter({100, 12});
            QCOMPARE(next.events, QStringList{QStringLiteral("in 10,12")});
        }
        capsules.forwarder.leave();
    }

    void thePressedWidgetGetsTheReleaseElsewhereToo() {
        Capsules capsules;
        capsules.forwarder.press({130.5, 10.25});
        capsules.forwarder.release({40, 12});
        capsules.forwarder.release({40, 12});
        QCOMPARE(capsules.right.events,
                 (QStringList{QStringLiteral("down 10.5,10.25"), QStringLiteral("up -80,12")}));
        QVERIFY(capsules.left.events.isEmpty());
    }

    void aPressBesideTheWidgetsIsNoClick() {
        Capsules capsules;
        capsules.forwarder.press({100, 12});
        capsules.forwarder.release({130, 10});
        QVERIFY(capsules.right.events.isEmpty());
    }

    void aWidgetDeletedWhilePressedIsForgotten() {
        Capsules capsules;
        {
            const Recorder between(&capsules.content, {90, 0, 20, 24});
            capsules.forwarder.press({100, 12});
            QCOMPARE(between.events.size(), 1);
        }
        capsules.forwarder.release({100, 12});
        QVERIFY(capsules.left.events.isEmpty());
    }

    void boxesAreConvertedToGlobalPointsAndPositionsBack_data() {
        QTest::addColumn<Rect>("frame");
        QTest::addColumn<QRect>("box");
        QTest::addColumn<Rect>("global");
        QTest::newRow("at the top of a screen")
            << Rect{544, 942, 424, 40} << QRect(20, 4, 90, 24) << Rect{564, 954, 90, 24};
        QTest::newRow("on a screen below the primary one")
            << Rect{-100, -40, 424, 40} << QRect(0, 0, 1, 40) << Rect{-100, -40, 1, 40};
    }
    void boxesAreConvertedToGlobalPointsAndPositionsBack() {
        QFETCH(Rect, frame);
        QFETCH(QRect, box);
        QFETCH(Rect, global);
        QCOMPARE(boxInGlobal(box, frame), global);
        QCOMPARE(pointInContent({global.minX(), global.maxY()}, frame), QPointF(box.topLeft()));
    }

    void theHandIsSetAgainAsOftenAsThePointerMovesInside() {
        Capsules capsules;
        capsules.mouse.pointerAt(capsules.global({160, 12}));
        capsules.mouse.pointerAt(capsules.global({161, 12}));
        QCOMPARE(capsules.hands, (QList<bool>{true, true}));
        capsules.mouse.pointerAt(capsules.global({100, 12}));
        capsules.mouse.pointerAt(capsules.global({101, 12}));
        QCOMPARE(capsules.hands, (QList<bool>{true, true, false}));
        QCOMPARE(capsules.right.events,
                 (QStringList{QStringLiteral("in 39,11"), QStringLiteral("out")}));
    }

    void theToolTipIsThatOfTheBoxUnderThePointer() {
        Capsules capsules;
        QCOMPARE(capsules.mouse.toolTip(), QString());
        capsules.mouse.pointerAt(capsules.global({199, 1}));
        QCOMPARE(capsules.mouse.toolTip(), QStringLiteral("tip at 159,11"));
        capsules.mouse.pointerAt(std::nullopt);
        QCOMPARE(capsules.mouse.toolTip(), QString());
    }

    void aClickReachesTheWidgetAtItsPosition() {
        Capsules capsules;
        capsules.mouse.press(capsules.global({130, 10}));
        capsules.mouse.release(capsules.global({131, 11}));
        QCOMPARE(capsules.right.events,
                 (QStringList{QStringLiteral("down 10,10"), QStringLiteral("up 11,11")}));
    }

    void newBoxesCountAsLeftUntilThePointerIsReportedInThem() {
        Capsules capsules;
        capsules.mouse.pointerAt(capsules.global({40, 12}));
        capsules.mouse.setBoxes(kCapsules);
        QVERIFY(capsules.hands.last());
        capsules.mouse.setBoxes({kCapsules.back()});
        QCOMPARE(capsules.left.events.last(), QStringLiteral("out"));
        QVERIFY(!capsules.hands.last());

        capsules.mouse.pointerAt(capsules.global({150.5, 3.5}));
        QCOMPARE(capsules.right.events, QStringList{QStringLiteral("in 39,11")});
        QVERIFY(capsules.hands.last());
    }

    void aPointersPositionIsMatchedWithTheBoxes_data() {
        QTest::addColumn<std::optional<QPointF>>("where");
        QTest::addColumn<bool>("isInLeft");
        QTest::addColumn<bool>("isInRight");
        using Place = std::optional<QPointF>;
        QTest::newRow("in the left one") << Place(QPointF(40, 12)) << true << false;
        QTest::newRow("in the right one") << Place(QPointF(199.5, 0.5)) << false << true;
        QTest::newRow("on the near edge") << Place(QPointF(120, 0)) << false << true;
        QTest::newRow("on the far edge") << Place(QPointF(80, 12)) << false << false;
        QTest::newRow("on the lower edge") << Place(QPointF(40, 24)) << false << false;
        QTest::newRow("a little left") << Place(QPointF(-0.5, 12)) << false << false;
        QTest::newRow("between them") << Place(QPointF(100, 12)) << false << false;
        QTest::newRow("below") << Place(QPointF(40, 30)) << false << false;
        QTest::newRow("the boxes take no mouse") << Place() << false << false;
    }
    void aPointersPositionIsMatchedWithTheBoxes() {
        QFETCH(std::optional<QPointF>, where);
        Capsules capsules;
        capsules.mouse.pointerAt(where ? std::optional(Capsules::global(*where)) : std::nullopt);
        QTEST(!capsules.left.events.isEmpty(), "isInLeft");
        QTEST(!capsules.right.events.isEmpty(), "isInRight");
        QCOMPARE(capsules.hands.size(), capsules.left.events.size() + capsules.right.events.size());
    }

    void aWidgetThatReplacesAnotherUnderThePointerIsEntered() {
        Capsules capsules;
        auto* const before = new Recorder(&capsules.content, {90, 0, 20, 24});
        capsules.mouse.setBoxes({before->geometry()});
        capsules.mouse.pointerAt(capsules.global({100, 12}));
        delete before;
        const Recorder after(&capsules.content, {90, 0, 20, 24});
        capsules.mouse.pointerAt(capsules.global({100, 12}));
        QCOMPARE(after.events.size(), 1);
    }
};

BRIMLET_TEST(TestCapsuleMouse, QApplication)
#include "tst_capsulemouse.moc"
