#pragma once

#include "bench/floor/pixels.h"

#include <array>
#include <memory>

#include <xcb/xcb.h>

namespace brimlet {

/// Two black capsules beside the notch of the 14-inch machine at one pixel a point, as a window of
/// the program's size and place, cut to the capsules by whole pixels. All that is shown is on the X
/// server's side.
class FloorWindow final {
public:
    FloorWindow();

    /// To be watched for input.
    [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(m_connection.get()); }
    /// Takes both texts of the left (0) or right (1) capsule to the server.
    void setTexts(std::size_t slot, const std::string& brand, const std::string& tagline);
    /// By how many pixels the tagline is wider than its line.
    [[nodiscard]] int overflow(std::size_t slot) const;
    /// Copies the line's box out of one of its two texts.
    void paint(std::size_t slot, bool isTagline, int pixel);
    void show() { xcb_map_window(m_connection.get(), m_window); }
    void flush() { xcb_flush(m_connection.get()); }
    /// Whether a part of the window was uncovered, so that its lines have to be painted again.
    [[nodiscard]] bool readEvents();

private:
    struct Text final {
        xcb_pixmap_t pixmap = 0;
        int width = 0;
    };

    void create(const xcb_screen_t& screen);
    void cutToCapsules();
    void upload(const Pixels& pixels, Text& text);

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
