#pragma once

#include "platform/wayland/waylandproxies.h"

#include <QImage>
#include <QRegion>
#include <QSize>

#include <array>
#include <cstddef>
#include <functional>

namespace brimlet {

/// Two pictures in memory shared with the compositor: it shows one while the other is painted.
/// Main thread only.
class WaylandBuffers final {
public:
    /// Not painted yet, in pixels. `isValid()` tells whether there was memory.
    WaylandBuffers(wl_shm* shm, QSize size);
    ~WaylandBuffers();
    WaylandBuffers(const WaylandBuffers&) = delete;
    WaylandBuffers& operator=(const WaylandBuffers&) = delete;

    [[nodiscard]] bool isValid() const { return !m_pictures[0].image.isNull(); }
    [[nodiscard]] QSize size() const { return m_size; }
    /// Nothing was shown yet, so all of it is to be painted.
    [[nodiscard]] bool isNew() const { return m_shown < 0; }
    /// Whether there is a picture that the compositor does not read.
    [[nodiscard]] bool canPaint() const { return next() >= 0; }

    /// The picture to paint on, with what is shown now but for the `covered` pixels, which are all
    /// painted. Needs `canPaint()`.
    [[nodiscard]] QImage& beginPaint(const QRegion& covered = {});
    /// Makes the surface's next commit show that picture, of which these pixels have changed.
    void show(wl_surface* surface, const QRegion& changed);

    /// Called when the compositor has given a picture back.
    std::function<void()> released;

private:
    struct Picture final {
        WaylandBuffers* owner = nullptr;
        QImage image;
        Proxy<wl_buffer> buffer;
        bool isInUse = false;
    };
    /// The index of the picture to paint on; -1 for none.
    [[nodiscard]] int next() const;

    QSize m_size;
    void* m_memory = nullptr;
    std::size_t m_bytes = 0;
    std::array<Picture, 2> m_pictures;
    int m_shown = -1;
    QRegion m_changed; ///< Where the shown picture differs from the other one.
};

} // namespace brimlet
