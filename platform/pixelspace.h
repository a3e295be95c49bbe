#pragma once

#include <QPainter>
#include <QtMath>

namespace brimlet {

/// Makes a painter use the screen's pixels as coordinates during its lifetime, so that edges are
/// sharp and pictures are copied unscaled, whatever the scale. The painter outlives it.
class PixelSpace final {
public:
    /// The painter must have no world transform.
    explicit PixelSpace(QPainter& painter)
        : m_painter(painter)
        , m_toScreen(painter.deviceTransform()) {
        painter.setWorldTransform(m_toScreen.inverted());
    }
    ~PixelSpace() { m_painter.setWorldTransform({}); }
    PixelSpace(const PixelSpace&) = delete;
    PixelSpace& operator=(const PixelSpace&) = delete;

    /// A box in points, with each edge rounded to the nearest pixel.
    [[nodiscard]] QRect toPixels(const QRectF& box) const {
        const QRectF exact = m_toScreen.mapRect(box);
        const QPoint topLeft(qRound(exact.left()), qRound(exact.top()));
        const QPoint end(qRound(exact.right()), qRound(exact.bottom()));
        return {topLeft, end - QPoint(1, 1)};
    }
    /// Pixels per point.
    [[nodiscard]] double devicePixelRatio() const { return m_toScreen.m11(); }

private:
    QPainter& m_painter;
    QTransform m_toScreen;
};

} // namespace brimlet
