#include "platform/wayland/waylandbuffers.h"

#include "platform/wayland/waylandprotocols.h"

#include <cstdint>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace brimlet {

WaylandBuffers::WaylandBuffers(wl_shm* shm, QSize size)
    : m_size(size) {
    const int stride = 4 * size.width();
    const int bytes = stride * size.height();
    const int file = ::memfd_create("brimlet", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    m_bytes = std::size_t(2) * static_cast<std::size_t>(bytes);
    if (file >= 0 && ::ftruncate(file, static_cast<off_t>(m_bytes)) == 0) {
        // So that compositors need not guard against a file that becomes shorter.
        ::fcntl(file, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_SEAL);
        m_memory = ::mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    }
    if (m_memory != nullptr && m_memory != MAP_FAILED) {
        const Proxy<wl_shm_pool> pool(wl_shm_create_pool(shm, file, 2 * bytes));
        static constexpr wl_buffer_listener kBuffer{.release = [](void* data, wl_buffer*) {
            auto& picture = *static_cast<Picture*>(data);
            picture.isInUse = false;
            picture.owner->released();
        }};
        int offset = 0;
        for (Picture& picture : m_pictures) {
            picture.owner = this;
            picture.image = QImage(static_cast<uchar*>(m_memory) + offset, size.width(),
                                   size.height(), stride, QImage::Format_ARGB32_Premultiplied);
            picture.buffer.reset(wl_shm_pool_create_buffer(
                pool.get(), offset, size.width(), size.height(), stride, WL_SHM_FORMAT_ARGB8888));
            wl_buffer_add_listener(picture.buffer.get(), &kBuffer, &picture);
            offset += bytes;
        }
    }
    if (file >= 0) {
        ::close(file);
    }
}

WaylandBuffers::~WaylandBuffers() {
    if (isValid()) {
        ::munmap(m_memory, m_bytes);
    }
}

int WaylandBuffers::next() const {
    const int other = m_shown == 0 ? 1 : 0;
    return m_pictures.at(static_cast<std::size_t>(other)).isInUse ? -1 : other;
}

QImage& WaylandBuffers::beginPaint(const QRegion& covered) {
    QImage& image = m_pictures.at(static_cast<std::size_t>(next())).image;
    m_changed -= covered;
    if (m_shown >= 0 && !m_changed.isEmpty()) {
        const QImage& shown = m_pictures.at(static_cast<std::size_t>(m_shown)).image;
        for (const QRect& part : m_changed) {
            const std::ptrdiff_t from = std::ptrdiff_t{4} * part.left();
            for (int y = part.top(); y <= part.bottom(); ++y) {
                std::memcpy(image.scanLine(y) + from, shown.constScanLine(y) + from,
                            4 * static_cast<std::size_t>(part.width()));
            }
        }
    }
    m_changed = {};
    return image;
}

void WaylandBuffers::show(wl_surface* surface, const QRegion& changed) {
    const bool wasNew = isNew();
    m_shown = next();
    // The other picture was never painted.
    m_changed = wasNew ? QRegion(QRect(QPoint(), m_size)) : changed;
    Picture& picture = m_pictures.at(static_cast<std::size_t>(m_shown));
    picture.isInUse = true;
    wl_surface_attach(surface, picture.buffer.get(), 0, 0);
    for (const QRect& part : changed) {
        wl_surface_damage_buffer(surface, part.x(), part.y(), part.width(), part.height());
    }
}

} // namespace brimlet
