#pragma once

#include "platform/mac/rules/capsulemouse.h"
#include "platform/mac/rules/macpanel.h"
#include "platform/overlaywindow.h"

#include <QPainterPath>
#include <QPoint>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace brimlet {

/// The overlay in panels: one for the content, which always ignores the mouse, and an invisible one
/// over each clickable box, which takes the mouse while the overlay is shown and does not ignore
/// it. One panel alone could not let clicks through beside the boxes: once it takes some, it takes
/// all within its frame.
class MacOverlayWindow final : public OverlayWindow {
public:
    /// `panels` must outlive this. `toolTipAt` returns the tooltip for a point in the content;
    /// empty for none.
    MacOverlayWindow(const MacPanels& panels, std::unique_ptr<QWidget> content,
                     std::function<QString(QPoint)> toolTipAt);

    void orderFrontRegardless() override;
    void orderOut() override;
    void setFrame(const Rect& frame) override;
    void setIgnoresMouseEvents(bool ignores) override;
    /// The system composites the window, so only the clickable region matters.
    void setRegions(const QPainterPath& clickable, const QPainterPath& painted) override;
    void updateContent(const QRegion& points) override;
    void showTexts(std::span<const TextStrip> texts) override;

    /// Of the panel for the content.
    [[nodiscard]] PanelFacts facts() const { return m_painting->facts(); }
    /// Of the panels over the boxes.
    [[nodiscard]] std::vector<PanelFacts> clickFacts() const;
    /// Whether a click at this position, in global points, would reach one of the panels.
    [[nodiscard]] bool takesClickAt(QPointF where) const;

private:
    /// Places, shows and hides the panels over the boxes.
    void updateClickPanels();

    const MacPanels& m_panels;
    std::unique_ptr<QWidget> m_content;
    CapsuleMouse m_mouse;
    std::unique_ptr<MacPanel> m_painting;
    /// For the boxes, in their order; there may be more, which are hidden.
    std::vector<std::unique_ptr<MacPanel>> m_clickPanels;
    Rect m_frame;
    bool m_isShown = false;
    bool m_ignoresMouse = true;
};

} // namespace brimlet
