#include "platform/wayland/waylandconnection.h"

#include "platform/wayland/waylandoutputs.h"
#include "platform/wayland/waylandprotocols.h"
#include "platform/wayland/waylandsocket.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <poll.h>

namespace brimlet {
void WaylandConnection::Disconnect::operator()(wl_display* display) const {
    waylandLibrary.disconnect(display);
}

void WaylandConnection::Disconnect::operator()(wl_event_queue* queue) const {
    waylandLibrary.destroyQueue(queue);
}

WaylandConnection::WaylandConnection(std::chrono::milliseconds longestPostponement)
    : m_longestPostponement(longestPostponement)
    , m_outputs(std::make_unique<WaylandOutputs>()) {}

WaylandConnection::~WaylandConnection() {
    close();
}

void WaylandConnection::reconnect() {
    if (m_display || !qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || !loadWaylandLibrary()) {
        return;
    }
    const int socket = connectToCompositor();
    if (socket < 0) {
        return;
    }
    m_display.reset(waylandLibrary.connectToFd(socket)); // closes the socket when it fails, too
    if (!m_display) {
        return;
    }
    m_pictureEvents.reset(waylandLibrary.createQueue(m_display.get()));
    m_readable = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    m_writable = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
    m_writable->setEnabled(false);
    connect(m_readable.get(), &QSocketNotifier::activated, this, &WaylandConnection::readEvents);
    connect(m_writable.get(), &QSocketNotifier::activated, this, &WaylandConnection::flush);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &WaylandConnection::finishTurn, Qt::UniqueConnection);

    m_registry.reset(wl_display_get_registry(m_display.get()));
    static constexpr wl_registry_listener kRegistry{
        .global =
            [](void* self, wl_registry*, std::uint32_t name, const char* interface,
               std::uint32_t version) {
                static_cast<WaylandConnection*>(self)->addGlobal(name, interface, version);
            },
        .global_remove =
            [](void* self, wl_registry*, std::uint32_t name) {
                static_cast<WaylandConnection*>(self)->removeGlobal(name);
            }};
    wl_registry_add_listener(m_registry.get(), &kRegistry, this);
    // After the first reply the globals are known, after the second one their properties.
    m_repliesToAwait = 2;
    awaitReply();
    flush();
}

void WaylandConnection::awaitReply() {
    m_reply.reset(wl_display_sync(m_display.get()));
    static constexpr wl_callback_listener kReply{
        .done = [](void* self, wl_callback*, std::uint32_t) {
            auto& connection = *static_cast<WaylandConnection*>(self);
            connection.m_reply.reset();
            if (--connection.m_repliesToAwait > 0) {
                connection.m_outputs->requestNames(connection.m_globals.outputManager.get());
                connection.awaitReply();
            } else {
                connection.m_isReady = true;
                Q_EMIT connection.ready();
            }
        }};
    wl_callback_add_listener(m_reply.get(), &kReply, this);
}

bool WaylandConnection::connectWithin(std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    reconnect();
    const auto isComplete = [this] {
        const auto& outputs = m_outputs->all();
        return m_isReady && std::any_of(outputs.begin(), outputs.end(), [](const auto& output) {
                   return !output->geometry().isEmpty();
               });
    };
    while (m_display && !isComplete() && !deadline.hasExpired()) {
        pollfd descriptor{static_cast<int>(m_readable->socket()), POLLIN, 0};
        if (::poll(&descriptor, 1, static_cast<int>(deadline.remainingTime())) > 0) {
            readEvents();
        }
    }
    return m_isReady;
}

void WaylandConnection::addGlobal(std::uint32_t name, const char* interface,
                                  std::uint32_t version) {
    const auto bind = [&]<typename Type>(Proxy<Type>& global, const wl_interface& wanted,
                                         std::uint32_t newest) {
        if (global || std::strcmp(interface, wanted.name) != 0) {
            return false;
        }
        global.reset(static_cast<Type*>(
            wl_registry_bind(m_registry.get(), name, &wanted, std::min(version, newest))));
        return true;
    };
    // What is made by way of these has the same queue.
    const auto bindForPictures = [&]<typename Type>(Proxy<Type>& global, const wl_interface& wanted,
                                                    std::uint32_t newest) {
        if (bind(global, wanted, newest)) {
            waylandLibrary.setQueue(reinterpret_cast<wl_proxy*>(global.get()),
                                    m_pictureEvents.get());
        }
    };
    bindForPictures(m_globals.compositor, wl_compositor_interface, 4);
    bindForPictures(m_globals.shm, wl_shm_interface, 1);
    bind(m_globals.subcompositor, wl_subcompositor_interface, 1);
    bind(m_globals.viewporter, wp_viewporter_interface, 1);
    bind(m_globals.fractionalScale, wp_fractional_scale_manager_v1_interface, 1);
    bind(m_globals.cursorShape, wp_cursor_shape_manager_v1_interface, 1);
    bind(m_globals.activation, xdg_activation_v1_interface, 1);
    bind(m_globals.outputManager, zxdg_output_manager_v1_interface, 3);
    if (bind(m_globals.layerShell, zwlr_layer_shell_v1_interface, 4)) {
        m_layerShellVersion = version;
    }
    if (bind(m_globals.windows, xdg_wm_base_interface, 1)) {
        static constexpr xdg_wm_base_listener kWindows{
            .ping = [](void*, xdg_wm_base* windows, std::uint32_t serial) {
                xdg_wm_base_pong(windows, serial);
            }};
        xdg_wm_base_add_listener(m_globals.windows.get(), &kWindows, nullptr);
    }
    if (bind(m_globals.seat, wl_seat_interface, 5)) {
        m_seatName = name;
        Q_EMIT seatChanged();
    }
    Proxy<wl_output> output;
    if (bind(output, wl_output_interface, 4)) {
        m_outputs->add(name, std::move(output));
        readOnArrival();            // for its properties
        if (m_repliesToAwait < 2) { // else all are asked for with the first reply
            m_outputs->requestNames(m_globals.outputManager.get());
        }
    }
}

void WaylandConnection::removeGlobal(std::uint32_t name) {
    if (m_globals.seat && name == m_seatName) {
        m_globals.seat.reset();
        Q_EMIT seatChanged();
    }
    m_outputs->remove(name);
}

void WaylandConnection::readEvents() {
    while (waylandLibrary.prepareRead(m_display.get()) != 0) {
        if (waylandLibrary.dispatchPending(m_display.get()) < 0) {
            close();
            return;
        }
    }
    if (waylandLibrary.readEvents(m_display.get()) < 0 ||
        waylandLibrary.dispatchQueuePending(m_display.get(), m_pictureEvents.get()) < 0) {
        close();
        return;
    }
    finishTurn();
}

/// Handles what `readPictureEvents()` has left, and sends the requests that are due. May end the
/// connection, so no event's handler may run an event loop.
void WaylandConnection::finishTurn() {
    if (m_display && waylandLibrary.dispatchPending(m_display.get()) < 0) {
        close();
    }
    flush();
}

void WaylandConnection::postponeReading() {
    m_readable->setEnabled(false);
    m_postponed.start(static_cast<int>(m_longestPostponement.count()), this);
}

void WaylandConnection::readPictureEvents() {
    // Others that were read in this turn are handled first.
    if (m_readable->isEnabled() || waylandLibrary.prepareRead(m_display.get()) != 0) {
        return;
    }
    // What fails here fails again at the end of the turn.
    waylandLibrary.readEvents(m_display.get());
    waylandLibrary.dispatchQueuePending(m_display.get(), m_pictureEvents.get());
}

void WaylandConnection::readOnArrival() {
    m_postponed.stop();
    m_readable->setEnabled(true);
}

void WaylandConnection::timerEvent(QTimerEvent* /*event*/) {
    readOnArrival();
}

/// Sends the requests that are due; the rest when the socket takes them.
void WaylandConnection::flush() {
    if (!m_display) {
        return;
    }
    const bool isStuck = waylandLibrary.flush(m_display.get()) < 0;
    if (m_writable->isEnabled() != (isStuck && errno == EAGAIN)) {
        m_writable->setEnabled(!m_writable->isEnabled());
    }
}

/// What has broken the connection is read as an event's error, too, so a failed flush is ignored.
void WaylandConnection::close() {
    if (!m_display) {
        return;
    }
    m_isReady = false;
    Q_EMIT lost();
    m_outputs->clear();
    m_reply.reset();
    m_globals = {};
    m_layerShellVersion = 0;
    m_registry.reset();
    m_pictureEvents.reset();
    m_postponed.stop();
    m_readable.reset();
    m_writable.reset();
    m_display.reset();
}

QString WaylandConnection::missing() const {
    const bool hasSurfaces =
        m_globals.compositor && wl_compositor_get_version(m_globals.compositor.get()) >=
                                    WL_SURFACE_DAMAGE_BUFFER_SINCE_VERSION;
    if (!hasSurfaces || !m_globals.subcompositor || !m_globals.windows) {
        return QStringLiteral("surfaces with popups");
    }
    if (!m_globals.layerShell) {
        return QStringLiteral("zwlr_layer_shell_v1");
    }
    return m_globals.shm ? QString() : QStringLiteral("wl_shm");
}

std::optional<std::uint32_t> WaylandConnection::layerShellVersion() const {
    return m_globals.layerShell ? std::optional(m_layerShellVersion) : std::nullopt;
}

} // namespace brimlet
