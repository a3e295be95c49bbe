#pragma once

#include <QGuiApplication>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace brimlet {

struct FreeXcbReply {
    void operator()(void* reply) const { std::free(reply); } // NOLINT(*-no-malloc)
};
/// Owns a reply or an event that libxcb allocated; null when there is none.
template <typename Reply>
using XcbOwned = std::unique_ptr<Reply, FreeXcbReply>;

struct DisconnectXcb {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
/// A connection of its own, which is never null, but may have failed.
using XcbConnection = std::unique_ptr<xcb_connection_t, DisconnectXcb>;

/// Qt's X connection, which Qt owns; null when Qt uses another platform than X11.
[[nodiscard]] inline xcb_connection_t* xcbConnectionOfQt() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

/// The number that the X server gives the name; takes a round trip.
[[nodiscard]] inline xcb_atom_t atomNamed(xcb_connection_t* x, std::string_view name) {
    const auto cookie = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbOwned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

[[nodiscard]] inline xcb_window_t rootOf(xcb_connection_t* x) {
    return xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
}

} // namespace brimlet
