#include "bench/floor/floorwindow.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include <xcb/shape.h>

namespace brimlet {
namespace {

constexpr std::int16_t kWindowX = 542;
constexpr std::uint16_t kWindowWidth = 428;
constexpr std::uint16_t kWindowHeight = 40;
constexpr std::array<std::int16_t, 2> kCapsuleX{8, 312};
constexpr std::int16_t kCapsuleY = 1;
constexpr int kCapsuleWidth = 108;
constexpr int kCapsuleHeight = 24;
/// Inside a capsule, behind the room for the picture, which is left free.
constexpr std::int16_t kLineX = 28;
constexpr std::int16_t kLineY = 2;
constexpr std::uint16_t kLineWidth = 73;
constexpr std::uint16_t kLineHeight = 20;

/// How many pixels a row of a capsule is shorter at either end than the capsule.
int indent(int row) {
    constexpr double kRadius = kCapsuleHeight / 2.0;
    const double fromAxis = row + 0.5 - kRadius;
    return static_cast<int>(kRadius - std::sqrt(kRadius * kRadius - fromAxis * fromAxis));
}

/// One with transparency where there is one, else the screen's own.
std::pair<std::uint8_t, xcb_visualid_t> visualOf(const xcb_screen_t& screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem != 0;
         xcb_depth_next(&depth)) {
        const auto visual = xcb_depth_visuals_iterator(depth.data);
        if (depth.data->depth == 32 && visual.rem != 0) {
            return {depth.data->depth, visual.data->visual_id};
        }
    }
    return {screen.root_depth, screen.root_visual};
}

} // namespace

FloorWindow::FloorWindow()
    : m_connection(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(m_connection.get()) != 0) {
        throw std::runtime_error("there is no X server");
    }
    create(*xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data);
    cutToCapsules();
}

void FloorWindow::create(const xcb_screen_t& screen) {
    xcb_connection_t* const connection = m_connection.get();
    const auto [depth, visual] = visualOf(screen);
    m_depth = depth;
    const xcb_colormap_t colors = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colors, screen.root, visual);
    m_window = xcb_generate_id(connection);
    const std::array<std::uint32_t, 5> values{kGround, 0, 1, XCB_EVENT_MASK_EXPOSURE, colors};
    xcb_create_window(connection, m_depth, m_window, screen.root, kWindowX, 0, kWindowWidth,
                      kWindowHeight, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());
    constexpr std::string_view kTitle("Brimlet");
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, kTitle.size(), kTitle.data());
    m_context = xcb_generate_id(connection);
    constexpr std::uint32_t kNoExposures = 0;
    xcb_create_gc(connection, m_context, m_window, XCB_GC_GRAPHICS_EXPOSURES, &kNoExposures);
}

/// Clicks beside them go to what is underneath.
void FloorWindow::cutToCapsules() {
    std::vector<xcb_rectangle_t> rows;
    for (const std::int16_t left : kCapsuleX) {
        for (int y = 0; y < kCapsuleHeight; ++y) {
            rows.push_back({static_cast<std::int16_t>(left + indent(y)),
                            static_cast<std::int16_t>(kCapsuleY + y),
                            static_cast<std::uint16_t>(kCapsuleWidth - 2 * indent(y)), 1});
        }
    }
    xcb_shape_rectangles(m_connection.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, m_window, 0, 0,
                         static_cast<std::uint32_t>(rows.size()), rows.data());
}

void FloorWindow::upload(const Pixels& pixels, Text& text) {
    xcb_connection_t* const connection = m_connection.get();
    if (text.pixmap != 0) {
        xcb_free_pixmap(connection, text.pixmap);
    }
    const auto width = static_cast<std::uint16_t>(pixels.width);
    const auto height = static_cast<std::uint16_t>(pixels.height);
    text = {xcb_generate_id(connection), pixels.width};
    xcb_create_pixmap(connection, m_depth, text.pixmap, m_window, width, height);
    xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, text.pixmap, m_context, width, height, 0,
                  0, 0, m_depth, static_cast<std::uint32_t>(pixels.values.size() * 4),
                  reinterpret_cast<const std::uint8_t*>(pixels.values.data()));
}

void FloorWindow::setTexts(std::size_t slot, const std::string& brand, const std::string& tagline) {
    upload(textPixels(brand, kLineWidth, kLineHeight), m_texts.at(slot)[0]);
    upload(textPixels(tagline, kLineWidth, kLineHeight), m_texts.at(slot)[1]);
}

int FloorWindow::overflow(std::size_t slot) const {
    return m_texts.at(slot)[1].width - kLineWidth;
}

void FloorWindow::paint(std::size_t slot, bool isTagline, int pixel) {
    const Text& text = m_texts.at(slot).at(isTagline ? 1 : 0);
    xcb_copy_area(m_connection.get(), text.pixmap, m_window, m_context,
                  static_cast<std::int16_t>(pixel), 0,
                  static_cast<std::int16_t>(kCapsuleX.at(slot) + kLineX), kCapsuleY + kLineY,
                  kLineWidth, kLineHeight);
}

bool FloorWindow::readEvents() {
    bool isUncovered = false;
    while (xcb_generic_event_t* const event = xcb_poll_for_event(m_connection.get())) {
        isUncovered = isUncovered || (event->response_type & 0x7FU) == XCB_EXPOSE;
        std::free(event);
    }
    if (xcb_connection_has_error(m_connection.get()) != 0) {
        throw std::runtime_error("the X server has gone");
    }
    return isUncovered;
}

} // namespace brimlet
