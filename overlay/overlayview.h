#pragma once

#include "creative/creativeenvironment.h"
#include "overlay/overlayruntime.h"
#include "platform/onceperturn.h"

#include <QRegion>
#include <QWidget>

#include <optional>

namespace brimlet {

class NotchPill;

/// The overlay's picture: a pill on either side of a gap of the notch's size. It draws the runtime
/// and repaints at most once per turn of the event loop, and not at all when nothing it draws
/// changed. A step of a scrolling text is painted at once.
class OverlayView final : public QWidget {
    Q_OBJECT

public:
    /// The runtime outlives the view.
    OverlayView(OverlayRuntime& runtime, const CreativeEnvironment& environment);

    /// The clickable capsules' shape in the view's coordinates.
    [[nodiscard]] const QRegion& clickable() const { return m_clickable; }
    /// The shape of everything painted.
    [[nodiscard]] const QRegion& painted() const { return m_painted; }

Q_SIGNALS:
    /// One of the two shapes is another one now.
    void regionsChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    /// What the picture is made of.
    struct Parts final {
        bool visible = false;
        std::optional<SlotCreative> left;
        std::optional<SlotCreative> right;
        double notchWidth = 0;

        bool operator==(const Parts&) const = default;
    };

    void rebuild();
    static void pill(NotchPill& view, const std::optional<SlotCreative>& creative);
    void placeRow();
    void updateRegions();
    void paintStep(NotchPill& moved);

    OverlayRuntime& m_runtime;
    NotchPill* m_left;
    NotchPill* m_right;
    OncePerTurn m_rebuild{[this] { rebuild(); }};
    std::optional<Parts> m_parts; ///< Of the present picture.
    QRegion m_clickable;
    QRegion m_painted;
};

} // namespace brimlet
