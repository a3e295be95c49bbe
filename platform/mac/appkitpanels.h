#pragma once

#include "platform/mac/rules/macpanel.h"

namespace brimlet {

/// The overlay's panels as NSPanels that never activate the program. An NSView over each capsule
/// handles hovering, cursor and tooltips, which Qt does not do in a program that is not active.
class AppKitPanels final : public MacPanels {
public:
    [[nodiscard]] std::unique_ptr<MacPanel> paintingPanel(QWidget& content) const override;
    [[nodiscard]] std::unique_ptr<MacPanel> clickPanel(CapsuleMouse& mouse) const override;
    [[nodiscard]] QPointF pointerPosition() const override;
    void showHand(bool isHand) const override;
};

} // namespace brimlet
