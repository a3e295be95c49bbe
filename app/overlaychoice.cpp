#include "app/overlaychoice.h"

namespace brimlet {

OverlayChoice chooseOverlay(const OverlayFacts& facts) {
    if (!facts.isWaylandDisplaySet) {
        return {false, QStringLiteral("X11, since WAYLAND_DISPLAY is not set")};
    }
    if (!facts.isLibraryLoaded) {
        return {false, QStringLiteral("X11, since there is no libwayland-client 1.20 or later")};
    }
    if (!facts.isConnected) {
        return {false, QStringLiteral("X11, since the Wayland compositor does not answer")};
    }
    if (!facts.missingInterface.isEmpty()) {
        return {false, QStringLiteral("X11, since the Wayland compositor does not offer %1")
                           .arg(facts.missingInterface)};
    }
    return {true, QStringLiteral("Wayland, since the compositor offers zwlr_layer_shell_v1")};
}

} // namespace brimlet
