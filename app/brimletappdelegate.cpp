#include "app/brimletappdelegate.h"

#include "host/hoststore.h"
#include "overlay/overlaycontroller.h"

namespace brimlet {
namespace {

/// Overlay, then observers, then timers: the first requests are sent after the overlay exists.
void startRuntime() {
    const auto& store = HostStore::shared();
    if (store->runtimeStarted) {
        return;
    }
    store->runtimeStarted = true;
    OverlayController::shared().start(store);
    store->watchScreens();
    store->startTimers();
}

} // namespace

void BrimletAppDelegate::applicationDidFinishLaunching() {
    QMetaObject::invokeMethod(this, startRuntime, Qt::QueuedConnection);
}

} // namespace brimlet
