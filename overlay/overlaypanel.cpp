#include "overlay/overlaypanel.h"

#include "host/hoststore.h"
#include "host/notch.h"

namespace brimlet {

OverlayPanel::OverlayPanel(const OverlayPorts& ports)
    : m_screens(ports.screens)
    , m_runtime(std::make_unique<OverlayRuntime>(ports.workspace))
    , m_window(ports.makeWindow(*m_runtime)) {
    m_window->setIgnoresMouseEvents(true);
    positionAtNotch();
}

void OverlayPanel::positionAtNotch() {
    const auto builtIn = builtInScreen(m_screens);
    if (!builtIn) {
        return;
    }
    m_frame = panelFrame(builtIn->frame, notchMetrics(builtIn));
    m_window->setFrame(*m_frame);
}

void OverlayPanel::render(const HostStore& store) {
    if (!store.hasNotch()) {
        m_window->orderOut();
        m_isShown = false;
        return;
    }
    const NotchMetrics notch = notchMetrics(builtInScreen(m_screens));
    m_runtime->apply(store, notch.width, notch.height);
    positionAtNotch();
    m_isShown = store.adsVisible();
    if (m_isShown) {
        m_window->orderFrontRegardless();
        m_window->setIgnoresMouseEvents(false);
    } else {
        m_window->setIgnoresMouseEvents(true);
        m_window->orderOut();
    }
}

} // namespace brimlet
