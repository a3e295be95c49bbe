#import "platform/mac/macmenuwindow.h"

#import "platform/mac/nativepanel.h"
#import "platform/mac/onnotification.h"

#import <AppKit/AppKit.h>

#include <utility>

namespace brimlet {

struct MacMenuWindow::Native final {
    BrimletPanel* panel = [[BrimletPanel alloc] initTakingKeyboard:YES];
};

MacMenuWindow::MacMenuWindow(std::unique_ptr<QWidget> content)
    : m_ground(
          std::move(content), [this] { dismiss(); }, [this] { fit(); },
          [this] { [m_native->panel invalidateShadow]; })
    , m_native(std::make_unique<Native>())
    , m_keyboardLoss(onNotification(NSNotificationCenter.defaultCenter,
                                    NSWindowDidResignKeyNotification, m_native->panel,
                                    [this] { close(); })) {
    BrimletPanel* const panel = m_native->panel;
    panel.hasShadow = YES;
    panel.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace |
                               NSWindowCollectionBehaviorFullScreenAuxiliary |
                               NSWindowCollectionBehaviorIgnoresCycle;
    putInto(panel.contentView, m_ground);
}

MacMenuWindow::~MacMenuWindow() {
    m_isPresented = false;
    [m_native->panel orderOut:nil];
    [viewOf(m_ground) removeFromSuperview];
}

void MacMenuWindow::present(const std::optional<Rect>& item) {
    if (!std::exchange(m_isPresented, true)) {
        m_ground.appear(item);
        fit();
    }
    [m_native->panel orderFrontRegardless];
    [m_native->panel makeKeyWindow];
    [m_native->panel makeFirstResponder:viewOf(m_ground)];
}

void MacMenuWindow::dismiss() {
    close();
    // A program without a Dock icon has no menus: the bar still shows those of the one before. That
    // is not asked for when the user turned to another program, who has chosen by that.
    if (NSApp.active) {
        [NSWorkspace.sharedWorkspace.menuBarOwningApplication activateWithOptions:0];
    }
}

void MacMenuWindow::close() {
    if (!std::exchange(m_isPresented, false)) {
        return;
    }
    [m_native->panel orderOut:nil];
    // Qt takes being the first responder as the start of a window's activity, each time anew. It
    // hears of the end, by the line above, only while its view is still that.
    [m_native->panel makeFirstResponder:nil];
    m_ground.hide();
    m_dismissals.notify();
}

void MacMenuWindow::fit() {
    if (const auto frame = m_isPresented ? m_ground.fit() : std::nullopt) {
        [m_native->panel setFrame:nativeRect(*frame) display:YES];
    }
}

} // namespace brimlet
