// Observes on a separate connection how programs use the X server. Reads commands from standard
// input, one a line, and answers each with one line: numbers, "none" when the time is up, or why it
// cannot. Times are those of the monotonic clock, in nanoseconds.
//   dark X Y MS    waits until a pixel of the screen is nearly black: when it was
//   other X Y MS   waits until a pixel of the screen is another than at first: when it was
//   window         finds the visible unmanaged window titled "Brimlet": its id. The commands below
//                  are about this window
//   paints         paints since the last call
//   painted MS     waits for the next paint after the last `paints`: when it was
//   record         counts from now on all requests of the client that owns the window
//   requests       ends the counting: requests, and their bytes
// Not linked with Qt, so that it shares no memory with what it observes.

#include "bench/xcounters.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <sstream>
#include <string_view>

#include <unistd.h>

namespace {

using namespace brimlet;

class Observer final {
public:
    [[nodiscard]] std::string answer(const std::string& line) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        if (command == "dark") {
            std::int16_t x = 0;
            std::int16_t y = 0;
            words >> x >> y;
            return textOf(waitUntil([&] { return isDark(pixel(x, y)); }, timeIn(words)));
        }
        if (command == "other") {
            std::int16_t x = 0;
            std::int16_t y = 0;
            words >> x >> y;
            const auto first = pixel(x, y);
            return textOf(waitUntil([&] { return pixel(x, y) != first; }, timeIn(words)));
        }
        if (command == "window") {
            m_window = overlay();
            m_paints.emplace(m_connection.get(), m_window);
            return std::to_string(m_window);
        }
        if (command == "paints" && m_paints) {
            return std::to_string(m_paints->take());
        }
        if (command == "painted" && m_paints) {
            return textOf(m_paints->wait(timeIn(words)));
        }
        if (command == "record" && m_paints) {
            m_requests.reset();
            m_requests = std::make_unique<RequestCounter>(m_connection.get(), m_window);
            return "0";
        }
        if (command == "requests" && m_requests) {
            const std::string counted = m_requests->finish();
            m_requests.reset();
            return counted;
        }
        throw std::runtime_error("not possible now: " + command);
    }
    void drain() {
        if (m_paints) {
            m_paints->drain();
        }
        if (m_requests) {
            m_requests->drain();
        }
    }

private:
    [[nodiscard]] static std::string textOf(std::optional<Clock::time_point> time) {
        return time ? std::to_string(std::chrono::nanoseconds(time->time_since_epoch()).count())
                    : "none";
    }
    [[nodiscard]] static Milliseconds timeIn(std::istream& words) {
        int count = 0;
        words >> count;
        return Milliseconds(count);
    }

    /// Checks each millisecond: short, as starts are timed with it, and long enough to leave the
    /// processor to the program that starts.
    template <typename Condition>
    [[nodiscard]] static std::optional<Clock::time_point> waitUntil(Condition holds,
                                                                    Milliseconds time) {
        for (const auto end = Clock::now() + time; !holds(); ::poll(nullptr, 0, 1)) {
            if (Clock::now() >= end) {
                return std::nullopt;
            }
        }
        return Clock::now();
    }
    using Pixel = std::array<std::uint8_t, 3>;
    /// Absent while there is no such pixel.
    [[nodiscard]] std::optional<Pixel> pixel(std::int16_t x, std::int16_t y) const {
        const auto cookie = xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                          screen().root, x, y, 1, 1, ~std::uint32_t{0});
        const XcbReply<xcb_get_image_reply_t> reply(
            xcb_get_image_reply(m_connection.get(), cookie, nullptr));
        if (!reply) {
            return std::nullopt;
        }
        const std::uint8_t* const parts = xcb_get_image_data(reply.get());
        return Pixel{parts[0], parts[1], parts[2]};
    }
    [[nodiscard]] static bool isDark(const std::optional<Pixel>& pixel) {
        return pixel && std::all_of(pixel->begin(), pixel->end(),
                                    [](std::uint8_t part) { return part < 40; });
    }
    [[nodiscard]] xcb_window_t overlay() const {
        const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
            m_connection.get(), xcb_query_tree(m_connection.get(), screen().root), nullptr));
        if (tree) {
            const std::span windows(xcb_query_tree_children(tree.get()), tree->children_len);
            const auto found = std::find_if(windows.begin(), windows.end(),
                                            [this](xcb_window_t each) { return isOverlay(each); });
            if (found != windows.end()) {
                return *found;
            }
        }
        throw std::runtime_error("there is no visible window named Brimlet");
    }
    [[nodiscard]] bool isOverlay(xcb_window_t window) const {
        const auto attributesCookie = xcb_get_window_attributes(m_connection.get(), window);
        const auto titleCookie = xcb_get_property(m_connection.get(), 0, window, XCB_ATOM_WM_NAME,
                                                  XCB_GET_PROPERTY_TYPE_ANY, 0, 16);
        const XcbReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(m_connection.get(), attributesCookie, nullptr));
        const XcbReply<xcb_get_property_reply_t> title(
            xcb_get_property_reply(m_connection.get(), titleCookie, nullptr));
        if (!attributes || !title || attributes->override_redirect == 0 ||
            attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
            return false;
        }
        return std::string_view(static_cast<const char*>(xcb_get_property_value(title.get())),
                                static_cast<std::size_t>(
                                    xcb_get_property_value_length(title.get()))) == "Brimlet";
    }
    [[nodiscard]] const xcb_screen_t& screen() const {
        return *xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data;
    }

    Connection m_connection = connectToServer();
    xcb_window_t m_window = 0;
    std::optional<PaintCounter> m_paints;
    std::unique_ptr<RequestCounter> m_requests;
};

} // namespace

int main() try {
    Observer observer;
    for (std::string line; true;) {
        // Twice a second at most, to leave the processor to what is observed.
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const bool hasCommand = ::poll(&input, 1, 500) != 0;
        if (hasCommand && !std::getline(std::cin, line)) {
            return 0;
        }
        try {
            if (hasCommand) {
                std::cout << observer.answer(line) << std::endl;
            } else {
                observer.drain();
            }
        } catch (const std::exception& failure) {
            // As the answer to the next command if there is none now.
            if (hasCommand || std::getline(std::cin, line)) {
                std::cout << failure.what() << std::endl;
            }
        }
    }
} catch (const std::exception& failure) {
    std::cerr << "bench-xobserver: " << failure.what() << '\n';
    return 1;
}
