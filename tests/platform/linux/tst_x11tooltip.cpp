#include "platform/linux/x11overlaywindow.h"
#include "platform/linux/x11watch.h"
#include "platform/qt/desktopscreens.h"
#include "platform/qt/tooltiplabel.h"
#include "tests/support/emulated.h"
#include "tests/support/pointer.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QWindow>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
constexpr QRect kCapsule(100, 8, 108, 24); // in the window
constexpr QRect kWindow(542, 0, 428, 40);

/// Like a capsule, leaves its tooltip to the window.
class Capsule final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::ToolTip) {
            event->ignore();
            return false;
        }
        return QWidget::event(event);
    }
    void mousePressEvent(QMouseEvent* event) override { event->accept(); }
};

} // namespace

/// The tooltip of a widget in the overlay's window, under a real pointer.
class TestX11ToolTip final : public QObject {
    Q_OBJECT

    XServer m_x;
    int m_hovers = 0;

    /// The overlay's window with one capsule.
    struct Overlay final {
        Overlay() {
            auto content = std::make_unique<QWidget>();
            capsule = new Capsule(content.get());
            capsule->setGeometry(kCapsule);
            capsule->setToolTip(QStringLiteral("left.test"));
            window = std::make_unique<X11OverlayWindow>(std::move(content), primaryGeometry);
            window->setFrame({542, 982 - 40, 428, 40});
            QPainterPath clickable;
            clickable.addRect(kCapsule);
            window->setRegions(clickable, clickable);
            window->setIgnoresMouseEvents(false);
            window->orderFrontRegardless();
        }
        std::unique_ptr<X11OverlayWindow> window;
        QWidget* capsule;
    };
    /// Moves the pointer to the capsule, each time to another place: Qt drops a move to where the
    /// last one was.
    void hover(const Overlay& overlay) {
        QVERIFY(QTest::qWaitForWindowExposed(overlay.window.get()));
        moveTo(kCapsule.translated(kWindow.topLeft()).center() + QPoint(++m_hovers, 0));
    }
    /// The tooltip that is shown; null without one.
    [[nodiscard]] static ToolTipLabel* shown() {
        for (QWidget* const each : QApplication::topLevelWidgets()) {
            if (auto* const label = qobject_cast<ToolTipLabel*>(each);
                label != nullptr && label->isVisible()) {
                return label;
            }
        }
        return nullptr;
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }
    void init() { moveTo(QPoint(700, 600)); }

    void itIsBelowTheBoxAndOnTheScreen_data() {
        QTest::addColumn<QRect>("box");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QPoint>("place");
        const QSize size(80, 24);
        QTest::newRow("centred") << QRect(600, 0, 108, 24) << size << QPoint(614, 30);
        QTest::newRow("at the left edge") << QRect(0, 0, 36, 24) << size << QPoint(6, 30);
        QTest::newRow("at the right edge") << QRect(1476, 0, 36, 24) << size << QPoint(1426, 30);
        QTest::newRow("wider than the screen")
            << QRect(600, 0, 108, 24) << QSize(2000, 24) << QPoint(6, 30);
    }
    void itIsBelowTheBoxAndOnTheScreen() {
        QFETCH(QRect, box);
        QFETCH(QSize, size);
        QTEST(ToolTipLabel::placeBelow(box, size, QRect(0, 0, 1512, 982)), "place");
    }

    void hoveringShowsItBelowTheCapsule() {
        const Overlay overlay;
        const QRect capsule = kCapsule.translated(kWindow.topLeft());
        hover(overlay);
        QTRY_VERIFY_WITH_TIMEOUT(shown() != nullptr, kPatience);
        QCOMPARE(shown()->text(), QStringLiteral("left.test"));
        const QRect place = shown()->geometry();
        QCOMPARE(place.top(), capsule.bottom() + 1 + 6);
        QVERIFY(qAbs(place.center().x() - capsule.center().x()) <= 1);
        // Dark, with a hairline inside its edge, and white letters.
        QVERIFY(QTest::qWaitForWindowExposed(shown()));
        const QPoint inside = place.topLeft() + QPoint(4, place.height() / 2);
        QTRY_VERIFY_WITH_TIMEOUT(m_x.pixel(inside).red() < 20, kPatience);
        QVERIFY(m_x.pixel({place.x(), place.center().y()}).red() > m_x.pixel(inside).red() + 30);
        const QImage picture = m_x.picture(place);
        int brightest = 0;
        for (int x = 0; x < picture.width(); ++x) {
            brightest = qMax(brightest, qGray(picture.pixel(x, picture.height() / 2)));
        }
        QVERIFY(brightest > 200);
        // It takes no clicks and no keyboard.
        QVERIFY(shown()->windowHandle() != nullptr);
        const auto window = static_cast<xcb_window_t>(shown()->windowHandle()->winId());
        QVERIFY(m_x.isMapped(window));
        QVERIFY(m_x.inputShape(window).empty());
        moveTo(QPoint(700, 600));
        QTRY_VERIFY_WITH_TIMEOUT(shown() == nullptr, kPatience);
    }

    void itGoes_data() {
        QTest::addColumn<int>("reason");
        QTest::newRow("with a press") << 0;
        QTest::newRow("with the window") << 1;
        QTest::newRow("with its text") << 2;
        QTest::newRow("with the capsule") << 3;
    }
    void itGoes() {
        QFETCH(const int, reason);
        Overlay overlay;
        hover(overlay);
        QTRY_VERIFY_WITH_TIMEOUT(shown() != nullptr, kPatience);
        switch (reason) {
        case 0:
            xdotool({QStringLiteral("mousedown"), QStringLiteral("1")});
            break;
        case 1:
            overlay.window->orderOut();
            break;
        case 2:
            overlay.capsule->setToolTip({});
            break;
        default:
            delete overlay.capsule;
        }
        QTRY_VERIFY_WITH_TIMEOUT(shown() == nullptr, kPatience);
        xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
    }

    void aMoveOnTheCapsuleLeavesIt() {
        const Overlay overlay;
        hover(overlay);
        QTRY_VERIFY_WITH_TIMEOUT(shown() != nullptr, kPatience);
        const QPointer<ToolTipLabel> first = shown();
        QHelpEvent again(QEvent::ToolTip, kCapsule.center(), {});
        QApplication::sendEvent(overlay.window.get(), &again);
        QVERIFY(again.isAccepted());
        QCOMPARE(shown(), first.data());
        QVERIFY(first != nullptr);
    }

    void withoutATextThereIsNone() {
        const Overlay overlay;
        QWidget plain;
        X11ToolTip toolTip;
        toolTip.showFor(plain);
        QVERIFY(shown() == nullptr);
        plain.setToolTip(QStringLiteral("a page"));
        toolTip.showFor(plain);
        QVERIFY(shown() != nullptr);
        toolTip.showFor(*overlay.capsule);
        QCOMPARE(shown()->text(), QStringLiteral("left.test")); // one at a time
    }
};

BRIMLET_TEST(TestX11ToolTip, QApplication)
#include "tst_x11tooltip.moc"
