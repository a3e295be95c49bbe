#import "platform/mac/macmenuwindow.h"

#import "platform/mac/nativepanel.h"
#import "platform/mac/onnotification.h"

#import <AppKit/AppKit.h>

#include <utility>

namespace brimlet {

struct MacMenuWindow::Native final {
    BrimletPanel* panel = [[BrimletPanel alloc] initTakingKeyboard:YES];
};

MacMenuWindow::MacMenuWindow(std::unique_ptr<QWidget> content, const ReduceMotion& reduceMotion,
                             RoundedPath roundedPath)
    : m_background(
          std::move(content), roundedPath, [this] { dismiss(); }, [this] { fit(); },
          [this] { [m_native->panel invalidateShadow]; })
    , m_reduceMotion(reduceMotion)
    , m_native(std::make_unique<Native>())
    , m_keyboardLoss(onNotification(NSNotificationCenter.defaultCenter,
                                    NSWindowDidResignKeyNotification, m_native->panel,
                                    [this] { close(); })) {
    BrimletPanel* const panel = m_native->panel;
    panel.hasShadow = YES;
    panel.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace |
                               NSWindowCollectionBehaviorFullScreenAuxiliary |
                               NSWindowCollectionBehaviorIgnoresCycle;
    putInto(panel.contentView, m_background);
}

MacMenuWindow::~MacMenuWindow() {
    m_isPresented = false;
    [m_native->panel orderOut:nil];
    [viewOf(m_background) removeFromSuperview];
}

void MacMenuWindow::present(const std::optional<Rect>& item) {
    if (!std::exchange(m_isPresented, true)) {
        m_native->panel.animationBehavior = m_reduceMotion.isOn()
                                                ? NSWindowAnimationBehaviorNone
                                                : NSWindowAnimationBehaviorUtilityWindow;
        m_background.appear(item);
        fit();
    }
    [m_native->panel orderFrontRegardless];
    [m_native->panel makeKeyWindow];
    [m_native->panel makeFirstResponder:viewOf(m_background)];
}

void MacMenuWindow::follow(const Rect& item) {
    m_background.setItem(item);
    fit();
}

void MacMenuWindow::dismiss() {
    close();
    // A program without a Dock icon never owns the menu bar: the previously active one still does.
    // It is not activated in close(), which also runs when the user has just switched programs.
    NSRunningApplication* const other = NSWorkspace.sharedWorkspace.menuBarOwningApplication;
    if (NSApp.active && other != nil) {
        [NSApp yieldActivationToApplication:other];
        [other activateFromApplication:NSRunningApplication.currentApplication options:0];
    }
}

void MacMenuWindow::close() {
    if (!std::exchange(m_isPresented, false)) {
        return;
    }
    [m_native->panel orderOut:nil];
    // Qt treats its view becoming the first responder as a window activation, so the view has to
    // become it anew each time. It is reset only after orderOut:, whose deactivation Qt notices
    // only while its view is the first responder.
    [m_native->panel makeFirstResponder:nil];
    m_background.hide();
    m_dismissals.notify();
}

void MacMenuWindow::fit() {
    if (const auto frame = m_isPresented ? m_background.fit() : std::nullopt) {
        [m_native->panel setFrame:nativeRect(*frame) display:YES];
    }
}

} // namespace brimlet
