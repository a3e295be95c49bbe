#pragma once

#include "platform/rect.h"

#include <QByteArrayList>
#include <QString>

#include <optional>

namespace brimlet {

/// An Apple laptop's own panel, in its pixels: the band beside the notch included, the notch in the
/// middle of its top edge.
struct NotchedPanel final {
    int width = 0;
    int height = 0;
    int notchWidth = 0;
    int notchHeight = 0;

    bool operator==(const NotchedPanel&) const = default;
};

/// The strips left and right of a notch, in the space of the screen's frame.
struct NotchStrips final {
    Rect left;
    Rect right;

    bool operator==(const NotchStrips&) const = default;
};

/// The panel of the machine that calls itself by these names; absent where none is a laptop known
/// to have a notch.
[[nodiscard]] std::optional<NotchedPanel> notchedPanel(const QByteArrayList& compatible);

/// Whether the screen on that connector is the panel, its band shown. The connector is an embedded
/// one or "XWAYLAND" with a number, which older XWayland calls every screen; the sides must be
/// those of the whole panel, as with its band hidden, or turned, they are not.
[[nodiscard]] bool showsBand(const NotchedPanel& panel, const QString& connector,
                             const Rect& frame);

/// The strips beside the notch, of whole points: where the notch ends inside a point, that point
/// belongs to the gap. `showNotch` is the display driver's setting; absent where it tells none,
/// so that the screen's sides alone decide.
[[nodiscard]] std::optional<NotchStrips> notchStrips(const NotchedPanel& panel,
                                                     std::optional<bool> showNotch,
                                                     const QString& connector, const Rect& frame);

/// The names of this machine's kind in the device tree below `root`, the most exact one first; none
/// where there is no device tree.
[[nodiscard]] QByteArrayList readCompatible(const QString& root);

/// Whether the display driver below `root` shows the band beside the notch; absent where it does
/// not say.
[[nodiscard]] std::optional<bool> readShowNotch(const QString& root);

} // namespace brimlet
