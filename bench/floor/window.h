#pragma once

#include "bench/floor/textpixels.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace brimlet {

/// Two black capsules beside the notch of the 14-inch machine at one pixel a point, as a window of
/// the program's size and place, cut to the capsules by whole pixels. The X server holds the texts.
class Window final {
public:
    Window()
        : m_connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(m_connection.get()) != 0) {
            throw std::runtime_error("there is no X server");
        }
        create(*xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data);
        cutToCapsules();
    }

    /// To be watched for input.
    [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(m_connection.get()); }
    /// Sends both texts of the left (0) or right (1) capsule to the server.
    void setTexts(std::size_t slot, const std::string& brand, const std::string& tagline) {
        upload(TextPixels(brand, kLine.width, kLine.height), m_texts.at(slot)[0]);
        upload(TextPixels(tagline, kLine.width, kLine.height), m_texts.at(slot)[1]);
    }
    /// By how many pixels the tagline is wider than its line.
    [[nodiscard]] int overflow(std::size_t slot) const {
        return m_texts.at(slot)[1].width - kLine.width;
    }
    /// Copies the line's box out of one of its two texts.
    void paint(std::size_t slot, bool isTagline, int pixel) {
        const Text& text = m_texts.at(slot).at(isTagline ? 1 : 0);
        xcb_copy_area(m_connection.get(), text.pixmap, m_window, m_context,
                      static_cast<std::int16_t>(pixel), 0,
                      static_cast<std::int16_t>(kCapsuleX.at(slot) + kLine.x), kCapsuleY + kLine.y,
                      kLine.width, kLine.height);
    }
    void show() { xcb_map_window(m_connection.get(), m_window); }
    void flush() { xcb_flush(m_connection.get()); }
    /// Whether a part of the window was uncovered, so that its lines have to be painted again.
    [[nodiscard]] bool readEvents() {
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

private:
    struct Text final {
        xcb_pixmap_t pixmap = 0;
        int width = 0;
    };

    static constexpr xcb_rectangle_t kFrame{542, 0, 428, 40};
    static constexpr std::array<std::int16_t, 2> kCapsuleX{8, 312};
    static constexpr std::int16_t kCapsuleY = 1;
    static constexpr int kCapsuleWidth = 108;
    static constexpr int kCapsuleHeight = 24;
    /// Inside a capsule, behind the room for the picture, which is left free.
    static constexpr xcb_rectangle_t kLine{28, 2, 73, 20};

    /// How many pixels a row of a capsule is shorter at either end than the capsule.
    [[nodiscard]] static int indent(int row) {
        constexpr double kRadius = kCapsuleHeight / 2.0;
        const double fromAxis = row + 0.5 - kRadius;
        return static_cast<int>(kRadius - std::sqrt(kRadius * kRadius - fromAxis * fromAxis));
    }
    /// One with transparency where there is one, else the screen's own.
    [[nodiscard]] static std::pair<std::uint8_t, xcb_visualid_t>
    visualOf(const xcb_screen_t& screen) {
        for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem != 0;
             xcb_depth_next(&depth)) {
            const auto visual = xcb_depth_visuals_iterator(depth.data);
            if (depth.data->depth == 32 && visual.rem != 0) {
                return {depth.data->depth, visual.data->visual_id};
            }
        }
        return {screen.root_depth, screen.root_visual};
    }
    void create(const xcb_screen_t& screen) {
        xcb_connection_t* const connection = m_connection.get();
        const auto [depth, visual] = visualOf(screen);
        m_depth = depth;
        const xcb_colormap_t colors = xcb_generate_id(connection);
        xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colors, screen.root, visual);
        m_window = xcb_generate_id(connection);
        const std::array<std::uint32_t, 5> values{kBackground, 0, 1, XCB_EVENT_MASK_EXPOSURE,
                                                  colors};
        xcb_create_window(connection, m_depth, m_window, screen.root, kFrame.x, kFrame.y,
                          kFrame.width, kFrame.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
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
    /// Clicks beside them go to the window below.
    void cutToCapsules() {
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
    void upload(const TextPixels& pixels, Text& text) {
        xcb_connection_t* const connection = m_connection.get();
        if (text.pixmap != 0) {
            xcb_free_pixmap(connection, text.pixmap);
        }
        const auto width = static_cast<std::uint16_t>(pixels.width());
        const auto height = static_cast<std::uint16_t>(pixels.height());
        text = {xcb_generate_id(connection), pixels.width()};
        xcb_create_pixmap(connection, m_depth, text.pixmap, m_window, width, height);
        xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, text.pixmap, m_context, width, height,
                      0, 0, 0, m_depth, static_cast<std::uint32_t>(pixels.values().size() * 4),
                      reinterpret_cast<const std::uint8_t*>(pixels.values().data()));
    }

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    std::uint8_t m_depth = 0;
    xcb_window_t m_window = 0;
    xcb_gcontext_t m_context = 0;
    std::array<std::array<Text, 2>, 2> m_texts; ///< Of each slot brand and tagline.
};

} // namespace brimlet
