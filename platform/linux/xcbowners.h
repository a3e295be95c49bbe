#pragma once

#include <QGuiApplication>

#include <cstdlib>
#include <memory>

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

} // namespace brimlet
