#pragma once

#include "platform/mac/rules/panelfacts.h"
#include "platform/rect.h"

#include <QPointF>

#include <memory>

class QWidget;

namespace brimlet {

class CapsuleMouse;

/// A native panel of the overlay, transparent and above other windows, created hidden. Frames and
/// positions are in global points.
class MacPanel {
public:
    virtual ~MacPanel() = default;

    virtual void setFrame(const Rect& frame) = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;

    [[nodiscard]] virtual PanelFacts facts() const = 0;
    /// Whether a click at this point would reach it.
    [[nodiscard]] virtual bool takesClickAt(QPointF where) const = 0;
};

/// Makes the overlay's panels, and has the pointer.
class MacPanels {
public:
    virtual ~MacPanels() = default;

    /// One around the native view of the content, that ignores the mouse. The content outlives it.
    [[nodiscard]] virtual std::unique_ptr<MacPanel> paintingPanel(QWidget& content) const = 0;
    /// An invisible one that takes the mouse and reports it. The mouse outlives it.
    [[nodiscard]] virtual std::unique_ptr<MacPanel> clickPanel(CapsuleMouse& mouse) const = 0;

    [[nodiscard]] virtual QPointF pointerPosition() const = 0;
    /// Sets the pointing hand, or the arrow.
    virtual void showHand(bool isHand) const = 0;
};

} // namespace brimlet
