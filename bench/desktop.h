#pragma once

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace brimlet {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, FreeReply>;

/// The present X session, seen from a connection of the benchmark's own.
class Desktop final {
public:
    Desktop();

    /// Whether a pixel of the screen, as it is shown, is nearly black.
    [[nodiscard]] bool isDark(std::int16_t x, std::int16_t y) const;

    /// The visible unmanaged window titled "Brimlet"; 0 when there is none.
    [[nodiscard]] xcb_window_t overlay() const;

    [[nodiscard]] xcb_connection_t* connection() const { return m_connection.get(); }

private:
    [[nodiscard]] bool isOverlay(xcb_window_t window) const;

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_root = 0;
};

} // namespace brimlet
