#pragma once

#include <memory>

struct wl_buffer;
struct wl_callback;
struct wl_compositor;
struct wl_output;
struct wl_pointer;
struct wl_region;
struct wl_registry;
struct wl_seat;
struct wl_shm;
struct wl_shm_pool;
struct wl_subcompositor;
struct wl_subsurface;
struct wl_surface;
struct wl_touch;
struct wp_cursor_shape_device_v1;
struct wp_cursor_shape_manager_v1;
struct wp_fractional_scale_manager_v1;
struct wp_fractional_scale_v1;
struct wp_viewport;
struct wp_viewporter;
struct xdg_activation_token_v1;
struct xdg_activation_v1;
struct xdg_popup;
struct xdg_positioner;
struct xdg_surface;
struct xdg_wm_base;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace brimlet {

/// Destroys the object on both sides, by the request of its kind.
struct DestroyProxy final {
    void operator()(wl_buffer* proxy) const;
    void operator()(wl_callback* proxy) const;
    void operator()(wl_compositor* proxy) const;
    void operator()(wl_output* proxy) const;
    void operator()(wl_pointer* proxy) const;
    void operator()(wl_region* proxy) const;
    void operator()(wl_registry* proxy) const;
    void operator()(wl_seat* proxy) const;
    void operator()(wl_shm* proxy) const;
    void operator()(wl_shm_pool* proxy) const;
    void operator()(wl_subcompositor* proxy) const;
    void operator()(wl_subsurface* proxy) const;
    void operator()(wl_surface* proxy) const;
    void operator()(wl_touch* proxy) const;
    void operator()(wp_cursor_shape_device_v1* proxy) const;
    void operator()(wp_cursor_shape_manager_v1* proxy) const;
    void operator()(wp_fractional_scale_manager_v1* proxy) const;
    void operator()(wp_fractional_scale_v1* proxy) const;
    void operator()(wp_viewport* proxy) const;
    void operator()(wp_viewporter* proxy) const;
    void operator()(xdg_activation_token_v1* proxy) const;
    void operator()(xdg_activation_v1* proxy) const;
    void operator()(xdg_popup* proxy) const;
    void operator()(xdg_positioner* proxy) const;
    void operator()(xdg_surface* proxy) const;
    void operator()(xdg_wm_base* proxy) const;
    void operator()(zwlr_layer_shell_v1* proxy) const;
    void operator()(zwlr_layer_surface_v1* proxy) const;
    void operator()(zxdg_output_manager_v1* proxy) const;
    void operator()(zxdg_output_v1* proxy) const;
};

/// Owns a protocol object. It must end before the connection does.
template <typename Type>
using Proxy = std::unique_ptr<Type, DestroyProxy>;

} // namespace brimlet
