#include "app/macapp.h"

#include "app/brimletapp.h"
#include "menu/hostmenuview.h"
#include "menu/menuscroll.h"
#include "overlay/notchpill.h"
#include "overlay/overlayview.h"
#include "overlay/pilltexts.h"
#include "platform/mac/macmenuwindow.h"
#include "platform/mac/macoverlaywindow.h"
#include "platform/mac/macscreens.h"
#include "platform/mac/reopening.h"
#include "platform/mac/rules/selftest.h"
#include "platform/qt/instancelock.h"
#include "platform/qt/unixsignals.h"

#include <QApplication>

#include <cstdio>
#include <memory>

namespace brimlet {
namespace {

QString toolTipAt(const OverlayView& view, QPoint where) {
    const auto* const pill = qobject_cast<const NotchPill*>(view.childAt(where));
    return pill == nullptr ? QString() : shortToolTip(pill->destination());
}

} // namespace

QString lockFile(const Bundle& bundle, const CachesFolder& cachesFolder) {
    // Without a folder no file can be made, and every copy runs.
    return cachesFolder.path().value_or(QString()) + u'/' + bundle.identifier() +
           QStringLiteral(".lock");
}

void prepareMacApplication() {
    // Else Qt brings the program to the front once it is launched, over whatever the user does.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
    QApplication::setStyle(QStringLiteral("Fusion"));
}

void configureMacApplication() {
    QCoreApplication::setApplicationName(QStringLiteral("brimlet"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMLET_VERSION));
    // Hiding the overlay is everyday life, not the end.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    quitOnTerminationSignals();
}

int runSelfTest() {
    const MacScreens screens;
    const MacOverlayWindow overlay(std::make_unique<QWidget>(),
                                   [](QPoint /*where*/) { return QString(); });
    const SelfTest result = selfTest(overlay.facts(), screens);
    std::fputs(result.report.toUtf8().constData(), stdout);
    return result.isPassed ? 0 : 1;
}

OverlayWindowFactory overlayWindowFactory(const CreativeEnvironment& environment) {
    return [environment](OverlayRuntime& runtime) {
        auto content = std::make_unique<OverlayView>(runtime, environment);
        const auto* const view = content.get();
        auto window = std::make_unique<MacOverlayWindow>(
            std::move(content), [view](QPoint where) { return toolTipAt(*view, where); });
        // Both go together: the window owns the view.
        QObject::connect(view, &OverlayView::regionsChanged, [view, target = window.get()] {
            target->setRegions(view->clickable(), view->painted());
        });
        return window;
    };
}

MenuWindowFactory menuWindowFactory(const CreativeEnvironment& environment) {
    return [environment](const std::shared_ptr<HostStore>& store) {
        auto menu = std::make_unique<HostMenuView>(store, environment);
        QObject::connect(menu.get(), &HostMenuView::quitRequested, qApp, &QCoreApplication::quit);
        return std::make_unique<MacMenuWindow>(std::make_unique<MenuScroll>(menu.release()));
    };
}

void obeyRequests(const InstanceLock& instance, BrimletApp& app) {
    QObject::connect(&instance, &InstanceLock::requested, qApp,
                     [&app](InstanceRequest request) { app.obey(request); });
    onReopened([&app] { app.obey(InstanceRequest::Open); });
}

} // namespace brimlet
