#include "platform/qt/menuplacement.h"

#include <algorithm>

namespace brimlet {
namespace {

/// Between the panel and the item or the edges of the available area, in logical pixels.
constexpr int kGap = 6;

/// The positions along one axis at which a panel of this length is inside the available area, and
/// `kGap` away from its ends as far as there is room. A panel that is too long starts at its start.
struct Positions final {
    Positions(int panel, int start, int length)
        : first(start + std::clamp((length - panel) / 2, 0, kGap))
        , last(std::max(first, start + length - panel - kGap)) {}

    [[nodiscard]] int nearest(int position) const { return std::clamp(position, first, last); }

    int first;
    int last;
};

/// The corner at which a desktop's tray usually is, as far as the bars tell.
QPoint trayCorner(const MenuScreen& screen, const Positions& x, const Positions& y) {
    const QRect& whole = screen.geometry;
    const QRect& available = screen.available;
    const bool isBarAtTop = available.top() > whole.top();
    const bool isBarAtBottom = available.bottom() < whole.bottom();
    const bool isBarAtLeft = available.left() > whole.left();
    const bool isBarAtRight = available.right() < whole.right();
    const bool isLow = !isBarAtTop && (isBarAtBottom || isBarAtLeft || isBarAtRight);
    const bool isAtSide = !isBarAtTop && !isBarAtBottom && (isBarAtLeft || isBarAtRight);
    const bool isLeft = isAtSide ? isBarAtLeft : screen.isMirrored;
    return {isLeft ? x.first : x.last, isLow ? y.last : y.first};
}

} // namespace

bool isOnBar(QPoint point, const std::vector<MenuScreen>& screens) {
    return std::any_of(screens.begin(), screens.end(), [&](const MenuScreen& screen) {
        return screen.geometry.contains(point) && !screen.available.contains(point);
    });
}

std::optional<QPoint> clickOnItem(const std::optional<QPoint>& pointer,
                                  const std::optional<QPoint>& reported,
                                  const std::vector<MenuScreen>& screens) {
    if (pointer && isOnBar(*pointer, screens)) {
        return pointer;
    }
    const bool isKnown = reported && *reported != QPoint();
    return isKnown && isOnBar(*reported, screens) ? reported : pointer;
}

QPoint menuOrigin(QSize panel, const std::optional<QRect>& item, const MenuScreen& screen) {
    const QRect& available = screen.available;
    const Positions x(panel.width(), available.x(), available.width());
    const Positions y(panel.height(), available.y(), available.height());
    if (!item) {
        return trayCorner(screen, x, y);
    }
    const bool isInUpperHalf = item->center().y() < available.center().y();
    const int besideItem =
        isInUpperHalf ? item->y() + item->height() + kGap : item->y() - kGap - panel.height();
    return {x.nearest(item->x() + (item->width() - panel.width()) / 2), y.nearest(besideItem)};
}

std::optional<QRect> menuFrame(QSize preferred, const std::optional<QRect>& item,
                               const std::vector<MenuScreen>& screens) {
    if (screens.empty()) {
        return std::nullopt;
    }
    const auto itemScreen =
        std::find_if(screens.begin(), screens.end(), [&](const MenuScreen& screen) {
            return item && screen.geometry.contains(item->center());
        });
    const MenuScreen& screen = itemScreen == screens.end() ? screens.front() : *itemScreen;
    const QSize size = preferred.boundedTo(screen.available.size() - QSize(2 * kGap, 2 * kGap));
    return QRect(menuOrigin(size, item, screen), size);
}

QRect withMargins(const QRect& panel, const QMargins& margins,
                  const std::vector<MenuScreen>& screens) {
    const auto screen = std::find_if(screens.begin(), screens.end(), [&](const MenuScreen& each) {
        return each.available.contains(panel.center());
    });
    return screen == screens.end() ? panel
                                   : (panel.marginsAdded(margins) & screen->available) | panel;
}

} // namespace brimlet
