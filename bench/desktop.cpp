#include "bench/desktop.h"

#include "tests/support/failure.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace brimlet {

Desktop::Desktop()
    : m_connection(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(m_connection.get()) != 0) {
        throw Failure("there is no X server");
    }
    m_root = xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
}

bool Desktop::isDark(std::int16_t x, std::int16_t y) const {
    const auto cookie = xcb_get_image(connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, x, y, 1, 1,
                                      ~std::uint32_t{0});
    const XcbReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection(), cookie, nullptr));
    if (!reply) {
        return false;
    }
    const std::span<const std::uint8_t> pixel(xcb_get_image_data(reply.get()), 3);
    return std::all_of(pixel.begin(), pixel.end(), [](std::uint8_t part) { return part < 40; });
}

xcb_window_t Desktop::overlay() const {
    const XcbReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection(), xcb_query_tree(connection(), m_root), nullptr));
    if (!tree) {
        return 0;
    }
    const std::span windows(xcb_query_tree_children(tree.get()), tree->children_len);
    const auto found = std::find_if(windows.begin(), windows.end(),
                                    [this](xcb_window_t window) { return isOverlay(window); });
    return found == windows.end() ? 0 : *found;
}

bool Desktop::isOverlay(xcb_window_t window) const {
    const auto attributesCookie = xcb_get_window_attributes(connection(), window);
    const auto titleCookie = xcb_get_property(connection(), 0, window, XCB_ATOM_WM_NAME,
                                              XCB_GET_PROPERTY_TYPE_ANY, 0, 16);
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection(), attributesCookie, nullptr));
    const XcbReply<xcb_get_property_reply_t> title(
        xcb_get_property_reply(connection(), titleCookie, nullptr));
    if (!attributes || !title || attributes->override_redirect == 0 ||
        attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        return false;
    }
    const std::string_view text(
        static_cast<const char*>(xcb_get_property_value(title.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(title.get())));
    return text == "Brimlet";
}

} // namespace brimlet
