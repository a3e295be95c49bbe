#include "platform/mac/rules/hoverboxes.h"
#include "platform/mac/rules/hoverforwarder.h"
#include "platform/mac/rules/hovertracker.h"
#include "tests/support/testprogram.h"

#include <QEnterEvent>
#include <QGuiApplication>
#include <QTest>

#include <limits>

using namespace brimlet;

Q_DECLARE_METATYPE(std::optional<QPointF>)

namespace {

/// Notes what comes in.
class Note final : public QWidget {
public:
    Note(QWidget* parent, const QRect& place)
        : QWidget(parent) {
        setGeometry(place);
    }

    QStringList heard;

protected:
    void enterEvent(QEnterEvent* event) override {
        const QPoint where = event->position().toPoint();
        heard << QStringLiteral("in %1,%2").arg(where.x()).arg(where.y());
    }
    void leaveEvent(QEvent* /*event*/) override { heard << QStringLiteral("out"); }
};

const std::vector<QRect> kCapsules{QRect(0, 0, 80, 24), QRect(120, 0, 80, 24)};

/// Two widgets side by side whose boxes are tracked.
struct Capsules final {
    Capsules() {
        content.resize(200, 40);
        tracker.setBoxes(kCapsules);
    }

    QWidget content;
    Note left{&content, kCapsules.front()};
    Note right{&content, kCapsules.back()};
    QList<bool> hands;
    HoverTracker tracker{content, [this](bool isInside) { hands << isInside; }};
};

} // namespace

class TestHover final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void partsSideBySideHaveABoxEach() {
        const QRegion left = QRegion(QRect(10, 4, 100, 24), QRegion::Ellipse);
        const QRegion right = QRegion(QRect(320, 4, 36, 24), QRegion::Ellipse);
        const auto boxes = hoverBoxes(right + left);
        QCOMPARE(boxes.size(), 2U);
        QCOMPARE(boxes.front(), left.boundingRect());
        QCOMPARE(boxes.back(), right.boundingRect());
    }

    void onePartHasOneBox() {
        QCOMPARE(hoverBoxes(QRect(1, 2, 3, 4)), std::vector<QRect>{QRect(1, 2, 3, 4)});
    }

    void partsAboveOneAnotherAreOne() {
        QRegion region(QRect(0, 0, 10, 5));
        region += QRect(8, 20, 10, 5);
        QCOMPARE(hoverBoxes(region), std::vector<QRect>{QRect(0, 0, 18, 25)});
    }

    void boxesGoFromLeftToRightThoughRegionsGoFromTopToBottom() {
        const QRect left(10, 8, 100, 20);
        const QRect right(320, 4, 36, 20);
        const QRegion region = QRegion(right) + left;
        QCOMPARE(*region.begin(), QRect(320, 4, 36, 4));
        QCOMPARE(hoverBoxes(region), (std::vector<QRect>{left, right}));
    }

    void nothingHasNoBox() { QVERIFY(hoverBoxes({}).empty()); }

    void theWidgetUnderThePointerHearsOfIt() {
        QWidget content;
        content.resize(200, 40);
        Note left(&content, {0, 0, 80, 24});
        Note right(&content, {120, 0, 80, 24});
        HoverForwarder hover(content);
        hover.enter({130, 10});
        QCOMPARE(right.heard, QStringList{QStringLiteral("in 10,10")});
        QVERIFY(left.heard.isEmpty());
        QVERIFY(hover.isInside());

        hover.leave();
        hover.leave();
        QCOMPARE(right.heard, (QStringList{QStringLiteral("in 10,10"), QStringLiteral("out")}));
        QVERIFY(!hover.isInside());
    }

    void enteringAnotherLeavesTheFirst() {
        QWidget content;
        content.resize(200, 40);
        Note left(&content, {0, 0, 80, 24});
        Note right(&content, {120, 0, 80, 24});
        HoverForwarder hover(content);
        hover.enter({40, 12});
        hover.enter({160, 12});
        QCOMPARE(left.heard, (QStringList{QStringLiteral("in 40,12"), QStringLiteral("out")}));
        QCOMPARE(right.heard, QStringList{QStringLiteral("in 40,12")});
    }

    void enteringTheSameAgainIsNothingNew() {
        QWidget content;
        content.resize(200, 40);
        const Note note(&content, {0, 0, 80, 24});
        HoverForwarder hover(content);
        hover.enter({40, 12});
        hover.enter({41, 12});
        QCOMPARE(note.heard, QStringList{QStringLiteral("in 40,12")});
    }

    void aWidgetThatQtHasToldIsNotToldAgain() {
        QWidget content;
        content.resize(200, 40);
        Note note(&content, {0, 0, 80, 24});
        QEnterEvent event({5, 5}, {5, 5}, {5, 5});
        QCoreApplication::sendEvent(&note, &event);
        HoverForwarder hover(content);
        hover.enter({40, 12});
        QCOMPARE(note.heard, QStringList{QStringLiteral("in 5,5")});
        hover.leave();
        QCOMPARE(note.heard.last(), QStringLiteral("out"));
    }

    void aWidgetThatHidIsLeftAllTheSame() {
        QWidget content;
        content.resize(200, 40);
        Note note(&content, {0, 0, 80, 24});
        content.show();
        HoverForwarder hover(content);
        hover.enter({40, 12});
        content.hide();
        hover.leave();
        QCOMPARE(note.heard.last(), QStringLiteral("out"));
        QVERIFY(!note.underMouse());
    }

    void aPlaceWithoutAWidgetIsNoEntering() {
        QWidget content;
        content.resize(200, 40);
        const Note left(&content, {0, 0, 80, 24});
        HoverForwarder hover(content);
        hover.enter({100, 12});
        QVERIFY(!hover.isInside());
    }

    void aWidgetThatGoesIsForgotten() {
        QWidget content;
        content.resize(200, 40);
        HoverForwarder hover(content);
        {
            const Note note(&content, {0, 0, 80, 24});
            hover.enter({40, 12});
            QVERIFY(hover.isInside());
        }
        QVERIFY(!hover.isInside());
        hover.leave();
    }

    void theTrackerTellsTheBoxesWidgetAndWhetherToShowTheHand() {
        Capsules capsules;
        capsules.tracker.enter(1);
        QCOMPARE(capsules.right.heard, QStringList{QStringLiteral("in 39,11")});
        QCOMPARE(capsules.hands, QList<bool>{true});
        capsules.tracker.leave(1);
        QCOMPARE(capsules.right.heard.last(), QStringLiteral("out"));
        QCOMPARE(capsules.hands, (QList<bool>{true, false}));
        QVERIFY(capsules.left.heard.isEmpty());
    }

    void whoeverEnteredTheNextBoxFirstIsNotThrownOutByLeavingTheOneBefore() {
        Capsules capsules;
        capsules.tracker.enter(0);
        capsules.tracker.enter(1);
        capsules.tracker.leave(0);
        QCOMPARE(capsules.left.heard,
                 (QStringList{QStringLiteral("in 39,11"), QStringLiteral("out")}));
        QCOMPARE(capsules.right.heard, QStringList{QStringLiteral("in 39,11")});
        QVERIFY(capsules.hands.last());
    }

    void aBoxThatThereIsNotCountsForNothing() {
        Capsules capsules;
        capsules.tracker.enter(2);
        capsules.tracker.enter(static_cast<std::size_t>(std::numeric_limits<long>::max()));
        capsules.tracker.leave(0);
        QVERIFY(capsules.hands.isEmpty());
    }

    void otherBoxesAreLeftUntilThePointerIsFoundInThem() {
        Capsules capsules;
        capsules.tracker.enter(0);
        QVERIFY(!capsules.tracker.setBoxes(kCapsules));
        QVERIFY(capsules.hands.last());
        QVERIFY(capsules.tracker.setBoxes({kCapsules.back()}));
        QCOMPARE(capsules.left.heard.last(), QStringLiteral("out"));
        QVERIFY(!capsules.hands.last());
        QCOMPARE(capsules.tracker.boxes(), std::vector<QRect>{kCapsules.back()});

        capsules.tracker.pointerAt(QPointF(150.5, 3.5));
        QCOMPARE(capsules.right.heard, QStringList{QStringLiteral("in 39,11")});
        QVERIFY(capsules.hands.last());
    }

    void aPointerThatRestsIsLookedForInAllBoxes_data() {
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
    void aPointerThatRestsIsLookedForInAllBoxes() {
        QFETCH(std::optional<QPointF>, where);
        Capsules capsules;
        capsules.tracker.pointerAt(where);
        capsules.tracker.pointerAt(where);
        QTEST(!capsules.left.heard.isEmpty(), "isInLeft");
        QTEST(!capsules.right.heard.isEmpty(), "isInRight");
        QCOMPARE(capsules.hands.size(), capsules.left.heard.size() + capsules.right.heard.size());
    }

    void aPointerThatIsNowhereHasLeft() {
        Capsules capsules;
        capsules.tracker.enter(0);
        capsules.tracker.pointerAt(std::nullopt);
        QCOMPARE(capsules.left.heard.last(), QStringLiteral("out"));
        QVERIFY(!capsules.hands.last());
    }

    void aWidgetThatTookAnothersPlaceUnderThePointerHearsOfIt() {
        Capsules capsules;
        auto* const before = new Note(&capsules.content, {90, 0, 20, 24});
        QVERIFY(capsules.tracker.setBoxes({before->geometry()}));
        capsules.tracker.pointerAt(QPointF(100, 12));
        delete before;
        const Note after(&capsules.content, {90, 0, 20, 24});
        capsules.tracker.pointerAt(QPointF(100, 12));
        QCOMPARE(after.heard.size(), 1);
    }
};

BRIMLET_TEST(TestHover, QGuiApplication)
#include "tst_hover.moc"
