#pragma once

#include "platform/mac/rules/hovertracker.h"
#include "platform/mac/rules/panelfacts.h"
#include "platform/overlaywindow.h"

#include <QRegion>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>

namespace brimlet {

/// The overlay's panel: AppKit's window around the view of a Qt widget. It never makes the program
/// the active one, so hovering, the hand and tooltips come from a view of our own around that.
class MacOverlayWindow final : public OverlayWindow {
public:
    /// `toolTipAt` gives the text for a place in the content; empty for none.
    MacOverlayWindow(std::unique_ptr<QWidget> content, std::function<QString(QPoint)> toolTipAt);
    ~MacOverlayWindow() override;
    MacOverlayWindow(const MacOverlayWindow&) = delete;
    MacOverlayWindow& operator=(const MacOverlayWindow&) = delete;

    void orderFrontRegardless() override;
    void orderOut() override;
    void setFrame(const Rect& frame) override;
    void setIgnoresMouseEvents(bool ignores) override;

    /// In the content's coordinates.
    void setClickable(const QRegion& clickable);

    [[nodiscard]] PanelFacts facts() const;

private:
    struct Native;

    std::unique_ptr<QWidget> m_content;
    HoverTracker m_hover;
    std::unique_ptr<Native> m_native;
};

} // namespace brimlet
