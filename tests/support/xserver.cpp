#include "tests/support/xserver.h"

#include <cstdlib>
#include <cstring>

#include <xcb/shape.h>
#include <xcb/xfixes.h>

namespace brimlet {
namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

/// The numbers in a property.
std::vector<qint32> numbers(const QByteArray& property) {
    constexpr qsizetype kSize = sizeof(qint32);
    std::vector<qint32> numbers;
    for (qsizetype at = 0; at + kSize <= property.size(); at += kSize) {
        qint32 number = 0;
        std::memcpy(&number, property.constData() + at, kSize);
        numbers.push_back(number);
    }
    return numbers;
}

} // namespace

XServer::XServer()
    : m_connection(xcb_connect(nullptr, nullptr)) {
    if (isConnected()) {
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data->root;
    }
}

bool XServer::isConnected() const {
    return xcb_connection_has_error(m_connection.get()) == 0;
}

xcb_atom_t XServer::atom(const char* name) const {
    auto* const x = m_connection.get();
    const auto cookie = xcb_intern_atom(x, 1, static_cast<std::uint16_t>(std::strlen(name)), name);
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

QByteArray XServer::property(xcb_window_t window, xcb_atom_t name) const {
    auto* const x = m_connection.get();
    const auto cookie = xcb_get_property(x, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 256);
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    return reply ? QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()))
                 : QByteArray();
}

std::vector<xcb_window_t> XServer::children(xcb_window_t window) const {
    auto* const x = m_connection.get();
    const Owned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
    if (!tree) {
        return {};
    }
    const xcb_window_t* const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

std::optional<xcb_window_t> XServer::windowNamed(const char* title) const {
    for (const xcb_window_t child : children(m_root)) {
        if (property(child, XCB_ATOM_WM_NAME) == title && geometry(child).width() > 1) {
            return child;
        }
    }
    return std::nullopt;
}

std::vector<ClientWindow> XServer::windowsOf(qint64 pid) const {
    auto* const x = m_connection.get();
    const xcb_atom_t pidName = atom("_NET_WM_PID");
    const xcb_atom_t titleName = atom("_NET_WM_NAME");
    std::vector<ClientWindow> found;
    std::vector<xcb_window_t> pending{m_root}; // as a stack
    while (!pending.empty()) {
        const xcb_window_t window = pending.back();
        pending.pop_back();
        const std::vector<xcb_window_t> below = children(window);
        pending.insert(pending.end(), below.rbegin(), below.rend());
        if (const auto owner = numbers(property(window, pidName));
            owner.empty() || owner[0] != pid) {
            continue;
        }
        const auto cookie = xcb_translate_coordinates(x, window, m_root, 0, 0);
        const Owned<xcb_translate_coordinates_reply_t> origin(
            xcb_translate_coordinates_reply(x, cookie, nullptr));
        const QSize size = geometry(window).size();
        if (origin && size.isValid()) { // otherwise the window no longer exists
            QRegion clickable;
            for (const QRect& part : inputShape(window)) {
                clickable += part;
            }
            const QRect whole(QPoint(), size);
            const QRect place = clickable.isEmpty() ? whole : clickable.boundingRect() & whole;
            found.push_back({window, QString::fromUtf8(property(window, titleName)),
                             place.translated(origin->dst_x, origin->dst_y), isMapped(window)});
        }
    }
    return found;
}

std::optional<ClientWindow> XServer::shownWindow(qint64 pid, const QString& title) const {
    for (const ClientWindow& window : windowsOf(pid)) {
        if (window.title == title && window.isViewable) {
            return window;
        }
    }
    return std::nullopt;
}

QRect XServer::workArea() const {
    // Four numbers for each desktop.
    const auto area = numbers(property(m_root, atom("_NET_WORKAREA")));
    return area.size() >= 4 ? QRect(area[0], area[1], area[2], area[3]) : QRect();
}

QRect XServer::geometry(xcb_window_t window) const {
    auto* const x = m_connection.get();
    const Owned<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(x, xcb_get_geometry(x, window), nullptr));
    return reply ? QRect(reply->x, reply->y, reply->width, reply->height) : QRect();
}

bool XServer::isMapped(xcb_window_t window) const {
    auto* const x = m_connection.get();
    const Owned<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::vector<QRect> XServer::shape(xcb_window_t window, std::uint8_t kind) const {
    auto* const x = m_connection.get();
    const Owned<xcb_shape_get_rectangles_reply_t> reply(
        xcb_shape_get_rectangles_reply(x, xcb_shape_get_rectangles(x, window, kind), nullptr));
    std::vector<QRect> rectangles;
    if (reply) {
        const xcb_rectangle_t* const found = xcb_shape_get_rectangles_rectangles(reply.get());
        for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i) {
            rectangles.emplace_back(found[i].x, found[i].y, found[i].width, found[i].height);
        }
    }
    return rectangles;
}

std::vector<QRect> XServer::inputShape(xcb_window_t window) const {
    return shape(window, XCB_SHAPE_SK_INPUT);
}

std::vector<QRect> XServer::boundingShape(xcb_window_t window) const {
    return shape(window, XCB_SHAPE_SK_BOUNDING);
}

xcb_window_t XServer::focus() const {
    auto* const x = m_connection.get();
    const Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
}

QImage XServer::cursor() const {
    auto* const x = m_connection.get();
    const Owned<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        x, xcb_xfixes_query_version(x, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION),
        nullptr));
    const Owned<xcb_xfixes_get_cursor_image_reply_t> reply(
        xcb_xfixes_get_cursor_image_reply(x, xcb_xfixes_get_cursor_image(x), nullptr));
    if (!version || !reply) {
        return {};
    }
    QImage image(reply->width, reply->height, QImage::Format_ARGB32_Premultiplied);
    const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
    for (int y = 0; y < image.height(); ++y) {
        for (int i = 0; i < image.width(); ++i) {
            image.setPixel(i, y, *pixels++);
        }
    }
    return image;
}

QImage XServer::picture(const QRect& area) const {
    auto* const x = m_connection.get();
    const auto cookie =
        xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, static_cast<std::int16_t>(area.x()),
                      static_cast<std::int16_t>(area.y()), static_cast<std::uint16_t>(area.width()),
                      static_cast<std::uint16_t>(area.height()), ~std::uint32_t{0});
    const Owned<xcb_get_image_reply_t> reply(xcb_get_image_reply(x, cookie, nullptr));
    const int bytes = 4 * area.width() * area.height(); // blue, green, red, unused
    if (!reply || xcb_get_image_data_length(reply.get()) < bytes) {
        return {};
    }
    return QImage(xcb_get_image_data(reply.get()), area.width(), area.height(),
                  qsizetype{4} * area.width(), QImage::Format_RGB32)
        .copy();
}

QColor XServer::pixel(QPoint position) const {
    const QImage image = picture({position, QSize(1, 1)});
    return image.isNull() ? QColor() : image.pixelColor(0, 0);
}

} // namespace brimlet
