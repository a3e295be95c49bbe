#include "overlay/overlaycontroller.h"

#include "host/hoststore.h"

#include <optional>

namespace brimlet {
namespace {

std::optional<OverlayPorts>& sharedPorts() {
    static std::optional<OverlayPorts> ports;
    return ports;
}

} // namespace

void OverlayController::setSharedPorts(const OverlayPorts& ports) {
    sharedPorts().emplace(ports);
}

OverlayController& OverlayController::shared() {
    // Left to the end of the process on purpose, like the store it shows.
    static auto* const controller = [] {
        Q_ASSERT_X(sharedPorts(), "OverlayController::shared",
                   "the ports are named before first use");
        return new OverlayController(*sharedPorts());
    }();
    return *controller;
}

void OverlayController::start(const std::shared_ptr<HostStore>& store) {
    m_store = store;
    if (!m_panel) {
        m_panel = std::make_unique<OverlayPanel>(m_ports);
    }
    refresh();
}

void OverlayController::refresh() {
    const auto store = m_store.lock();
    if (store && m_panel) {
        m_panel->render(*store);
    }
}

} // namespace brimlet
