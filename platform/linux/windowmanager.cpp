#include "platform/linux/windowmanager.h"

#include "platform/linux/xcbowners.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brimlet::x11 {
namespace {

/// A window that is never shown, of which this connection gets the events.
xcb_window_t invisibleWindow(xcb_connection_t* x, std::uint32_t events) {
    const xcb_window_t window = xcb_generate_id(x);
    xcb_create_window(x, 0, window, rootOf(x), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return window;
}

/// The X server's present time in milliseconds. Servers report it only in events, and on Qt's
/// connection Qt would take the event.
xcb_timestamp_t serverTime() {
    const XcbConnection owner(xcb_connect(nullptr, nullptr));
    xcb_connection_t* const x = owner.get();
    if (xcb_connection_has_error(x) != 0) {
        return XCB_TIME_CURRENT_TIME;
    }
    const xcb_window_t window = invisibleWindow(x, XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_change_property(x, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    xcb_flush(x);
    const XcbOwned<xcb_generic_event_t> event(xcb_wait_for_event(x));
    if (!event || event->response_type != XCB_PROPERTY_NOTIFY) {
        return XCB_TIME_CURRENT_TIME;
    }
    // NOLINTNEXTLINE(*-reinterpret-cast): X's way
    return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->time;
}

/// Its 32-bit numbers; empty when it is not set.
std::vector<int> numbersFrom(xcb_connection_t* x, xcb_get_property_cookie_t cookie) {
    const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    if (!reply || reply->format != 32) {
        return {};
    }
    const std::span numbers(static_cast<const std::int32_t*>(xcb_get_property_value(reply.get())),
                            reply->value_len);
    return {numbers.begin(), numbers.end()};
}

xcb_get_property_cookie_t askFor(xcb_connection_t* x, xcb_window_t window, xcb_atom_t property) {
    constexpr std::uint32_t kMostNumbers = 4096;
    return xcb_get_property(x, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, kMostNumbers);
}

bool hasProperty(xcb_connection_t* x, xcb_window_t window, xcb_atom_t property) {
    const XcbOwned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(x, askFor(x, window, property), nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

void setAtoms(xcb_connection_t* x, WId window, xcb_atom_t property,
              const std::vector<xcb_atom_t>& atoms) {
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window), property,
                        XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(atoms.size()), atoms.data());
}

void setType(xcb_connection_t* x, WId window, std::string_view type) {
    setAtoms(x, window, atomNamed(x, "_NET_WM_WINDOW_TYPE"), {atomNamed(x, type)});
}

/// The client under the pointer, which may be inside a frame of the window manager; without one the
/// top-level window, or none.
xcb_window_t pointedWindow(xcb_connection_t* x) {
    static const xcb_atom_t state = atomNamed(x, "WM_STATE"); // of managed windows
    xcb_window_t topLevel = XCB_WINDOW_NONE;
    xcb_window_t window = rootOf(x);
    constexpr int kDeepestClient = 3;
    for (int depth = 0; depth < kDeepestClient; ++depth) {
        const XcbOwned<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(x, xcb_query_pointer(x, window), nullptr));
        window = pointer ? pointer->child : xcb_window_t{XCB_WINDOW_NONE};
        if (window == XCB_WINDOW_NONE) {
            break;
        }
        if (hasProperty(x, window, state)) {
            return window;
        }
        topLevel = depth == 0 ? window : topLevel;
    }
    return topLevel;
}

/// Limited to what X can express, since any program may set any number.
int coordinate(int number) {
    constexpr int kLargest = 32767;
    return std::clamp(number, -kLargest, kLargest);
}

/// Four numbers each.
std::vector<QRect> rectsFrom(const std::vector<int>& numbers) {
    std::vector<QRect> rects;
    for (std::size_t i = 0; i + 4 <= numbers.size(); i += 4) {
        rects.emplace_back(coordinate(numbers[i]), coordinate(numbers[i + 1]),
                           coordinate(numbers[i + 2]), coordinate(numbers[i + 3]));
    }
    return rects;
}

} // namespace

void declareAsPanel(WId window) {
    xcb_connection_t* const x = xcbConnectionOfQt();
    if (x == nullptr) {
        return;
    }
    static const xcb_atom_t state = atomNamed(x, "_NET_WM_STATE");
    static const std::vector<xcb_atom_t> states{atomNamed(x, "_NET_WM_STATE_ABOVE"),
                                                atomNamed(x, "_NET_WM_STATE_SKIP_TASKBAR"),
                                                atomNamed(x, "_NET_WM_STATE_SKIP_PAGER")};
    setType(x, window, "_NET_WM_WINDOW_TYPE_UTILITY");
    // Qt keeps these when it shows the window. With its own hint for windows on top it would add a
    // state of KDE's, which xfwm4 warns about.
    setAtoms(x, window, state, states);
}

void declareAsDesktop(WId window) {
    if (xcb_connection_t* const x = xcbConnectionOfQt()) {
        setType(x, window, "_NET_WM_WINDOW_TYPE_DESKTOP");
        // Of WM_HINTS only the part that says whether the window wants the keyboard.
        constexpr std::uint32_t kHasInput = 1;
        constexpr std::array<std::uint32_t, 9> kHints{kHasInput, 0};
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window),
                            XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32, kHints.size(), kHints.data());
    }
}

void removeParentHint(WId window) {
    if (xcb_connection_t* const x = xcbConnectionOfQt()) {
        xcb_delete_property(x, static_cast<xcb_window_t>(window), XCB_ATOM_WM_TRANSIENT_FOR);
        xcb_flush(x);
    }
}

void activate(WId window) {
    xcb_connection_t* const x = xcbConnectionOfQt();
    if (x == nullptr) {
        return;
    }
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window);
    message.type = atomNamed(x, "_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 2; // source indication: a direct user action
    message.data.data32[1] = serverTime();
    xcb_send_event(x, 0, rootOf(x),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message)); // NOLINT(*-reinterpret-cast): X's way
    xcb_flush(x);
}

void broadcastStartupInfo(const QByteArray& text) {
    xcb_connection_t* const x = xcbConnectionOfQt();
    if (x == nullptr) {
        return;
    }
    const xcb_window_t sender = invisibleWindow(x, 0);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = sender;
    message.type = atomNamed(x, "_NET_STARTUP_INFO_BEGIN");
    // In pieces of 20 bytes, the last of which ends with a null byte.
    constexpr qsizetype kPiece = sizeof message.data.data8;
    for (qsizetype from = 0; from <= text.size(); from += kPiece) {
        std::fill(std::begin(message.data.data8), std::end(message.data.data8), 0);
        const QByteArray piece = text.mid(from, kPiece);
        std::copy(piece.begin(), piece.end(), std::begin(message.data.data8));
        xcb_send_event(x, 0, rootOf(x), XCB_EVENT_MASK_PROPERTY_CHANGE,
                       reinterpret_cast<const char*>(&message)); // NOLINT(*-reinterpret-cast)
        message.type = atomNamed(x, "_NET_STARTUP_INFO");
    }
    xcb_destroy_window(x, sender);
    xcb_flush(x);
}

QString windowManagerName() {
    xcb_connection_t* const x = xcbConnectionOfQt();
    if (x == nullptr) {
        return {};
    }
    const auto check =
        numbersFrom(x, askFor(x, rootOf(x), atomNamed(x, "_NET_SUPPORTING_WM_CHECK")));
    if (check.empty()) {
        return {};
    }
    const auto cookie =
        askFor(x, static_cast<xcb_window_t>(check.front()), atomNamed(x, "_NET_WM_NAME"));
    const XcbOwned<xcb_get_property_reply_t> name(xcb_get_property_reply(x, cookie, nullptr));
    return name ? QString::fromUtf8(static_cast<const char*>(xcb_get_property_value(name.get())),
                                    xcb_get_property_value_length(name.get()))
                : QString();
}

bool isPointerOnDesktopOrBar() {
    xcb_connection_t* const x = xcbConnectionOfQt();
    if (x == nullptr) {
        return false;
    }
    static const xcb_atom_t type = atomNamed(x, "_NET_WM_WINDOW_TYPE");
    static const xcb_atom_t desktop = atomNamed(x, "_NET_WM_WINDOW_TYPE_DESKTOP");
    static const xcb_atom_t dock = atomNamed(x, "_NET_WM_WINDOW_TYPE_DOCK");
    const xcb_window_t window = pointedWindow(x);
    const auto types =
        window == XCB_WINDOW_NONE ? std::vector<int>() : numbersFrom(x, askFor(x, window, type));
    return window == XCB_WINDOW_NONE || std::any_of(types.begin(), types.end(), [](int each) {
               const auto atom = static_cast<xcb_atom_t>(each);
               return atom == desktop || atom == dock;
           });
}

ReservedAreas reservedAreas() {
    xcb_connection_t* const x = xcbConnectionOfQt();
    if (x == nullptr) {
        return {};
    }
    static const xcb_atom_t workArea = atomNamed(x, "_NET_WORKAREA");
    static const xcb_atom_t desktop = atomNamed(x, "_NET_CURRENT_DESKTOP");
    static const xcb_atom_t clients = atomNamed(x, "_NET_CLIENT_LIST");
    static const xcb_atom_t strut = atomNamed(x, "_NET_WM_STRUT_PARTIAL");
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    const auto desktopCookie = askFor(x, screen.root, desktop);
    const auto workAreaCookie = askFor(x, screen.root, workArea);
    const auto clientsCookie = askFor(x, screen.root, clients);
    const XcbOwned<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(x, xcb_get_geometry(x, screen.root), nullptr));
    const auto desktops = numbersFrom(x, desktopCookie);
    const auto workAreas = rectsFrom(numbersFrom(x, workAreaCookie));
    const auto windows = numbersFrom(x, clientsCookie);

    const int current = desktops.empty() ? 0 : desktops.front();
    const std::string monitors = "_GTK_WORKAREAS_D" + std::to_string(current);
    const auto monitorsCookie = askFor(x, screen.root, atomNamed(x, monitors));
    std::vector<xcb_get_property_cookie_t> strutCookies;
    strutCookies.reserve(windows.size());
    for (const int window : windows) {
        strutCookies.push_back(askFor(x, static_cast<xcb_window_t>(window), strut));
    }
    ReservedAreas areas;
    areas.root = root ? QSize(root->width, root->height) : QSize();
    // One for each desktop, or for all.
    if (!workAreas.empty()) {
        const auto index = static_cast<std::size_t>(current);
        areas.workArea = workAreas[index < workAreas.size() ? index : 0];
    }
    areas.monitorWorkAreas = rectsFrom(numbersFrom(x, monitorsCookie));
    for (const xcb_get_property_cookie_t cookie : strutCookies) {
        const auto numbers = numbersFrom(x, cookie);
        Strut each{};
        if (numbers.size() == each.size()) {
            std::transform(numbers.begin(), numbers.end(), each.begin(), coordinate);
            areas.struts.push_back(each);
        }
    }
    return areas;
}

} // namespace brimlet::x11
