#pragma once

#include <QtGlobal>

#include <xcb/xproto.h>

namespace brimlet {

/// An invisible window on the empty desktop of GNOME on Wayland, below all others. A click there
/// reaches no X program otherwise, so a panel could not close at it; it is lost for GNOME, whose
/// desktop does nothing but show a menu at a right click. Elsewhere it does nothing. Main thread
/// only.
class DesktopCover final {
public:
    DesktopCover() = default;
    ~DesktopCover() { hide(); }
    Q_DISABLE_COPY_MOVE(DesktopCover)

    /// While it is shown, XWayland keeps a picture of the screen's size.
    void show();
    void hide();

private:
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_colormap_t m_colours = XCB_COLORMAP_NONE;
};

} // namespace brimlet
