#pragma once

#include <wayland-client-core.h>

namespace brimlet {

/// The functions of libwayland-client in use. The library is loaded when the program runs, so that
/// the program also starts where it is missing. Null before `loadWaylandLibrary()`.
struct WaylandLibrary final {
    decltype(&wl_display_connect_to_fd) connectToFd;
    decltype(&wl_display_create_queue) createQueue;
    decltype(&wl_display_disconnect) disconnect;
    decltype(&wl_display_dispatch_pending) dispatchPending;
    decltype(&wl_display_dispatch_queue_pending) dispatchQueuePending;
    decltype(&wl_display_flush) flush;
    decltype(&wl_display_prepare_read) prepareRead;
    decltype(&wl_display_read_events) readEvents;
    decltype(&wl_event_queue_destroy) destroyQueue;
    decltype(&wl_proxy_add_listener) addListener;
    decltype(&wl_proxy_destroy) destroy;
    decltype(&wl_proxy_get_user_data) getUserData;
    decltype(&wl_proxy_get_version) getVersion;
    decltype(&wl_proxy_marshal_flags) marshalFlags;
    decltype(&wl_proxy_set_queue) setQueue;
    decltype(&wl_proxy_set_user_data) setUserData;
};
inline WaylandLibrary waylandLibrary{};

/// Loads the library once and keeps it. False where it is missing, or older than 1.20 and so
/// without one of these functions.
[[nodiscard]] bool loadWaylandLibrary();

} // namespace brimlet

// wayland-scanner's headers call the library's functions by their names.
#define wl_proxy_add_listener (brimlet::waylandLibrary.addListener)
#define wl_proxy_destroy (brimlet::waylandLibrary.destroy)
#define wl_proxy_get_user_data (brimlet::waylandLibrary.getUserData)
#define wl_proxy_get_version (brimlet::waylandLibrary.getVersion)
#define wl_proxy_marshal_flags (brimlet::waylandLibrary.marshalFlags)
#define wl_proxy_set_user_data (brimlet::waylandLibrary.setUserData)
