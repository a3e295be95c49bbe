#include "platform/linux/x11.h"

#include "platform/linux/xcbowners.h"

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace brimlet::x11 {
namespace {

xcb_connection_t* connection() {
    return xcbConnectionOfQt();
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

/// From the lowest to the topmost.
std::vector<xcb_window_t> childrenOf(xcb_connection_t* x, xcb_window_t window) {
    const XcbOwned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
    if (!tree) {
        return {};
    }
    const std::span children(xcb_query_tree_children(tree.get()), tree->children_len);
    return {children.begin(), children.end()};
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

/// Whether the window, or one inside it, is managed, which its WM_STATE shows. A client is the
/// frame itself, or a child or grandchild of it.
bool holdsClient(xcb_connection_t* x, xcb_window_t window, int depth = 2) {
    static const xcb_atom_t state = atomNamed(x, "WM_STATE");
    const XcbOwned<xcb_get_property_reply_t> property(xcb_get_property_reply(
        x, xcb_get_property(x, 0, window, state, XCB_GET_PROPERTY_TYPE_ANY, 0, 0), nullptr));
    if (property && property->type != XCB_ATOM_NONE) {
        return true;
    }
    const auto children = depth > 0 ? childrenOf(x, window) : std::vector<xcb_window_t>();
    return std::any_of(children.begin(), children.end(),
                       [&](xcb_window_t child) { return holdsClient(x, child, depth - 1); });
}

/// With the border; empty when the window does not exist.
QRect geometryFrom(xcb_connection_t* x, xcb_get_geometry_cookie_t cookie) {
    const XcbOwned<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(x, cookie, nullptr));
    return reply ? QRect(reply->x, reply->y, reply->width + 2 * reply->border_width,
                         reply->height + 2 * reply->border_width)
                 : QRect();
}

enum class Cover { None, Managed, Unmanaged };

struct CoveringWindow {
    xcb_window_t id;
    Cover cover;
};

/// The top-level windows from the lowest to the topmost, and what each covers the given one with:
/// nothing if it is invisible, elsewhere, or of this program.
std::vector<CoveringWindow> windowsAround(xcb_connection_t* x, xcb_window_t window) {
    const QRect area = geometryFrom(x, xcb_get_geometry(x, window));
    // The X server's own windows, such as the compositor's overlay, stay above those of clients.
    const std::uint32_t owner = ~xcb_get_setup(x)->resource_id_mask;
    std::vector<CoveringWindow> windows;
    // All are asked before the first reply is awaited, which takes one round trip.
    std::vector<std::pair<xcb_get_window_attributes_cookie_t, xcb_get_geometry_cookie_t>> cookies;
    for (const xcb_window_t each : childrenOf(x, rootOf(x))) {
        windows.push_back({each, Cover::None});
        cookies.emplace_back(xcb_get_window_attributes(x, each), xcb_get_geometry(x, each));
    }
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const xcb_window_t each = windows[i].id;
        const XcbOwned<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(x, cookies[i].first, nullptr));
        const bool isOver = geometryFrom(x, cookies[i].second).intersects(area);
        const bool isForeign = (each & owner) != 0 && (each & owner) != (window & owner);
        if (attributes && isOver && isForeign && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
            attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT) {
            const bool isManaged = attributes->override_redirect == 0 || holdsClient(x, each);
            windows[i].cover = isManaged ? Cover::Managed : Cover::Unmanaged;
        }
    }
    return windows;
}

} // namespace

bool canConnect() {
    const XcbConnection x(xcb_connect(nullptr, nullptr));
    return xcb_connection_has_error(x.get()) == 0;
}

std::optional<Server> server() {
    const XcbConnection owner(xcb_connect(nullptr, nullptr));
    xcb_connection_t* const x = owner.get();
    if (xcb_connection_has_error(x) != 0) {
        return std::nullopt;
    }
    const xcb_setup_t* const setup = xcb_get_setup(x);
    constexpr std::string_view kXWayland("XWAYLAND");
    const XcbOwned<xcb_query_extension_reply_t> extension(xcb_query_extension_reply(
        x, xcb_query_extension(x, kXWayland.size(), kXWayland.data()), nullptr));
    return Server{QString::fromLatin1(xcb_setup_vendor(setup), xcb_setup_vendor_length(setup)),
                  setup->release_number, extension && extension->present != 0,
                  hasOwner(x, compositorSelection(x)), hasOwner(x, traySelection(x))};
}

bool isXWayland(const Server& server, const QStringList& screens) {
    return server.hasXWaylandExtension ||
           std::any_of(screens.begin(), screens.end(), [](const QString& name) {
               return name.startsWith(QLatin1StringView("XWAYLAND"));
           });
}

bool ignoresInputShapes(const Server& server, const QStringList& screens) {
    constexpr std::uint32_t kFirstToPassThem = 12'401'000;
    return isXWayland(server, screens) && server.release < kFirstToPassThem;
}

QString versionOf(std::uint32_t release) {
    // Ten millions are the major version, which is left out since the minor one was 21.
    constexpr std::uint32_t kFirstWithoutMajor = 21;
    const std::uint32_t minor = release / 100'000 % 100;
    const std::uint32_t patch = release / 1000 % 100;
    return minor < kFirstWithoutMajor
               ? QStringLiteral("%1.%2.%3").arg(release / 10'000'000).arg(minor).arg(patch)
               : QStringLiteral("%1.%2.%3").arg(minor).arg(patch).arg(release % 1000);
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

void raiseAboveManagedWindows(WId id) {
    xcb_connection_t* const x = connection();
    if (x == nullptr) {
        return;
    }
    const auto window = static_cast<xcb_window_t>(id);
    xcb_window_t managed = XCB_WINDOW_NONE;   // the topmost
    xcb_window_t unmanaged = XCB_WINDOW_NONE; // the lowest above that
    bool isBelowManaged = false;
    bool isAboveUnmanaged = false;
    bool isPassed = false;
    for (const auto& [other, cover] : windowsAround(x, window)) {
        if (other == window) {
            isPassed = true;
        } else if (cover == Cover::Managed) {
            managed = other;
            unmanaged = XCB_WINDOW_NONE;
            isBelowManaged = isPassed;
            isAboveUnmanaged = false;
        } else if (cover == Cover::Unmanaged && unmanaged == XCB_WINDOW_NONE) {
            unmanaged = other;
            isAboveUnmanaged = !isPassed;
        }
    }
    const auto place = [&](xcb_window_t sibling, std::uint32_t mode) {
        const std::array values{sibling, mode};
        // The sibling may have been destroyed meanwhile; the next change brings another call.
        const auto cookie = xcb_configure_window_checked(
            x, window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
        xcb_discard_reply(x, cookie.sequence);
        xcb_flush(x);
    };
    if (isBelowManaged) {
        place(managed, XCB_STACK_MODE_ABOVE);
    } else if (isAboveUnmanaged) {
        place(unmanaged, XCB_STACK_MODE_BELOW);
    }
}

bool hasCompositor() {
    xcb_connection_t* const x = connection();
    return x == nullptr || hasOwner(x, compositorSelection(x));
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
