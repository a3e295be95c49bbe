#include "platform/qt/menuplacement.h"

#include <algorithm>

namespace brimlet {
namespace {

/// Between the panel and the item or the screen's edges, in logical pixels.
constexpr int kGap = 6;

/// Like std::clamp, but `least` wins when the panel is too large and `greatest` is below it.
int bounded(int value, int least, int greatest) {
    return std::max(least, std::min(value, greatest));
}

} // namespace

QPoint menuOrigin(QSize panel, const std::optional<QRect>& item, const QRect& available) {
    const int rightmost = available.x() + available.width() - panel.width();
    const int lowest = available.y() + available.height() - panel.height();
    if (!item) {
        return {bounded(rightmost - kGap, available.x(), rightmost),
                bounded(available.y() + kGap, available.y(), lowest)};
    }
    const int x = item->x() + (item->width() - panel.width()) / 2;
    const bool isInUpperHalf = item->center().y() < available.center().y();
    const int y =
        isInUpperHalf ? item->y() + item->height() + kGap : item->y() - kGap - panel.height();
    return {bounded(x, available.x(), rightmost), bounded(y, available.y(), lowest)};
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
    const QRect available =
        itemScreen == screens.end() ? screens.front().available : itemScreen->available;
    const QSize size = preferred.boundedTo(available.size());
    return QRect(menuOrigin(size, item, available), size);
}

} // namespace brimlet
