#include "platform/wayland/waylandactivation.h"
#include "platform/wayland/waylandoutputs.h"
#include "tests/platform/wayland/waylandfixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

using namespace brimlet;

namespace {

constexpr QRect kLeftText(40, 5, 60, 16);
constexpr QRect kRightText(340, 5, 50, 16);
constexpr QPointF kInLeft(20, 10);

/// The picture after a step to these texts.
QImage stepped(QImage picture, std::span<const TextStrip> texts) {
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const TextStrip& text : texts) {
        painter.drawImage(text.box.topLeft(), text.picture,
                          QRect(QPoint(text.from, 0), text.box.size()));
    }
    return picture;
}

/// On the screen, with one step shown: the compositor's events are not read when they arrive.
struct ScrollFixture : WaylandFixture {
    explicit ScrollFixture(const StandInManners& manners = {},
                           std::chrono::milliseconds longestPostponement = kForLong)
        : WaylandFixture(manners, {StandInOutput()}, longestPostponement) {}
    [[nodiscard]] bool begin() {
        if (!show()) {
            return false;
        }
        synchronise();
        step();
        return sees(QStringLiteral("capsules: 40,5 60x16"));
    }
    void step() { window->showTexts(textIn(kLeftText, ++m_from)); }

private:
    int m_from = 0;
};

} // namespace

/// What a step of a scrolling text shows, and when the compositor's answers to it are read.
class TestWaylandSteps final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachStepShowsItsColumnsInBothBuffers() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.synchronise();
        QImage expected = f.compositor.picture();
        for (int i = 0; i < 6; ++i) {
            // The right one moves with every third step only; the others keep it.
            const std::array both{textIn(kLeftText, 3 * i)[0], textIn(kRightText, 700 + i)[0]};
            const auto texts = std::span(both).first(i % 3 == 0 ? 2 : 1);
            expected = stepped(expected, texts);
            f.window->showTexts(texts);
            f.synchronise();
            QCOMPARE(f.compositor.picture(), expected);
        }
    }

    void whatIsOutsideTheWindowIsCutOff() {
        WaylandFixture f;
        QVERIFY(f.show());
        f.synchronise();
        const std::array texts{textIn({-10, -4, 60, 16}, 300)[0],
                               textIn({400, 30, 60, 16}, 500)[0]};
        const QImage expected = stepped(f.compositor.picture(), texts);
        f.window->showTexts(texts);
        QVERIFY(f.sees(QStringLiteral("capsules: 0,0 50x12 + 400,30 28x10")));
        QCOMPARE(f.compositor.picture(), expected);
    }

    void aClickIsReadWithTheNextStep() {
        ScrollFixture f;
        QVERIFY(f.begin());
        f.compositor.pointerEnter(kInLeft);
        f.compositor.pointerButton(true);
        f.compositor.pointerButton(false);
        f.synchronise();
        QCOMPARE(f.left->events, QStringList());
        f.step();
        // What a click does may change the texts, so it is done after the step.
        QCOMPARE(f.left->events, QStringList());
        QTRY_COMPARE(f.left->events,
                     (QStringList{QStringLiteral("enter"), QStringLiteral("press 12,9"),
                                  QStringLiteral("release 12,9")}));
        QVERIFY(f.compositor.log.contains(QStringLiteral("capsules: 40,5 60x16")));
    }

    void afterTheLastStepEventsAreReadWhenTheyArrive() {
        ScrollFixture f({}, kUsually);
        QVERIFY(f.begin());
        for (const auto& event : {QStringLiteral("enter"), QStringLiteral("leave")}) {
            if (event == QStringLiteral("enter")) {
                f.compositor.pointerEnter(kInLeft);
            } else {
                f.compositor.pointerLeave();
            }
            QTRY_COMPARE_WITH_TIMEOUT(f.left->lastEvent(), event, kPatience);
        }
    }

    void aStepThatCameTooEarlyIsShownWhenTheLastOneWas() {
        ScrollFixture f({.answersFrames = false});
        QVERIFY(f.show());
        f.synchronise();
        f.compositor.answerFrame();
        f.synchronise();
        f.step();
        QVERIFY(f.sees(QStringLiteral("capsules: 40,5 60x16")));
        f.synchronise();
        f.step();
        f.synchronise();
        QCOMPARE(f.compositor.log, QStringList());
        f.compositor.answerFrame();
        QVERIFY(f.sees(QStringLiteral("capsules: 40,5 60x16")));
    }

    void anotherChangeIsShownWithoutAnotherStep() {
        ScrollFixture f;
        QVERIFY(f.begin());
        f.synchronise();
        f.window->updateContent(kRight);
        QVERIFY(f.sees(QStringLiteral("capsules: 312,1 108x24")));
    }

    void aNewSurfaceAppearsWithoutAnotherStep() {
        ScrollFixture f;
        QVERIFY(f.begin());
        f.window->orderOut();
        QVERIFY(f.sees(QStringLiteral("capsules gone")));
        QVERIFY(f.show());
    }

    void aToolTipAppearsWithoutAnotherStep() {
        ScrollFixture f;
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        QTRY_COMPARE(f.left->events, QStringList{QStringLiteral("enter")});
        f.step();
        QTRY_VERIFY_WITH_TIMEOUT(!f.compositor.log.filter(QStringLiteral("tooltip: ")).isEmpty(),
                                 kPatience);
    }

    void aTokenIsAnsweredWithoutAnotherStep() {
        ScrollFixture f;
        WaylandActivation activation(f.connection, f.seat);
        QVERIFY(f.show());
        f.compositor.pointerEnter(kInLeft);
        f.compositor.pointerButton(true);
        QTRY_VERIFY(f.seat.lastPress());
        f.step();
        QStringList tokens;
        activation.requestToken([&tokens](const QString& token) { tokens << token; });
        QTRY_COMPARE(tokens, QStringList{QStringLiteral("a-token")});
    }

    void aNewOutputIsKnownOneStepLater() {
        ScrollFixture f;
        QVERIFY(f.begin());
        f.compositor.setOutputs({{}, {.connector = QStringLiteral("DP-1")}});
        f.synchronise();
        QVERIFY(f.connection.outputs().named(QStringLiteral("DP-1")) == nullptr);
        f.step();
        QTRY_VERIFY(f.connection.outputs().named(QStringLiteral("DP-1")) != nullptr);
    }

    void aLostConnectionIsNoticed_data() {
        QTest::addColumn<bool>("isWithAStep");
        QTest::newRow("with a step") << true;
        QTest::newRow("after the last step") << false;
    }
    void aLostConnectionIsNoticed() {
        QFETCH(const bool, isWithAStep);
        ScrollFixture f({}, isWithAStep ? std::chrono::milliseconds(kForLong) : kUsually);
        const QSignalSpy lost(&f.connection, &WaylandConnection::lost);
        QVERIFY(f.begin());
        f.compositor.disconnectClient();
        if (isWithAStep) {
            for (int i = 0; i < 2; ++i) { // what was sent before is read first
                f.synchronise();
                QCOMPARE(lost.size(), 0);
                f.step();
                QCOMPARE(lost.size(), 0); // not within the step, whose surface would be gone
            }
        }
        QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, kPatience);
        f.connection.reconnect();
        QTRY_VERIFY_WITH_TIMEOUT(f.compositor.isShown(), kPatience);
        QVERIFY(f.begin());
    }
};

BRIMLET_TEST(TestWaylandSteps, QApplication)
#include "tst_waylandsteps.moc"
