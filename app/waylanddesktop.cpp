#include "app/waylanddesktop.h"

#include "app/displayloss.h"
#include "platform/wayland/waylandlibrary.h"
#include "platform/wayland/waylandoutputs.h"

#include <QGuiApplication>

#include <chrono>
#include <utility>

namespace brimlet {
namespace {

OverlayChoice connectAndChoose(WaylandConnection& connection) {
    OverlayFacts facts;
    facts.hasXServer = QGuiApplication::platformName() == QStringLiteral("xcb");
    facts.isWaylandDisplaySet = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (facts.isWaylandDisplaySet) {
        facts.isLibraryLoaded = loadWaylandLibrary();
        const std::chrono::seconds limit(isStartAfterDisplayLoss() ? 20 : 3);
        facts.isConnected = connection.connectWithin(limit);
        facts.missingInterface = connection.missing();
    }
    return chooseOverlay(facts);
}

std::vector<DesktopOutput> outputsOf(WaylandConnection& connection) {
    std::vector<DesktopOutput> outputs;
    for (const auto& output : connection.outputs().all()) {
        outputs.push_back({output->connector(), output->geometry()});
    }
    return outputs;
}

} // namespace

WaylandDesktop::WaylandDesktop()
    : m_choice(connectAndChoose(m_connection))
    , m_screens([this] { return outputsOf(m_connection); }) {
    QObject::connect(&m_connection.outputs(), &WaylandOutputs::changed, &m_connection,
                     [this] { m_screens.announceChange(); });
}

QRectF WaylandDesktop::primaryGeometry() {
    const auto outputs = outputsOf(m_connection);
    return outputs.empty() ? QRectF() : outputs.front().geometry;
}

std::unique_ptr<WaylandOverlayWindow>
WaylandDesktop::makeOverlayWindow(std::unique_ptr<QWidget> content,
                                  std::function<QRectF()> primaryGeometry) {
    return std::make_unique<WaylandOverlayWindow>(std::move(content), m_connection, m_seat,
                                                  std::move(primaryGeometry));
}

} // namespace brimlet
