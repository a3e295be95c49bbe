#import "platform/mac/macoverlaywindow.h"

#include "platform/mac/rules/hoverboxes.h"
#include "platform/qt/contentpainting.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/outlineregion.h"

#import "platform/mac/hoverview.h"
#import "platform/mac/nativepanel.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#include <utility>

namespace brimlet {
namespace {

static_assert(PanelFacts{}.collectionBehavior ==
              (NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorStationary |
               NSWindowCollectionBehaviorIgnoresCycle));
static_assert(PanelFacts{}.styleMask == NSWindowStyleMaskNonactivatingPanel);

void showHand(bool isInside) {
    [(isInside ? NSCursor.pointingHandCursor : NSCursor.arrowCursor) set];
}

} // namespace

struct MacOverlayWindow::Native final {
    BrimletPanel* panel = [[BrimletPanel alloc] initTakingKeyboard:NO];
    BrimletHoverView* hoverView = nil;
};

MacOverlayWindow::MacOverlayWindow(std::unique_ptr<QWidget> content,
                                   std::function<QString(QPoint)> toolTipAt)
    : m_content(std::move(content))
    , m_hover(*m_content, showHand)
    , m_native(std::make_unique<Native>()) {
    m_content->setWindowFlags(Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint |
                              Qt::WindowDoesNotAcceptFocus);
    m_content->setAttribute(Qt::WA_TranslucentBackground);

    BrimletPanel* const panel = m_native->panel;
    panel.hasShadow = NO;
    panel.collectionBehavior = PanelFacts{}.collectionBehavior;
    panel.canHide = NO; // by Cmd-H, should the program be active
    panel.ignoresMouseEvents = YES;
    panel.allowsToolTipsWhenApplicationIsInactive = YES;
    m_native->hoverView = [[BrimletHoverView alloc] initWithTracker:&m_hover
                                                           toolTips:std::move(toolTipAt)];
    panel.contentView = m_native->hoverView;
    putInto(m_native->hoverView, *m_content);
}

MacOverlayWindow::~MacOverlayWindow() {
    [m_native->hoverView followBoxes:std::vector<QRect>()];
    [m_native->hoverView forgetTracker]; // AppKit may keep the view for a while
    [m_native->panel orderOut:nil];
    [viewOf(*m_content) removeFromSuperview];
}

void MacOverlayWindow::orderFrontRegardless() {
    // Never QWidget::raise(), which activates the program.
    m_content->show();
    [m_native->panel orderFrontRegardless];
}

void MacOverlayWindow::orderOut() {
    [m_native->panel orderOut:nil];
    [m_native->hoverView updatePointerPosition];
    m_content->hide();
}

void MacOverlayWindow::setFrame(const Rect& frame) {
    // Like the content, whose centre has to be the panel's.
    const Rect whole = inWholePoints(frame);
    const NSRect rect = nativeRect(whole);
    if (!CGRectEqualToRect(m_native->panel.frame, rect)) {
        [m_native->panel setFrame:rect display:YES];
    }
    m_content->setGeometry(0, 0, static_cast<int>(whole.width), static_cast<int>(whole.height));
}

void MacOverlayWindow::setIgnoresMouseEvents(bool ignores) {
    m_native->panel.ignoresMouseEvents = ignores;
    [m_native->hoverView updatePointerPosition];
}

void MacOverlayWindow::setRegions(const QPainterPath& clickable, const QPainterPath& /*painted*/) {
    [m_native->hoverView followBoxes:hoverBoxes(pixelsInside(clickable, 1))];
}

void MacOverlayWindow::updateContent(const QRegion& points) {
    updatePoints(*m_content, points);
}

void MacOverlayWindow::paintStep(const QRegion& points,
                                 const std::function<void(QPainter&)>& paint) {
    paintIntoBackingStore(*m_content, points, paint);
}

PanelFacts MacOverlayWindow::facts() const {
    BrimletPanel* const panel = m_native->panel;
    return {.styleMask = panel.styleMask,
            .collectionBehavior = panel.collectionBehavior,
            .level = panel.level,
            .isFloatingPanel = panel.floatingPanel != NO,
            .isOpaque = panel.opaque != NO,
            .hasClearBackground = [panel.backgroundColor isEqual:NSColor.clearColor] != NO,
            .hasShadow = panel.hasShadow != NO,
            .hidesOnDeactivate = panel.hidesOnDeactivate != NO,
            .canHide = panel.canHide != NO,
            .canBecomeKey = panel.canBecomeKeyWindow != NO,
            .canBecomeMain = panel.canBecomeMainWindow != NO,
            .ignoresMouseEvents = panel.ignoresMouseEvents != NO,
            .allowsToolTipsWhenInactive = panel.allowsToolTipsWhenApplicationIsInactive != NO};
}

} // namespace brimlet
