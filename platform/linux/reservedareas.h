#pragma once

#include <QRect>
#include <QSize>

#include <array>
#include <vector>

namespace brimlet {

/// A window's _NET_WM_STRUT_PARTIAL: the widths reserved at the left, right, top and bottom edge of
/// the root window, and for each the first and last position along that edge.
using Strut = std::array<int, 12>;

/// What the window manager and the bars publish of the areas that bars reserve, in pixels.
struct ReservedAreas final {
    QSize root;
    /// _NET_WORKAREA: what is free of all monitors together; null where it is not set.
    QRect workArea;
    /// _GTK_WORKAREAS: what is free of each monitor; empty where it is not set.
    std::vector<QRect> monitorWorkAreas;
    std::vector<Strut> struts;
};

/// What the bars leave free of the monitor, in pixels. With several monitors the work area says
/// nothing about a bar between two of them and is the last resort; the monitors' own work areas are
/// the first.
[[nodiscard]] QRect freeArea(const QRect& monitor, bool isOnlyMonitor, const ReservedAreas& areas);

} // namespace brimlet
