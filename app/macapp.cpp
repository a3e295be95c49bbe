#include "app/macapp.h"

#include "creative/continuouspaths.h"
#include "overlay/notchpill.h"
#include "overlay/pilltexts.h"
#include "platform/mac/appkitpanels.h"
#include "platform/mac/macmenuwindow.h"
#include "platform/mac/macscreens.h"
#include "platform/mac/macsecretstore.h"
#include "platform/mac/macstatusitem.h"
#include "platform/mac/reopening.h"
#include "platform/mac/rules/macoverlaywindow.h"
#include "platform/mac/rules/selftest.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <utility>

namespace brimlet {
namespace {

const AppKitPanels kPanels;

QString toolTipAt(const QWidget& overlay, QPoint where) {
    const auto* const pill = qobject_cast<const NotchPill*>(overlay.childAt(where));
    return pill == nullptr ? QString() : shortToolTip(pill->destination());
}

} // namespace

QString lockFile(const Bundle& bundle, const CachesFolder& cachesFolder) {
    // Without a caches folder no file can be made, and every copy runs.
    return cachesFolder.path().value_or(QString()) + u'/' + bundle.identifier() +
           QStringLiteral(".lock");
}

void prepareMacApplication() {
    // Otherwise Qt activates the program on launch, in front of what the user is doing.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
    QApplication::setStyle(QStringLiteral("Fusion"));
}

int runSelfTest() {
    const MacScreens screens;
    const MacStatusItem statusItem;
    MacSecretStore secrets;
    MacOverlayWindow overlay(kPanels, std::make_unique<QWidget>(),
                             [](QPoint /*where*/) { return QString(); });
    const auto settle = [] {
        QEventLoop wait;
        QTimer::singleShot(std::chrono::milliseconds(500), &wait, &QEventLoop::quit);
        wait.exec();
    };
    SelfTestFacts facts;
    facts.clicks = tryClicks(overlay, screens, settle);
    facts.panel = overlay.facts();
    facts.clickPanels = overlay.clickFacts();
    facts.statusItem = statusItem.place();
    facts.keepsSecrets = keepsSecrets(secrets);
    const SelfTest result = selfTest(facts, screens);
    std::fputs(result.report.toUtf8().constData(), stdout);
    return result.isPassed ? 0 : 1;
}

std::unique_ptr<OverlayWindow> makeMacOverlayWindow(std::unique_ptr<QWidget> content) {
    const auto* const overlay = content.get();
    return std::make_unique<MacOverlayWindow>(kPanels, std::move(content), [overlay](QPoint where) {
        return toolTipAt(*overlay, where);
    });
}

std::unique_ptr<MenuWindow> makeMacMenuWindow(std::unique_ptr<QWidget> content,
                                              const ReduceMotion& reduceMotion) {
    return std::make_unique<MacMenuWindow>(std::move(content), reduceMotion, roundedPath);
}

void openWhenReopened(BrimletApp& app) {
    onReopened([&app] { app.handle(InstanceRequest::Open); });
}

} // namespace brimlet
