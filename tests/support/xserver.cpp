#include "tests/support/xserver.h"

#include <QByteArrayView>

#include <cstdlib>

#include <xcb/shape.h>

namespace brimlet {
namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

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

std::optional<xcb_window_t> XServer::windowNamed(const char* title) const {
    auto* const x = m_connection.get();
    const Owned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x, xcb_query_tree(x, m_root), nullptr));
    if (!tree) {
        return std::nullopt;
    }
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto cookie =
            xcb_get_property(x, 0, children[i], XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, 64);
        const Owned<xcb_get_property_reply_t> name(xcb_get_property_reply(x, cookie, nullptr));
        if (name && QByteArrayView(static_cast<const char*>(xcb_get_property_value(name.get())),
                                   xcb_get_property_value_length(name.get())) == title) {
            return children[i];
        }
    }
    return std::nullopt;
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

QColor XServer::pixel(QPoint position) const {
    auto* const x = m_connection.get();
    const auto cookie =
        xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, static_cast<std::int16_t>(position.x()),
                      static_cast<std::int16_t>(position.y()), 1, 1, ~std::uint32_t{0});
    const Owned<xcb_get_image_reply_t> reply(xcb_get_image_reply(x, cookie, nullptr));
    if (!reply || xcb_get_image_data_length(reply.get()) < 4) {
        return {};
    }
    const std::uint8_t* const bytes = xcb_get_image_data(reply.get()); // blue, green, red, unused
    return {bytes[2], bytes[1], bytes[0]};
}

} // namespace brimlet
