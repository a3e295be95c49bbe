#pragma once

#include "platform/wayland/waylandproxies.h"

#include <QBasicTimer>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

struct wl_display;
struct wl_event_queue;

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
    /// Reading is postponed for `longestPostponement` at most.
    explicit WaylandConnection(
        std::chrono::milliseconds longestPostponement = std::chrono::milliseconds(100));
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

    /// Leaves events unread until `readPictureEvents()` or `readOnArrival()`, but not for long:
    /// while text scrolls, what the compositor answers to one step is not needed before the next,
    /// and would wake the program once more. Needs a connection that is not lost.
    void postponeReading();
    /// Reads the events that were postponed, without waiting, and handles those of pictures: frames
    /// that were shown, buffers that were given back. All others, and the connection's loss, are
    /// handled later in this turn of the event loop. Needs a connection that is not lost.
    void readPictureEvents();
    /// Reads events when they arrive, as is usual: for whoever waits for an answer. Needs a
    /// connection that is not lost.
    void readOnArrival();

Q_SIGNALS:
    /// The globals and outputs are known.
    void ready();
    /// Every object of this connection must be destroyed now.
    void lost();
    /// The seat has come or gone.
    void seatChanged();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    struct Disconnect final {
        void operator()(wl_display* display) const;
        void operator()(wl_event_queue* queue) const;
    };

    void awaitReply();
    void addGlobal(std::uint32_t name, const char* interface, std::uint32_t version);
    void removeGlobal(std::uint32_t name);
    void readEvents();
    void finishTurn();
    void flush();
    void close();

    std::unique_ptr<wl_display, Disconnect> m_display;
    /// Of the events of all surfaces and buffers, and of their callbacks.
    std::unique_ptr<wl_event_queue, Disconnect> m_pictureEvents;
    std::unique_ptr<QSocketNotifier> m_readable; ///< Disabled while reading is postponed.
    std::chrono::milliseconds m_longestPostponement;
    QBasicTimer m_postponed;
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
