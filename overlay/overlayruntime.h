#pragma once

#include "host/assignment.h"
#include "overlay/notchgeometry.h"
#include "platform/workspace.h"

#include <QObject>

#include <optional>

namespace brimlet {

class HostStore;

/// The observable state that the overlay's views show. Main thread only.
class OverlayRuntime final : public QObject {
    Q_OBJECT

public:
    /// `workspace` outlives the runtime.
    explicit OverlayRuntime(Workspace& workspace)
        : m_workspace(workspace) {}

    /// Copies the five fields below from the store and the notch's size in points. Each is
    /// announced, even if its value stays the same. The creatives are copied even while ads are
    /// hidden.
    void apply(const HostStore& store, double notchWidth, double notchHeight);

    /// Opens the creative's brand page in the workspace if ads are visible and the link rule allows
    /// it; otherwise does nothing.
    void open(const std::optional<SlotCreative>& creative);

    /// Whether the link rule allows the address.
    [[nodiscard]] static bool canOpen(const Url& url);

    [[nodiscard]] bool visible() const { return m_visible; }
    [[nodiscard]] const std::optional<SlotCreative>& left() const { return m_left; }
    [[nodiscard]] const std::optional<SlotCreative>& right() const { return m_right; }
    /// Points.
    [[nodiscard]] double notchWidth() const { return m_notchWidth; }
    /// Points. Published with the width, although no view needs it: the pills' height is fixed.
    [[nodiscard]] double notchHeight() const { return m_notchHeight; }

Q_SIGNALS:
    /// Emitted before a field is set, while it still has its old value.
    void objectWillChange();

private:
    template <typename Field, typename Value>
    void publish(Field& field, Value&& value) {
        Q_EMIT objectWillChange();
        field = std::forward<Value>(value);
    }

    Workspace& m_workspace;
    bool m_visible = false;
    std::optional<SlotCreative> m_left;
    std::optional<SlotCreative> m_right;
    double m_notchWidth = NotchMetrics{}.width;
    double m_notchHeight = NotchMetrics{}.height;
};

} // namespace brimlet
