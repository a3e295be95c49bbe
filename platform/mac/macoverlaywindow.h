#pragma once

#include "platform/mac/rules/hovertracker.h"
#include "platform/mac/rules/panelfacts.h"
#include "platform/overlaywindow.h"

#include <QPainterPath>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>

namespace brimlet {

/// The overlay's panel: an AppKit window around the native view of a Qt widget. The panel never
/// activates the program, so an NSView around the widget's handles hovering, cursor and tooltips.
class MacOverlayWindow final : public OverlayWindow {
public:
    /// `toolTipAt` returns the tooltip for a point in the content; empty for none.
    MacOverlayWindow(std::unique_ptr<QWidget> content, std::function<QString(QPoint)> toolTipAt);
    ~MacOverlayWindow() override;
    MacOverlayWindow(const MacOverlayWindow&) = delete;
    MacOverlayWindow& operator=(const MacOverlayWindow&) = delete;

    void orderFrontRegardless() override;
    void orderOut() override;
    void setFrame(const Rect& frame) override;
    void setIgnoresMouseEvents(bool ignores) override;
    /// The window is composited, so only the clickable region matters.
    void setRegions(const QPainterPath& clickable, const QPainterPath& painted) override;
    void updateContent(const QRegion& points) override;
    void paintStep(const QRegion& points, const std::function<void(QPainter&)>& paint) override;

    [[nodiscard]] PanelFacts facts() const;

private:
    struct Native;

    std::unique_ptr<QWidget> m_content;
    HoverTracker m_hover;
    std::unique_ptr<Native> m_native;
};

} // namespace brimlet
