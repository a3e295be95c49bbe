#pragma once

#include <QString>

namespace brimlet {

/// What decides how the overlay's window is made on Linux.
struct OverlayFacts final {
    bool hasXServer = false;
    bool isWaylandDisplaySet = false;
    bool isLibraryLoaded = false; ///< libwayland-client
    bool isConnected = false;     ///< The compositor has answered.
    /// The first of the compositor's missing interfaces; empty when all are there.
    QString missingInterface;
};

/// The overlay's window, and one line that says why.
struct OverlayChoice final {
    bool isNative =
        false; ///< A surface of the Wayland compositor; otherwise a window on X11 or none.
    QString reason;
};

[[nodiscard]] OverlayChoice chooseOverlay(const OverlayFacts& facts);

} // namespace brimlet
