#include "platform/mac/rules/hoverboxes.h"
#include "platform/mac/rules/hoverforwarder.h"
#include "platform/mac/rules/hovertracker.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QEnterEvent>
#include <QGuiApplication>
#include <QTest>

#include <limits>

using namespace brimlet;

Q_DECLARE_METATYPE(std::optional<QPointF>)

namespace {

/// Records its enter and leave events.
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
};

const std::vector<QRect> kCapsules{QRect(0, 0, 80, 24), QRect(120, 0, 80, 24)};

/// Two widgets side by side, with a forwarder, and a tracker whose boxes are the widgets'.
struct Capsules final {
    Capsules() {
        content.resize(200, 40);
        tracker.setBoxes(kCapsules);
    }

    QWidget content;
    Recorder left{&content, kCapsules.front()};
    Recorder right{&content, kCapsules.back()};
    HoverForwarder forwarder{content};
    QList<bool> hands; ///< What the tracker reported, true for inside.
    HoverTracker tracker{content, [this](bool isInside) { hands << isInside; }};
};

} // namespace

class TestHover final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void partsSideBySideGetABoxEach() {
        const QRegion left = QRegion(QRect(10, 4, 100, 24), QRegion::Ellipse);
        const QRegion right = QRegion(QRect(320, 4, 36, 24), QRegion::Ellipse);
        const auto boxes = hoverBoxes(right + left);
        QCOMPARE(boxes.size(), 2U);
        QCOMPARE(boxes.front(), left.boundingRect());
        QCOMPARE(boxes.back(), right.boundingRect());
    }

    void onePartGetsOneBox() {
        QCOMPARE(hoverBoxes(QRect(1, 2, 3, 4)), std::vector<QRect>{QRect(1, 2, 3, 4)});
    }

    void partsAboveOneAnotherShareABox() {
        QRegion region(QRect(0, 0, 10, 5));
        region += QRect(8, 20, 10, 5);
        QCOMPARE(hoverBoxes(region), std::vector<QRect>{QRect(0, 0, 18, 25)});
    }

    void boxesAreOrderedFromLeftToRight() {
        const QRect left(10, 8, 100, 20);
        const QRect right(320, 4, 36, 20);
        const QRegion region = QRegion(right) + left;
        QCOMPARE(*region.begin(), QRect(320, 4, 36, 4));
        QCOMPARE(hoverBoxes(region), (std::vector<QRect>{left, right}));
    }

    void anEmptyRegionHasNoBox() { QVERIFY(hoverBoxes({}).empty()); }

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

    void aWidgetThatQtHasEnteredGetsNoSecondEvent() {
        Capsules capsules;
        QEnterEvent event({5, 5}, {5, 5}, {5, 5});
        QCoreApplication::sendEvent(&capsules.left, &event);
        capsules.forwarder.enter({40, 12});
        QCOMPARE(capsules.left.events, QStringList{QStringLiteral("in 5,5")});
        capsules.forwarder.leave();
        QCOMPARE(capsules.left.events.last(), QStringLiteral("out"));
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

    void theTrackerEntersTheWidgetInTheBoxAndReportsIt() {
        Capsules capsules;
        capsules.tracker.enter(1);
        QCOMPARE(capsules.right.events, QStringList{QStringLiteral("in 39,11")});
        QCOMPARE(capsules.hands, QList<bool>{true});
        capsules.tracker.leave(1);
        QCOMPARE(capsules.right.events.last(), QStringLiteral("out"));
        QCOMPARE(capsules.hands, (QList<bool>{true, false}));
        QVERIFY(capsules.left.events.isEmpty());
    }

    void leavingABoxAfterTheNextWasEnteredChangesNothing() {
        Capsules capsules;
        capsules.tracker.enter(0);
        capsules.tracker.enter(1);
        capsules.tracker.leave(0);
        QCOMPARE(capsules.left.events,
                 (QStringList{QStringLiteral("in 39,11"), QStringLiteral("out")}));
        QCOMPARE(capsules.right.events, QStringList{QStringLiteral("in 39,11")});
        QVERIFY(capsules.hands.last());
    }

    void unknownBoxesAreIgnored() {
        Capsules capsules;
        capsules.tracker.enter(2);
        capsules.tracker.enter(static_cast<std::size_t>(std::numeric_limits<long>::max()));
        capsules.tracker.leave(0);
        QVERIFY(capsules.hands.isEmpty());
    }

    void newBoxesCountAsLeftUntilThePointerIsReportedInThem() {
        Capsules capsules;
        capsules.tracker.enter(0);
        QVERIFY(!capsules.tracker.setBoxes(kCapsules));
        QVERIFY(capsules.hands.last());
        QVERIFY(capsules.tracker.setBoxes({kCapsules.back()}));
        QCOMPARE(capsules.left.events.last(), QStringLiteral("out"));
        QVERIFY(!capsules.hands.last());
        QVERIFY(!capsules.tracker.setBoxes({kCapsules.back()}));

        capsules.tracker.pointerAt(QPointF(150.5, 3.5));
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
        QTest::newRow("clicks pass through") << Place() << false << false;
    }
    void aPointersPositionIsMatchedWithTheBoxes() {
        QFETCH(std::optional<QPointF>, where);
        Capsules capsules;
        capsules.tracker.pointerAt(where);
        capsules.tracker.pointerAt(where);
        QTEST(!capsules.left.events.isEmpty(), "isInLeft");
        QTEST(!capsules.right.events.isEmpty(), "isInRight");
        QCOMPARE(capsules.hands.size(), capsules.left.events.size() + capsules.right.events.size());
    }

    void anAbsentPointerHasLeft() {
        Capsules capsules;
        capsules.tracker.enter(0);
        capsules.tracker.pointerAt(std::nullopt);
        QCOMPARE(capsules.left.events.last(), QStringLiteral("out"));
        QVERIFY(!capsules.hands.last());
    }

    void aWidgetThatReplacesAnotherUnderThePointerIsEntered() {
        Capsules capsules;
        auto* const before = new Recorder(&capsules.content, {90, 0, 20, 24});
        QVERIFY(capsules.tracker.setBoxes({before->geometry()}));
        capsules.tracker.pointerAt(QPointF(100, 12));
        delete before;
        const Recorder after(&capsules.content, {90, 0, 20, 24});
        capsules.tracker.pointerAt(QPointF(100, 12));
        QCOMPARE(after.events.size(), 1);
    }
};

BRIMLET_TEST(TestHover, QApplication)
#include "tst_hover.moc"
