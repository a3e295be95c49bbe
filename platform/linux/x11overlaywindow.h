#pragma once

#include "platform/overlaywindow.h"

#include <QRegion>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace brimlet {

/// The overlay's window on an X server: unmanaged, so that it stands above everything on every
/// desktop and never takes focus. Clicks pass through all of it but the clickable shape; without a
/// compositor it is cut to the painted shape.
class X11OverlayWindow final : public QWidget, public OverlayWindow {
    Q_OBJECT

public:
    /// Takes the content as its child. `primaryGeometry` gives the primary screen in Qt's space at
    /// the time of asking.
    X11OverlayWindow(std::unique_ptr<QWidget> content, std::function<QRectF()> primaryGeometry);

    void orderFrontRegardless() override;
    void orderOut() override;
    void setFrame(const Rect& frame) override;
    void setIgnoresMouseEvents(bool ignores) override;

    /// Both in the window's logical pixels.
    void setShapes(const QRegion& clickable, const QRegion& painted);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void applyInputShape();
    void applyMask();
    void bringForward();

    QWidget* m_content;
    std::function<QRectF()> m_primaryGeometry;
    QRegion m_clickable;
    QRegion m_painted;
    bool m_ignoresMouseEvents = true;
    // What the X server was told last, so that it hears nothing while nothing changes.
    WId m_shapedWindow = 0;
    std::vector<QRect> m_inputShape; ///< Pixels of the screen.
    std::uint64_t m_arrangement = 0; ///< Of the windows, when this one was raised.
};

} // namespace brimlet
