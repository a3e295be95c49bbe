// In place of Qt's plugin for Macs, which makes a native view for each widget and has AppKit and Qt
// handle their events in one loop. Here Qt is offscreen, and the views are GNUstep's.
#import "tests/mac/gnustep/shims.h"

#include <QCoreApplication>
#include <QTimer>
#include <QWidget>

#include <map>

// As Qt's view: its origin is in the upper left, and it takes the keyboard.
@interface BrimletWidgetView : NSView
@end

@implementation BrimletWidgetView

- (BOOL)isFlipped {
    return YES;
}

- (BOOL)acceptsFirstResponder {
    return YES;
}

@end

static void startAppKit() {
    [[NSAutoreleasePool alloc] init]; // of what tests make
    // There is no window manager, whose decorations GNUstep would ask for.
    [NSUserDefaults.standardUserDefaults
        registerDefaults:[NSDictionary dictionaryWithObject:@"NO"
                                                     forKey:@"GSX11HandlesWindowDecorations"]];
    [NSApplication sharedApplication];
    auto* const timer = new QTimer(QCoreApplication::instance());
    timer->callOnTimeout([] { brimlet::shims::handleEvents(); });
    timer->start(5);
}
Q_COREAPP_STARTUP_FUNCTION(startAppKit)

extern "C" WId __real__ZNK7QWidget5winIdEv(const QWidget* widget);

// The linker has calls of QWidget::winId() come here. As in Qt, the view is in a window of its own.
extern "C" WId __wrap__ZNK7QWidget5winIdEv(const QWidget* widget) {
    static std::map<const QWidget*, NSView*> views;
    NSView*& view = views[widget];
    if (view == nil) {
        static_cast<void>(__real__ZNK7QWidget5winIdEv(widget));
        const NSRect frame = NSMakeRect(0, 0, widget->width(), widget->height());
        view = [[BrimletWidgetView alloc] initWithFrame:frame];
        NSWindow* const window = [[NSWindow alloc] initWithContentRect:frame
                                                             styleMask:NSBorderlessWindowMask
                                                               backing:NSBackingStoreBuffered
                                                                 defer:YES];
        [window setContentView:view];
        QObject::connect(widget, &QObject::destroyed, [widget] { views.erase(widget); });
    }
    return reinterpret_cast<WId>(view);
}
