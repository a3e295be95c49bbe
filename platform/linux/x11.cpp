#include "platform/linux/x11.h"

#include "platform/linux/xcbowners.h"

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <string_view>
#include <vector>

namespace brimlet::x11 {
namespace {

xcb_connection_t* connection() {
    return xcbConnectionOfQt();
}

xcb_atom_t atomNamed(xcb_connection_t* x, std::string_view name) {
    const auto cookie = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbOwned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// The selections of screen 0. Today's desktops use no other screen.

xcb_atom_t compositorSelection(xcb_connection_t* x) {
    static const xcb_atom_t atom = atomNamed(x, "_NET_WM_CM_S0");
    return atom;
}

xcb_atom_t traySelection(xcb_connection_t* x) {
    static const xcb_atom_t atom = atomNamed(x, "_NET_SYSTEM_TRAY_S0");
    return atom;
}

bool hasOwner(xcb_connection_t* x, xcb_atom_t selection) {
    const auto cookie = xcb_get_selection_owner(x, selection);
    const XcbOwned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(x, cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

void setShape(WId window, xcb_shape_kind_t kind, const QRegion& region) {
    xcb_connection_t* const x = connection();
    if (x == nullptr) {
        return;
    }
    std::vector<xcb_rectangle_t> shape;
    for (const QRect& each : region) {
        shape.push_back({static_cast<std::int16_t>(each.x()), static_cast<std::int16_t>(each.y()),
                         static_cast<std::uint16_t>(each.width()),
                         static_cast<std::uint16_t>(each.height())});
    }
    xcb_shape_rectangles(x, XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED,
                         static_cast<xcb_window_t>(window), 0, 0,
                         static_cast<std::uint32_t>(shape.size()), shape.data());
    xcb_flush(x);
}

} // namespace

bool canConnect() {
    xcb_connection_t* const x = xcb_connect(nullptr, nullptr);
    const bool isConnected = xcb_connection_has_error(x) == 0;
    xcb_disconnect(x);
    return isConnected;
}

void setInputShape(WId window, const QRegion& region) {
    setShape(window, XCB_SHAPE_SK_INPUT, region);
}

void setBoundingShape(WId window, const std::optional<QRegion>& region) {
    if (region) {
        setShape(window, XCB_SHAPE_SK_BOUNDING, *region);
    } else if (xcb_connection_t* const x = connection()) {
        xcb_shape_mask(x, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                       static_cast<xcb_window_t>(window), 0, 0, XCB_PIXMAP_NONE);
        xcb_flush(x);
    }
}

bool hasCompositor() {
    xcb_connection_t* const x = connection();
    return x == nullptr || hasOwner(x, compositorSelection(x));
}

void activate(WId window) {
    xcb_connection_t* const x = connection();
    if (x == nullptr) {
        return;
    }
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window);
    message.type = atomNamed(x, "_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 2; // source indication: a direct user action
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    xcb_send_event(x, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message)); // NOLINT(*-reinterpret-cast): X's way
    xcb_flush(x);
}

bool hasSystemTray() {
    xcb_connection_t* const x = connection();
    return x != nullptr && hasOwner(x, traySelection(x));
}

bool announcesSystemTray(const void* event) {
    xcb_connection_t* const x = connection();
    const auto* const message = static_cast<const xcb_client_message_event_t*>(event);
    constexpr std::uint8_t kSentByClient = 0x80;
    if (x == nullptr || (message->response_type & ~kSentByClient) != XCB_CLIENT_MESSAGE) {
        return false;
    }
    static const xcb_atom_t manager = atomNamed(x, "MANAGER");
    return message->type == manager && message->data.data32[1] == traySelection(x);
}

} // namespace brimlet::x11
