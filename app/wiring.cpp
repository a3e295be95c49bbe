#include "app/wiring.h"

#include "creative/creativeimagecache.h"
#include "menu/hostmenuview.h"
#include "menu/menuscroll.h"
#include "overlay/overlayview.h"
#include "platform/qt/instancelock.h"
#include "platform/qt/unixsignals.h"
#include "platform/sharedports.h"

#include <QApplication>

namespace brimlet {
namespace {

OverlayWindowFactory overlayWindowFactory(const NativeOverlayWindowFactory& makeWindow,
                                          const CreativeEnvironment& environment) {
    return [makeWindow, environment](OverlayRuntime& runtime) {
        auto content = std::make_unique<OverlayView>(runtime, environment);
        auto* const view = content.get();
        auto window = makeWindow(std::move(content));
        // The window owns the view, so it is there whenever the view emits.
        QObject::connect(view, &OverlayView::regionsChanged, [view, target = window.get()] {
            target->setRegions(view->clickable(), view->painted());
        });
        QObject::connect(
            view, &OverlayView::contentChanged,
            [target = window.get()](const QRegion& points) { target->updateContent(points); });
        QObject::connect(view, &OverlayView::stepped,
                         [target = window.get()](std::span<const TextStrip> texts) {
                             target->showTexts(texts);
                         });
        return window;
    };
}

MenuWindowFactory menuWindowFactory(const NativeMenuWindowFactory& makeWindow,
                                    const CreativeEnvironment& environment) {
    return [makeWindow, environment](const std::shared_ptr<HostStore>& store) {
        auto menu = std::make_unique<HostMenuView>(store, environment);
        QObject::connect(menu.get(), &HostMenuView::quitRequested, qApp, &QCoreApplication::quit);
        return makeWindow(std::make_unique<MenuScroll>(menu.release()), environment.reduceMotion);
    };
}

} // namespace

void configureApplication() {
    QCoreApplication::setApplicationName(QStringLiteral("Brimlet"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMLET_VERSION));
    // The overlay is hidden often; that must not end the program.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    quitOnTerminationSignals();
}

BrimletApp makeApp(const SystemPorts& system, StartReason reason) {
    SharedPorts<ImagePorts>::set({system.http, system.pictures, system.cachesFolder});
    const CreativeEnvironment environment{CreativeImageCache::shared(), system.clock,
                                          system.reduceMotion};
    return {
        {system.screens, system.workspace, system.secrets, system.http, system.bundle,
         system.clock},
        {system.screens, system.workspace,
         overlayWindowFactory(system.makeOverlayWindow, environment)},
        {system.statusItem, system.clock, menuWindowFactory(system.makeMenuWindow, environment)},
        reason};
}

void handleRequests(const InstanceLock& instance, BrimletApp& app) {
    QObject::connect(&instance, &InstanceLock::requested, qApp,
                     [&app](InstanceRequest request) { app.handle(request); });
}

} // namespace brimlet
