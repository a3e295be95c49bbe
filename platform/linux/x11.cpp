#include "platform/linux/x11.h"

#include <QGuiApplication>

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace brimlet::x11 {
namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); } // NOLINT(*-no-malloc)
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

xcb_connection_t* connection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

xcb_atom_t compositorSelection(xcb_connection_t* x) {
    // The selection of screen 0, the only one that desktops use today.
    static const xcb_atom_t atom = [x] {
        constexpr char kName[] = "_NET_WM_CM_S0";
        const auto cookie = xcb_intern_atom(x, 0, std::strlen(kName), kName);
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }();
    return atom;
}

} // namespace

void setInputShape(WId window, const QRegion& region, qreal devicePixelRatio) {
    xcb_connection_t* const x = connection();
    if (x == nullptr) {
        return;
    }
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect& part : region) {
        const auto scaled = [&](int value) { return qRound(value * devicePixelRatio); };
        const int left = scaled(part.x());
        const int top = scaled(part.y());
        rectangles.push_back({static_cast<std::int16_t>(left), static_cast<std::int16_t>(top),
                              static_cast<std::uint16_t>(scaled(part.x() + part.width()) - left),
                              static_cast<std::uint16_t>(scaled(part.y() + part.height()) - top)});
    }
    xcb_shape_rectangles(x, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                         static_cast<xcb_window_t>(window), 0, 0,
                         static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    xcb_flush(x);
}

bool hasCompositor() {
    xcb_connection_t* const x = connection();
    if (x == nullptr) {
        return true;
    }
    const auto cookie = xcb_get_selection_owner(x, compositorSelection(x));
    const Owned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(x, cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

} // namespace brimlet::x11
