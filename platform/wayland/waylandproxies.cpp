#include "platform/wayland/waylandproxies.h"

#include "platform/wayland/waylandprotocols.h"

namespace brimlet {

void DestroyProxy::operator()(wl_buffer* proxy) const {
    wl_buffer_destroy(proxy);
}
void DestroyProxy::operator()(wl_callback* proxy) const {
    wl_callback_destroy(proxy);
}
void DestroyProxy::operator()(wl_compositor* proxy) const {
    wl_compositor_destroy(proxy);
}
void DestroyProxy::operator()(wl_output* proxy) const {
    if (wl_output_get_version(proxy) >= WL_OUTPUT_RELEASE_SINCE_VERSION) {
        wl_output_release(proxy);
    } else {
        wl_output_destroy(proxy);
    }
}
void DestroyProxy::operator()(wl_pointer* proxy) const {
    if (wl_pointer_get_version(proxy) >= WL_POINTER_RELEASE_SINCE_VERSION) {
        wl_pointer_release(proxy);
    } else {
        wl_pointer_destroy(proxy);
    }
}
void DestroyProxy::operator()(wl_region* proxy) const {
    wl_region_destroy(proxy);
}
void DestroyProxy::operator()(wl_registry* proxy) const {
    wl_registry_destroy(proxy);
}
void DestroyProxy::operator()(wl_seat* proxy) const {
    if (wl_seat_get_version(proxy) >= WL_SEAT_RELEASE_SINCE_VERSION) {
        wl_seat_release(proxy);
    } else {
        wl_seat_destroy(proxy);
    }
}
void DestroyProxy::operator()(wl_shm* proxy) const {
    wl_shm_destroy(proxy);
}
void DestroyProxy::operator()(wl_shm_pool* proxy) const {
    wl_shm_pool_destroy(proxy);
}
void DestroyProxy::operator()(wl_subcompositor* proxy) const {
    wl_subcompositor_destroy(proxy);
}
void DestroyProxy::operator()(wl_subsurface* proxy) const {
    wl_subsurface_destroy(proxy);
}
void DestroyProxy::operator()(wl_surface* proxy) const {
    wl_surface_destroy(proxy);
}
void DestroyProxy::operator()(wl_touch* proxy) const {
    if (wl_touch_get_version(proxy) >= WL_TOUCH_RELEASE_SINCE_VERSION) {
        wl_touch_release(proxy);
    } else {
        wl_touch_destroy(proxy);
    }
}
void DestroyProxy::operator()(wp_cursor_shape_device_v1* proxy) const {
    wp_cursor_shape_device_v1_destroy(proxy);
}
void DestroyProxy::operator()(wp_cursor_shape_manager_v1* proxy) const {
    wp_cursor_shape_manager_v1_destroy(proxy);
}
void DestroyProxy::operator()(wp_fractional_scale_manager_v1* proxy) const {
    wp_fractional_scale_manager_v1_destroy(proxy);
}
void DestroyProxy::operator()(wp_fractional_scale_v1* proxy) const {
    wp_fractional_scale_v1_destroy(proxy);
}
void DestroyProxy::operator()(wp_viewport* proxy) const {
    wp_viewport_destroy(proxy);
}
void DestroyProxy::operator()(wp_viewporter* proxy) const {
    wp_viewporter_destroy(proxy);
}
void DestroyProxy::operator()(xdg_activation_token_v1* proxy) const {
    xdg_activation_token_v1_destroy(proxy);
}
void DestroyProxy::operator()(xdg_activation_v1* proxy) const {
    xdg_activation_v1_destroy(proxy);
}
void DestroyProxy::operator()(xdg_popup* proxy) const {
    xdg_popup_destroy(proxy);
}
void DestroyProxy::operator()(xdg_positioner* proxy) const {
    xdg_positioner_destroy(proxy);
}
void DestroyProxy::operator()(xdg_surface* proxy) const {
    xdg_surface_destroy(proxy);
}
void DestroyProxy::operator()(xdg_wm_base* proxy) const {
    xdg_wm_base_destroy(proxy);
}
void DestroyProxy::operator()(zwlr_layer_shell_v1* proxy) const {
    if (zwlr_layer_shell_v1_get_version(proxy) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION) {
        zwlr_layer_shell_v1_destroy(proxy);
    } else {
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(proxy));
    }
}
void DestroyProxy::operator()(zwlr_layer_surface_v1* proxy) const {
    zwlr_layer_surface_v1_destroy(proxy);
}
void DestroyProxy::operator()(zxdg_output_manager_v1* proxy) const {
    zxdg_output_manager_v1_destroy(proxy);
}
void DestroyProxy::operator()(zxdg_output_v1* proxy) const {
    zxdg_output_v1_destroy(proxy);
}

} // namespace brimlet
