#include "platform/linux/reservedareas.h"

#include <algorithm>

namespace brimlet {
namespace {

/// What the strut leaves of the area. A bar at the inner edge of a monitor reserves all up to the
/// edge of the root window; other monitors that are there keep their area.
QRect withoutStrut(QRect area, const QRect& monitor, QSize root, const Strut& strut) {
    const auto [left, right, top, bottom, leftStart, leftEnd, rightStart, rightEnd, topStart,
                topEnd, bottomStart, bottomEnd] = strut;
    const auto isInRows = [&](int start, int end) {
        return start <= monitor.bottom() && end >= monitor.top();
    };
    const auto isInColumns = [&](int start, int end) {
        return start <= monitor.right() && end >= monitor.left();
    };
    const auto isInside = [](int position, int first, int last) {
        return position > first && position <= last;
    };
    const int rightEdge = root.width() - right; // the first reserved column
    const int bottomEdge = root.height() - bottom;
    if (isInRows(leftStart, leftEnd) && isInside(left, monitor.left(), monitor.right())) {
        area.setLeft(std::max(area.left(), left));
    }
    if (isInRows(rightStart, rightEnd) && isInside(rightEdge, monitor.left(), monitor.right())) {
        area.setRight(std::min(area.right(), rightEdge - 1));
    }
    if (isInColumns(topStart, topEnd) && isInside(top, monitor.top(), monitor.bottom())) {
        area.setTop(std::max(area.top(), top));
    }
    if (isInColumns(bottomStart, bottomEnd) &&
        isInside(bottomEdge, monitor.top(), monitor.bottom())) {
        area.setBottom(std::min(area.bottom(), bottomEdge - 1));
    }
    return area;
}

} // namespace

QRect freeArea(const QRect& monitor, bool isOnlyMonitor, const ReservedAreas& areas) {
    const auto own =
        std::find_if(areas.monitorWorkAreas.begin(), areas.monitorWorkAreas.end(),
                     [&](const QRect& area) { return !area.isEmpty() && monitor.contains(area); });
    if (own != areas.monitorWorkAreas.end()) {
        return *own;
    }
    QRect free = monitor;
    if (areas.struts.empty() || (isOnlyMonitor && !areas.workArea.isEmpty())) {
        free = areas.workArea.intersects(monitor) ? areas.workArea & monitor : monitor;
    } else {
        for (const Strut& strut : areas.struts) {
            free = withoutStrut(free, monitor, areas.root, strut);
        }
    }
    return free.isEmpty() ? monitor : free;
}

} // namespace brimlet
