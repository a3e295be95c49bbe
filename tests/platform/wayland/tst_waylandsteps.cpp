#include "tests/platform/wayland/waylandfixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QPainter>
#include <QTest>

using namespace brimlet;

namespace {

constexpr QRect kLeftText(40, 5, 60, 16);
constexpr QRect kRightText(340, 5, 50, 16);

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

} // namespace

/// What a step of a scrolling text shows.
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
};

BRIMLET_TEST(TestWaylandSteps, QApplication)
#include "tst_waylandsteps.moc"
