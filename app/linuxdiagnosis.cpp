#include "app/linuxdiagnosis.h"

#include "app/waylanddesktop.h"
#include "platform/linux/sessionlock.h"
#include "platform/linux/traywatch.h"
#include "platform/linux/unresponsivebuses.h"
#include "platform/wayland/waylandoutputs.h"

#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QSysInfo>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include <unistd.h>

namespace brimlet {
namespace {

/// An output and its number of pixels per point.
using ScaledOutput = std::pair<DesktopOutput, double>;

[[nodiscard]] bool isOnX11() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

[[nodiscard]] std::vector<ScaledOutput> x11Outputs() {
    std::vector<ScaledOutput> outputs;
    for (const QScreen* const screen : QGuiApplication::screens()) {
        outputs.push_back({{screen->name(), screen->geometry()}, screen->devicePixelRatio()});
    }
    return outputs;
}

[[nodiscard]] std::vector<ScaledOutput> waylandOutputs(WaylandConnection& connection) {
    std::vector<ScaledOutput> outputs;
    for (const auto& output : connection.outputs().all()) {
        outputs.push_back({{output->connector(), output->geometry()}, output->exactScale()});
    }
    return outputs;
}

[[nodiscard]] QList<DiagnosedScreen> diagnoseScreens(const std::vector<ScaledOutput>& outputs,
                                                     const QString& root) {
    std::vector<DesktopOutput> unscaled;
    unscaled.reserve(outputs.size());
    for (const ScaledOutput& output : outputs) {
        unscaled.push_back(output.first);
    }
    const LinuxScreens adapter([unscaled] { return unscaled; }, root);
    const std::vector<Screen> facts = adapter.list();
    QList<DiagnosedScreen> screens;
    for (std::size_t i = 0; i < facts.size(); ++i) {
        const auto& [output, scale] = outputs[i];
        DiagnosedScreen& added = screens.emplace_back();
        added.connector = output.connector;
        added.geometry = output.geometry.toRect();
        added.scale = scale;
        added.isBuiltIn = adapter.isBuiltIn(facts[i].number.value_or(0));
        if (facts[i].auxiliaryTopLeftArea) {
            added.notch = notchMetrics(facts[i]);
        }
    }
    return screens;
}

void diagnoseDisplay(Diagnosis& facts, const QString& root) {
    WaylandDesktop wayland;
    facts.isWaylandDisplaySet = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    facts.isWaylandConnected = wayland.connection().isReady();
    facts.layerShell = wayland.connection().layerShellVersion();
    facts.isDisplaySet = !qEnvironmentVariableIsEmpty("DISPLAY");
    facts.xServer = x11::server();
    if (isOnX11()) {
        for (const auto& [output, scale] : x11Outputs()) {
            facts.xScreens << output.connector;
        }
    }
    facts.overlay = wayland.choice().reason;
    const bool hasX11Window = isOnX11() && !wayland.choice().isNative;
    facts.screens =
        diagnoseScreens(hasX11Window ? x11Outputs() : waylandOutputs(wayland.connection()), root);
}

void diagnoseSystem(Diagnosis& facts) {
    facts.version = QStringLiteral(BRIMLET_VERSION);
    facts.system = QSysInfo::prettyProductName();
    facts.kernel = QSysInfo::kernelType() + u' ' + QSysInfo::kernelVersion();
    facts.architecture = QSysInfo::currentCpuArchitecture();
    facts.pageSize = ::sysconf(_SC_PAGESIZE);
    facts.qtVersion = QString::fromLatin1(qVersion());
    facts.desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    facts.sessionType = qEnvironmentVariable("XDG_SESSION_TYPE");
}

void diagnoseServices(Diagnosis& facts) {
    const QDBusConnection session = QDBusConnection::sessionBus();
    const QDBusConnection system = QDBusConnection::systemBus();
    facts.notifierHost = callBus(session, notifierHostQuery());
    facts.secretService = secretServiceState();
    facts.suspend = callBus(system, suspendQuery());
    facts.powerSaveMode = callBus(session, powerSaveModeQuery());
    facts.lockedHint = callBus(system, lockedHintQuery());
    facts.screenSaver = callBus(session, screenSaverQuery());
    facts.gnomeScreenSaver = callBus(session, gnomeScreenSaverQuery());
}

} // namespace

Diagnosis diagnose(const QString& root) {
    Diagnosis facts;
    diagnoseSystem(facts);
    diagnoseDisplay(facts, root);
    facts.panels = panelFacts(QDir(root).filePath(QStringLiteral("sys/class/drm")));
    facts.model = readModel(root);
    facts.compatible = readCompatible(root);
    facts.describedPanel = readDescribedPanel(root);
    facts.notchedPanel = notchedPanel(facts.compatible);
    facts.showNotch = readShowNotch(root);
    diagnoseServices(facts);
    return facts;
}

void printDiagnosis(int argc, char* argv[]) {
    disableUnresponsiveBuses();
    // Else Qt would announce the program to the session manager.
    qunsetenv("SESSION_MANAGER");
    std::unique_ptr<QCoreApplication> application;
    if (x11::canConnect()) {
        qputenv("QT_QPA_PLATFORM", "xcb");
        application = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    std::fputs(diagnosisText(diagnose()).toUtf8().constData(), stdout);
    std::fflush(stdout);
    // No destructors are run, because Qt's D-Bus thread might still use the destroyed objects.
    std::quick_exit(0);
}

} // namespace brimlet
