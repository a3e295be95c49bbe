#pragma once

#include "platform/rect.h"

#include <span>

class QPainterPath;
class QRegion;

namespace brimlet {

struct TextStrip;

/// The native window behind the overlay panel: borderless, transparent, above other windows, on
/// every desktop, never focused. It is created hidden. Main thread only.
class OverlayWindow {
public:
    virtual ~OverlayWindow() = default;

    /// Shows the window above others without activating the program.
    virtual void orderFrontRegardless() = 0;

    /// Hides the window.
    virtual void orderOut() = 0;

    /// Sizes and places the window, in global points. Where the frame's edges are inside a point,
    /// the window may be larger, around the same centre.
    virtual void setFrame(const Rect& frame) = 0;

    /// While true every click reaches what is underneath.
    virtual void setIgnoresMouseEvents(bool ignores) = 0;

    /// Where the content takes clicks and where it paints: outlines in its own coordinates
    /// (points), whose edges are rounded to pixels. Both are empty until set.
    virtual void setRegions(const QPainterPath& clickable, const QPainterPath& painted) = 0;

    /// Paints these points of the content again, soon: changes of one turn of the event loop are
    /// painted together.
    virtual void updateContent(const QRegion& points) = 0;

    /// Shows these texts at once, over what the content has painted there, or later as any other
    /// change. They are seen until their points are painted again.
    virtual void showTexts(std::span<const TextStrip> texts) = 0;
};

} // namespace brimlet
