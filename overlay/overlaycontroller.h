#pragma once

#include "overlay/overlaypanel.h"

#include <memory>

namespace brimlet {

/// Owns the one overlay panel. Holds the store weakly. Main thread only.
class OverlayController final {
public:
    explicit OverlayController(OverlayPorts ports)
        : m_ports(std::move(ports)) {}

    /// The process's controller, created on first use with `SharedPorts` and kept until the
    /// process ends.
    [[nodiscard]] static OverlayController& shared();

    /// Remembers the store, creates the panel if there is none, and renders.
    void start(const std::shared_ptr<HostStore>& store);

    /// Renders the remembered store again; nothing while there is no store or no panel.
    void refresh();

    /// Null before the first start.
    [[nodiscard]] const OverlayPanel* panel() const { return m_panel.get(); }

private:
    OverlayPorts m_ports;
    std::unique_ptr<OverlayPanel> m_panel;
    std::weak_ptr<HostStore> m_store;
};

} // namespace brimlet
