#include "creative/continuouspaths.h"

#include <algorithm>

namespace brimlet {
namespace {

// Each half of a corner is one cubic Bézier curve. It starts in the middle of the corner's circular
// arc, with the arc's direction and curvature, and ends on the edge. Both control points are on the
// edge, so its curvature there is zero. The constants are distances from the corner along the edge,
// in units of the radius: the middle of the arc, the two control points, the end.
constexpr double kCircle = 0.292893;
constexpr double kFirst = 0.585786;
constexpr double kSecond = 0.949747;
constexpr double kEdge = 1.28;

} // namespace

QPainterPath capsulePath(const QRectF& box) {
    // Each end is a quarter of a circle around its tip, between two halves of a corner.
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

QPainterPath roundedPath(const QRectF& box, double radius) {
    const double r = std::min(radius, std::min(box.width(), box.height()) / 2 / kEdge);
    QPainterPath path;
    // A corner at `at`. The path arrives on one edge and leaves on the other; the unit vectors `in`
    // and `out` point from the corner along them.
    const auto corner = [&](QPointF at, QPointF in, QPointF out) {
        const auto along = [&](QPointF step, double distance) { return at + step * distance * r; };
        const QPointF middle = at + (in + out) * kCircle * r;
        if (path.elementCount() == 0) {
            path.moveTo(along(in, kEdge));
        } else {
            path.lineTo(along(in, kEdge));
        }
        path.cubicTo(along(in, kSecond), along(in, kFirst), middle);
        path.cubicTo(along(out, kFirst), along(out, kSecond), along(out, kEdge));
    };
    constexpr QPointF kLeft(-1, 0);
    constexpr QPointF kRight(1, 0);
    constexpr QPointF kUp(0, -1);
    constexpr QPointF kDown(0, 1);
    corner(box.topRight(), kLeft, kDown);
    corner(box.bottomRight(), kUp, kLeft);
    corner(box.bottomLeft(), kRight, kUp);
    corner(box.topLeft(), kDown, kRight);
    path.closeSubpath();
    return path;
}

} // namespace brimlet
