#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

#include <memory>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

namespace brimlet {

/// What the X server itself knows of windows and pixels, over a connection of its own.
class XServer final {
public:
    XServer();

    [[nodiscard]] bool isConnected() const;

    /// The top-level window of that title, mapped or not.
    [[nodiscard]] std::optional<xcb_window_t> windowNamed(const char* title) const;
    [[nodiscard]] QRect geometry(xcb_window_t window) const;
    [[nodiscard]] bool isMapped(xcb_window_t window) const;
    /// The shape inside which clicks count, in window pixels.
    [[nodiscard]] std::vector<QRect> inputShape(xcb_window_t window) const;
    /// The shape inside which it is drawn.
    [[nodiscard]] std::vector<QRect> boundingShape(xcb_window_t window) const;
    /// The window that has the keyboard.
    [[nodiscard]] xcb_window_t focus() const;
    /// The pointer's picture as it is shown.
    [[nodiscard]] QImage cursor() const;
    /// A part of the screen as it is shown, without the pointer.
    [[nodiscard]] QImage picture(const QRect& area) const;
    /// A pixel of the screen as it is shown.
    [[nodiscard]] QColor pixel(QPoint position) const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    [[nodiscard]] std::vector<QRect> shape(xcb_window_t window, std::uint8_t kind) const;

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_root = 0;
};

} // namespace brimlet
