#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QRect>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

#include <xcb/xcb.h>

namespace brimlet {

/// A client's own window, without what the window manager puts around it.
struct ClientWindow final {
    xcb_window_t id = XCB_WINDOW_NONE;
    QString title;
    /// On the root window, in pixels, wherever it is in the tree.
    QRect geometry;
    /// It and all windows it is in are mapped.
    bool isViewable = false;
};

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
    /// Every window that says it is that process's, in the order of the tree: also those inside a
    /// frame of the window manager, icons inside a tray, and hidden ones.
    [[nodiscard]] std::vector<ClientWindow> windowsOf(qint64 pid) const;
    /// What panels leave of the screen, in pixels; empty when no window manager tells.
    [[nodiscard]] QRect workArea() const;
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
    [[nodiscard]] xcb_atom_t atom(const char* name) const;
    /// Of any type, at most 1024 bytes; empty when it is not set.
    [[nodiscard]] QByteArray property(xcb_window_t window, xcb_atom_t name) const;
    [[nodiscard]] std::vector<xcb_window_t> children(xcb_window_t window) const;
    [[nodiscard]] std::vector<QRect> shape(xcb_window_t window, std::uint8_t kind) const;

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_root = 0;
};

} // namespace brimlet
