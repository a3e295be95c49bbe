#pragma once

#include "platform/rect.h"

#include <QByteArrayList>
#include <QString>

#include <optional>

namespace brimlet {

/// The built-in panel of an Apple laptop, in its native pixels. The height includes the band beside
/// the notch; the notch is centred at the top edge.
struct NotchedPanel final {
    int width = 0;
    int height = 0;
    int notchWidth = 0;
    int notchHeight = 0;
};

/// What the device tree says of the built-in panel; 0 where it says nothing.
struct DescribedPanel final {
    int widthMm = 0;
    int heightMm = 0;
    int bandHeight = 0; ///< Of the band beside the notch, in native pixels.

    bool operator==(const DescribedPanel&) const = default;
};

/// The strips left and right of a notch, in the coordinates of the screen's frame (points, y up).
struct NotchStrips final {
    Rect left;
    Rect right;
};

/// Looks up the device tree's "compatible" names, the most specific first. Absent unless one of
/// them is a laptop known to have a notch.
[[nodiscard]] std::optional<NotchedPanel> notchedPanel(const QByteArrayList& compatible);

/// Whether the screen on that connector is the panel with its band shown. The connector must be
/// embedded ("eDP…") or "XWAYLAND" with a number, the name that older XWayland versions give every
/// screen. The frame must have the aspect ratio of the whole panel; a hidden band or a rotation
/// changes that ratio.
[[nodiscard]] bool showsBand(const NotchedPanel& panel, const QString& connector,
                             const Rect& frame);

/// The strips beside the notch, rounded to whole points so that the gap between them always covers
/// the notch; absent while the band is not shown. `showNotch` is the display driver's setting, see
/// `readShowNotch`; while it is absent, the aspect ratio alone decides.
[[nodiscard]] std::optional<NotchStrips> notchStrips(const NotchedPanel& panel,
                                                     std::optional<bool> showNotch,
                                                     const QString& connector, const Rect& frame);

/// The "compatible" names in the device tree of the system at `root` ("/" except in tests), the
/// most specific first. Empty on a machine without a device tree.
[[nodiscard]] QByteArrayList readCompatible(const QString& root);

/// The model's name in that device tree, such as "Apple MacBook Air (13-inch, M2, 2022)"; empty
/// without one.
[[nodiscard]] QByteArray readModel(const QString& root);

/// The panel at the display controller in that device tree. The boot loader adds the band.
[[nodiscard]] DescribedPanel readDescribedPanel(const QString& root);

/// Whether the display driver of the system at `root` is set to show the band beside the notch;
/// absent without such a driver or when the setting is unreadable.
[[nodiscard]] std::optional<bool> readShowNotch(const QString& root);

} // namespace brimlet
