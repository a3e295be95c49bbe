#include "platform/linux/desktopcover.h"

#include "platform/linux/windowmanager.h"
#include "platform/linux/xcbowners.h"

#include <array>
#include <utility>

namespace brimlet {
namespace {

bool isGnomeOnWayland() {
    if (!qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
        return false; // without a round trip to the X server
    }
    const QString name = x11::windowManagerName();
    return name == QLatin1StringView("GNOME Shell") || name == QLatin1StringView("Mutter");
}

/// Of 32 bits, with which windows can be transparent; 0 without one.
xcb_visualid_t transparentVisual(const xcb_screen_t& screen) {
    auto depth = xcb_screen_allowed_depths_iterator(&screen);
    for (; depth.rem > 0; xcb_depth_next(&depth)) {
        if (depth.data->depth == 32 && xcb_depth_visuals_length(depth.data) > 0) {
            return xcb_depth_visuals(depth.data)->visual_id;
        }
    }
    return 0;
}

} // namespace

void DesktopCover::show() {
    xcb_connection_t* const x = xcbConnectionOfQt();
    if (x == nullptr || m_window != XCB_WINDOW_NONE || !isGnomeOnWayland()) {
        return;
    }
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    const xcb_visualid_t visual = transparentVisual(screen);
    const XcbOwned<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(x, xcb_get_geometry(x, screen.root), nullptr));
    if (visual == 0 || !root) {
        return;
    }
    m_colours = xcb_generate_id(x);
    xcb_create_colormap(x, XCB_COLORMAP_ALLOC_NONE, m_colours, screen.root, visual);
    m_window = xcb_generate_id(x);
    constexpr std::uint32_t kTransparent = 0;
    const std::array values{kTransparent, kTransparent, m_colours};
    xcb_create_window(x, 32, m_window, screen.root, 0, 0, root->width, root->height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP, values.data());
    x11::declareAsDesktop(m_window);
    xcb_map_window(x, m_window);
    xcb_flush(x);
}

void DesktopCover::hide() {
    xcb_connection_t* const x = m_window == XCB_WINDOW_NONE ? nullptr : xcbConnectionOfQt();
    if (x != nullptr) {
        xcb_destroy_window(x, std::exchange(m_window, xcb_window_t{XCB_WINDOW_NONE}));
        xcb_free_colormap(x, m_colours);
        xcb_flush(x);
    }
}

} // namespace brimlet
