#pragma once

#include "host/assignment.h"
#include "overlay/notchgeometry.h"
#include "platform/workspace.h"

#include <QObject>

#include <optional>

namespace brimlet {

class HostStore;

/// The observable state behind the overlay's views. Main thread only.
class OverlayRuntime final : public QObject {
    Q_OBJECT

public:
    /// The workspace outlives the runtime.
    explicit OverlayRuntime(Workspace& workspace)
        : m_workspace(workspace) {}

    /// Copies what the views show from the store: five changes, each announced, equal or not. The
    /// creatives are copied whether or not ads are visible; hiding is the views' business.
    void apply(const HostStore& store, double notchWidth, double notchHeight);

    /// Opens the creative's brand page, if ads are visible and the link rule allows it.
    void open(const std::optional<SlotCreative>& creative);

    /// The link rule.
    [[nodiscard]] static bool canOpen(const Url& url);

    [[nodiscard]] bool visible() const { return m_visible; }
    [[nodiscard]] const std::optional<SlotCreative>& left() const { return m_left; }
    [[nodiscard]] const std::optional<SlotCreative>& right() const { return m_right; }
    /// Points.
    [[nodiscard]] double notchWidth() const { return m_notchWidth; }
    /// Points.
    [[nodiscard]] double notchHeight() const { return m_notchHeight; }

Q_SIGNALS:
    /// A field is about to change; it still has its old value.
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
