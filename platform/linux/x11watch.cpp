#include "platform/linux/x11watch.h"

#include "platform/linux/x11.h"
#include "platform/linux/xcbowners.h"

#include <string_view>

#include <xcb/xfixes.h>

namespace brimlet {

bool X11Watch::s_isUsed = false;

X11Watch& X11Watch::shared() {
    static X11Watch watch;
    s_isUsed = true;
    return watch;
}

void X11Watch::drainIfUsed() {
    if (s_isUsed) {
        shared().drainEvents();
    }
}

X11Watch::X11Watch() {
    if (xcbConnectionOfQt() == nullptr) {
        return;
    }
    m_connection.reset(xcb_connect(nullptr, nullptr));
    xcb_connection_t* const x = m_connection.get();
    if (xcb_connection_has_error(x) != 0) {
        m_connection.reset();
        return;
    }
    const xcb_window_t root = rootOf(x);
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(x, root, XCB_CW_EVENT_MASK, &events);

    // The selection of screen 0. Today's desktops use no other screen.
    constexpr std::string_view kSelection("_NET_WM_CM_S0");
    const auto nameCookie = xcb_intern_atom(x, 0, kSelection.size(), kSelection.data());
    const auto versionCookie =
        xcb_xfixes_query_version(x, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    const xcb_query_extension_reply_t* const fixes = xcb_get_extension_data(x, &xcb_xfixes_id);
    const XcbOwned<xcb_intern_atom_reply_t> name(xcb_intern_atom_reply(x, nameCookie, nullptr));
    const XcbOwned<xcb_xfixes_query_version_reply_t> version(
        xcb_xfixes_query_version_reply(x, versionCookie, nullptr));
    if (!name || !version || fixes == nullptr) {
        m_connection.reset();
        return;
    }
    const xcb_atom_t compositor = name->atom;
    m_firstFixesEvent = fixes->first_event;
    xcb_xfixes_select_selection_input(x, root, compositor,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    // Queried after the event selection above, so that no change is missed in between.
    const XcbOwned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, compositor), nullptr));
    m_hasCompositor = owner && owner->owner != XCB_WINDOW_NONE;
}

std::uint64_t X11Watch::stackingSerial() {
    drainEvents();
    return m_stackingSerial;
}

bool X11Watch::hasCompositor() {
    drainEvents();
    return m_connection ? m_hasCompositor : x11::hasCompositor();
}

void X11Watch::drainEvents() {
    while (m_connection) {
        const XcbOwned<xcb_generic_event_t> event(xcb_poll_for_event(m_connection.get()));
        if (event) {
            handleEvent(*event);
        } else if (xcb_connection_has_error(m_connection.get()) == 0) {
            return;
        } else {
            m_connection.reset();
        }
    }
    ++m_stackingSerial;
}

void X11Watch::handleEvent(const xcb_generic_event_t& event) {
    constexpr std::uint8_t kSentByClient = 0x80;
    const int type = event.response_type & ~kSentByClient;
    if (type == XCB_MAP_NOTIFY || type == XCB_CONFIGURE_NOTIFY || type == XCB_REPARENT_NOTIFY ||
        type == XCB_CIRCULATE_NOTIFY) {
        ++m_stackingSerial;
    } else if (type == m_firstFixesEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        // No other selection is watched.
        m_hasCompositor =
            // NOLINTNEXTLINE(*-reinterpret-cast): X's way
            reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event).owner !=
            XCB_WINDOW_NONE;
    }
}

} // namespace brimlet
