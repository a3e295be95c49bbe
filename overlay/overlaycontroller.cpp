#include "overlay/overlaycontroller.h"

#include "host/hoststore.h"
#include "platform/sharedports.h"

namespace brimlet {

OverlayController& OverlayController::shared() {
    // Never destroyed, like the store it shows.
    static auto* const controller = new OverlayController(SharedPorts<OverlayPorts>::get());
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
