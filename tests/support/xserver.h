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

/// A client's window, without the window manager's frame.
struct ClientWindow final {
    xcb_window_t id = XCB_WINDOW_NONE;
    QString title;
    /// Relative to the root window, in pixels. Without margins that pass clicks on, such as a
    /// shadow.
    QRect geometry;
    /// The window and all its parents are mapped.
    bool isViewable = false;
};

/// Reads windows and pixels from the X server, over its own connection.
class XServer final {
public:
    XServer();

    [[nodiscard]] bool isConnected() const;

    /// The top-level window of that title, mapped or not. Not one of a pixel: Qt gives such a
    /// helper window the program's name.
    [[nodiscard]] std::optional<xcb_window_t> windowNamed(const char* title) const;
    [[nodiscard]] QRect geometry(xcb_window_t window) const;
    [[nodiscard]] bool isMapped(xcb_window_t window) const;
    /// The input shape, in window pixels.
    [[nodiscard]] std::vector<QRect> inputShape(xcb_window_t window) const;
    /// The bounding shape, in window pixels.
    [[nodiscard]] std::vector<QRect> boundingShape(xcb_window_t window) const;
    /// Every window with that process's number, in the order of the tree, including those inside a
    /// frame of the window manager, icons in a tray, and hidden ones.
    [[nodiscard]] std::vector<ClientWindow> windowsOf(qint64 pid) const;
    /// A window of that process with that title that is on the screen.
    [[nodiscard]] std::optional<ClientWindow> shownWindow(qint64 pid, const QString& title) const;
    /// The work area, in pixels; empty without a window manager that sets it.
    [[nodiscard]] QRect workArea() const;
    /// The window with the keyboard focus.
    [[nodiscard]] xcb_window_t focus() const;
    /// The pointer's present picture.
    [[nodiscard]] QImage cursor() const;
    /// A part of the screen, without the pointer.
    [[nodiscard]] QImage picture(const QRect& area) const;
    /// A pixel of the screen.
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
