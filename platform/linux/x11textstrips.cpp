#include "platform/linux/x11textstrips.h"

#include "platform/linux/xcbowners.h"

#include <QImage>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace brimlet {
namespace {

constexpr std::uint8_t kDepth = 32;

} // namespace

void X11TextStrips::setWindow(const QWindow& window) {
    xcb_connection_t* const x = xcbConnectionOfQt();
    constexpr int kOwnOrder =
        Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
    const bool canCopy = x != nullptr && window.format().hasAlpha() &&
                         xcb_get_setup(x)->image_byte_order == kOwnOrder;
    if (!canCopy) {
        clear();
    }
    m_x = canCopy ? x : nullptr;
    m_window = static_cast<xcb_window_t>(window.winId());
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
        if (m_strips[0].key != text.picture->cacheKey()) {
            std::swap(m_strips[0], m_strips[1]);
        }
        if (m_strips[0].key != text.picture->cacheKey()) {
            upload(*text.picture);
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
    constexpr int kRequestBytes = 0x10000; // any X server takes four times as much
    const int rowsAtOnce = std::max(1, kRequestBytes / rowBytes);
    for (int y = 0; y < picture.height(); y += rowsAtOnce) {
        const int rows = std::min(rowsAtOnce, picture.height() - y);
        xcb_put_image(m_x, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, m_context, width,
                      static_cast<std::uint16_t>(rows), 0, static_cast<std::int16_t>(y), 0, kDepth,
                      static_cast<std::uint32_t>(rows * rowBytes), picture.constScanLine(y));
    }
}

void X11TextStrips::clear() {
    for (Strip& strip : m_strips) {
        if (std::exchange(strip.key, 0) != 0) {
            xcb_free_pixmap(m_x, std::exchange(strip.pixmap, 0));
        }
    }
    if (m_context != 0) {
        xcb_free_gc(m_x, std::exchange(m_context, 0));
    }
}

} // namespace brimlet
