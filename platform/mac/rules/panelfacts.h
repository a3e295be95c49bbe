#pragma once

#include <QString>
#include <QStringList>

namespace brimlet {

/// Properties of one of the overlay's panels as AppKit reports them. The defaults are those wanted
/// of the panel for the content; masks and levels are AppKit's.
struct PanelFacts final {
    unsigned long styleMask = 0x80;          ///< Non-activating panel, nothing else.
    unsigned long collectionBehavior = 0x51; ///< All spaces, stationary, ignores window cycling.
    long level = 25;                         ///< NSStatusWindowLevel.
    bool isFloatingPanel = true;
    bool isOpaque = false;
    bool hasClearBackground = true;
    bool hasShadow = false;
    bool hidesOnDeactivate = false;
    bool canHide = false;
    bool canBecomeKey = false;
    bool canBecomeMain = false;
    bool ignoresMouseEvents = true;
    bool allowsToolTipsWhenInactive = true;

    bool operator==(const PanelFacts&) const = default;
};

/// What is wanted of a panel over a capsule.
constexpr PanelFacts kClickPanelFacts{.ignoresMouseEvents = false};

/// One line for each property, such as "level 25", followed by "  WRONG, should be ..." where it
/// differs from the wanted value.
[[nodiscard]] QStringList panelReport(const PanelFacts& found, const PanelFacts& wanted = {});

} // namespace brimlet
