#import "platform/mac/appkitpanels.h"

#import "platform/mac/capsuleview.h"
#import "platform/mac/nativepanel.h"

#import <AppKit/AppKit.h>

namespace brimlet {
namespace {

static_assert(PanelFacts{}.collectionBehavior ==
              (NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorStationary |
               NSWindowCollectionBehaviorIgnoresCycle));
static_assert(PanelFacts{}.styleMask == NSWindowStyleMaskNonactivatingPanel);

class AppKitPanel : public MacPanel {
public:
    explicit AppKitPanel(bool ignoresMouse)
        : m_ignoresMouse(ignoresMouse) {
        m_panel.hasShadow = NO;
        m_panel.collectionBehavior = PanelFacts{}.collectionBehavior;
        m_panel.canHide = NO; // by Cmd-H, should the program be active
        m_panel.ignoresMouseEvents = ignoresMouse;
        m_panel.allowsToolTipsWhenApplicationIsInactive = YES;
    }
    ~AppKitPanel() override { orderOut(); }
    AppKitPanel(const AppKitPanel&) = delete;
    AppKitPanel& operator=(const AppKitPanel&) = delete;

    void setFrame(const Rect& frame) override {
        const NSRect rect = nativeRect(frame);
        if (!NSEqualRects(m_panel.frame, rect)) {
            [m_panel setFrame:rect display:YES];
        }
    }
    void orderFrontRegardless() override {
        [m_panel orderFrontRegardless];
        m_panel.ignoresMouseEvents = m_ignoresMouse; // also before, but only now is there a window
    }
    void orderOut() final { [m_panel orderOut:nil]; }

    [[nodiscard]] PanelFacts facts() const override {
        return {.styleMask = m_panel.styleMask,
                .collectionBehavior = m_panel.collectionBehavior,
                .level = m_panel.level,
                .isFloatingPanel = m_panel.floatingPanel != NO,
                .isOpaque = m_panel.opaque != NO,
                .hasClearBackground = [m_panel.backgroundColor isEqual:NSColor.clearColor] != NO,
                .hasShadow = m_panel.hasShadow != NO,
                .hidesOnDeactivate = m_panel.hidesOnDeactivate != NO,
                .canHide = m_panel.canHide != NO,
                .canBecomeKey = m_panel.canBecomeKeyWindow != NO,
                .canBecomeMain = m_panel.canBecomeMainWindow != NO,
                .ignoresMouseEvents = m_panel.ignoresMouseEvents != NO,
                .allowsToolTipsWhenInactive =
                    m_panel.allowsToolTipsWhenApplicationIsInactive != NO};
    }
    [[nodiscard]] bool takesClickAt(QPointF where) const override {
        return [NSWindow windowNumberAtPoint:NSMakePoint(where.x(), where.y())
                   belowWindowWithWindowNumber:0] == m_panel.windowNumber;
    }

protected:
    BrimletPanel* m_panel = [[BrimletPanel alloc] initTakingKeyboard:NO];

private:
    bool m_ignoresMouse;
};

class PaintingPanel final : public AppKitPanel {
public:
    explicit PaintingPanel(QWidget& content)
        : AppKitPanel(true)
        , m_content(content) {
        putInto(m_panel.contentView, content);
    }
    ~PaintingPanel() override { [viewOf(m_content) removeFromSuperview]; }

private:
    QWidget& m_content;
};

class ClickPanel final : public AppKitPanel {
public:
    explicit ClickPanel(CapsuleMouse& mouse)
        : AppKitPanel(false)
        , m_view([[BrimletCapsuleView alloc] initWithMouse:&mouse]) {
        m_panel.contentView = m_view;
    }
    ~ClickPanel() override { [m_view forgetMouse]; }

private:
    BrimletCapsuleView* m_view;
};

} // namespace

std::unique_ptr<MacPanel> AppKitPanels::paintingPanel(QWidget& content) const {
    return std::make_unique<PaintingPanel>(content);
}

std::unique_ptr<MacPanel> AppKitPanels::clickPanel(CapsuleMouse& mouse) const {
    return std::make_unique<ClickPanel>(mouse);
}

QPointF AppKitPanels::pointerPosition() const {
    const NSPoint point = NSEvent.mouseLocation;
    return {point.x, point.y};
}

void AppKitPanels::showHand(bool isHand) const {
    [(isHand ? NSCursor.pointingHandCursor : NSCursor.arrowCursor) set];
}

} // namespace brimlet
