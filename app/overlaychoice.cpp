#include "app/overlaychoice.h"

namespace brimlet {
namespace {

/// Why there is no native overlay; empty where there is one.
QString obstacle(const OverlayFacts& facts) {
    if (!facts.isWaylandDisplaySet) {
        return QStringLiteral("WAYLAND_DISPLAY is not set");
    }
    if (!facts.isLibraryLoaded) {
        return QStringLiteral("there is no libwayland-client 1.20 or later");
    }
    if (!facts.isConnected) {
        return QStringLiteral("the Wayland compositor does not answer");
    }
    if (!facts.missingInterface.isEmpty()) {
        return QStringLiteral("the Wayland compositor does not offer %1")
            .arg(facts.missingInterface);
    }
    return {};
}

} // namespace

OverlayChoice chooseOverlay(const OverlayFacts& facts) {
    const QString why = obstacle(facts);
    if (why.isEmpty()) {
        return {true, QStringLiteral("Wayland, since the compositor offers zwlr_layer_shell_v1")};
    }
    const QString window = facts.hasXServer
                               ? QStringLiteral("X11, since %1")
                               : QStringLiteral("none, since there is no X server and %1");
    return {false, window.arg(why)};
}

} // namespace brimlet
