#pragma once

#include <QGuiApplication>

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace brimlet {

struct FreeXcbReply {
    void operator()(void* reply) const { std::free(reply); } // NOLINT(*-no-malloc)
};
/// What libxcb hands over: a reply or an event, or null.
template <typename Reply>
using XcbOwned = std::unique_ptr<Reply, FreeXcbReply>;

/// The program's own connection; null where its windows are not the X server's.
[[nodiscard]] inline xcb_connection_t* xcbConnectionOfQt() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

} // namespace brimlet
