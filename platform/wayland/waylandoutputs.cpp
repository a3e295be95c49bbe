#include "platform/wayland/waylandoutputs.h"

#include "platform/wayland/waylandprotocols.h"

#include <algorithm>

namespace brimlet {

WaylandOutput::WaylandOutput(WaylandOutputs& owner, std::uint32_t name, Proxy<wl_output> output)
    : m_owner(owner)
    , m_name(name)
    , m_output(std::move(output)) {}

/// As the screen is seen: a turned output is higher than wide.
QSize WaylandOutput::pixels() const {
    const bool isTurned = m_transform % 2 == 1; // by 90 or 270 degrees, flipped or not
    return isTurned ? m_mode.transposed() : m_mode;
}

QRect WaylandOutput::geometry() const {
    return m_logical.isValid() ? m_logical : QRect(m_position, pixels() / m_scale);
}

double WaylandOutput::exactScale() const {
    const QRect points = geometry();
    return points.isEmpty() ? m_scale : double(pixels().width()) / points.width();
}

WaylandOutputs::WaylandOutputs() = default;
WaylandOutputs::~WaylandOutputs() = default;

const WaylandOutput* WaylandOutputs::at(QPointF point) const {
    const auto found = std::find_if(m_all.begin(), m_all.end(), [&](const auto& output) {
        return QRectF(output->geometry()).contains(point);
    });
    return found == m_all.end() ? nullptr : found->get();
}

const WaylandOutput* WaylandOutputs::named(const QString& connector) const {
    const auto found = std::find_if(m_all.begin(), m_all.end(), [&](const auto& output) {
        return output->connector() == connector;
    });
    return found == m_all.end() ? nullptr : found->get();
}

void WaylandOutputs::add(std::uint32_t name, Proxy<wl_output> proxy) {
    m_all.push_back(std::make_unique<WaylandOutput>(*this, name, std::move(proxy)));
    static constexpr wl_output_listener kOutput{
        .geometry =
            [](void* data, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t,
               std::int32_t, const char*, const char*, std::int32_t transform) {
                auto& output = *static_cast<WaylandOutput*>(data);
                output.m_position = {x, y};
                output.m_transform = transform;
            },
        .mode =
            [](void* data, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height,
               std::int32_t) {
                if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) {
                    static_cast<WaylandOutput*>(data)->m_mode = {width, height};
                }
            },
        .done =
            [](void* data, wl_output*) {
                const auto& output = *static_cast<WaylandOutput*>(data);
                // Another one follows the description that was asked for.
                if (!output.m_description || output.m_logical.isValid()) {
                    Q_EMIT output.m_owner.changed();
                }
            },
        .scale =
            [](void* data, wl_output*, std::int32_t factor) {
                static_cast<WaylandOutput*>(data)->m_scale = std::max(factor, 1);
            },
        .name =
            [](void* data, wl_output*, const char* connector) {
                static_cast<WaylandOutput*>(data)->m_connector = QString::fromUtf8(connector);
            },
        .description = kIgnoreEvent};
    wl_output_add_listener(m_all.back()->proxy(), &kOutput, m_all.back().get());
}

void WaylandOutputs::remove(std::uint32_t name) {
    if (std::erase_if(m_all, [&](const auto& output) { return output->m_name == name; }) > 0) {
        Q_EMIT changed();
    }
}

void WaylandOutputs::clear() {
    m_all.clear();
}

void WaylandOutputs::requestNames(zxdg_output_manager_v1* manager) {
    if (manager == nullptr) {
        return;
    }
    static constexpr zxdg_output_v1_listener kDescription{
        .logical_position =
            [](void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
                static_cast<WaylandOutput*>(data)->m_logical.moveTo(x, y);
            },
        .logical_size =
            [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
                static_cast<WaylandOutput*>(data)->m_logical.setSize({width, height});
            },
        // Of versions before 3; later ones send wl_output's.
        .done =
            [](void* data, zxdg_output_v1*) {
                Q_EMIT static_cast<WaylandOutput*>(data)->m_owner.changed();
            },
        .name =
            [](void* data, zxdg_output_v1*, const char* name) {
                static_cast<WaylandOutput*>(data)->m_connector = QString::fromUtf8(name);
            },
        .description = kIgnoreEvent};
    for (const auto& output : m_all) {
        if (!output->m_description) {
            output->m_description.reset(
                zxdg_output_manager_v1_get_xdg_output(manager, output->proxy()));
            zxdg_output_v1_add_listener(output->m_description.get(), &kDescription, output.get());
        }
    }
}

} // namespace brimlet
