// libwayland-client as it was before 1.20, with the names only: of the functions that the program
// looks up, wl_proxy_marshal_flags is missing.

extern "C" {
void wl_display_cancel_read(void) {}
void wl_display_connect_to_fd(void) {}
void wl_display_disconnect(void) {}
void wl_display_dispatch_pending(void) {}
void wl_display_flush(void) {}
void wl_display_get_error(void) {}
void wl_display_prepare_read(void) {}
void wl_display_read_events(void) {}
void wl_proxy_add_listener(void) {}
void wl_proxy_destroy(void) {}
void wl_proxy_get_user_data(void) {}
void wl_proxy_get_version(void) {}
void wl_proxy_set_user_data(void) {}
}
