#include "platform/linux/x11textstrips.h"

#include "platform/linux/xcbowners.h"

#include <QImage>

#include <algorithm>
#include <utility>

namespace brimlet {
namespace {

constexpr std::uint8_t kDepth = 32;

/// Whether the window's pixels are those of the pictures. Its format does not tell: Qt falls back
/// to the root window's depth and still says that it has an alpha channel. Takes a round trip.
bool hasPixelsOfPictures(xcb_connection_t* x, xcb_window_t window) {
    constexpr int kOwnOrder =
        Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
    const XcbOwned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(x, xcb_get_geometry(x, window), nullptr));
    return geometry && geometry->depth == kDepth && xcb_get_setup(x)->image_byte_order == kOwnOrder;
}

} // namespace

void X11TextStrips::setWindow(std::uint32_t window) {
    if (window == m_window) {
        return;
    }
    clear();
    m_window = window;
    xcb_connection_t* const x = xcbConnectionOfQt();
    m_x = window != 0 && x != nullptr && hasPixelsOfPictures(x, window) ? x : nullptr;
}

bool X11TextStrips::show(std::span<const TextStrip> texts) {
    if (m_x == nullptr) {
        return false;
    }
    for (const TextStrip& text : texts) {
        const QRect& box = text.box;
        if (box.isEmpty()) {
            continue;
        }
        if (m_strips[0].key != text.picture.cacheKey()) {
            std::swap(m_strips[0], m_strips[1]);
        }
        if (m_strips[0].key != text.picture.cacheKey()) {
            upload(text.picture);
        }
        xcb_copy_area(m_x, m_strips[0].pixmap, m_window, m_context,
                      static_cast<std::int16_t>(text.from), 0, static_cast<std::int16_t>(box.x()),
                      static_cast<std::int16_t>(box.y()), static_cast<std::uint16_t>(box.width()),
                      static_cast<std::uint16_t>(box.height()));
    }
    xcb_flush(m_x);
    return true;
}

/// Replaces the first strip.
void X11TextStrips::upload(const QImage& picture) {
    auto& [key, pixmap] = m_strips[0];
    if (pixmap != 0) {
        xcb_free_pixmap(m_x, pixmap);
    }
    key = picture.cacheKey();
    pixmap = xcb_generate_id(m_x);
    const auto width = static_cast<std::uint16_t>(picture.width());
    xcb_create_pixmap(m_x, kDepth, pixmap, m_window, width,
                      static_cast<std::uint16_t>(picture.height()));
    if (m_context == 0) {
        m_context = xcb_generate_id(m_x);
        constexpr std::uint32_t kNo = 0;
        xcb_create_gc(m_x, m_context, pixmap, XCB_GC_GRAPHICS_EXPOSURES, &kNo);
    }
    const int rowBytes = static_cast<int>(picture.bytesPerLine());
    // The X server's limit is in units of four bytes, and includes the request's head.
    const std::size_t units = std::min<std::uint32_t>(xcb_get_maximum_request_length(m_x), 0x4000);
    const int most = static_cast<int>(units * 4 - sizeof(xcb_put_image_request_t));
    const int rowsAtOnce = std::max(1, most / rowBytes);
    for (int y = 0; y < picture.height(); y += rowsAtOnce) {
        const int rows = std::min(rowsAtOnce, picture.height() - y);
        xcb_put_image(m_x, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, m_context, width,
                      static_cast<std::uint16_t>(rows), 0, static_cast<std::int16_t>(y), 0, kDepth,
                      static_cast<std::uint32_t>(rows * rowBytes), picture.constScanLine(y));
    }
}

void X11TextStrips::clear() {
    for (Strip& strip : m_strips) {
        if (strip.pixmap != 0) {
            xcb_free_pixmap(m_x, strip.pixmap);
        }
        strip = {};
    }
    if (m_context != 0) {
        xcb_free_gc(m_x, std::exchange(m_context, 0));
    }
}

} // namespace brimlet
