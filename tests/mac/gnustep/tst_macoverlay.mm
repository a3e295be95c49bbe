#import "tests/mac/gnustep/shims.h"

#import "platform/mac/appkitpanels.h"
#import "platform/mac/nativepanel.h"
#include "platform/mac/rules/macoverlaywindow.h"
#include "tests/support/pointer.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QPainterPath>
#include <QTest>

using namespace brimlet;

namespace {

/// Notes the mouse events it gets.
class Capsule final : public QWidget {
public:
    explicit Capsule(QWidget* parent, const QRect& geometry)
        : QWidget(parent) {
        setGeometry(geometry);
    }

    QStringList events;

protected:
    bool event(QEvent* event) override {
        static const QMap<QEvent::Type, QString> names{
            {QEvent::Enter, QStringLiteral("enter")},
            {QEvent::Leave, QStringLiteral("leave")},
            {QEvent::MouseButtonPress, QStringLiteral("press")},
            {QEvent::MouseButtonRelease, QStringLiteral("release")}};
        if (names.contains(event->type())) {
            events << names[event->type()];
        }
        return QWidget::event(event);
    }
};

} // namespace

/// The overlay's panels with a real pointer.
class TestMacOverlay final : public QObject {
    Q_OBJECT

    static constexpr Rect kFrame{100, 600, 424, 40};
    const QRect m_left{20, 4, 90, 24};
    const QRect m_right{314, 4, 90, 24};
    const AppKitPanels m_panels;
    QWidget* m_content = nullptr;
    Capsule* m_capsule = nullptr;
    std::optional<MacOverlayWindow> m_window;

    /// A point of the content on the X server's screen, whose y points down.
    [[nodiscard]] static QPoint onScreen(QPoint point, const Rect& frame = kFrame) {
        const NSRect screen = [[NSScreen.screens objectAtIndex:0] frame];
        return QPoint(static_cast<int>(frame.x),
                      static_cast<int>(screen.size.height - frame.y - frame.height)) +
               point;
    }
    void show() {
        m_window->orderFrontRegardless();
        m_window->setIgnoresMouseEvents(false);
    }
    [[nodiscard]] static NSArray* clickPanels() {
        NSMutableArray* const panels = [NSMutableArray array];
        for (NSWindow* window in [NSApp windows]) {
            if ([window isKindOfClass:[BrimletPanel class]] && [window isVisible] &&
                ![window ignoresMouseEvents]) {
                [panels addObject:window];
            }
        }
        return panels;
    }
    /// What the panel over the left capsule says.
    [[nodiscard]] static QString toolTip() {
        return shims::toolTip([[clickPanels() objectAtIndex:0] contentView]);
    }

private Q_SLOTS:
    void init() {
        moveTo({5, 300});
        auto content = std::make_unique<QWidget>();
        m_content = content.get();
        m_capsule = new Capsule(m_content, m_left);
        new Capsule(m_content, m_right);
        m_window.emplace(m_panels, std::move(content),
                         [](QPoint where) { return QStringLiteral("tip at %1").arg(where.x()); });
        m_window->setFrame(kFrame);
        QPainterPath boxes;
        boxes.addRect(m_left);
        boxes.addRect(m_right);
        m_window->setRegions(boxes, boxes);
    }
    void cleanup() { m_window.reset(); }

    void thePanelsHaveTheirProperties() {
        // The levels are numbers of each system's own.
        PanelFacts wanted;
        wanted.level = NSStatusWindowLevel;
        PanelFacts wantedForClicks = kClickPanelFacts;
        wantedForClicks.level = NSStatusWindowLevel;
        for (const bool isShown : {false, true}) {
            if (isShown) {
                show();
            }
            QCOMPARE(panelReport(m_window->facts(), wanted).join(u'\n'),
                     panelReport(wanted, wanted).join(u'\n'));
            QCOMPARE(m_window->clickFacts().size(), 2U);
            for (const PanelFacts& facts : m_window->clickFacts()) {
                QCOMPARE(panelReport(facts, wantedForClicks).join(u'\n'),
                         panelReport(wantedForClicks, wantedForClicks).join(u'\n'));
            }
        }
    }

    void thePaintingPanelHasTheContentsView() {
        NSView* const view = viewOf(*m_content);
        NSWindow* const panel = view.window;
        QVERIFY([panel isKindOfClass:[BrimletPanel class]]);
        QCOMPARE(view.autoresizingMask, NSUInteger(NSViewNotSizable));
        QVERIFY(!panel.isVisible);
        m_window->orderFrontRegardless();
        QVERIFY(panel.isVisible);
        QCOMPARE(rectFrom(panel.frame), kFrame);
        m_window->orderOut();
        QVERIFY(!panel.isVisible);
        m_window->orderFrontRegardless();
        [view retain];
        m_window.reset();
        QVERIFY(!panel.isVisible);
        QVERIFY(view.superview == nil);
    }

    void theHandIsShownWhileThePointerIsInside() {
        show();
        moveTo(onScreen(m_left.center()));
        QTRY_COMPARE(m_capsule->events, QStringList(QStringLiteral("enter")));
        QVERIFY([NSCursor currentCursor] == [NSCursor pointingHandCursor]);
        QCOMPARE(toolTip(), QStringLiteral("tip at %1").arg(m_left.center().x()));

        // Another program may have set its own.
        [[NSCursor arrowCursor] set];
        moveTo(onScreen(m_left.center() + QPoint(5, 0)));
        QTRY_VERIFY([NSCursor currentCursor] == [NSCursor pointingHandCursor]);
        QCOMPARE(m_capsule->events.size(), 1);

        moveTo(onScreen({200, 15}));
        QTRY_COMPARE(m_capsule->events.last(), QStringLiteral("leave"));
        QVERIFY([NSCursor currentCursor] == [NSCursor arrowCursor]);
        QCOMPARE(toolTip(), QString());
    }

    void aPointerAtRestEntersWhatAppears() {
        moveTo(onScreen(m_left.center()));
        shims::handleEvents();
        show();
        QCOMPARE(m_capsule->events, QStringList(QStringLiteral("enter")));
        m_window->orderOut();
        QCOMPARE(m_capsule->events.last(), QStringLiteral("leave"));
        QVERIFY([NSCursor currentCursor] == [NSCursor arrowCursor]);
    }

    void aClickReachesTheCapsule() {
        show();
        click(onScreen(m_left.center()));
        QTRY_COMPARE(m_capsule->events,
                     QStringList({QStringLiteral("enter"), QStringLiteral("press"),
                                  QStringLiteral("release")}));
    }

    void clicksFollowTheFrame() {
        show();
        constexpr Rect kLower{140, 500, 424, 40};
        m_window->setFrame(kLower);
        click(onScreen(m_left.center(), kLower));
        QTRY_VERIFY(m_capsule->events.contains(QStringLiteral("release")));
    }

    void clicksGoWhereThePanelsAre() {
        const auto global = [](QPoint point) {
            return QPointF(kFrame.x + point.x(), kFrame.y + kFrame.height - point.y());
        };
        show();
        QVERIFY(m_window->takesClickAt(global(m_left.center())));
        QVERIFY(m_window->takesClickAt(global(m_right.center())));
        QVERIFY(!m_window->takesClickAt(global({212, 20})));
        m_window->orderOut();
        QVERIFY(!m_window->takesClickAt(global(m_left.center())));
    }

    void noPanelTakesClicksUnlessTheOverlayDoes() {
        QCOMPARE([clickPanels() count], 0UL);
        show();
        QCOMPARE([clickPanels() count], 2UL);
        m_window->setIgnoresMouseEvents(true);
        QCOMPARE([clickPanels() count], 0UL);
        m_window->setIgnoresMouseEvents(false);
        QCOMPARE([clickPanels() count], 2UL);
        m_window.reset();
        QCOMPARE([clickPanels() count], 0UL);
    }

    void thePointerMayBeInsideAtTheEnd() {
        show();
        moveTo(onScreen(m_left.center()));
        QTRY_COMPARE(m_capsule->events, QStringList(QStringLiteral("enter")));
        NSView* const view = [[[clickPanels() objectAtIndex:0] contentView] retain];
        m_window.reset();
        // AppKit may have events under way.
        [view mouseMoved:nil];
        [view mouseDown:nil];
        [view mouseUp:nil];
        QCOMPARE(shims::toolTip(view), QString());
    }
};

BRIMLET_TEST(TestMacOverlay, QApplication)
#include "tst_macoverlay.moc"
