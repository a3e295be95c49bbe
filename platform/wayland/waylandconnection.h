#pragma once

#include "platform/wayland/waylandproxies.h"

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

struct wl_display;

namespace brimlet {

class WaylandOutputs;

/// What the compositor offers of the interfaces in use; null for what it does not.
struct WaylandGlobals final {
    Proxy<wl_compositor> compositor;
    Proxy<wl_subcompositor> subcompositor;
    Proxy<wl_shm> shm;
    Proxy<xdg_wm_base> windows;
    Proxy<zwlr_layer_shell_v1> layerShell;
    Proxy<wl_seat> seat;
    Proxy<wp_viewporter> viewporter;
    Proxy<wp_fractional_scale_manager_v1> fractionalScale;
    Proxy<wp_cursor_shape_manager_v1> cursorShape;
    Proxy<xdg_activation_v1> activation;
    Proxy<zxdg_output_manager_v1> outputManager;
};

/// A connection to the Wayland compositor named by WAYLAND_DISPLAY, beside Qt's own. It is not
/// connected at first. When the compositor ends, the connection is lost until `reconnect()`. Main
/// thread only.
class WaylandConnection final : public QObject {
    Q_OBJECT

public:
    WaylandConnection();
    ~WaylandConnection() override;

    /// Connects unless that was done or has begun already; returns at once. Nothing happens where
    /// WAYLAND_DISPLAY is unset, the library is missing or there is no compositor.
    void reconnect();

    /// Connects and waits until the globals and an output are known, or for this time at most.
    /// False when the globals are not.
    bool connectWithin(std::chrono::milliseconds limit);

    /// Whether the globals and outputs are known.
    [[nodiscard]] bool isReady() const { return m_isReady; }
    /// Of what an overlay needs, the first thing that is missing; empty when everything is there.
    [[nodiscard]] QString missing() const;
    /// The version of zwlr_layer_shell_v1 that the compositor offers; absent when it does not, or
    /// while not ready.
    [[nodiscard]] std::optional<std::uint32_t> layerShellVersion() const;

    [[nodiscard]] const WaylandGlobals& globals() const { return m_globals; }
    [[nodiscard]] WaylandOutputs& outputs() { return *m_outputs; }

Q_SIGNALS:
    /// The globals and outputs are known.
    void ready();
    /// Every object of this connection must be destroyed now.
    void lost();
    /// The seat has come or gone.
    void seatChanged();

private:
    struct Disconnect final {
        void operator()(wl_display* display) const;
    };

    void awaitReply();
    void addGlobal(std::uint32_t name, const char* interface, std::uint32_t version);
    void removeGlobal(std::uint32_t name);
    void readEvents();
    void flush();
    void close();

    std::unique_ptr<wl_display, Disconnect> m_display;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
    Proxy<wl_registry> m_registry;
    Proxy<wl_callback> m_reply;
    WaylandGlobals m_globals;
    std::unique_ptr<WaylandOutputs> m_outputs;
    std::uint32_t m_layerShellVersion = 0;
    std::uint32_t m_seatName = 0;
    int m_repliesToAwait = 0;
    bool m_isReady = false;
};

} // namespace brimlet
