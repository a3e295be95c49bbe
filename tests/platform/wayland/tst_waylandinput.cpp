#include "platform/wayland/waylandactivation.h"
#include "tests/platform/wayland/waylandfixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QTest>

using namespace brimlet;

namespace {

constexpr QPointF kInLeft(20, 10);
constexpr QPointF kInRight(330, 10);
const QString kHand = QStringLiteral("cursor shape 4");
const QString kArrow = QStringLiteral("cursor shape 1");

} // namespace

/// What the pointer and the touch screen do.
class TestWaylandInput final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aClickReachesTheButtonBelow() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        f.compositor.pointerButton(true);
        f.compositor.pointerButton(false);
        QTRY_COMPARE(f.left->events,
                     (QStringList{QStringLiteral("enter"), QStringLiteral("press 12,9"),
                                  QStringLiteral("release 12,9")}));
        f.compositor.pointerMove(kInRight);
        QTRY_COMPARE(f.right->events, QStringList{QStringLiteral("enter")});
        QCOMPARE(f.left->lastEvent(), QStringLiteral("leave"));
        f.compositor.pointerLeave();
        QTRY_COMPARE(f.right->lastEvent(), QStringLiteral("leave"));
    }

    void aReleaseElsewhereGoesToThePressedButton() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        f.compositor.pointerButton(true);
        f.compositor.pointerMove(kInRight);
        f.compositor.pointerButton(false);
        QTRY_COMPARE(f.left->lastEvent(), QStringLiteral("release 322,9"));
        QCOMPARE(f.right->events, QStringList{QStringLiteral("enter")});
    }

    void aTouchIsAClick() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.compositor.touchDown(kInRight);
        f.compositor.touchUp();
        QTRY_COMPARE(f.right->events,
                     (QStringList{QStringLiteral("enter"), QStringLiteral("press 18,9"),
                                  QStringLiteral("release 18,9"), QStringLiteral("leave")}));
    }

    void theCursorIsTheButtons() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        QVERIFY(f.sees(kHand));
        QVERIFY(!f.compositor.log.contains(kArrow));
        f.compositor.log.clear();
        f.left->setCursor(Qt::ArrowCursor); // it is no link any more
        QVERIFY(f.sees(kArrow));
        f.compositor.log.clear();
        f.compositor.pointerMove(kInRight);
        QVERIFY(f.sees(kHand));
    }

    void withoutCursorShapesItIsTheThemes() {
        if (emulated() == "computer") {
            QSKIP("the theme's cursor does not appear there, for a reason not found yet");
        }
        WaylandFixture f({.hasCursorShapes = false});
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        QVERIFY(f.sees(QStringLiteral("cursor set")));
        f.compositor.pointerLeave();
        QVERIFY(f.sees(QStringLiteral("cursor gone")));
    }

    void theToolTipIsAPopupBelowTheCapsule_data() {
        QTest::addColumn<int>("layerShellVersion");
        QTest::newRow("of the popup") << 3;
        QTest::newRow("of the layer surface") << 4;
    }
    void theToolTipIsAPopupBelowTheCapsule() {
        QFETCH(const int, layerShellVersion);
        WaylandFixture f({.layerShellVersion = layerShellVersion});
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        const auto shown = [&f] {
            return f.compositor.log.filter(QStringLiteral("tooltip placed at 61,-210 ")).size() ==
                   1;
        };
        QTRY_VERIFY_WITH_TIMEOUT(shown(), kPatience);
        f.compositor.log.clear();
        f.compositor.pointerButton(true);
        QVERIFY(f.sees(QStringLiteral("tooltip gone")));
    }

    void itGoesWhenThePointerLeavesOrTheTextChanges_data() {
        QTest::addColumn<bool>("isTextChanged");
        QTest::newRow("left") << false;
        QTest::newRow("another text") << true;
    }
    void itGoesWhenThePointerLeavesOrTheTextChanges() {
        QFETCH(const bool, isTextChanged);
        WaylandFixture f;
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        QTRY_VERIFY_WITH_TIMEOUT(
            !f.compositor.log.filter(QStringLiteral("tooltip placed")).isEmpty(), kPatience);
        if (isTextChanged) {
            f.left->setToolTip(QStringLiteral("another page"));
        } else {
            f.compositor.pointerLeave();
        }
        QVERIFY(f.sees(QStringLiteral("tooltip gone")));
    }

    void aHiddenWindowForgetsThePointer() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        QTRY_COMPARE(f.left->events, QStringList{QStringLiteral("enter")});
        f.window->orderOut();
        QCOMPARE(f.left->lastEvent(), QStringLiteral("leave"));
    }

    void aClickedPageGetsAToken() {
        WaylandFixture f;
        WaylandActivation activation(f.connection, f.seat);
        QStringList tokens;
        const auto use = [&tokens](const QString& token) { tokens << token; };
        activation.requestToken(use); // nothing was pressed yet
        QCOMPARE(tokens, QStringList{QString()});
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        f.compositor.pointerButton(true);
        QTRY_VERIFY(f.seat.lastPress());
        activation.requestToken(use);
        QTRY_COMPARE(tokens, (QStringList{QString(), QStringLiteral("a-token")}));
        QVERIFY(f.compositor.log.contains(
            QStringLiteral("token for press %1").arg(*f.seat.lastPress())));
    }

    void aLostConnectionAnswersForTheToken() {
        WaylandFixture f;
        WaylandActivation activation(f.connection, f.seat);
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        f.compositor.pointerButton(true);
        QTRY_VERIFY(f.seat.lastPress());
        QStringList tokens;
        activation.requestToken([&tokens](const QString& token) { tokens << token; });
        f.compositor.disconnectClient();
        QTRY_COMPARE(tokens, QStringList{QString()});
    }
};

BRIMLET_TEST(TestWaylandInput, QApplication)
#include "tst_waylandinput.moc"
