#include "platform/wayland/waylandlibrary.h"

// The functions are looked up by their own names.
#undef wl_proxy_add_listener
#undef wl_proxy_destroy
#undef wl_proxy_get_user_data
#undef wl_proxy_get_version
#undef wl_proxy_marshal_flags
#undef wl_proxy_set_user_data

#include <dlfcn.h>

namespace brimlet {
namespace {

bool load(WaylandLibrary& functions) {
    void* const library = ::dlopen("libwayland-client.so.0", RTLD_NOW);
    if (library == nullptr) {
        return false;
    }
    bool isComplete = true;
    const auto find = [&](auto& function, const char* name) {
        function =
            reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
        isComplete = isComplete && function != nullptr;
    };
    find(functions.connectToFd, "wl_display_connect_to_fd");
    find(functions.createQueue, "wl_display_create_queue");
    find(functions.disconnect, "wl_display_disconnect");
    find(functions.dispatchPending, "wl_display_dispatch_pending");
    find(functions.dispatchQueuePending, "wl_display_dispatch_queue_pending");
    find(functions.flush, "wl_display_flush");
    find(functions.prepareRead, "wl_display_prepare_read");
    find(functions.readEvents, "wl_display_read_events");
    find(functions.destroyQueue, "wl_event_queue_destroy");
    find(functions.addListener, "wl_proxy_add_listener");
    find(functions.destroy, "wl_proxy_destroy");
    find(functions.getUserData, "wl_proxy_get_user_data");
    find(functions.getVersion, "wl_proxy_get_version");
    find(functions.marshalFlags, "wl_proxy_marshal_flags");
    find(functions.setQueue, "wl_proxy_set_queue");
    find(functions.setUserData, "wl_proxy_set_user_data");
    return isComplete;
}

} // namespace

bool loadWaylandLibrary() {
    static const bool isLoaded = load(waylandLibrary);
    return isLoaded;
}

} // namespace brimlet
