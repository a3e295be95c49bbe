#include "overlay/capsule.h"

#include <QPainter>

namespace brimlet {

QPainterPath capsulePath(const QRectF& box) {
    // Each end is a quarter of a circle around its tip, between two cubic curves that carry its
    // bend over into the straight edges. Distances from the end, in half heights: where a curve
    // leaves the circle (which is as far from the edge), its two control points, which lie on the
    // edge so that it leaves that without a bend, and where it meets the edge.
    constexpr double kCircle = 0.292893;
    constexpr double kFirst = 0.585786;
    constexpr double kSecond = 0.949747; // the second gives the circle's own bend where they meet
    constexpr double kEdge = 1.28;
    const double r = box.height() / 2;
    const QRectF leftCircle(box.left(), box.top(), 2 * r, 2 * r);
    const QRectF rightCircle(box.right() - 2 * r, box.top(), 2 * r, 2 * r);
    const auto left = [&](double distance) { return box.left() + distance * r; };
    const auto right = [&](double distance) { return box.right() - distance * r; };
    const double upper = box.top() + kCircle * r;

    QPainterPath path(QPointF(left(kEdge), box.top()));
    path.lineTo(right(kEdge), box.top());
    path.cubicTo(right(kSecond), box.top(), right(kFirst), box.top(), right(kCircle), upper);
    path.arcTo(rightCircle, 45, -90);
    path.cubicTo(right(kFirst), box.bottom(), right(kSecond), box.bottom(), right(kEdge),
                 box.bottom());
    path.lineTo(left(kEdge), box.bottom());
    path.cubicTo(left(kSecond), box.bottom(), left(kFirst), box.bottom(), left(kCircle),
                 box.bottom() - kCircle * r);
    path.arcTo(leftCircle, 225, -90);
    path.cubicTo(left(kFirst), box.top(), left(kSecond), box.top(), left(kEdge), box.top());
    path.closeSubpath();
    return path;
}

QImage capsulePicture(QSize size, double devicePixelRatio) {
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(kCapsuleGround);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath capsule = capsulePath(QRectF(picture.rect()));
    painter.strokePath(capsule, QPen(QColor::fromRgbF(1, 1, 1, 0.14F), 0.5 * devicePixelRatio));
    // Clipped last: the outer half of the rim is cut away with everything else outside.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    QImage mask(size, QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter maskPainter(&mask);
    maskPainter.setRenderHint(QPainter::Antialiasing);
    maskPainter.fillPath(capsule, Qt::black);
    maskPainter.end();
    painter.drawImage(0, 0, mask);
    return picture;
}

} // namespace brimlet
