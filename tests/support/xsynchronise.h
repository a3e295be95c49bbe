#pragma once

#include "platform/linux/xcbowners.h"

namespace brimlet {

/// Returns once the X server has processed all requests of the connection and has sent the events
/// they cause to other clients: it does that before it reads the second question. Requests on
/// another connection are processed after them only then.
inline void synchronise(xcb_connection_t* x) {
    for (int i = 0; i < 2; ++i) {
        const XcbOwned<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
    }
}

} // namespace brimlet
