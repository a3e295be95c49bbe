#pragma once

#include <QString>
#include <QStringList>

namespace brimlet {

/// What AppKit says of the overlay's panel.
struct PanelFacts final {
    unsigned long styleMask = 0x80;          ///< Non-activating panel, nothing else.
    unsigned long collectionBehavior = 0x51; ///< On all spaces, stationary, not cycled through.
    long level = 25;                         ///< That of status windows.
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

/// One line for each fact, in a fixed order: "level 25", followed by "  WRONG, should be ..."
/// where it differs from the values above.
[[nodiscard]] QStringList panelReport(const PanelFacts& found);

} // namespace brimlet
