#pragma once

#include "platform/textstrip.h"

#include <QtGlobal>

#include <array>
#include <cstdint>
#include <span>

struct xcb_connection_t;

namespace brimlet {

/// Shows scrolling texts by copying: their pictures are on the X server, so that a step sends it
/// some bytes and paints nothing. On Qt's connection and the main thread.
class X11TextStrips final {
public:
    X11TextStrips() = default;
    ~X11TextStrips() { clear(); }
    X11TextStrips(const X11TextStrips&) = delete;
    X11TextStrips& operator=(const X11TextStrips&) = delete;

    /// The native window to show them in; 0 for none.
    void setWindow(std::uint32_t window);
    /// Copies the texts into the window at once. Returns false if that is not possible, because
    /// there is none, or the window or the X server has pixels of another kind than the pictures.
    [[nodiscard]] bool show(std::span<const TextStrip> texts);
    /// Frees the X server's memory.
    void clear();

private:
    /// A picture on the X server; 0 for none.
    struct Strip final {
        qint64 key = 0; ///< The picture's `QImage::cacheKey()`.
        std::uint32_t pixmap = 0;
    };
    void upload(const QImage& picture);

    xcb_connection_t* m_x = nullptr; ///< Null where texts cannot be copied.
    std::uint32_t m_window = 0;
    std::array<Strip, 2> m_strips; ///< One for each capsule; the one used last is the first.
    std::uint32_t m_context = 0;   ///< The X server's graphics context; 0 for none.
};

} // namespace brimlet
