#pragma once

#include "platform/wayland/waylandproxies.h"

#include <QObject>
#include <QRect>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace brimlet {

class WaylandOutputs;

/// An output of the compositor, with all that is known of it by now.
class WaylandOutput final {
public:
    /// The owner outlives it.
    WaylandOutput(WaylandOutputs& owner, std::uint32_t name, Proxy<wl_output> output);
    WaylandOutput(const WaylandOutput&) = delete;
    WaylandOutput& operator=(const WaylandOutput&) = delete;

    [[nodiscard]] wl_output* proxy() const { return m_output.get(); }
    /// Such as "eDP-1"; empty where the compositor gives none.
    [[nodiscard]] const QString& connector() const { return m_connector; }
    /// In points of the compositor's space, y down.
    [[nodiscard]] QRect geometry() const;
    /// Pixels per point, a whole number.
    [[nodiscard]] int scale() const { return m_scale; }
    /// Pixels per point as they are shown.
    [[nodiscard]] double exactScale() const;

private:
    friend class WaylandOutputs;
    [[nodiscard]] QSize pixels() const;

    WaylandOutputs& m_owner;
    std::uint32_t m_name;
    Proxy<wl_output> m_output;
    Proxy<zxdg_output_v1> m_description;
    QString m_connector;
    QRect m_logical; ///< Without a size until the compositor describes it.
    QPoint m_position;
    QSize m_mode;
    int m_transform = 0;
    int m_scale = 1;
};

/// The compositor's outputs, in the order of their announcement. Main thread only.
class WaylandOutputs final : public QObject {
    Q_OBJECT

public:
    WaylandOutputs();
    ~WaylandOutputs() override;

    [[nodiscard]] const std::vector<std::unique_ptr<WaylandOutput>>& all() const { return m_all; }
    /// The output that contains the point of the compositor's space; null when none does.
    [[nodiscard]] const WaylandOutput* at(QPointF point) const;
    [[nodiscard]] const WaylandOutput* named(const QString& connector) const;

    void add(std::uint32_t name, Proxy<wl_output> output);
    /// Nothing happens when no output has that name.
    void remove(std::uint32_t name);
    void clear();
    /// Asks for the connectors and logical geometries that are not known yet; null for a compositor
    /// that has no such extension.
    void requestNames(zxdg_output_manager_v1* manager);

Q_SIGNALS:
    /// Outputs were added, removed, moved, resized or rescaled.
    void changed();

private:
    std::vector<std::unique_ptr<WaylandOutput>> m_all;
};

} // namespace brimlet
