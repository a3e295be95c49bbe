#include "platform/wayland/widgetpointer.h"
#include "tests/platform/wayland/waylandfixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

using namespace brimlet;

/// Mouse events for widgets that Qt does not show.
class TestWidgetPointer final : public QObject {
    Q_OBJECT

    struct Fixture {
        Fixture() {
            content.resize(428, 40);
            content.setAttribute(Qt::WA_DontShowOnScreen);
            content.show();
        }
        QWidget content;
        Button left{kLeft, &content};
        WidgetPointer pointer{content};
        QSignalSpy changes{&pointer, &WidgetPointer::targetChanged};
    };

private Q_SLOTS:
    void betweenTheChildrenThereIsAnArrow() {
        Fixture f;
        f.pointer.moveTo({200, 10});
        QCOMPARE(f.pointer.cursor(), Qt::ArrowCursor);
        QCOMPARE(f.pointer.toolTip(), QString());
        QCOMPARE(f.pointer.targetBox(), QRect());
        f.pointer.press();
        f.pointer.release();
        QCOMPARE(f.left.events, QStringList());
    }

    void onAChildItIsTheChilds() {
        Fixture f;
        f.pointer.moveTo({20, 10});
        QCOMPARE(f.pointer.cursor(), Qt::PointingHandCursor);
        QCOMPARE(f.pointer.toolTip(), QStringLiteral("a page"));
        QCOMPARE(f.pointer.targetBox(), f.left.geometry());
        QCOMPARE(f.changes.size(), 1);
        f.pointer.moveTo({30, 12});
        QCOMPARE(f.changes.size(), 1);
        f.left.setToolTip(QStringLiteral("another page"));
        QCOMPARE(f.changes.size(), 2);
    }

    void aChildThatHidesIsLeft() {
        Fixture f;
        f.pointer.moveTo({20, 10});
        f.left.hide();
        QCOMPARE(f.left.events, (QStringList{QStringLiteral("enter"), QStringLiteral("leave")}));
        QCOMPARE(f.pointer.cursor(), Qt::ArrowCursor);
    }

    void aPressThatLeavesTheSurfaceIsNoClick() {
        Fixture f;
        f.pointer.moveTo({20, 10});
        f.pointer.press();
        f.pointer.leave();
        f.pointer.moveTo({20, 10});
        f.pointer.release();
        QVERIFY(f.left.events.filter(QStringLiteral("release")).isEmpty());
    }

    void aChildMayBeDestroyedWhileThePointerIsThere() {
        QWidget content;
        content.resize(100, 40);
        content.setAttribute(Qt::WA_DontShowOnScreen);
        auto button = std::make_unique<Button>(QRect(0, 0, 50, 40), &content);
        content.show();
        WidgetPointer pointer(content);
        pointer.moveTo({10, 10});
        pointer.press();
        button.reset();
        pointer.release();
        pointer.moveTo({20, 10});
        QCOMPARE(pointer.cursor(), Qt::ArrowCursor);
    }
};

BRIMLET_TEST(TestWidgetPointer, QApplication)
#include "tst_widgetpointer.moc"
