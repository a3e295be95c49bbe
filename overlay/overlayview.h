#pragma once

#include "creative/creativeenvironment.h"
#include "overlay/overlayruntime.h"
#include "platform/onceperturn.h"
#include "platform/textstrip.h"

#include <QPainterPath>
#include <QWidget>

#include <optional>
#include <span>

namespace brimlet {

class NotchPill;

/// Shows the runtime's state: a pill on either side of the notch. Updates at most once per turn of
/// the event loop, and not at all when nothing visible changed. What is to be painted again is
/// reported; the window decides when.
class OverlayView final : public QWidget {
    Q_OBJECT

public:
    /// `runtime` and what `environment` refers to outlive the view.
    OverlayView(OverlayRuntime& runtime, const CreativeEnvironment& environment);

    /// The clickable capsules' outlines in the view's coordinates.
    [[nodiscard]] const QPainterPath& clickable() const { return m_clickable; }
    /// The outlines of all shown capsules, in the view's coordinates.
    [[nodiscard]] const QPainterPath& painted() const { return m_painted; }

Q_SIGNALS:
    /// At least one of the two has changed.
    void regionsChanged();
    /// These points have to be painted again.
    void contentChanged(const QRegion& points);
    /// Scrolling texts have moved by a step, and are to be shown so.
    void stepped(std::span<const TextStrip> texts);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    /// The runtime's fields that decide what is visible.
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
    void reportStep(NotchPill& moved);

    OverlayRuntime& m_runtime;
    NotchPill* m_left;
    NotchPill* m_right;
    OncePerTurn m_rebuild{[this] { rebuild(); }};
    std::optional<Parts> m_parts; ///< As shown now.
    QPainterPath m_clickable;
    QPainterPath m_painted;
};

} // namespace brimlet
